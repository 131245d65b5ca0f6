#pragma once

namespace Quillon {

// Qt 6.4's Wayland input-method code assumes the compositor has a seat; on one without (a kiosk,
// a headless or remote compositor) the first text field that draws its cursor crashes the
// program. Called before the QApplication exists: Qt then builds no input method for such a
// compositor, and everything else is as before.
class WaylandSeat
{
public:
    // Whether Qt is about to talk Wayland and the compositor announces no seat.
    static bool compositorHasNoSeat();
    // Keeps Qt from building its Wayland input method. Undo with restoreInputMethod() as soon
    // as the QApplication exists, so that programs we start never inherit the setting.
    static void disableInputMethod();
    static void restoreInputMethod();
};

} // namespace Quillon

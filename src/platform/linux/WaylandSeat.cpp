#include "WaylandSeat.h"

#include <QByteArray>
#include <QtGlobal>

#include <cstring>
#include <utility>
#include <wayland-client.h>

namespace Quillon {
namespace {
// Set only by us, and only for as long as the QApplication is being built.
bool s_weSetInputMethod = false;

bool qtWillUseWayland()
{
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (!platform.isEmpty())
        return platform.startsWith("wayland");
    // Qt's own choice when nothing is asked: Wayland when the session is a Wayland one.
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") && qgetenv("XDG_SESSION_TYPE") == "wayland";
}

void announced(void *data, wl_registry *, uint32_t, const char *interface, uint32_t)
{
    if (std::strcmp(interface, wl_seat_interface.name) == 0)
        *static_cast<bool *>(data) = true;
}
void withdrawn(void *, wl_registry *, uint32_t)
{ }
const wl_registry_listener Listener { announced, withdrawn };
} // namespace

bool WaylandSeat::compositorHasNoSeat()
{
    if (!qtWillUseWayland() || qEnvironmentVariableIsSet("QT_IM_MODULE"))
        return false;
    wl_display *display = wl_display_connect(nullptr);
    if (!display)
        return false; // Qt reports that itself
    bool seat = false;
    wl_registry *registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &Listener, &seat);
    const bool answered = wl_display_roundtrip(display) >= 0;
    wl_registry_destroy(registry);
    wl_display_disconnect(display);
    return answered && !seat;
}

void WaylandSeat::disableInputMethod()
{
    // No thread exists yet that could start a program with this environment.
    s_weSetInputMethod = qputenv("QT_IM_MODULE", "none");
}

void WaylandSeat::restoreInputMethod()
{
    if (std::exchange(s_weSetInputMethod, false))
        qunsetenv("QT_IM_MODULE");
}

} // namespace Quillon

#pragma once

#include <functional>

class QWidget;

namespace Quillon {

class Preferences;

// Launch All Now opens every item, runs every script and sends every notice at once, with no way
// back: more than one item is asked about first (a window-modal question, never a nested event
// loop), unless the user said not to. launch runs at once when there is nothing to ask.
void confirmLaunchAll(QWidget *parent, Preferences &preferences, int count, const std::function<void()> &launch);

} // namespace Quillon

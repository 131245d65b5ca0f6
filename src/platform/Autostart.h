#pragma once

#include <QString>

// Starting with the user's session. On Linux an entry in $XDG_CONFIG_HOME/autostart, the
// freedesktop.org way.
namespace Quillon::Autostart {
QString entryPath();
bool isEnabled();
// Writes or removes the entry; false when that failed.
bool setEnabled(bool enabled);
// The entry's Exec= value for starting program at login, quoted as the Desktop Entry spec asks.
QByteArray execLine(const QString &program);
} // namespace Quillon::Autostart

#pragma once

#include <QString>

namespace Quillon::FileTrust {

// What Quillon runs as the user itself (a desktop entry, a script) must be the user's own: owned
// by the user or by root, writable by nobody else, in a folder nobody else can change (a sticky
// one such as /tmp is fine), and, for a desktop entry outside the system's application folders,
// marked executable as the desktop's file managers ask. Another user's file in a shared folder
// would otherwise run as whoever added the folder. Returns why not, or nothing when it may run
// (or is not there at all: that is for whoever opens it to say).
enum class Kind { DesktopEntry, Script };
QString whyNotRun(const QString &path, Kind kind);

// Why a folder Quillon keeps its own files in is not the user's alone: another user owns it, or
// others can write in it. Empty when it is, or when it does not exist yet.
QString whyNotOwnFolder(const QString &folder);

} // namespace Quillon::FileTrust

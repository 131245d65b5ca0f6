#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace Quillon::FileReference {

// An opaque byte string that finds a file again after it was renamed or moved on its filesystem.
// Empty when the path cannot be referenced (missing file, path longer than 1023 bytes).
QByteArray make(const QString &path);

// The file's current absolute path, or nothing when it cannot be found.
// Bytes without our header are taken as a plain absolute path, so hand-written lists load.
std::optional<QString> resolve(const QByteArray &reference);

// resolve() for a whole list at once: files that moved are looked for in one shared, bounded walk.
QList<std::optional<QString>> resolveAll(const QList<QByteArray> &references);

} // namespace Quillon::FileReference

#pragma once

#include <QByteArray>
#include <QString>

class QUrl;

namespace Quillon::FileName {

// A Linux file name is bytes, and not every name is valid UTF-8 (a file copied from an old
// Latin-1 system, say). Qt reads names as UTF-8 and turns each byte that is not into U+FFFD, so
// such a file could neither be found again nor opened. These keep each such byte as a lone low
// surrogate, U+DC80 to U+DCFF, which valid text never holds: bytes to text and back is exact.
// Every path that reaches the file system goes through encode().
QString decode(const QByteArray &bytes);
QByteArray encode(const QString &path);
// For showing: each kept byte as U+FFFD.
QString display(const QString &path);
// The local path a file: URL names, its bytes kept; empty for any other URL.
QString fromUrl(const QUrl &url);

} // namespace Quillon::FileName

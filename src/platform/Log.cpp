#include "Log.h"

#include <cstdio>

namespace Quillon {
namespace {
LogSink &sink()
{
    static LogSink s;
    return s;
}

} // namespace

// Server replies and file names end up in log lines: a CR or LF in them would forge lines of its
// own, an ESC would colour the terminal, a right-to-left override would turn the text around.
QString escapeControls(const QString &line)
{
    QString out;
    out.reserve(line.size());
    for (const QChar c : line) {
        const char16_t u = c.unicode();
        if (u == '\n')
            out += QLatin1String("\\n");
        else if (u == '\r')
            out += QLatin1String("\\r");
        else if (u == '\t')
            out += QLatin1String("\\t");
        else if (u < 0x20 || u == 0x7f || (u >= 0x80 && u < 0xa0))
            out += QStringLiteral("\\x%1").arg(uint(u), 2, 16, QLatin1Char('0'));
        else if (c.category() == QChar::Other_Format || u == 0x2028 || u == 0x2029)
            out += QStringLiteral("\\u{%1}").arg(uint(u), 4, 16, QLatin1Char('0'));
        else
            out += c;
    }
    return out;
}

void systemLog(const QString &raw)
{
    const QString line = escapeControls(raw);
    if (sink()) {
        sink()(line);
        return;
    }
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
    std::fflush(stderr);
}

void setLogSink(LogSink s)
{
    sink() = std::move(s);
}

} // namespace Quillon

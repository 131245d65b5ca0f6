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

void systemLog(const QString &line)
{
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

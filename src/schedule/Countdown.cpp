#include "Countdown.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace Quillon {
namespace {
void append(char (&buffer)[CountdownCapacity], quint32 value, const char *unit)
{
    const size_t used = std::strlen(buffer);
    if (used >= CountdownCapacity - 1)
        return;
    // snprintf never writes past the capacity, so the text is cut at 255 characters.
    std::snprintf(buffer + used, CountdownCapacity - used, "%u%s", value, unit);
}
} // namespace

void formatTimeToLaunch(quint32 n, char (&buffer)[CountdownCapacity])
{
    if (n == 0) {
        std::strcpy(buffer, "0 secs");
        return;
    }
    const quint32 h = n / 3600;
    const quint32 r = n % 3600;
    const quint32 m = r / 60;
    const quint32 s = r % 60;
    if (n >= 3600)
        append(buffer, h, h == 1 ? " hr " : " hrs ");
    if (r >= 60)
        append(buffer, m, m == 1 ? " min " : " mins ");
    if (s != 0)
        append(buffer, s, s == 1 ? " sec " : " secs ");
}

QString countdownText(double remainingSecs)
{
    if (!(remainingSecs > 0.0))
        return {};
    char buffer[CountdownCapacity] = {};
    formatTimeToLaunch(quint32(qint32(std::min(std::trunc(remainingSecs), 2147483647.0))), buffer);
    return QString::fromLatin1(buffer);
}

} // namespace Quillon

// Feeds arbitrary server output to the reply parser, cut into pieces at places the input picks,
// as a network would deliver it.
#include "SmtpReplyParser.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Quillon::SmtpReplyParser parser;
    size_t i = 0;
    while (i < size && parser.error().isEmpty()) {
        const size_t n = std::min<size_t>(size - i, 1 + data[i] % 97);
        parser.feed(QByteArray(reinterpret_cast<const char *>(data + i), qsizetype(n)));
        while (const auto reply = parser.next()) {
            if (reply->code < 0 || reply->code > 999 || reply->lines.isEmpty())
                __builtin_trap();
        }
        i += n;
    }
    return 0;
}

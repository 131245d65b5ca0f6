#include "FileName.h"

#include <QUrl>

// Hand-written because neither Qt nor GLib has this codec: QStringDecoder and
// g_filename_display_name both replace what they cannot read.

namespace Quillon::FileName {
namespace {
constexpr char16_t EscapeBase = 0xDC00;

// The length of the valid UTF-8 sequence at i, 0 when there is none there.
int sequenceAt(const QByteArray &bytes, qsizetype i, char32_t &code)
{
    const auto byte = [&](qsizetype at) { return at < bytes.size() ? uchar(bytes.at(at)) : 0u; };
    const uchar lead = byte(i);
    int length = 0;
    char32_t min = 0;
    if (lead < 0x80) {
        code = lead;
        return 1;
    } else if ((lead & 0xE0) == 0xC0) {
        length = 2, code = lead & 0x1F, min = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3, code = lead & 0x0F, min = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4, code = lead & 0x07, min = 0x10000;
    } else {
        return 0;
    }
    for (int k = 1; k < length; ++k) {
        const uchar next = byte(i + k);
        if ((next & 0xC0) != 0x80)
            return 0;
        code = (code << 6) | (next & 0x3F);
    }
    // Overlong forms, surrogates and what lies beyond Unicode are not valid UTF-8.
    if (code < min || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        return 0;
    return length;
}
} // namespace

QString decode(const QByteArray &bytes)
{
    QString out;
    out.reserve(bytes.size());
    for (qsizetype i = 0; i < bytes.size();) {
        char32_t code = 0;
        const int length = sequenceAt(bytes, i, code);
        if (length == 0) {
            out.append(QChar(char16_t(EscapeBase + uchar(bytes.at(i)))));
            ++i;
            continue;
        }
        if (QChar::requiresSurrogates(code))
            out.append(QChar(QChar::highSurrogate(code))).append(QChar(QChar::lowSurrogate(code)));
        else
            out.append(QChar(char16_t(code)));
        i += length;
    }
    return out;
}

QByteArray encode(const QString &path)
{
    QByteArray out;
    out.reserve(path.size());
    qsizetype plainFrom = 0;
    // Runs without kept bytes go through Qt's own encoder.
    for (qsizetype i = 0; i < path.size(); ++i) {
        const char16_t unit = path.at(i).unicode();
        const bool pairedLow = i > 0 && path.at(i - 1).isHighSurrogate();
        if (unit >= EscapeBase + 0x80 && unit <= EscapeBase + 0xFF && !pairedLow) {
            out.append(QStringView(path).mid(plainFrom, i - plainFrom).toUtf8());
            out.append(char(unit - EscapeBase));
            plainFrom = i + 1;
        }
    }
    out.append(QStringView(path).mid(plainFrom).toUtf8());
    return out;
}

QString display(const QString &path)
{
    QString out = path;
    for (qsizetype i = 0; i < out.size(); ++i) {
        const char16_t unit = out.at(i).unicode();
        if (unit >= EscapeBase + 0x80 && unit <= EscapeBase + 0xFF && !(i > 0 && out.at(i - 1).isHighSurrogate()))
            out[i] = QChar::ReplacementCharacter;
    }
    return out;
}

QString fromUrl(const QUrl &url)
{
    if (!url.isLocalFile())
        return {};
    // The percent-encoded form still holds the bytes that toLocalFile() would have replaced.
    return decode(QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()));
}

} // namespace Quillon::FileName

#include "SmtpReplyParser.h"

namespace Quillon {
namespace {
bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}
} // namespace

QByteArray SmtpReply::text() const
{
    QByteArray out;
    const QByteArray number = QByteArray::number(code);
    for (qsizetype i = 0; i < lines.size(); ++i)
        out += number + (i + 1 < lines.size() ? '-' : ' ') + lines.at(i) + "\r\n";
    return out;
}

void SmtpReplyParser::feed(const QByteArray &bytes)
{
    if (!m_error.isEmpty())
        return;
    m_buffer += bytes;
    parseLines();
}

std::optional<SmtpReply> SmtpReplyParser::next()
{
    if (m_ready.isEmpty())
        return std::nullopt;
    return m_ready.takeFirst();
}

void SmtpReplyParser::parseLines()
{
    qsizetype start = 0;
    while (m_error.isEmpty()) {
        const qsizetype end = m_buffer.indexOf('\n', start);
        if (end < 0) {
            if (m_buffer.size() - start > MaxLineLength)
                m_error = "a reply line longer than 64 KiB";
            break;
        }
        if (end - start > MaxLineLength) {
            m_error = "a reply line longer than 64 KiB";
            break;
        }
        // Servers end lines with CRLF; a bare LF is taken too.
        QByteArray line = m_buffer.mid(start, end - start);
        const qsizetype rawSize = end - start + 1;
        start = end + 1;
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.size() < 3 || !isDigit(line[0]) || !isDigit(line[1]) || !isDigit(line[2]) || (line.size() > 3 && line[3] != ' ' && line[3] != '-')) {
            m_error = "a reply line that is not of the form \"<code> text\"";
            break;
        }
        const int code = line.left(3).toInt();
        if (!m_partial.lines.isEmpty() && code != m_partial.code) {
            m_error = "a multi-line reply whose lines have different codes";
            break;
        }
        if (m_partial.lines.size() >= MaxLines) {
            m_error = "a reply of more than 1,000 lines";
            break;
        }
        if (m_partialBytes + rawSize > MaxReplyBytes) {
            m_error = "a reply larger than 1 MiB";
            break;
        }
        m_partial.code = code;
        m_partial.lines.append(line.size() > 4 ? line.mid(4) : QByteArray());
        m_partialBytes += rawSize;
        if (line.size() == 3 || line[3] == ' ') {
            m_ready.append(std::exchange(m_partial, {}));
            m_partialBytes = 0;
        }
    }
    m_buffer.remove(0, start);
    // The buffer keeps its largest size otherwise: what a flood once made it stays held.
    if (m_buffer.capacity() > 2 * m_buffer.size() + 4096)
        m_buffer.squeeze();
    if (!m_error.isEmpty()) {
        m_buffer = QByteArray();
        m_partial = {};
        m_partialBytes = 0;
    }
}

} // namespace Quillon

#include "SmtpReplyParser.h"

namespace Quillon {
namespace {
bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}
} // namespace

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
        const QByteArray raw = m_buffer.mid(start, end - start + 1);
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
        if (m_partial.text.size() + raw.size() > MaxReplyBytes) {
            m_error = "a reply larger than 1 MiB";
            break;
        }
        m_partial.code = code;
        m_partial.lines.append(line.mid(4));
        m_partial.text += raw;
        if (line.size() == 3 || line[3] == ' ')
            m_ready.append(std::exchange(m_partial, {}));
    }
    m_buffer.remove(0, start);
    if (!m_error.isEmpty()) {
        m_buffer.clear();
        m_partial = {};
    }
}

} // namespace Quillon

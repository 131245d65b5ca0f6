#pragma once

#include <QByteArray>
#include <QList>

#include <optional>

namespace Quillon {

// One whole server reply: its code and its lines, each without the code and CRLF.
struct SmtpReply
{
    int code = 0;
    QList<QByteArray> lines;

    // The reply as the server wrote it, CRLF and all. Rebuilt when asked rather than kept beside
    // the lines: a hostile server's large reply is then held once, not twice.
    QByteArray text() const;
    bool isSuccess() const { return code >= 200 && code < 300; }
};

// Cuts a byte stream from an SMTP server into replies (RFC 5321, 4.2), with hard limits so that a
// hostile server cannot make us hold more than a bounded amount of memory.
class SmtpReplyParser final
{
public:
    static constexpr qsizetype MaxLineLength = qsizetype(64) * 1024;
    static constexpr int MaxLines = 1000;
    static constexpr qsizetype MaxReplyBytes = qsizetype(1024) * 1024;

    // Takes what arrived; afterwards take replies with next() until it gives none.
    void feed(const QByteArray &bytes);
    std::optional<SmtpReply> next();
    // Why the stream cannot be a valid reply stream, empty while it can.
    const QByteArray &error() const { return m_error; }
    // Bytes or replies received and not yet taken: a server that speaks before it is asked.
    bool hasPendingInput() const { return !m_buffer.isEmpty() || !m_ready.isEmpty() || !m_partial.lines.isEmpty(); }

private:
    void parseLines();

    QByteArray m_buffer;
    QList<SmtpReply> m_ready;
    SmtpReply m_partial;
    qsizetype m_partialBytes = 0;
    QByteArray m_error;
};

} // namespace Quillon

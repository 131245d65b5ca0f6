// Plays the server's side of a whole SMTP session with the fuzzer's bytes: the first byte picks the
// client's settings (TLS required, login mechanism, recipients), the rest, cut at NUL bytes, are the
// answers to the greeting and to each command in turn. The client runs as the delivery policy
// drives it, over a socket pair, and what it sends is checked as it goes:
// - with TLS required, nothing but EHLO, HELO, STARTTLS and QUIT goes out in clear, and after the
//   server agreed to STARTTLS only a TLS handshake follows;
// - after a refused MAIL, RCPT or DATA, no RCPT, DATA or message text follows;
// - nothing at all follows QUIT.
#include "SmtpSession.h"

#include <QCoreApplication>

#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

using Quillon::SmtpSession;

namespace {
QCoreApplication &application()
{
    static int argc = 1;
    static char name[] = "smtp_session_fuzz";
    static char *argv[] = { name, nullptr };
    static QCoreApplication app(argc, argv);
    return app;
}

void check(bool holds)
{
    if (!holds)
        __builtin_trap();
}

class Server
{
public:
    Server(int fd, bool tlsRequired, QList<QByteArray> answers)
        : m_fd(fd)
        , m_tlsRequired(tlsRequired)
        , m_answers(std::move(answers))
    {
        answer();
    }

    // Reads what the client sent and answers it; false once there is nothing more to do.
    bool serve()
    {
        char chunk[4096];
        bool progress = false;
        for (;;) {
            const ssize_t n = ::read(m_fd, chunk, sizeof chunk);
            if (n <= 0)
                break;
            m_input.append(chunk, n);
            progress = true;
        }
        if (m_tlsAgreed) {
            // A ClientHello is a TLS record; anything else is text sent in clear.
            check(m_input.isEmpty() || m_input.startsWith('\x16'));
            return m_input.isEmpty();
        }
        qsizetype end;
        while (!m_done && (end = m_input.indexOf("\r\n")) >= 0) {
            const QByteArray line = m_input.left(end);
            m_input.remove(0, end + 2);
            onLine(line);
        }
        return progress && !m_done;
    }

private:
    void onLine(const QByteArray &line)
    {
        if (m_inBody) {
            check(!m_refused);
            if (line == ".") {
                m_inBody = false;
                m_last = "BODY";
                answer();
            }
            return;
        }
        if (m_inSasl) { // an answer to a 334 challenge, not a command
            m_inSasl = false;
            answer();
            return;
        }
        check(!m_quit);
        if (qEnvironmentVariableIsSet("QUILLON_FUZZ_TRACE"))
            qInfo("C: %s", line.constData());
        const QByteArray verb = line.split(' ').first().split(':').first().toUpper();
        if (m_tlsRequired)
            check(verb == "EHLO" || verb == "HELO" || verb == "STARTTLS" || verb == "QUIT");
        if (m_refused)
            check(verb != "RCPT" && verb != "DATA");
        m_quit = verb == "QUIT";
        m_last = verb;
        answer();
    }

    void answer()
    {
        if (m_next >= m_answers.size()) {
            m_done = true;
            return;
        }
        const QByteArray reply = m_answers.at(m_next++);
        const int code = reply.size() >= 3 ? reply.left(3).toInt() : 0;
        if (m_last == "MAIL" || m_last == "RCPT")
            m_refused = m_refused || code / 100 != 2;
        else if (m_last == "DATA") {
            m_refused = m_refused || code != 354;
            m_inBody = code == 354;
        } else if (m_last == "STARTTLS")
            m_tlsAgreed = code == 220;
        else if (m_last == "AUTH" || m_inSaslExchange)
            m_inSasl = code == 334;
        m_inSaslExchange = m_inSasl;
        if (!reply.isEmpty())
            (void)::write(m_fd, reply.constData(), size_t(reply.size()));
    }

    int m_fd;
    bool m_tlsRequired;
    QList<QByteArray> m_answers;
    qsizetype m_next = 0;
    QByteArray m_input;
    QByteArray m_last;
    bool m_done = false;
    bool m_quit = false;
    bool m_refused = false;
    bool m_inBody = false;
    bool m_inSasl = false;
    bool m_inSaslExchange = false;
    bool m_tlsAgreed = false;
};
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QCoreApplication &app = application();
    if (size < 1)
        return 0;
    const uint8_t flags = data[0];
    const bool tlsRequired = flags & 1;
    const int mechanism = (flags >> 1) & 3;
    const QList<QByteArray> answers = QByteArray(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1)).split('\0');

    int fds[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds) != 0)
        return 0;
    ::fcntl(fds[1], F_SETFL, O_NONBLOCK);
    auto *session = new SmtpSession(QStringLiteral("mail.example"), 25);
    session->setLimits({ std::chrono::hours(1), std::chrono::hours(1) });
    QList<QByteArray> recipients { (flags & 8) ? QByteArray("j\xc3\xbcrgen@example.org") : QByteArray("ann@example.org") };
    if (flags & 16)
        recipients << "bob@example.org";
    session->setMessage("Subject: fuzz\r\n\r\n.line\r\nbody\r\n", recipients.first(), recipients);
    bool over = false;
    // The delivery policy, as it drives a real session.
    QObject::connect(session, &SmtpSession::serviceInitialized, session, [=] {
        static const char *const names[] = { nullptr, "PLAIN", "LOGIN", "CRAM-MD5" };
        if (tlsRequired && !session->isSSL())
            session->startTLS();
        else if (mechanism > 0)
            session->authenticate(QStringLiteral("ann"), QStringLiteral("pw"), QString::fromLatin1(names[mechanism]));
        else
            session->sendMessage();
    });
    QObject::connect(session, &SmtpSession::authenticationCompleted, session, &SmtpSession::sendMessage);
    QObject::connect(session, &SmtpSession::authenticationFailed, session, &SmtpSession::close);
    QObject::connect(session, &SmtpSession::messageSent, session, &SmtpSession::close);
    QObject::connect(session, &SmtpSession::messageNotSent, session, &SmtpSession::close);
    QObject::connect(session, &SmtpSession::connectionTerminated, session, [&over] { over = true; });
    session->startOnConnectedSocket(fds[0]);

    Server server(fds[1], tlsRequired, answers);
    for (int idle = 0, turns = 0; !over && idle < 3 && turns < 2000; ++turns) {
        app.processEvents();
        idle = server.serve() ? 0 : idle + 1;
    }
    session->abort();
    delete session;
    ::close(fds[1]);
    return 0;
}

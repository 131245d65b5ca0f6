#include "SmtpSession.h"

#include "MailAddress.h"
#include "SaslClient.h"
#include "StepQueue.h"

#include <QHostAddress>
#include <QPointer>
#include <QSslSocket>

namespace Quillon {
namespace {

QByteArray addressLiteral(const QHostAddress &address)
{
    if (address.protocol() == QAbstractSocket::IPv6Protocol)
        return "[IPv6:" + address.toString().toLatin1() + "]";
    return "[" + (address.isNull() ? QByteArray("127.0.0.1") : address.toString().toLatin1()) + "]";
}

} // namespace

QByteArray smtpData(const QByteArray &message)
{
    QByteArray out;
    out.reserve(message.size() + message.size() / 32 + 8);
    bool lineStart = true;
    for (qsizetype i = 0; i < message.size(); ++i) {
        const char c = message.at(i);
        if (lineStart && c == '.')
            out += '.';
        if (c == '\n') {
            if (out.isEmpty() || out.back() != '\r')
                out += '\r';
            out += '\n';
            lineStart = true;
            continue;
        }
        if (c == '\r' && (i + 1 >= message.size() || message.at(i + 1) != '\n')) {
            out += "\r\n"; // a lone CR ends a line too
            lineStart = true;
            continue;
        }
        out += c;
        lineStart = false;
    }
    if (!out.endsWith("\r\n"))
        out += "\r\n";
    return out;
}

SmtpSession::SmtpSession(QString host, quint16 port, StepQueue *steps, QObject *parent)
    : QObject(parent)
    , m_host(std::move(host))
    , m_port(port)
    , m_steps(steps)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        if (m_step == Step::Connecting)
            fail(QStringLiteral("no connection within %1 s").arg(m_connectTimeout.count() / 1000));
        else if (m_step == Step::Idle)
            fail(QStringLiteral("nothing happened for %1 s").arg(m_replyTimeout.count() / 1000));
        else
            fail(QStringLiteral("the server did not answer within %1 s").arg(m_replyTimeout.count() / 1000));
    });
}

SmtpSession::~SmtpSession() = default;

void SmtpSession::setMessage(const QByteArray &message, const QByteArray &from, const QList<QByteArray> &recipients)
{
    m_message = message;
    m_from = from;
    m_recipients = recipients;
}

void SmtpSession::setLimits(SessionLimits limits)
{
    m_connectTimeout = limits.connect;
    m_replyTimeout = limits.reply;
}

void SmtpSession::later(std::function<void()> step)
{
    if (m_steps)
        m_steps->add(this, std::move(step));
    else
        QMetaObject::invokeMethod(this, std::move(step), Qt::QueuedConnection);
}

void SmtpSession::connectInBackgroundAndNotify(bool implicitTls)
{
    setUpSocket(implicitTls);
    m_step = Step::Connecting;
    m_timer.start(m_connectTimeout);
    later([this] {
        if (m_implicitTls)
            m_socket->connectToHostEncrypted(m_host, m_port);
        else
            m_socket->connectToHost(m_host, m_port);
    });
}

void SmtpSession::startOnConnectedSocket(qintptr descriptor)
{
    setUpSocket(false);
    m_step = Step::Connecting;
    if (!m_socket->setSocketDescriptor(descriptor)) {
        QTimer::singleShot(0, this, [this] { fail(m_socket->errorString()); });
        return;
    }
    QTimer::singleShot(0, this, &SmtpSession::onEstablished);
}

void SmtpSession::onEstablished()
{
    if (m_implicitTls && !certificateNamesTheAddress())
        return;
    m_step = Step::Greeting;
    m_awaitingReply = true;
    armReplyTimer();
    Q_EMIT connectionEstablished();
}

void SmtpSession::setUpSocket(bool implicitTls)
{
    m_implicitTls = implicitTls;
    m_socket = new QSslSocket(this);
    m_socket->setPeerVerifyName(m_host);
    // Read in bounded pieces: the parser's limits then bound what a flooding server makes us hold.
    m_socket->setReadBufferSize(qint64(64) * 1024);
    connect(m_socket, implicitTls ? &QSslSocket::encrypted : &QSslSocket::connected, this, &SmtpSession::onEstablished);
    if (!implicitTls) {
        // After STARTTLS: greet again over the encrypted channel.
        connect(m_socket, &QSslSocket::encrypted, this, [this] {
            if (m_step == Step::Handshaking && certificateNamesTheAddress())
                sendEhlo();
        });
    }
    connect(m_socket, &QSslSocket::readyRead, this, &SmtpSession::onReadyRead);
    connect(m_socket, &QSslSocket::sslErrors, this, [this](const QList<QSslError> &errors) {
        QStringList texts;
        for (const QSslError &e : errors)
            texts << e.errorString();
        if (m_failure.isEmpty())
            m_failure = QStringLiteral("the server's certificate could not be verified (%1)").arg(texts.join(QStringLiteral("; ")));
    });
    connect(m_socket, &QSslSocket::errorOccurred, this, [this](QAbstractSocket::SocketError error) {
        if (error == QAbstractSocket::RemoteHostClosedError)
            return; // disconnected() tells
        fail(m_socket->errorString());
    });
    connect(m_socket, &QSslSocket::disconnected, this, [this] {
        if (m_step != Step::Quit && m_failure.isEmpty())
            m_failure = QStringLiteral("the server closed the connection");
        finish();
    });
}

bool SmtpSession::isSSL() const
{
    return m_socket && m_socket->isEncrypted();
}

void SmtpSession::startTLS()
{
    if (isSSL()) {
        QTimer::singleShot(0, this, &SmtpSession::serviceInitialized);
        return;
    }
    if (!m_startTlsOffered) {
        fail(QStringLiteral("the server does not offer STARTTLS, and nothing is sent in clear"));
        return;
    }
    sendCommand("STARTTLS", Step::StartTls);
}

void SmtpSession::authenticate(const QString &username, const QString &password, const QString &mechanism)
{
    m_sasl = SaslClient::start(mechanism, username, password);
    if (!m_sasl) {
        QTimer::singleShot(0, this, &SmtpSession::authenticationFailed);
        return;
    }
    QByteArray command = "AUTH " + mechanism.toLatin1();
    if (m_sasl->clientFirst()) {
        const auto initial = m_sasl->step({});
        if (!initial) {
            m_sasl.reset();
            QTimer::singleShot(0, this, &SmtpSession::authenticationFailed);
            return;
        }
        command += ' ' + (initial->isEmpty() ? QByteArray("=") : *initial);
    }
    sendCommand(command, Step::Auth);
}

bool SmtpSession::certificateNamesTheAddress()
{
    // Qt also accepts a certificate whose common name or DNS entry spells the address out; for an
    // address only an IP Address entry counts.
    const QHostAddress address(m_host);
    if (address.isNull())
        return true;
    const QSslCertificate certificate = m_socket->peerCertificate();
    for (const QString &entry : certificate.subjectAlternativeNames().values(QSsl::IpAddressEntry)) {
        if (QHostAddress(entry).isEqual(address))
            return true;
    }
    fail(QStringLiteral("the server's certificate does not name the address %1 (an address needs an IP Address entry of its own)").arg(m_host));
    return false;
}

void SmtpSession::sendMessage()
{
    m_nextRecipient = 0;
    // Checked here too, whatever the caller did: a CR, LF or bracket in an address would become
    // commands or parameters of its own.
    bool utf8 = false;
    for (const QByteArray &address : QList<QByteArray> { m_from } + m_recipients) {
        const QString text = QString::fromUtf8(address);
        if (const QString problem = addressProblem(text); !problem.isEmpty()) {
            fail(QStringLiteral("the address \"%1\" cannot be sent: %2").arg(text, problem));
            return;
        }
        utf8 = utf8 || needsSmtpUtf8(text);
    }
    if (utf8 && !m_smtpUtf8Offered) {
        fail(QStringLiteral("an address has characters outside ASCII, and the server does not offer SMTPUTF8"));
        return;
    }
    sendCommand("MAIL FROM:<" + m_from + ">" + (utf8 ? " SMTPUTF8" : ""), Step::MailFrom);
}

void SmtpSession::close()
{
    if (m_terminated)
        return;
    if (!m_socket || m_socket->state() != QAbstractSocket::ConnectedState) {
        QTimer::singleShot(0, this, &SmtpSession::finish);
        return;
    }
    sendCommand("QUIT", Step::Quit);
}

void SmtpSession::sendCommand(const QByteArray &line, Step next)
{
    if (m_terminated || !m_socket)
        return;
    m_step = next;
    m_awaitingReply = true;
    m_socket->write(line + "\r\n");
    armReplyTimer();
}

void SmtpSession::sendEhlo()
{
    m_mechanisms.clear();
    m_startTlsOffered = false;
    m_smtpUtf8Offered = false;
    sendCommand("EHLO " + addressLiteral(m_socket->localAddress()), Step::Ehlo);
}

void SmtpSession::armReplyTimer()
{
    if (!m_terminated)
        m_timer.start(m_replyTimeout);
}

void SmtpSession::onReadyRead()
{
    if (m_step == Step::Handshaking) {
        // Anything between the answer to STARTTLS and the handshake came in clear, and would be
        // read as if it had come over TLS.
        fail(QStringLiteral("the server sent data in clear after agreeing to STARTTLS; nothing more is sent"));
        return;
    }
    m_parser.feed(m_socket->readAll());
    if (!m_parser.error().isEmpty()) {
        fail(QStringLiteral("the server sent %1").arg(QString::fromLatin1(m_parser.error())));
        return;
    }
    while (!m_terminated) {
        const auto reply = m_parser.next();
        if (!reply)
            break;
        // No pipelining is offered, so one reply answers one command; what follows it in the same
        // stream was written before the server could have read our next command.
        if (!m_awaitingReply || m_parser.hasPendingInput()) {
            fail(m_step == Step::StartTls ? QStringLiteral("the server sent data in clear after agreeing to STARTTLS; nothing more is sent")
                                          : QStringLiteral("the server sent a reply before it was asked"));
            return;
        }
        m_awaitingReply = false;
        m_lastResponse = reply->text();
        onReply(*reply);
    }
}

void SmtpSession::onReply(const SmtpReply &reply)
{
    armReplyTimer();
    switch (m_step) {
    case Step::Greeting:
        if (reply.code == 220)
            sendEhlo();
        else
            fail(QStringLiteral("the server refused the session: %1").arg(QString::fromUtf8(reply.text().trimmed())));
        break;
    case Step::Ehlo:
    case Step::Helo:
        onEhloReply(reply);
        break;
    case Step::StartTls:
        if (reply.code != 220) {
            fail(QStringLiteral("the server refused STARTTLS: %1").arg(QString::fromUtf8(reply.text().trimmed())));
            break;
        }
        m_step = Step::Handshaking;
        later([this] {
            if (!m_socket || m_terminated)
                return;
            if (m_socket->bytesAvailable() > 0 || m_parser.hasPendingInput()) {
                fail(QStringLiteral("the server sent data in clear after agreeing to STARTTLS; nothing more is sent"));
                return;
            }
            m_socket->startClientEncryption();
        });
        break;
    case Step::Auth:
        onAuthReply(reply);
        break;
    case Step::MailFrom:
    case Step::RcptTo:
        if (!reply.isSuccess() || (m_step == Step::MailFrom && m_recipients.isEmpty())) {
            m_step = Step::Idle;
            Q_EMIT messageNotSent();
        } else if (m_nextRecipient < m_recipients.size()) {
            sendCommand("RCPT TO:<" + m_recipients.at(m_nextRecipient++) + ">", Step::RcptTo);
        } else {
            sendCommand("DATA", Step::Data);
        }
        break;
    case Step::Data:
        if (reply.code != 354) {
            m_step = Step::Idle;
            Q_EMIT messageNotSent();
            break;
        }
        m_step = Step::Body;
        m_awaitingReply = true;
        m_socket->write(smtpData(m_message) + ".\r\n");
        break;
    case Step::Body:
        m_step = Step::Idle;
        if (reply.isSuccess())
            Q_EMIT messageSent();
        else
            Q_EMIT messageNotSent();
        break;
    case Step::Quit:
        finish();
        break;
    default:
        // A reply nobody asked for: the server is out of step with us.
        fail(QStringLiteral("the server sent a reply nobody asked for: %1").arg(QString::fromUtf8(reply.text().trimmed().left(200))));
        break;
    }
}

void SmtpSession::onEhloReply(const SmtpReply &reply)
{
    if (reply.code != 250) {
        if (m_step == Step::Ehlo)
            sendCommand("HELO " + addressLiteral(m_socket->localAddress()), Step::Helo);
        else
            fail(QStringLiteral("the server refused HELO: %1").arg(QString::fromUtf8(reply.text().trimmed())));
        return;
    }
    if (m_step == Step::Ehlo) {
        for (qsizetype i = 1; i < reply.lines.size(); ++i) {
            const QByteArray line = reply.lines.at(i).trimmed().toUpper();
            if (line == "STARTTLS") {
                m_startTlsOffered = true;
            } else if (line == "SMTPUTF8") {
                m_smtpUtf8Offered = true;
            } else if (line.startsWith("AUTH ") || line.startsWith("AUTH=")) {
                for (const QByteArray &m : line.mid(5).simplified().split(' ')) {
                    if (!m.isEmpty() && !m_mechanisms.contains(QString::fromLatin1(m)))
                        m_mechanisms << QString::fromLatin1(m);
                }
            }
        }
    }
    m_step = Step::Idle;
    Q_EMIT serviceInitialized();
}

void SmtpSession::onAuthReply(const SmtpReply &reply)
{
    if (reply.code == 334 && m_sasl) {
        const auto answer = m_sasl->step(reply.lines.value(0).trimmed());
        // "*" cancels the exchange; the server then answers with an error.
        m_awaitingReply = true;
        m_socket->write((answer ? *answer : QByteArray("*")) + "\r\n");
        armReplyTimer();
        return;
    }
    m_sasl.reset();
    m_step = Step::Idle;
    if (reply.code == 235)
        Q_EMIT authenticationCompleted();
    else
        Q_EMIT authenticationFailed();
}

void SmtpSession::fail(const QString &why)
{
    if (m_terminated)
        return;
    if (m_failure.isEmpty())
        m_failure = why;
    finish();
}

void SmtpSession::finish()
{
    if (m_terminated)
        return;
    m_terminated = true;
    m_step = Step::Closed;
    m_timer.stop();
    m_sasl.reset();
    if (m_socket) {
        m_socket->disconnect(this);
        m_socket->abort();
        m_socket->deleteLater();
        m_socket = nullptr;
    }
    Q_EMIT connectionTerminated();
}

} // namespace Quillon

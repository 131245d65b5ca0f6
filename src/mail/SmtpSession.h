#pragma once

#include "SmtpReplyParser.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>

class QSslSocket;

namespace Quillon {

class SaslClient;
class StepQueue;

// How long a session waits: to connect, and for any reply (or, idle, for the caller to act).
struct SessionLimits
{
    std::chrono::milliseconds connect { 30'000 };
    std::chrono::milliseconds reply { 300'000 };
};

// One SMTP client session over QSslSocket, on the event loop, never blocking. It speaks the
// protocol and reports each step; what to do next is the caller's to decide. It knows nothing of
// settings. Every way the session ends, including a broken or silent server, ends in
// connectionTerminated(), once.
class SmtpSession final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SmtpSession)
public:
    // Steps that cost (TLS set-up) wait their turn in steps, shared by the sessions of one sender;
    // without one they run on the next event-loop turn.
    SmtpSession(QString host, quint16 port, StepQueue *steps = nullptr, QObject *parent = nullptr);
    ~SmtpSession() override;

    // The whole message (headers and body), and the envelope.
    void setMessage(const QByteArray &message, const QByteArray &from, const QList<QByteArray> &recipients);
    void setLimits(SessionLimits limits);

    // implicitTls: encrypted from the first byte (SMTPS).
    void connectInBackgroundAndNotify(bool implicitTls);
    // The same session over a stream that is already connected, in clear (the session fuzzer
    // plays the server over a socket pair).
    void startOnConnectedSocket(qintptr descriptor);
    bool isSSL() const;
    // Makes sure the transport is encrypted; with implicit TLS it already is.
    // STARTTLS, then a new greeting; serviceInitialized() follows once more.
    void startTLS();
    QStringList supportedMechanisms() const { return m_mechanisms; }
    void authenticate(const QString &username, const QString &password, const QString &mechanism);
    void sendMessage();
    // QUIT, then the connection ends.
    void close();
    // Ends the connection now, without a word to the server.
    void abort() { finish(); }
    // Connected, and no command waits for its reply: nothing happens until the caller acts.
    bool isIdle() const { return m_step == Step::Idle; }
    QByteArray lastResponse() const { return m_lastResponse; }

    // Why the session ended abnormally (a time-out, a broken reply, a failed TLS handshake); empty otherwise.
    QString failure() const { return m_failure; }

Q_SIGNALS:
    void connectionEstablished();
    void serviceInitialized();
    void authenticationCompleted();
    void authenticationFailed();
    void messageSent();
    void messageNotSent();
    void connectionTerminated();

private:
    enum class Step { Idle, Connecting, Greeting, Ehlo, Helo, StartTls, Handshaking, Auth, MailFrom, RcptTo, Data, Body, Quit, Closed };

    void later(std::function<void()> step);
    void onReadyRead();
    void onReply(const SmtpReply &reply);
    void onEhloReply(const SmtpReply &reply);
    void onAuthReply(const SmtpReply &reply);
    void sendCommand(const QByteArray &line, Step next);
    void sendEhlo();
    void fail(const QString &why);
    void finish();
    void armReplyTimer();
    void setUpSocket(bool implicitTls);
    void onEstablished();
    bool certificateNamesTheAddress();

    QString m_host;
    quint16 m_port;
    QSslSocket *m_socket = nullptr;
    QTimer m_timer;
    QPointer<StepQueue> m_steps;
    std::chrono::milliseconds m_connectTimeout = SessionLimits().connect;
    std::chrono::milliseconds m_replyTimeout = SessionLimits().reply;
    SmtpReplyParser m_parser;
    Step m_step = Step::Idle;
    bool m_implicitTls = false;
    bool m_startTlsOffered = false;
    bool m_smtpUtf8Offered = false;
    bool m_awaitingReply = false;
    bool m_terminated = false;
    QStringList m_mechanisms;
    QByteArray m_lastResponse;
    QString m_failure;
    QByteArray m_message;
    QByteArray m_from;
    QList<QByteArray> m_recipients;
    qsizetype m_nextRecipient = 0;
    std::unique_ptr<SaslClient> m_sasl;
};

// Dot-stuffed, CRLF line ends, ending in CRLF: the DATA section of a message, without the final ".".
QByteArray smtpData(const QByteArray &message);

} // namespace Quillon

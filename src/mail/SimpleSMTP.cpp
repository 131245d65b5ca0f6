#include "SimpleSMTP.h"

#include "Log.h"
#include "MailAddress.h"
#include "MailMessage.h"
#include "MailPassword.h"
#include "MailSettings.h"
#include "SmtpSession.h"

#include <QLocale>
#include <QStringDecoder>
#include <QTimer>

namespace Quillon {
namespace {
constexpr int ImplicitTlsPort = 465;
constexpr const char *MechanismNames[] = { "", "PLAIN", "LOGIN", "CRAM-MD5" };

QString errorText(const MailSettingsError &e)
{
    return QStringLiteral("Error (%1): %2").arg(e.name(), e.reason());
}
} // namespace

SimpleSMTP::SimpleSMTP(QObject *parent)
    : QObject(parent)
{ }

SimpleSMTP::~SimpleSMTP() = default;

void SimpleSMTP::sendMail(MailHost &controller, const QString &body, const QString &subject)
{
    _controller = &controller;
    MailSettings settings(controller.mailPreferences());
    try {
        // From the user to the user: the recipient's own address on both sides.
        const QString from = settings.getRecipientEmail();
        const QString to = settings.getRecipientEmail();
        const QByteArray message = composeMailMessage(from, subject, body);
        const QString server = settings.getServer();
        const int port = settings.getPort();
        // What cannot go into the envelope is a setting that makes sending impossible, like a
        // missing server: nothing is sent.
        if (const QString problem = addressProblem(to); !problem.isEmpty())
            throw MailSettingsError(QStringLiteral("BadAddress"), tr("The recipient address cannot be used: %1.").arg(problem));
        _smtp = new SmtpSession(server, quint16(port), controller.mailSteps(), this);
        _smtp->setLimits(controller.mailLimits());
        connect(_smtp, &SmtpSession::connectionEstablished, this, &SimpleSMTP::connectionEstablished);
        connect(_smtp, &SmtpSession::serviceInitialized, this, &SimpleSMTP::serviceInitialized);
        connect(_smtp, &SmtpSession::authenticationCompleted, this, &SimpleSMTP::authenticationCompleted);
        connect(_smtp, &SmtpSession::authenticationFailed, this, &SimpleSMTP::authenticationFailed);
        connect(_smtp, &SmtpSession::messageSent, this, &SimpleSMTP::messageSent);
        connect(_smtp, &SmtpSession::messageNotSent, this, &SimpleSMTP::messageNotSent);
        connect(_smtp, &SmtpSession::connectionTerminated, this, &SimpleSMTP::connectionTerminated);
        // After the handlers above: only then is it known whether the policy left the session waiting.
        for (auto step : { &SmtpSession::connectionEstablished, &SmtpSession::serviceInitialized, &SmtpSession::authenticationCompleted,
                 &SmtpSession::authenticationFailed, &SmtpSession::messageSent, &SmtpSession::messageNotSent })
            connect(_smtp, step, this, &SimpleSMTP::settle);
        _smtp->setMessage(message, from.toUtf8(), { to.toUtf8() });
        systemLog(QStringLiteral("Connecting to the %1 server...").arg(settings.getServer()));
        // Port 465 is SMTPS: TLS from the first byte. Any other port secures itself with STARTTLS.
        _smtp->connectInBackgroundAndNotify(settings.useSSL() && port == ImplicitTlsPort);
    } catch (const MailSettingsError &e) {
        delete std::exchange(_smtp, nullptr);
        controller.doAlert(tr("An error occurred when sending email."), tr("Error (%1): %2").arg(e.name(), e.reason()));
        systemLog(errorText(e));
        _problem = e.reason();
        QTimer::singleShot(0, this, &SimpleSMTP::finished);
    }
}

void SimpleSMTP::closeWhenIdle()
{
    _closeWhenIdle = true;
    settle();
}

void SimpleSMTP::settle()
{
    if (_closeWhenIdle && !_waitingForPassword && _smtp && _smtp->isIdle()) {
        systemLog(QStringLiteral("Quitting: a mail session with nothing more to do is closed."));
        _smtp->abort();
    }
}

void SimpleSMTP::connectionEstablished()
{
    systemLog(QStringLiteral("Connected!"));
    // Port 465's socket is encrypted before it is reported connected: nothing more to start.
    if (MailSettings(_controller->mailPreferences()).useSSL() && _smtp->isSSL())
        systemLog(QStringLiteral("Starting SSL."));
}

void SimpleSMTP::serviceInitialized()
{
    MailSettings settings(_controller->mailPreferences());
    const bool useSSL = settings.useSSL();
    if (useSSL && !_smtp->isSSL()) {
        systemLog(QStringLiteral("SSL handshaking..."));
        _smtp->startTLS();
        return;
    }
    if (useSSL)
        systemLog(QStringLiteral("SSL handshaking completed."));
    if (settings.getSelectedLoginMechanism() == 0) {
        systemLog(QStringLiteral("Sending the message..."));
        _smtp->sendMessage();
        return;
    }
    systemLog(QStringLiteral("Available authentication mechanisms: (%1)").arg(_smtp->supportedMechanisms().join(QStringLiteral(", "))));
    // Read again on purpose: this second reading decides. The mechanism is used whether or not
    // the server announced it, and a value outside 1 to 3 leaves the session idle.
    const int mechanism = settings.getSelectedLoginMechanism();
    if (mechanism < 1 || mechanism > 3)
        return;
    try {
        const QString username = settings.getUsername();
        const QString name = QString::fromLatin1(MechanismNames[mechanism]);
        _mechanism = name;
        MailPassword *keyring = _controller->mailPassword();
        if (!keyring) {
            _smtp->authenticate(username, settings.getPassword(), name);
            return;
        }
        // The keyring answers later; the session waits for it, the event loop does not.
        _waitingForPassword = true;
        keyring->get(this, [this, username, name](const QString &password) {
            _waitingForPassword = false;
            if (!_smtp)
                return;
            if (password.isEmpty()) {
                systemLog(errorText(MailSettings::noPassword()));
                settle();
                return;
            }
            _smtp->authenticate(username, password, name);
        });
    } catch (const MailSettingsError &e) {
        // Nobody catches this one for the user: logged, and the session waits until it is dropped.
        systemLog(errorText(e));
    }
}

void SimpleSMTP::authenticationCompleted()
{
    systemLog(QStringLiteral("Authentication completed! Sending the message..."));
    _smtp->sendMessage();
}

void SimpleSMTP::authenticationFailed()
{
    // The mechanism is tried even when the server did not announce it; then the refusal is not
    // about the password, and the user must hear which setting to change.
    const QStringList offered = _smtp->supportedMechanisms();
    const QString &tried = _mechanism;
    if (offered.isEmpty())
        _problem = tr("the server offers no login; choose None for Login in Preferences");
    else if (!offered.contains(tried))
        _problem = tr("the server does not offer the %1 login; it offers %2").arg(tried, QLocale().createSeparatedList(offered));
    else
        _problem = tr("the server refused the login");
    _refused = true;
    systemLog(QStringLiteral("Authentication failed! Closing the connection..."));
    _smtp->close();
}

void SimpleSMTP::messageSent()
{
    _sent = true;
    // The two lines of "Sent!\nClosing the connection.", each logged as a line of its own: a log
    // line never holds a line break, so that none can be forged.
    systemLog(QStringLiteral("Sent!"));
    systemLog(QStringLiteral("Closing the connection."));
    _smtp->close();
}

void SimpleSMTP::messageNotSent()
{
    const QByteArray response = _smtp->lastResponse();
    _problem = tr("the server refused the message: %1").arg(QString::fromUtf8(response).trimmed());
    _refused = true;
    // Nothing is left to send: the session ends with QUIT now rather than idling until the
    // server's timeout, which would hold the record, the notification and a quit for minutes.
    QTimer::singleShot(0, this, [this] {
        if (_smtp && _smtp->isIdle()) {
            systemLog(QStringLiteral("Closing the connection."));
            _smtp->close();
        }
    });
    if (response.isEmpty()) {
        systemLog(QStringLiteral("Message not sent!"));
        return;
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString decoded = decoder.decode(response);
    if (decoder.hasError())
        return;
    // Shown in the user's language, logged in English like every log line.
    _controller->doAlert(tr("Message not sent. Server response: %1").arg(decoded.trimmed()), QString());
    systemLog(QStringLiteral("Message not sent. Server response: %1").arg(decoded.trimmed()));
}

void SimpleSMTP::connectionTerminated()
{
    if (!_smtp->failure().isEmpty()) {
        systemLog(QStringLiteral("The mail session ended early: %1.").arg(_smtp->failure()));
        if (_problem.isEmpty())
            _problem = _smtp->failure();
    }
    if (!_sent && _problem.isEmpty())
        _problem = tr("the session ended before the message was sent");
    systemLog(QStringLiteral("Connection closed."));
    _smtp->deleteLater();
    _smtp = nullptr;
    Q_EMIT finished();
}

} // namespace Quillon

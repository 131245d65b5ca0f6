#pragma once

#include "SmtpSession.h"

#include <QObject>
#include <QString>

namespace Quillon {

class MailPassword;
class Preferences;
class StepQueue;

// What a delivery asks of the one who wants the mail sent: the settings and a way to tell the user.
class MailHost
{
public:
    virtual ~MailHost() = default;
    virtual Preferences &mailPreferences() = 0;
    virtual void doAlert(const QString &message, const QString &informative) = 0;
    // Where the password is kept; none: the settings file alone.
    virtual MailPassword *mailPassword() { return nullptr; }
    // Where the sessions' costly steps wait their turn; none: each on the next turn.
    virtual StepQueue *mailSteps() { return nullptr; }
    virtual SessionLimits mailLimits() const { return {}; }
};

// One mail: composes it and drives its own SMTP session from the session's events, logging every
// step. The policy lives here; the protocol is SmtpSession's.
class SimpleSMTP final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SimpleSMTP)
public:
    explicit SimpleSMTP(QObject *parent = nullptr);
    ~SimpleSMTP() override;

    // Returns at once; finished() tells when the delivery is over, whichever way.
    void sendMail(MailHost &controller, const QString &body, const QString &subject);

    // Once finished(): whether the server took the message, and if not, why in plain words.
    bool wasSent() const { return _sent; }
    QString problem() const { return _problem; }
    // The server said no (to the message or the login), as against a session that broke.
    bool wasRefused() const { return _refused; }

    // At quit: a session with nothing under way (the policy left it waiting) ends at once, and
    // so does one that comes to that point later; one that still works goes on.
    void closeWhenIdle();

Q_SIGNALS:
    void finished();

private:
    void connectionEstablished();
    void serviceInitialized();
    void authenticationCompleted();
    void authenticationFailed();
    void messageSent();
    void messageNotSent();
    void connectionTerminated();
    void settle();

    SmtpSession *_smtp = nullptr;
    MailHost *_controller = nullptr;
    bool _closeWhenIdle = false;
    bool _waitingForPassword = false;
    bool _sent = false;
    bool _refused = false;
    QString _problem;
    QString _mechanism; // the login tried, for saying why it was refused
};

} // namespace Quillon

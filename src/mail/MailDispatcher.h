#pragma once

#include "SimpleSMTP.h"
#include "StepQueue.h"

#include <QObject>

namespace Quillon {

class MailPassword;
class Preferences;

// The one owner of the deliveries: starts each, knows how many are still at work, and tells
// when the last one is over (the quit waits for that).
class MailDispatcher final : public QObject, private MailHost
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MailDispatcher)
public:
    MailDispatcher(Preferences &preferences, MailPassword *password, QObject *parent = nullptr);

    // Returns at once; the delivery is freed after its finished(). The pointer is for watching it.
    SimpleSMTP *send(const QString &body, const QString &subject);
    int inFlight() const { return m_inFlight; }
    // At quit: sessions the policy left waiting (a refused message, a login it cannot make)
    // never end on their own; they end now, and the ones still at work go on.
    void closeIdle();
    void setLimits(SessionLimits limits) { m_limits = limits; }

Q_SIGNALS:
    void alertRequested(const QString &message, const QString &informative);
    // The last delivery in flight is over.
    void allFinished();

private:
    Preferences &mailPreferences() override { return m_preferences; }
    MailPassword *mailPassword() override { return m_password; }
    StepQueue *mailSteps() override { return &m_steps; }
    SessionLimits mailLimits() const override { return m_limits; }
    void doAlert(const QString &message, const QString &informative) override { Q_EMIT alertRequested(message, informative); }

    Preferences &m_preferences;
    MailPassword *m_password;
    StepQueue m_steps;
    SessionLimits m_limits;
    int m_inFlight = 0;
};

} // namespace Quillon

#pragma once

#include "PowerService.h"

#include <QDBusUnixFileDescriptor>
#include <QList>
#include <QTimer>

namespace Quillon {

class WakeAlarm;

// Sleep and wake notices from logind, and wake requests through the first way of waking that
// works here. A delay inhibitor holds a suspend back until the wake request has reached the
// kernel or the daemon; dropping it is the acknowledgement. Every logind call is asynchronous.
class LogindPowerService final : public PowerService
{
    Q_OBJECT
public:
    // alarms: the ways of waking, best first; the first that is available does the work.
    explicit LogindPowerService(QList<WakeAlarm *> alarms = {}, QObject *parent = nullptr);
    void release(std::function<void()> done) override;
    bool registerForNotifications() override;
    bool schedulePowerWake(const QDateTime &date, quint32 leadSeconds) override;

    bool holdsInhibitor() const { return m_inhibitor.isValid(); }
    // The way of waking in use, once known; null while still asking or when there is none.
    WakeAlarm *chosenAlarm() const { return m_chosen; }

Q_SIGNALS:
    void wakeChoiceMade();

private Q_SLOTS:
    void prepareForSleep(bool start);

private:
    void takeInhibitor();
    void releaseInhibitor();
    void querySleepAllowed();
    void onProbed(int index, bool available, const QString &reason);
    void send(qint64 epochSecs);
    void requestFinished();

    QList<WakeAlarm *> m_alarms;
    QList<int> m_probeAnswers; // -1 unknown, 0 no, 1 yes, per alarm
    QStringList m_reasons;
    WakeAlarm *m_chosen = nullptr;
    bool m_choiceMade = false;
    bool m_saidNoWake = false;
    QList<qint64> m_waiting; // requests made before the choice
    QDBusUnixFileDescriptor m_inhibitor;
    bool m_sleepAllowed = true;
    int m_pendingRequests = 0;
    bool m_releaseWhenSent = false;
    QTimer m_releaseDeadline;
};

} // namespace Quillon

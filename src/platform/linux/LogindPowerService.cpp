#include "LogindPowerService.h"

#include "Log.h"
#include "WakeAlarm.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <memory>

namespace Quillon {
namespace {
const QString Service = QStringLiteral("org.freedesktop.login1");
const QString Path = QStringLiteral("/org/freedesktop/login1");
const QString Manager = QStringLiteral("org.freedesktop.login1.Manager");
// logind waits at most InhibitDelayMaxSec (5 s by default) for us; let go well before.
constexpr int ReleaseDeadlineMSecs = 3000;
} // namespace

LogindPowerService::LogindPowerService(QList<WakeAlarm *> alarms, QObject *parent)
    : PowerService(parent)
    , m_alarms(std::move(alarms))
{
    m_releaseDeadline.setSingleShot(true);
    m_releaseDeadline.setInterval(ReleaseDeadlineMSecs);
    connect(&m_releaseDeadline, &QTimer::timeout, this, &LogindPowerService::releaseInhibitor);
    for (qsizetype i = 0; i < m_alarms.size(); ++i) {
        WakeAlarm *alarm = m_alarms.at(i);
        alarm->setParent(this);
        m_probeAnswers << -1;
        m_reasons << QString();
        connect(alarm, &WakeAlarm::probed, this, [this, i](bool available, const QString &reason) { onProbed(int(i), available, reason); });
        connect(alarm, &WakeAlarm::requestDone, this, [this, alarm](bool ok, const QString &error) {
            if (!ok)
                systemLog(QStringLiteral("The wake-up request to the %1 failed: %2").arg(alarm->name(), error));
            requestFinished();
        });
    }
}

bool LogindPowerService::registerForNotifications()
{
    for (WakeAlarm *alarm : std::as_const(m_alarms))
        alarm->probe();
    if (m_alarms.isEmpty())
        onProbed(-1, false, {});
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return false;
    if (!bus.connect(Service, Path, Manager, QStringLiteral("PrepareForSleep"), this, SLOT(prepareForSleep(bool))))
        return false;
    takeInhibitor();
    querySleepAllowed();
    return true;
}

void LogindPowerService::takeInhibitor()
{
    QDBusMessage call = QDBusMessage::createMethodCall(Service, Path, Manager, QStringLiteral("Inhibit"));
    call << QStringLiteral("sleep") << QStringLiteral("Quillon") << QStringLiteral("Arranging a wake-up for the next scheduled launch")
         << QStringLiteral("delay");
    auto *watcher = new QDBusPendingCallWatcher(QDBusConnection::systemBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        QDBusPendingReply<QDBusUnixFileDescriptor> reply = *watcher;
        if (reply.isValid())
            m_inhibitor = reply.value();
    });
}

void LogindPowerService::releaseInhibitor()
{
    m_releaseDeadline.stop();
    m_releaseWhenSent = false;
    m_inhibitor = QDBusUnixFileDescriptor();
}

void LogindPowerService::querySleepAllowed()
{
    QDBusMessage call = QDBusMessage::createMethodCall(Service, Path, Manager, QStringLiteral("CanSuspend"));
    auto *watcher = new QDBusPendingCallWatcher(QDBusConnection::systemBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        QDBusPendingReply<QString> reply = *watcher;
        if (reply.isValid())
            m_sleepAllowed = reply.value() != QLatin1String("no") && reply.value() != QLatin1String("na");
    });
}

void LogindPowerService::prepareForSleep(bool start)
{
    if (start) {
        Q_EMIT willSleep();
        // The request must reach the kernel or the daemon before the machine sleeps.
        if (m_pendingRequests == 0 && m_waiting.isEmpty()) {
            releaseInhibitor();
        } else {
            m_releaseWhenSent = true;
            m_releaseDeadline.start();
        }
    } else {
        takeInhibitor();
        querySleepAllowed();
        Q_EMIT didWake();
    }
}

void LogindPowerService::onProbed(int index, bool available, const QString &reason)
{
    if (index >= 0) {
        m_probeAnswers[index] = available ? 1 : 0;
        m_reasons[index] = reason;
    }
    if (m_choiceMade)
        return;
    // Best first: a later way is taken only once every earlier one has said no.
    for (qsizetype i = 0; i < m_alarms.size(); ++i) {
        if (m_probeAnswers.at(i) == -1)
            return;
        if (m_probeAnswers.at(i) == 1) {
            m_chosen = m_alarms.at(i);
            break;
        }
    }
    m_choiceMade = true;
    if (m_chosen)
        systemLog(QStringLiteral("Wake-ups are arranged through the %1.").arg(m_chosen->name()));
    Q_EMIT wakeChoiceMade();
    for (qint64 at : std::exchange(m_waiting, {}))
        send(at);
    if (m_releaseWhenSent && m_pendingRequests == 0)
        releaseInhibitor();
}

bool LogindPowerService::schedulePowerWake(const QDateTime &date, quint32 leadSeconds)
{
    if (!m_sleepAllowed)
        return false;
    const qint64 at = date.toSecsSinceEpoch() - qint64(leadSeconds);
    if (!m_choiceMade) {
        m_waiting << at;
        return true;
    }
    if (!m_chosen) {
        send(at);
        return false;
    }
    send(at);
    return true;
}

void LogindPowerService::send(qint64 epochSecs)
{
    if (!m_chosen) {
        // Said once, not on every repeat.
        if (!std::exchange(m_saidNoWake, true)) {
            QStringList why;
            for (qsizetype i = 0; i < m_alarms.size(); ++i)
                why << QStringLiteral("%1: %2").arg(m_alarms.at(i)->name(), m_reasons.at(i));
            systemLog(QStringLiteral("No wake-up can be arranged, so items due while the machine sleeps are skipped: they are not opened when it wakes. "
                                     "Installing Quillon's package (with its wake service), KDE Plasma's power daemon "
                                     "or systemd 254 would make it work. (%1)")
                          .arg(why.join(QStringLiteral("; "))));
        }
        return;
    }
    ++m_pendingRequests;
    m_chosen->request(epochSecs);
}

void LogindPowerService::requestFinished()
{
    if (m_pendingRequests > 0)
        --m_pendingRequests;
    if (m_pendingRequests == 0 && m_releaseWhenSent)
        releaseInhibitor();
}

void LogindPowerService::release(std::function<void()> done)
{
    auto pending = std::make_shared<qsizetype>(m_alarms.size() + 1);
    const auto one = [pending, done] {
        if (--*pending == 0)
            done();
    };
    for (WakeAlarm *alarm : std::as_const(m_alarms))
        alarm->release(one);
    one();
}

} // namespace Quillon

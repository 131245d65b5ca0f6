#include "LogindPowerService.h"

#include "Log.h"

#include <QDBusConnection>
#include <QDBusInterface>
#include <QDBusReply>

namespace Quillon {
namespace {
const QString Service = QStringLiteral("org.freedesktop.login1");
const QString Path = QStringLiteral("/org/freedesktop/login1");
const QString Manager = QStringLiteral("org.freedesktop.login1.Manager");
} // namespace

bool LogindPowerService::registerForNotifications()
{
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return false;
    if (!bus.connect(Service, Path, Manager, QStringLiteral("PrepareForSleep"), this, SLOT(prepareForSleep(bool))))
        return false;
    takeInhibitor();
    return true;
}

void LogindPowerService::takeInhibitor()
{
    QDBusInterface manager(Service, Path, Manager, QDBusConnection::systemBus());
    QDBusReply<QDBusUnixFileDescriptor> reply = manager.call(QStringLiteral("Inhibit"), QStringLiteral("sleep"),
                                                             QStringLiteral("Quillon"),
                                                             QStringLiteral("Arranging a wake-up for the next scheduled launch"),
                                                             QStringLiteral("delay"));
    if (reply.isValid())
        m_inhibitor = reply.value();
}

void LogindPowerService::prepareForSleep(bool start)
{
    if (start) {
        Q_EMIT willSleep();
        m_inhibitor = QDBusUnixFileDescriptor();
    } else {
        takeInhibitor();
        Q_EMIT didWake();
    }
}

bool LogindPowerService::schedulePowerWake(const QDateTime &date, quint32 leadSeconds)
{
    // Waking needs CAP_WAKE_ALARM, which an ordinary session does not hold on this systemd.
    systemLog(QStringLiteral("No wake-up can be arranged for %1").arg(date.addSecs(-qint64(leadSeconds)).toString(Qt::ISODate)));
    return false;
}

} // namespace Quillon

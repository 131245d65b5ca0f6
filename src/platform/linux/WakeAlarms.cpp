#include "WakeAlarms.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QDateTime>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTimer>

#include <unistd.h>

namespace Quillon {
namespace {
const QString KdeService = QStringLiteral("org.kde.Solid.PowerManagement");
const QString KdePath = QStringLiteral("/org/kde/Solid/PowerManagement");
const QString SystemdService = QStringLiteral("org.freedesktop.systemd1");
const QString SystemdPath = QStringLiteral("/org/freedesktop/systemd1");
const QString SystemdManager = QStringLiteral("org.freedesktop.systemd1.Manager");
constexpr int FirstWakingSystemd = 254;
constexpr const char *WakeServiceName = "org.quillon.Wake1";

// Calls and hands the reply to done, on the event loop; never waits.
template<typename Done> void callAsync(QObject *context, const QDBusMessage &call, Done done)
{
    auto *watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context, [watcher, done] {
        watcher->deleteLater();
        done(watcher->reply());
    });
}

// StartTransientUnit's property list: a(sv).
struct UnitProperty
{
    QString name;
    QDBusVariant value;
};
using UnitProperties = QList<UnitProperty>;
struct AuxUnit
{
    QString name;
    UnitProperties properties;
};
// ExecStart: a(sasb).
struct ExecCommand
{
    QString path;
    QStringList argv;
    bool ignoreFailure = false;
};
// TimersCalendar: a(ss).
struct CalendarTimer
{
    QString base;
    QString spec;
};

QDBusArgument &operator<<(QDBusArgument &a, const UnitProperty &p)
{
    a.beginStructure();
    a << p.name << p.value;
    a.endStructure();
    return a;
}
const QDBusArgument &operator>>(const QDBusArgument &a, UnitProperty &p)
{
    a.beginStructure();
    a >> p.name >> p.value;
    a.endStructure();
    return a;
}
QDBusArgument &operator<<(QDBusArgument &a, const AuxUnit &u)
{
    a.beginStructure();
    a << u.name << u.properties;
    a.endStructure();
    return a;
}
const QDBusArgument &operator>>(const QDBusArgument &a, AuxUnit &u)
{
    a.beginStructure();
    a >> u.name >> u.properties;
    a.endStructure();
    return a;
}
QDBusArgument &operator<<(QDBusArgument &a, const ExecCommand &c)
{
    a.beginStructure();
    a << c.path << c.argv << c.ignoreFailure;
    a.endStructure();
    return a;
}
const QDBusArgument &operator>>(const QDBusArgument &a, ExecCommand &c)
{
    a.beginStructure();
    a >> c.path >> c.argv >> c.ignoreFailure;
    a.endStructure();
    return a;
}
QDBusArgument &operator<<(QDBusArgument &a, const CalendarTimer &t)
{
    a.beginStructure();
    a << t.base << t.spec;
    a.endStructure();
    return a;
}
const QDBusArgument &operator>>(const QDBusArgument &a, CalendarTimer &t)
{
    a.beginStructure();
    a >> t.base >> t.spec;
    a.endStructure();
    return a;
}
} // namespace
} // namespace Quillon

Q_DECLARE_METATYPE(Quillon::UnitProperty)
Q_DECLARE_METATYPE(Quillon::AuxUnit)
Q_DECLARE_METATYPE(Quillon::ExecCommand)
Q_DECLARE_METATYPE(Quillon::CalendarTimer)

namespace Quillon {

void ServiceWakeAlarm::probe()
{
    // Running, or started by the bus when first called.
    const QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ListActivatableNames"));
    auto *watcher = new QDBusPendingCallWatcher(QDBusConnection::systemBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *done) {
        done->deleteLater();
        const QDBusPendingReply<QStringList> names = *done;
        const bool there = !names.isError()
            && (names.value().contains(QLatin1String(WakeServiceName))
                || QDBusConnection::systemBus().interface()->isServiceRegistered(QLatin1String(WakeServiceName)).value());
        Q_EMIT probed(there, there ? QString() : QStringLiteral("Quillon's wake service is not installed"));
    });
}

void ServiceWakeAlarm::request(qint64 epochSecs)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QLatin1String(WakeServiceName), QStringLiteral("/org/quillon/Wake1"), QLatin1String(WakeServiceName), QStringLiteral("Arm"));
    call << epochSecs;
    auto *watcher = new QDBusPendingCallWatcher(QDBusConnection::systemBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *done) {
        done->deleteLater();
        const QDBusPendingReply<> reply = *done;
        Q_EMIT requestDone(!reply.isError(), reply.isError() ? reply.error().message() : QString());
    });
}

void KdeWakeAlarm::probe()
{
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
    call << KdeService;
    callAsync(this, call, [this](const QDBusMessage &reply) {
        const bool there = reply.type() == QDBusMessage::ReplyMessage && reply.arguments().value(0).toBool();
        Q_EMIT probed(there, there ? QString() : QStringLiteral("no KDE power daemon on the session bus"));
    });
}

void KdeWakeAlarm::request(qint64 epochSecs)
{
    QDBusMessage call = QDBusMessage::createMethodCall(KdeService, KdePath, KdeService, QStringLiteral("scheduleWakeup"));
    call << QDBusConnection::sessionBus().baseService() << QVariant::fromValue(QDBusObjectPath(QStringLiteral("/org/quillon/Wake")))
         << QVariant::fromValue(quint64(epochSecs));
    callAsync(this, call, [this](const QDBusMessage &reply) {
        const bool ok = reply.type() == QDBusMessage::ReplyMessage;
        Q_EMIT requestDone(ok, ok ? QString() : reply.errorMessage());
    });
}

void SystemdWakeAlarm::probe()
{
    QDBusMessage call = QDBusMessage::createMethodCall(SystemdService, SystemdPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << SystemdManager << QStringLiteral("Version");
    callAsync(this, call, [this](const QDBusMessage &reply) {
        if (reply.type() != QDBusMessage::ReplyMessage) {
            Q_EMIT probed(false, QStringLiteral("no systemd user manager on the session bus"));
            return;
        }
        const QString version = reply.arguments().value(0).value<QDBusVariant>().variant().toString();
        const int major = QRegularExpression(QStringLiteral("\\d+")).match(version).captured().toInt();
        if (major >= FirstWakingSystemd)
            Q_EMIT probed(true, {});
        else
            Q_EMIT probed(false, QStringLiteral("the systemd user manager is version %1; waking needs %2 or later").arg(version).arg(FirstWakingSystemd));
    });
}

void SystemdWakeAlarm::request(qint64 epochSecs)
{
    static const bool registered = [] {
        qDBusRegisterMetaType<UnitProperty>();
        qDBusRegisterMetaType<UnitProperties>();
        qDBusRegisterMetaType<AuxUnit>();
        qDBusRegisterMetaType<QList<AuxUnit>>();
        qDBusRegisterMetaType<ExecCommand>();
        qDBusRegisterMetaType<QList<ExecCommand>>();
        qDBusRegisterMetaType<CalendarTimer>();
        qDBusRegisterMetaType<QList<CalendarTimer>>();
        return true;
    }();
    Q_UNUSED(registered);
    const QString stem = QStringLiteral("quillon-wake-%1-%2-%3").arg(::getpid()).arg(epochSecs).arg(++m_serial);
    const QString calendar = QDateTime::fromSecsSinceEpoch(epochSecs, Qt::UTC).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) + QStringLiteral(" UTC");
    const UnitProperties timer {
        { QStringLiteral("Description"), QDBusVariant(QStringLiteral("Wake the machine for Quillon")) },
        { QStringLiteral("TimersCalendar"), QDBusVariant(QVariant::fromValue(QList<CalendarTimer> { { QStringLiteral("OnCalendar"), calendar } })) },
        { QStringLiteral("WakeSystem"), QDBusVariant(true) },
        { QStringLiteral("AccuracyUSec"), QDBusVariant(QVariant::fromValue(quint64(1'000'000))) },
        { QStringLiteral("RemainAfterElapse"), QDBusVariant(false) },
    };
    // The timer needs a unit to start; one that does nothing.
    const QList<AuxUnit> aux { { stem + QStringLiteral(".service"),
        { { QStringLiteral("ExecStart"),
            QDBusVariant(QVariant::fromValue(QList<ExecCommand> { { QStringLiteral("/bin/true"), { QStringLiteral("/bin/true") }, false } })) } } } };
    QDBusMessage call = QDBusMessage::createMethodCall(SystemdService, SystemdPath, SystemdManager, QStringLiteral("StartTransientUnit"));
    call << stem + QStringLiteral(".timer") << QStringLiteral("fail") << QVariant::fromValue(timer) << QVariant::fromValue(aux);
    callAsync(this, call, [this](const QDBusMessage &reply) {
        const bool ok = reply.type() == QDBusMessage::ReplyMessage;
        Q_EMIT requestDone(ok, ok ? QString() : reply.errorMessage());
    });
}

} // namespace Quillon

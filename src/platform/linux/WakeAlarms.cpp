#include "WakeAlarms.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
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

HelperWakeAlarm::HelperWakeAlarm(QString helperPath, QObject *parent)
    : WakeAlarm(parent)
    , m_path(std::move(helperPath))
{
    m_helper.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    connect(&m_helper, &QProcess::readyReadStandardOutput, this, &HelperWakeAlarm::readAnswers);
    connect(&m_helper, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            Q_EMIT probed(false, QStringLiteral("%1 could not be started").arg(m_path));
    });
}

HelperWakeAlarm::~HelperWakeAlarm()
{
    // Normally gone already (release()); QProcess ends and reaps whatever is left.
    m_helper.disconnect(this);
}

void HelperWakeAlarm::release(std::function<void()> done)
{
    if (m_helper.state() == QProcess::NotRunning) {
        done();
        return;
    }
    // Its input closes and it ends, taking its alarms with it; one that does not is killed.
    connect(
        &m_helper, &QProcess::finished, this, [done] { done(); }, Qt::SingleShotConnection);
    QTimer::singleShot(2000, &m_helper, [this] { m_helper.kill(); });
    m_helper.closeWriteChannel();
}

QString HelperWakeAlarm::installedHelper()
{
    const QString dir = QCoreApplication::applicationDirPath();
    for (const QString &candidate : { dir + QStringLiteral("/quillon-wake"), dir + QStringLiteral("/../libexec/quillon/quillon-wake") }) {
        if (QFileInfo(candidate).isExecutable())
            return QFileInfo(candidate).canonicalFilePath();
    }
    return {};
}

void HelperWakeAlarm::probe()
{
    if (m_path.isEmpty()) {
        Q_EMIT probed(false, QStringLiteral("the quillon-wake helper is not installed"));
        return;
    }
    m_helper.start(m_path, {});
}

void HelperWakeAlarm::request(qint64 epochSecs)
{
    m_helper.write(QByteArray::number(epochSecs) + '\n');
}

void HelperWakeAlarm::readAnswers()
{
    while (m_helper.canReadLine()) {
        const QString line = QString::fromUtf8(m_helper.readLine()).trimmed();
        if (!m_ready && line == QLatin1String("ready")) {
            m_ready = true;
            Q_EMIT probed(true, {});
        } else if (!m_ready && line.startsWith(QLatin1String("unavailable"))) {
            Q_EMIT probed(false, QStringLiteral("quillon-wake cannot arm an alarm (%1); it needs cap_wake_alarm+ep").arg(line.mid(12)));
        } else if (line.startsWith(QLatin1String("armed"))) {
            Q_EMIT requestDone(true, {});
        } else if (line.startsWith(QLatin1String("failed"))) {
            Q_EMIT requestDone(false, line);
        }
    }
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

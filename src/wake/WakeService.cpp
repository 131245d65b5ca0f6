#include "WakeService.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QDateTime>
#include <QMap>

#include <cerrno>
#include <cstring>
#include <sys/timerfd.h>
#include <unistd.h>

namespace Quillon {
namespace {
constexpr qint64 YearSecs = qint64(366) * 86'400;

// polkit's subject: ("system-bus-name", {"name": <caller>}).
struct Subject
{
    QString kind;
    QVariantMap details;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Subject &subject)
{
    argument.beginStructure();
    argument << subject.kind << subject.details;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Subject &subject)
{
    argument.beginStructure();
    argument >> subject.kind >> subject.details;
    argument.endStructure();
    return argument;
}

bool isPast(int fd)
{
    itimerspec left {};
    return ::timerfd_gettime(fd, &left) != 0 || (left.it_value.tv_sec == 0 && left.it_value.tv_nsec == 0);
}
} // namespace
} // namespace Quillon

Q_DECLARE_METATYPE(Quillon::Subject)

namespace Quillon {

WakeService::WakeService(QDBusConnection bus, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
    , m_callers(new QDBusServiceWatcher(this))
{
    qDBusRegisterMetaType<Subject>();
    qDBusRegisterMetaType<QMap<QString, QString>>();
    m_callers->setConnection(m_bus);
    m_callers->setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(m_callers, &QDBusServiceWatcher::serviceUnregistered, this, &WakeService::forget);
}

WakeService::~WakeService()
{
    for (const QList<int> &alarms : std::as_const(m_alarms)) {
        for (int fd : alarms)
            ::close(fd);
    }
}

bool WakeService::start()
{
    return m_bus.registerObject(QLatin1String(ObjectPath), this, QDBusConnection::ExportScriptableSlots) && m_bus.registerService(QLatin1String(ServiceName));
}

void WakeService::Arm(qint64 when)
{
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    if (when <= now || when > now + YearSecs) {
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("%1 is not a moment ahead within a year").arg(when));
        return;
    }
    // polkit decides, for this caller's connection: the answer comes later.
    const QString caller = message().service();
    setDelayedReply(true);
    const QDBusMessage call = message();
    QDBusMessage check = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.PolicyKit1"), QStringLiteral("/org/freedesktop/PolicyKit1/Authority"),
        QStringLiteral("org.freedesktop.PolicyKit1.Authority"), QStringLiteral("CheckAuthorization"));
    check << QVariant::fromValue(Subject { QStringLiteral("system-bus-name"), { { QStringLiteral("name"), caller } } }) << QLatin1String(Action)
          << QVariant::fromValue(QMap<QString, QString>()) << 0u << QString();
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(check), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, caller, when, call](QDBusPendingCallWatcher *done) {
        done->deleteLater();
        const QDBusMessage reply = done->reply();
        bool allowed = false;
        if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()) {
            const QDBusArgument result = reply.arguments().first().value<QDBusArgument>();
            result.beginStructure();
            result >> allowed;
        }
        if (!allowed) {
            m_bus.send(call.createErrorReply(QDBusError::AccessDenied,
                reply.type() == QDBusMessage::ErrorMessage ? QStringLiteral("polkit could not be asked: %1").arg(reply.errorMessage())
                                                           : QStringLiteral("polkit does not allow %1 to wake the computer").arg(caller)));
            return;
        }
        authorized(caller, when, call);
    });
}

void WakeService::authorized(const QString &caller, qint64 when, const QDBusMessage &call)
{
    QList<int> &alarms = m_alarms[caller];
    alarms.removeIf([](int fd) {
        const bool past = isPast(fd);
        if (past)
            ::close(fd);
        return past;
    });
    if (alarms.size() >= MostPerCaller) {
        m_bus.send(call.createErrorReply(QDBusError::LimitsExceeded, QStringLiteral("at most %1 wake alarms at a time").arg(MostPerCaller)));
        return;
    }
    const int fd = ::timerfd_create(CLOCK_REALTIME_ALARM, TFD_CLOEXEC);
    itimerspec at {};
    at.it_value.tv_sec = time_t(when);
    if (fd < 0 || ::timerfd_settime(fd, TFD_TIMER_ABSTIME, &at, nullptr) != 0) {
        const QString why = QString::fromLocal8Bit(std::strerror(errno));
        if (fd >= 0)
            ::close(fd);
        m_bus.send(call.createErrorReply(QDBusError::Failed, QStringLiteral("the alarm could not be armed: %1").arg(why)));
        return;
    }
    alarms.append(fd);
    // Watched from the first alarm on: one that is gone already is forgotten at once.
    m_callers->addWatchedService(caller);
    if (!m_bus.interface()->isServiceRegistered(caller)) {
        forget(caller);
        return;
    }
    Q_EMIT busy();
    m_bus.send(call.createReply());
}

void WakeService::forget(const QString &caller)
{
    for (int fd : m_alarms.take(caller))
        ::close(fd);
    m_callers->removeWatchedService(caller);
    if (m_alarms.isEmpty())
        Q_EMIT idle();
}

} // namespace Quillon

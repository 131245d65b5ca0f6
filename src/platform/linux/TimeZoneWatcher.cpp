#include "TimeZoneWatcher.h"

#include "Log.h"

#include <QDBusConnection>
#include <QSocketNotifier>
#include <QTimeZone>

#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <unicode/timezone.h>

namespace Quillon {
namespace {
constexpr char LocalTime[] = "/etc/localtime";
} // namespace

TimeZoneWatcher::TimeZoneWatcher(QObject *parent)
    : QObject(parent)
    , m_identity(identity())
{
    m_watcher.addPath(QStringLiteral("/etc"));
    m_watcher.addPath(QString::fromLatin1(LocalTime));
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &TimeZoneWatcher::check);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &TimeZoneWatcher::check);
    // A zone mounted over /etc/localtime changes no folder: the mount table tells (it polls as
    // an exception when a mount comes or goes).
    m_mountsFd = ::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC);
    if (m_mountsFd >= 0) {
        m_mounts = std::make_unique<QSocketNotifier>(m_mountsFd, QSocketNotifier::Exception);
        connect(m_mounts.get(), &QSocketNotifier::activated, this, [this] {
            char buffer[4096];
            ::lseek(m_mountsFd, 0, SEEK_SET);
            while (::read(m_mountsFd, buffer, sizeof buffer) > 0) { }
            check();
        });
    }
    // timedated says so on the system bus as well; where there is one, it is heard too.
    QDBusConnection::systemBus().connect(QStringLiteral("org.freedesktop.timedate1"), QStringLiteral("/org/freedesktop/timedate1"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"), this, SLOT(check()));
}

TimeZoneWatcher::~TimeZoneWatcher()
{
    m_mounts.reset();
    if (m_mountsFd >= 0)
        ::close(m_mountsFd);
}

// What /etc/localtime is now: where the link leads and the file it reaches.
QByteArray TimeZoneWatcher::identity()
{
    char target[4096] = {};
    const ssize_t n = ::readlink(LocalTime, target, sizeof target - 1);
    struct stat st = {};
    ::stat(LocalTime, &st);
    return QByteArray(target, n > 0 ? int(n) : 0) + ' ' + QByteArray::number(quint64(st.st_dev)) + ':' + QByteArray::number(quint64(st.st_ino)) + ':'
        + QByteArray::number(qint64(st.st_mtim.tv_sec)) + '.' + QByteArray::number(qint64(st.st_mtim.tv_nsec));
}

void TimeZoneWatcher::check()
{
    // The link is replaced, not changed: watch it again whatever it is now.
    if (!m_watcher.files().contains(QString::fromLatin1(LocalTime)))
        m_watcher.addPath(QString::fromLatin1(LocalTime));
    const QByteArray now = identity();
    if (now == m_identity)
        return;
    m_identity = now;
    ::tzset();
    // ICU keeps the zone it found first for good; formatters made from now on take the new one.
    icu::TimeZone::adoptDefault(icu::TimeZone::detectHostTimeZone());
    systemLog(QStringLiteral("The time zone is now %1; the list is shown in it, and the items keep their moments.")
                  .arg(QString::fromUtf8(QTimeZone::systemTimeZoneId())));
    Q_EMIT zoneChanged();
}

} // namespace Quillon

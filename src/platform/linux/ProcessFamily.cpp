#include "ProcessFamily.h"

#include <QDir>
#include <QFile>
#include <QSet>

#include <cerrno>
#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Quillon::ProcessFamily {
namespace {

// Read with plain calls: /proc files report a size of 0, and QFile::readAll copes, but a
// process's environment can be large; only so much is looked at.
QByteArray readProc(const QString &path, qint64 limit = qint64(256) * 1024)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    return file.read(limit);
}

struct Stat
{
    char state = 0;
    pid_t session = -1;
};

// Fields after the command name, which may itself hold spaces and parentheses.
Stat statOf(pid_t pid)
{
    const QByteArray stat = readProc(QStringLiteral("/proc/%1/stat").arg(pid), 4096);
    const qsizetype close = stat.lastIndexOf(')');
    if (close < 0)
        return {};
    const QList<QByteArray> fields = stat.mid(close + 2).split(' ');
    if (fields.size() < 4)
        return {};
    return { fields.at(0).isEmpty() ? char(0) : fields.at(0).at(0), pid_t(fields.at(3).toInt()) };
}

bool holdsMark(pid_t pid, const MarkFilter &filter)
{
    static const QByteArray name = QByteArray(MarkName) + '=';
    const QByteArray environment = readProc(QStringLiteral("/proc/%1/environ").arg(pid));
    for (const QByteArray &entry : environment.split('\0')) {
        if (entry.startsWith(name) && filter(entry.mid(name.size())))
            return true;
    }
    return false;
}

QList<pid_t> childrenOfThisProcess()
{
    QList<pid_t> children;
    const QStringList tasks = QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &task : tasks) {
        for (const QByteArray &pid : readProc(QStringLiteral("/proc/self/task/%1/children").arg(task)).split(' ')) {
            if (pid.toInt() > 0)
                children << pid_t(pid.toInt());
        }
    }
    return children;
}

QSet<pid_t> pidsWithPidfd()
{
    QSet<pid_t> pids;
    const QStringList fds = QDir(QStringLiteral("/proc/self/fdinfo")).entryList(QDir::Files);
    for (const QString &fd : fds) {
        const QByteArray info = readProc(QStringLiteral("/proc/self/fdinfo/") + fd, 4096);
        const qsizetype at = info.indexOf("\nPid:\t");
        if (at >= 0)
            pids.insert(pid_t(info.mid(at + 6, info.indexOf('\n', at + 6) - at - 6).toInt()));
    }
    return pids;
}
} // namespace

bool becomeSubreaper()
{
    return ::prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0) == 0;
}

QList<pid_t> marked(const MarkFilter &filter)
{
    const pid_t self = ::getpid();
    const pid_t session = ::getsid(0);
    QList<pid_t> found;
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &entry : entries) {
        bool number = false;
        const pid_t pid = pid_t(entry.toInt(&number));
        if (!number || pid == self)
            continue;
        // Another user's process cannot be read, and is none of ours anyway.
        if (holdsMark(pid, filter) && statOf(pid).session == session)
            found << pid;
    }
    return found;
}

int signalMarked(const MarkFilter &filter, int signal)
{
    const QList<pid_t> pids = marked(filter);
    for (pid_t pid : pids)
        ::kill(pid, signal);
    return int(pids.size());
}

int reapOrphans()
{
    QList<pid_t> zombies;
    for (pid_t child : childrenOfThisProcess()) {
        if (statOf(child).state == 'Z')
            zombies << child;
    }
    if (zombies.isEmpty())
        return 0;
    const QSet<pid_t> waitedFor = pidsWithPidfd();
    int reaped = 0;
    for (pid_t zombie : std::as_const(zombies)) {
        if (!waitedFor.contains(zombie) && ::waitpid(zombie, nullptr, WNOHANG) == zombie)
            ++reaped;
    }
    return reaped;
}

} // namespace Quillon::ProcessFamily

namespace Quillon {

OrphanReaper::OrphanReaper(QObject *parent)
    : QObject(parent)
{
    m_timer.setInterval(1000);
    connect(&m_timer, &QTimer::timeout, this, [] { ProcessFamily::reapOrphans(); });
    m_timer.start();
}

} // namespace Quillon

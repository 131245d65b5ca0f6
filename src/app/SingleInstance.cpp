#include "SingleInstance.h"

#include "Log.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>

#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace Quillon {
namespace {
// "show", or "show <token>", and a line end.
constexpr qint64 maxRequest = 1100;

// A token is opaque to us but goes into the environment and the compositor: printable ASCII, of
// a sane length, or nothing.
QByteArray validToken(const QByteArray &token)
{
    if (token.isEmpty() || token.size() > 1024)
        return {};
    for (char c : token)
        if (c < 0x21 || c > 0x7e)
            return {};
    return token;
}

// What stands at a path that should hold a lock file, in words; empty for a regular file or nothing.
QString notALockFile(const QString &path)
{
    struct stat st = {};
    if (::lstat(QFile::encodeName(path).constData(), &st) != 0 || S_ISREG(st.st_mode))
        return {};
    return S_ISFIFO(st.st_mode) ? QStringLiteral("a FIFO")
        : S_ISDIR(st.st_mode)   ? QStringLiteral("a folder")
        : S_ISLNK(st.st_mode)   ? QStringLiteral("a symbolic link")
                                : QStringLiteral("not a regular file");
}

bool isPrivateFolder(const QString &path)
{
    struct stat st = {};
    return ::lstat(QFile::encodeName(path).constData(), &st) == 0 && S_ISDIR(st.st_mode) && st.st_uid == ::geteuid() && (st.st_mode & 077) == 0;
}
} // namespace

// The runtime folder when it is what it must be (ours, private); otherwise our own settings
// folder, made private for the purpose. Never a shared place another user could have prepared.
QString SingleInstance::privateFolder(const QString &settingsFile)
{
    QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && isPrivateFolder(runtime))
        return runtime;
    const QString why = runtime.isEmpty() ? QStringLiteral("XDG_RUNTIME_DIR is not set")
                                          : QStringLiteral("XDG_RUNTIME_DIR (%1) is not a private folder of this user").arg(runtime);
    const QString settings = QFileInfo(settingsFile).absolutePath();
    QDir().mkpath(QFileInfo(settings).absolutePath());
    ::mkdir(QFile::encodeName(settings).constData(), 0700);
    // A settings folder of the user's that others cannot write to may hold a private one of ours.
    QString folder = settings;
    struct stat st = {};
    if (!isPrivateFolder(folder) && ::lstat(QFile::encodeName(settings).constData(), &st) == 0 && S_ISDIR(st.st_mode) && st.st_uid == ::geteuid()
        && (st.st_mode & 022) == 0) {
        folder = settings + QStringLiteral("/instance");
        ::mkdir(QFile::encodeName(folder).constData(), 0700);
    }
    if (isPrivateFolder(folder)) {
        systemLog(QStringLiteral("%1; the instance lock is kept in %2 instead.").arg(why, folder));
        return folder;
    }
    systemLog(QStringLiteral("%1, and %2 is not a private folder of this user either.").arg(why, settings));
    return {};
}

SingleInstance::SingleInstance(const QString &settingsFile, QObject *parent)
    : QObject(parent)
{
    const QString folder = privateFolder(settingsFile);
    if (folder.isEmpty())
        return;
    // The real path: ~/.config reached through a link is the same settings file.
    const QString settingsFolder = QFileInfo(QFileInfo(settingsFile).absolutePath()).canonicalFilePath();
    const QString realFile
        = settingsFolder.isEmpty() ? QFileInfo(settingsFile).absoluteFilePath() : settingsFolder + QLatin1Char('/') + QFileInfo(settingsFile).fileName();
    if (!settingsFolder.isEmpty() && notALockFile(settingsFolder + QStringLiteral("/Quillon.instance.lock")).isEmpty()) {
        m_settingsLock = std::make_unique<QLockFile>(settingsFolder + QStringLiteral("/Quillon.instance.lock"));
        m_settingsLock->setStaleLockTime(0);
    }
    const QByteArray key = QCryptographicHash::hash(QFile::encodeName(realFile), QCryptographicHash::Sha256).toHex().left(16);
    m_base = folder + QStringLiteral("/quillon-") + QString::fromLatin1(key);
    // Reading a FIFO in the lock's place would hold this start, and every later one, for ever; a
    // folder there would make every start think another holds it. Such a thing is left alone and
    // the next name taken: every start picks the same one, so there is still one instance.
    for (int next = 2; next < 10; ++next) {
        const QString found = notALockFile(m_base + QStringLiteral(".lock"));
        if (found.isEmpty())
            break;
        systemLog(QStringLiteral("%1.lock is %2, not a lock file; it is left as it is and another name is used.").arg(m_base, found));
        m_base = folder + QStringLiteral("/quillon-") + QString::fromLatin1(key) + QStringLiteral("-%1").arg(next);
    }
    m_lock = std::make_unique<QLockFile>(m_base + QStringLiteral(".lock"));
    m_lock->setStaleLockTime(0); // stale only when its process is gone, never by age
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *peer = m_server.nextPendingConnection()) {
            connect(peer, &QLocalSocket::readyRead, peer, [this, peer] {
                if (!peer->canReadLine() && peer->bytesAvailable() < maxRequest)
                    return;
                const QByteArray request = peer->readLine(maxRequest).trimmed();
                if (request == "show" || request.startsWith("show "))
                    Q_EMIT activationRequested(validToken(request.mid(5)));
                peer->disconnectFromServer();
            });
            connect(peer, &QLocalSocket::disconnected, peer, &QObject::deleteLater);
        }
    });
}

SingleInstance::Claim SingleInstance::claim(const QByteArray &activationToken)
{
    if (!m_lock)
        return Claim::Impossible;
    const QString socket = m_base + QStringLiteral(".socket");
    if (m_lock->tryLock(0)) {
        if (settingsHeldElsewhere()) {
            m_lock->unlock();
            return Claim::Elsewhere;
        }
        // A socket left by a crash is ours to replace now.
        QLocalServer::removeServer(socket);
        m_server.setSocketOptions(QLocalServer::UserAccessOption);
        if (!m_server.listen(socket))
            systemLog(QStringLiteral("Cannot listen on %1: %2; a second start will not find this one.").arg(socket, m_server.errorString()));
        return Claim::Ours;
    }
    if (m_lock->error() != QLockFile::LockFailedError) {
        systemLog(QStringLiteral("Cannot create the instance lock %1.lock.").arg(m_base));
        return Claim::Impossible;
    }
    if (handOver(validToken(activationToken)))
        return Claim::HandedOver;
    if (settingsHeldElsewhere()) {
        m_lock->unlock();
        m_server.close();
        return Claim::Elsewhere;
    }
    return Claim::Ours;
}

// Another start on these settings from a runtime folder of its own: its socket is out of reach,
// so nothing can be handed over; a second schedule over the same list is never run.
bool SingleInstance::settingsHeldElsewhere()
{
    if (!m_settingsLock || m_settingsLock->tryLock(0) || m_settingsLock->error() != QLockFile::LockFailedError)
        return false;
    qint64 pid = 0;
    m_settingsLock->getLockInfo(&pid, nullptr, nullptr);
    systemLog(QStringLiteral("Another Quillon (process %1) runs on these settings from another runtime folder; not starting a second one.").arg(pid));
    return true;
}

namespace {
// Asks the running one to show its window: connect, say "show", wait until it hangs up. Plain
// sockets with bounded polls: this runs before there is an event loop to wait in.
bool askToShow(const QByteArray &socketPath, const QByteArray &activationToken)
{
    const QByteArray request = activationToken.isEmpty() ? QByteArrayLiteral("show\n") : "show " + activationToken + '\n';
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (socketPath.size() >= qsizetype(sizeof address.sun_path))
        return false;
    std::memcpy(address.sun_path, socketPath.constData(), size_t(socketPath.size()));
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return false;
    bool told = false;
    if (::connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0
        && ::write(fd, request.constData(), size_t(request.size())) == request.size()) {
        told = true;
        pollfd hangUp { fd, POLLIN, 0 };
        ::poll(&hangUp, 1, 1000);
    }
    ::close(fd);
    return told;
}
} // namespace

// The one that holds the lock may still be starting; give it a few seconds to listen.
bool SingleInstance::handOver(const QByteArray &activationToken)
{
    const QString socket = m_base + QStringLiteral(".socket");
    QDeadlineTimer deadline(5000);
    while (!deadline.hasExpired()) {
        if (askToShow(QFile::encodeName(socket), activationToken))
            return true;
        // The lock may have been let go meanwhile (the other one quit): then we are the one.
        if (m_lock->tryLock(0)) {
            QLocalServer::removeServer(socket);
            m_server.setSocketOptions(QLocalServer::UserAccessOption);
            m_server.listen(socket);
            return false;
        }
        ::poll(nullptr, 0, 100);
    }
    systemLog(QStringLiteral("Another Quillon holds %1.lock but does not answer; not starting a second one.").arg(m_base));
    return true;
}

} // namespace Quillon

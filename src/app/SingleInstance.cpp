#include "SingleInstance.h"

#include "Log.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QThread>

namespace Quillon {
namespace {
// The display a session runs on, so that two sessions of one user each get their own Quillon.
QString displayName()
{
    QString display = qEnvironmentVariable("WAYLAND_DISPLAY");
    if (display.isEmpty())
        display = qEnvironmentVariable("DISPLAY");
    display.replace(QRegularExpression(QStringLiteral("[^A-Za-z0-9_.-]")), QStringLiteral("_"));
    return display.isEmpty() ? QStringLiteral("default") : display;
}
} // namespace

SingleInstance::SingleInstance(const QString &runtimeDir, QObject *parent)
    : QObject(parent)
    , m_base(runtimeDir + QStringLiteral("/quillon-") + displayName())
{
    QDir().mkpath(runtimeDir);
    m_lock = std::make_unique<QLockFile>(m_base + QStringLiteral(".lock"));
    m_lock->setStaleLockTime(0); // stale only when its process is gone, never by age
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *peer = m_server.nextPendingConnection()) {
            connect(peer, &QLocalSocket::readyRead, peer, [this, peer] {
                if (peer->readAll().contains("show"))
                    Q_EMIT activationRequested();
                peer->disconnectFromServer();
            });
            connect(peer, &QLocalSocket::disconnected, peer, &QObject::deleteLater);
        }
    });
}

bool SingleInstance::claim()
{
    const QString socket = m_base + QStringLiteral(".socket");
    if (m_lock->tryLock(0)) {
        // A socket left by a crash is ours to replace now.
        QLocalServer::removeServer(socket);
        m_server.setSocketOptions(QLocalServer::UserAccessOption);
        if (!m_server.listen(socket))
            systemLog(QStringLiteral("Cannot listen on %1: %2; a second start will not find this one.").arg(socket, m_server.errorString()));
        return true;
    }
    return !handOver();
}

// The one that holds the lock may still be starting; give it a few seconds to listen.
bool SingleInstance::handOver()
{
    const QString socket = m_base + QStringLiteral(".socket");
    QDeadlineTimer deadline(5000);
    while (!deadline.hasExpired()) {
        QLocalSocket peer;
        peer.connectToServer(socket);
        if (peer.waitForConnected(500)) {
            peer.write("show\n");
            peer.waitForBytesWritten(1000);
            peer.waitForDisconnected(1000);
            return true;
        }
        // The lock may have been let go meanwhile (the other one quit): then we are the one.
        if (m_lock->tryLock(0)) {
            QLocalServer::removeServer(socket);
            m_server.setSocketOptions(QLocalServer::UserAccessOption);
            m_server.listen(socket);
            return false;
        }
        QThread::msleep(100);
    }
    systemLog(QStringLiteral("Another Quillon holds %1.lock but does not answer; not starting a second one.").arg(m_base));
    return true;
}

} // namespace Quillon

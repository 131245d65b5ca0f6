#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>

#include <memory>

namespace Quillon {

// One Quillon per user and display session. The first start holds a lock file and listens on a
// local socket beside it in the runtime folder; a later start hands over to it and ends. A lock
// left by a crashed instance names a process that no longer runs, and is taken over.
class SingleInstance final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SingleInstance)
public:
    explicit SingleInstance(const QString &runtimeDir, QObject *parent = nullptr);

    // True: this process is the one. False: another one runs and was asked to show its window.
    bool claim();

Q_SIGNALS:
    // Another start asked for the window.
    void activationRequested();

private:
    bool handOver();

    QString m_base;
    std::unique_ptr<QLockFile> m_lock;
    QLocalServer m_server;
};

} // namespace Quillon

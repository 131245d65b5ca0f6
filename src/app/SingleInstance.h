#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>

#include <memory>

namespace Quillon {

// One Quillon per settings file: the schedule belongs to the file, and two instances over it would
// open every item twice, whatever display each one shows on. The first start holds a lock file and
// listens on a local socket beside it in the user's private runtime folder; a later start hands
// over to it and ends. A lock left by a crashed instance names a process that no longer runs, and
// is taken over. The settings file is known by its real path (a folder reached through a link is
// the same folder), and a second lock in that folder catches a start whose runtime folder differs.
class SingleInstance final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SingleInstance)
public:
    explicit SingleInstance(const QString &settingsFile, QObject *parent = nullptr);

    enum class Claim { Ours, HandedOver, Elsewhere, Impossible };
    // Ours: this process is the one. HandedOver: another one runs and was asked to show its window.
    // Elsewhere: another one runs on these settings from another session's runtime folder, out of
    // reach (said in the log). Impossible: no private place for the lock (said in the log).
    // activationToken: what this start's launcher gave it for raising a window, passed on.
    Claim claim(const QByteArray &activationToken = {});

Q_SIGNALS:
    // Another start asked for the window; the token is empty when it had none (or a malformed one).
    void activationRequested(const QByteArray &activationToken);

private:
    bool handOver(const QByteArray &activationToken);
    bool settingsHeldElsewhere();
    static QString privateFolder(const QString &settingsFile);

    QString m_base;
    std::unique_ptr<QLockFile> m_lock;
    // In the settings folder itself, whatever runtime folder each start has.
    std::unique_ptr<QLockFile> m_settingsLock;
    QLocalServer m_server;
};

} // namespace Quillon

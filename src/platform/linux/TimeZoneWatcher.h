#pragma once

#include <QByteArray>
#include <QFileSystemWatcher>
#include <QObject>

#include <memory>

class QSocketNotifier;

namespace Quillon {

// Tells when the system's time zone changes while Quillon runs: timedated replaces
// /etc/localtime by a new link (the folder changes, not the link), an administrator may write it
// in place or mount another zone over it. The clock does not change, so no timer notices.
class TimeZoneWatcher final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TimeZoneWatcher)
public:
    explicit TimeZoneWatcher(QObject *parent = nullptr);
    ~TimeZoneWatcher() override;

Q_SIGNALS:
    // The C library and ICU already follow the new zone when this is sent.
    void zoneChanged();

private Q_SLOTS:
    void check();

private:
    static QByteArray identity();

    QFileSystemWatcher m_watcher;
    std::unique_ptr<QSocketNotifier> m_mounts;
    int m_mountsFd = -1;
    QByteArray m_identity;
};

} // namespace Quillon

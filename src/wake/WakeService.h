#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QHash>
#include <QList>
#include <QObject>

class QDBusServiceWatcher;

namespace Quillon {

// The system service that arms kernel wake alarms for the users' sessions. CAP_WAKE_ALARM is its
// one capability (given by systemd); it arms an alarm for a caller only when polkit says the
// caller may, only for a moment ahead within a year, at most a few per caller, and only while the
// caller stays on the bus: the alarms of a caller that leaves are gone with it.
class WakeService final : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.quillon.Wake1")
public:
    static constexpr const char *ServiceName = "org.quillon.Wake1";
    static constexpr const char *ObjectPath = "/org/quillon/Wake1";
    static constexpr const char *Action = "org.quillon.wake";
    static constexpr int MostPerCaller = 8;

    explicit WakeService(QDBusConnection bus, QObject *parent = nullptr);
    ~WakeService() override;
    bool start();

public Q_SLOTS:
    // Seconds since the epoch.
    Q_SCRIPTABLE void Arm(qint64 when);

Q_SIGNALS:
    // No caller holds an alarm any more; and one does again.
    void idle();
    void busy();

private:
    void authorized(const QString &caller, qint64 when, const QDBusMessage &call);
    void forget(const QString &caller);

    QDBusConnection m_bus;
    QDBusServiceWatcher *m_callers = nullptr;
    // Each caller's alarms, as open timer descriptors.
    QHash<QString, QList<int>> m_alarms;
};

} // namespace Quillon

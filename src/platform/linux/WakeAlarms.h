#pragma once

#include "WakeAlarm.h"

namespace Quillon {

// A kernel wake alarm armed by Quillon's system service (org.quillon.Wake1), which polkit lets
// the active session use; the alarms last as long as this process stays on the system bus.
class ServiceWakeAlarm final : public WakeAlarm
{
    Q_OBJECT
public:
    using WakeAlarm::WakeAlarm;
    QString name() const override { return QStringLiteral("Quillon's wake service"); }
    void probe() override;
    void request(qint64 epochSecs) override;
};

// KDE Plasma's power daemon, on the session bus.
class KdeWakeAlarm final : public WakeAlarm
{
    Q_OBJECT
public:
    using WakeAlarm::WakeAlarm;
    QString name() const override { return QStringLiteral("KDE power management"); }
    void probe() override;
    void request(qint64 epochSecs) override;
};

// A transient timer with WakeSystem=yes in the systemd user manager (version 254 and later give
// it CAP_WAKE_ALARM).
class SystemdWakeAlarm final : public WakeAlarm
{
    Q_OBJECT
public:
    using WakeAlarm::WakeAlarm;
    QString name() const override { return QStringLiteral("systemd user timer"); }
    void probe() override;
    void request(qint64 epochSecs) override;

private:
    int m_serial = 0;
};

} // namespace Quillon

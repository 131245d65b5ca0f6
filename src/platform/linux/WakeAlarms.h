#pragma once

#include "WakeAlarm.h"

#include <QProcess>

namespace Quillon {

// A kernel wake alarm held by the quillon-wake helper, which alone carries CAP_WAKE_ALARM.
class HelperWakeAlarm final : public WakeAlarm
{
    Q_OBJECT
public:
    explicit HelperWakeAlarm(QString helperPath, QObject *parent = nullptr);
    ~HelperWakeAlarm() override;
    QString name() const override { return QStringLiteral("kernel wake alarm"); }
    void probe() override;
    void request(qint64 epochSecs) override;
    void release(std::function<void()> done) override;
    qint64 helperPid() const { return m_helper.processId(); }

    // The helper next to the program, or where the package puts it.
    static QString installedHelper();

private:
    void readAnswers();
    QString m_path;
    QProcess m_helper;
    bool m_ready = false;
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

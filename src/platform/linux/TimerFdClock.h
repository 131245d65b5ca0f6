#pragma once

#include "WallClock.h"

#include <functional>

class QSocketNotifier;

namespace Quillon {

// One CLOCK_REALTIME timerfd with absolute deadlines. It fires at a wall-clock time even when that
// time passed during a suspend, and reports clock changes and resumes (the kernel cancels the
// timer then). It is always armed, far ahead when nothing is due, so those reports never stop.
class TimerFdClock final : public WallClock
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TimerFdClock)
public:
    // How long the machine has slept since boot, in ns; tests hand in their own to act a suspend.
    using SleepGauge = std::function<qint64()>;

    explicit TimerFdClock(QObject *parent = nullptr);
    explicit TimerFdClock(SleepGauge gauge, QObject *parent = nullptr);
    ~TimerFdClock() override;

    qint64 nowMSecs() const override;
    void aimAt(qint64 deadlineMSecs) override;
    void disarm() override;
    void checkForResume() override;

private:
    void onReadable();
    void armKernel(qint64 deadlineMSecs);
    bool resumedSinceLastLook();
    static qint64 sleptNSecs();

    SleepGauge m_gauge;
    int m_fd = -1;
    QSocketNotifier *m_notifier = nullptr;
    bool m_aimed = false;
    qint64 m_deadline = 0;
    qint64 m_slept = 0;
};

} // namespace Quillon

#include "TimerFdClock.h"

#include "Log.h"

#include <QSocketNotifier>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <sys/timerfd.h>
#include <unistd.h>

namespace Quillon {
namespace {
// Where the kernel timer waits when nothing is due: far enough never to fire.
constexpr qint64 ParkedDeadline = qint64(4'000'000'000) * 1000;
// Boot time runs ahead of monotonic time only while suspended; anything above noise is a sleep.
constexpr qint64 ResumeThresholdNSecs = 200'000'000;

qint64 clockNSecs(clockid_t id)
{
    timespec ts {};
    clock_gettime(id, &ts);
    return qint64(ts.tv_sec) * 1'000'000'000 + ts.tv_nsec;
}
} // namespace

TimerFdClock::TimerFdClock(QObject *parent)
    : TimerFdClock(&TimerFdClock::sleptNSecs, parent)
{ }

TimerFdClock::TimerFdClock(SleepGauge gauge, QObject *parent)
    : WallClock(parent)
    , m_gauge(std::move(gauge))
    , m_slept(m_gauge())
{
    m_fd = timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC);
    if (m_fd < 0) {
        systemLog(QStringLiteral("Cannot create the schedule timer: %1").arg(QString::fromLocal8Bit(std::strerror(errno))));
        return;
    }
    m_notifier = new QSocketNotifier(m_fd, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &TimerFdClock::onReadable);
    armKernel(ParkedDeadline);
}

TimerFdClock::~TimerFdClock()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

qint64 TimerFdClock::nowMSecs() const
{
    return clockNSecs(CLOCK_REALTIME) / 1'000'000;
}

void TimerFdClock::aimAt(qint64 deadlineMSecs)
{
    m_aimed = true;
    m_deadline = deadlineMSecs;
    armKernel(deadlineMSecs);
}

void TimerFdClock::disarm()
{
    m_aimed = false;
    armKernel(ParkedDeadline);
}

void TimerFdClock::checkForResume()
{
    if (resumedSinceLastLook())
        Q_EMIT resumed();
}

qint64 TimerFdClock::sleptNSecs()
{
    return clockNSecs(CLOCK_BOOTTIME) - clockNSecs(CLOCK_MONOTONIC);
}

bool TimerFdClock::resumedSinceLastLook()
{
    const qint64 slept = m_gauge();
    const bool grew = slept - m_slept > ResumeThresholdNSecs;
    m_slept = slept;
    return grew;
}

void TimerFdClock::armKernel(qint64 deadlineMSecs)
{
    if (m_fd < 0)
        return;
    itimerspec spec {};
    // A zero it_value disarms the timer; the earliest real instant is 1 ns after the epoch.
    const qint64 ms = qMax<qint64>(deadlineMSecs, 0);
    spec.it_value.tv_sec = time_t(ms / 1000);
    spec.it_value.tv_nsec = long((ms % 1000) * 1'000'000);
    if (spec.it_value.tv_sec == 0 && spec.it_value.tv_nsec == 0)
        spec.it_value.tv_nsec = 1;
    if (timerfd_settime(m_fd, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &spec, nullptr) != 0)
        systemLog(QStringLiteral("Cannot arm the schedule timer: %1").arg(QString::fromLocal8Bit(std::strerror(errno))));
}

void TimerFdClock::onReadable()
{
    quint64 expirations = 0;
    const ssize_t n = ::read(m_fd, &expirations, sizeof expirations);
    if (n < 0 && errno == EAGAIN)
        return;
    const bool cancelled = n < 0 && errno == ECANCELED;

    // A resume is told before anything fires: items whose time fell inside the sleep are the
    // after-wake action's to drop, not ours to open late.
    if (resumedSinceLastLook()) {
        armKernel(m_aimed ? m_deadline : ParkedDeadline);
        Q_EMIT resumed();
        return;
    }
    if (cancelled) {
        armKernel(m_aimed ? m_deadline : ParkedDeadline);
        Q_EMIT clockChanged();
        return;
    }
    if (m_aimed && nowMSecs() >= m_deadline) {
        m_aimed = false;
        armKernel(ParkedDeadline);
        Q_EMIT expired();
    } else {
        armKernel(m_aimed ? m_deadline : ParkedDeadline);
    }
}

} // namespace Quillon

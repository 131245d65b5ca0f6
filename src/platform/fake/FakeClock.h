#pragma once

#include "WallClock.h"

#include <QTimer>

namespace Quillon {

// A wall clock that tests move by hand. Deadlines that the clock passes expire at once.
class FakeClock final : public WallClock
{
    Q_OBJECT
public:
    explicit FakeClock(qint64 startMSecs = 1'800'000'000'000, QObject *parent = nullptr)
        : WallClock(parent)
        , m_now(startMSecs)
    { }

    qint64 nowMSecs() const override { return m_now; }
    void aimAt(qint64 deadline) override
    {
        m_aimed = true;
        m_deadline = deadline;
        if (deadline <= m_now)
            QTimer::singleShot(0, this, &FakeClock::fireIfDue);
    }
    void disarm() override { m_aimed = false; }
    void checkForResume() override
    {
        if (m_sleptUnseen) {
            m_sleptUnseen = false;
            Q_EMIT resumed();
        }
    }

    // Time passes normally: deadlines on the way expire.
    void advance(qint64 ms)
    {
        m_now += ms;
        fireIfDue();
    }
    void advanceSecs(double s) { advance(qint64(s * 1000)); }
    // The user or NTP sets the clock.
    void setClock(qint64 ms)
    {
        m_now = ms;
        Q_EMIT clockChanged();
    }
    // The machine sleeps for ms and wakes; the kernel timer notices the resume first, unless
    // something else (logind) is to tell.
    void suspend(qint64 ms, bool noticed = true)
    {
        m_now += ms;
        m_sleptUnseen = true;
        if (noticed)
            checkForResume();
    }

    bool isAimed() const { return m_aimed; }
    qint64 deadline() const { return m_deadline; }

private:
    void fireIfDue()
    {
        if (m_aimed && m_deadline <= m_now) {
            m_aimed = false;
            Q_EMIT expired();
        }
    }

    qint64 m_now;
    qint64 m_deadline = 0;
    bool m_aimed = false;
    bool m_sleptUnseen = false;
};

} // namespace Quillon

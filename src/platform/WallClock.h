#pragma once

#include <QDateTime>
#include <QObject>

namespace Quillon {

// The wall clock and one kernel alarm aimed at an absolute wall-clock time.
// The schedule keeps its own queue of deadlines and aims this alarm at the earliest.
class WallClock : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    ~WallClock() override = default;

    // Milliseconds since the epoch, on the real-time clock.
    virtual qint64 nowMSecs() const = 0;
    QDateTime now() const { return QDateTime::fromMSecsSinceEpoch(nowMSecs()); }

    // Emit expired() once the wall clock reaches deadline; a deadline already passed expires at once
    // (from the event loop, never from inside this call). Replaces any earlier aim.
    virtual void aimAt(qint64 deadlineMSecs) = 0;
    virtual void disarm() = 0;

    // Compare how far the machine has slept with what was last seen; emit resumed() when it grew.
    // Several sources of "the machine woke" call this, and only the first one after a wake emits.
    virtual void checkForResume() = 0;

Q_SIGNALS:
    void expired();
    // The wall clock was set: deadlines must be compared again.
    void clockChanged();
    // The machine came back from suspend.
    void resumed();
};

} // namespace Quillon

#pragma once

#include "ItemTimer.h"

#include <QObject>

#include <deque>
#include <functional>
#include <optional>
#include <vector>

namespace Quillon {

class WallClock;

// Every armed item timer in one priority queue, with the one kernel timer aimed at the earliest.
// Deadlines are wall-clock times, so a date months ahead fires then and a clock change is obeyed.
class TimerQueue final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TimerQueue)
public:
    using FireHandler = std::function<void(const TimerSlot &)>;

    explicit TimerQueue(WallClock &clock, QObject *parent = nullptr);
    ~TimerQueue() override;

    void setFireHandler(FireHandler handler) { m_onFire = std::move(handler); }
    // A timer that fires at fireMSecs; one already due fires from the event loop as soon as it can.
    TimerSlot schedule(const QString &path, qint64 fireMSecs);
    // The earliest deadline of a live timer strictly after after; walks only the heap's front,
    // never every entry.
    std::optional<qint64> earliestLiveAfter(qint64 after) const;

private:
    friend class ItemTimer;
    struct Entry
    {
        qint64 deadline;
        quint64 sequence;
        std::weak_ptr<ItemTimer> timer;
    };
    static bool later(const Entry &a, const Entry &b);

    void timerInvalidated();
    void onExpired();
    void fireBacklog();
    void reaim(bool force = false);
    void dropDeadEntriesAtTop();
    void compact();

    WallClock &m_clock;
    FireHandler m_onFire;
    std::vector<Entry> m_heap;
    // Due, not fired yet: a burst is fired a slice per event-loop turn, in order, so that the
    // window and the rest of the loop get their turns in between.
    std::deque<TimerSlot> m_backlog;
    quint64 m_sequence = 0;
    int m_live = 0;
    bool m_aimed = false;
    bool m_ending = false;
    qint64 m_aimedAt = 0;
};

} // namespace Quillon

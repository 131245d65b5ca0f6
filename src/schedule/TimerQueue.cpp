#include "TimerQueue.h"

#include "WallClock.h"

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>

namespace Quillon {

void ItemTimer::invalidate()
{
    if (!m_valid)
        return;
    m_valid = false;
    if (m_queue)
        m_queue->timerInvalidated();
}

TimerQueue::TimerQueue(WallClock &clock, QObject *parent)
    : QObject(parent)
    , m_clock(clock)
{
    connect(&m_clock, &WallClock::expired, this, [this] {
        m_aimed = false;
        onExpired();
    });
    connect(&m_clock, &WallClock::clockChanged, this, [this] { reaim(true); });
}

TimerQueue::~TimerQueue()
{
    // The timers still held here go with the queue; none may tell it so while it ends.
    m_ending = true;
    m_backlog.clear();
}

bool TimerQueue::later(const Entry &a, const Entry &b)
{
    // Equal deadlines keep the order in which they were armed.
    return a.deadline != b.deadline ? a.deadline > b.deadline : a.sequence > b.sequence;
}

TimerSlot TimerQueue::schedule(const QString &path, qint64 fireMSecs)
{
    auto timer = std::make_shared<ItemTimer>(this, path, fireMSecs);
    m_heap.push_back({ fireMSecs, m_sequence++, timer });
    std::push_heap(m_heap.begin(), m_heap.end(), later);
    ++m_live;
    reaim();
    return timer;
}

void TimerQueue::timerInvalidated()
{
    if (m_ending)
        return;
    --m_live;
    // Cancelled timers leave their entries behind; sweep them before they outnumber the live ones.
    if (m_heap.size() > 2 * size_t(m_live) + 1024)
        compact();
}

void TimerQueue::compact()
{
    std::erase_if(m_heap, [](const Entry &e) {
        const auto t = e.timer.lock();
        return !t || !t->isValid();
    });
    std::make_heap(m_heap.begin(), m_heap.end(), later);
}

void TimerQueue::dropDeadEntriesAtTop()
{
    while (!m_heap.empty()) {
        const auto t = m_heap.front().timer.lock();
        if (t && t->isValid())
            return;
        std::pop_heap(m_heap.begin(), m_heap.end(), later);
        m_heap.pop_back();
    }
}

void TimerQueue::reaim(bool force)
{
    dropDeadEntriesAtTop();
    if (m_heap.empty()) {
        if (m_aimed)
            m_clock.disarm();
        m_aimed = false;
        return;
    }
    const qint64 earliest = m_heap.front().deadline;
    if (force || !m_aimed || earliest != m_aimedAt) {
        m_aimed = true;
        m_aimedAt = earliest;
        m_clock.aimAt(earliest);
    }
}

std::optional<qint64> TimerQueue::earliestLiveAfter(qint64 after) const
{
    // An entry's children are never earlier than it, so below a live entry later than after there
    // is nothing better; only entries at or before after, or dead ones, are looked beneath.
    std::optional<qint64> best;
    std::vector<size_t> stack { 0 };
    while (!stack.empty()) {
        const size_t i = stack.back();
        stack.pop_back();
        if (i >= m_heap.size())
            continue;
        const Entry &e = m_heap[i];
        if (best && e.deadline >= *best)
            continue;
        const auto t = e.timer.lock();
        if (t && t->isValid() && e.deadline > after) {
            best = e.deadline;
            continue;
        }
        stack.push_back(2 * i + 1);
        stack.push_back(2 * i + 2);
    }
    return best;
}

void TimerQueue::onExpired()
{
    const qint64 now = m_clock.nowMSecs();
    // Taken out first: a repeating item re-armed for now must wait for the next expiry, not fire
    // again in this one.
    while (!m_heap.empty() && m_heap.front().deadline <= now) {
        auto t = m_heap.front().timer.lock();
        std::pop_heap(m_heap.begin(), m_heap.end(), later);
        m_heap.pop_back();
        if (t && t->isValid())
            m_backlog.push_back(std::move(t));
    }
    reaim();
    fireBacklog();
}

void TimerQueue::fireBacklog()
{
    constexpr qint64 SliceMSecs = 10;
    QElapsedTimer slice;
    slice.start();
    while (!m_backlog.empty()) {
        const TimerSlot t = std::move(m_backlog.front());
        m_backlog.pop_front();
        // An earlier firing may have stopped the schedule.
        if (t->isValid() && m_onFire)
            m_onFire(t);
        if (!m_backlog.empty() && slice.elapsed() >= SliceMSecs) {
            QTimer::singleShot(0, this, &TimerQueue::fireBacklog);
            return;
        }
    }
}

} // namespace Quillon

// The timer side of the schedule: arming, firing and repeating items, stopping, asking for a
// wake before sleep, and what becomes of items whose time passed while the machine slept.
#include "Schedule.h"

#include "Log.h"
#include "PowerService.h"
#include "Preferences.h"
#include "SettingsKeys.h"
#include "Texts.h"
#include "TimerQueue.h"
#include "WallClock.h"

#include <QTimeZone>
#include <QTimer>

#include <QtNumeric>

#include <algorithm>
#include <limits>

namespace Quillon {
namespace {
constexpr quint32 WakeLeadSeconds = 15;

quint32 unitFactor(int unit)
{
    switch (unit) {
    case 1:
        return 60;
    case 2:
        return 3600;
    case 3:
        return 86400;
    default:
        return 1;
    }
}
} // namespace

TimerSlot Schedule::armTimer(const QString &path, qint64 fireMSecs)
{
    return m_queue->schedule(path, fireMSecs);
}

void Schedule::showStopped()
{
    m_timersRunning = false;
    Q_EMIT runningStateChanged(false);
    Q_EMIT reloadTable();
}

void Schedule::showRunning()
{
    m_timersRunning = true;
    Q_EMIT runningStateChanged(true);
    Q_EMIT reloadTable();
}

void Schedule::freeze()
{
    m_frozen = true;
    for (TimerSlot &slot : m_timers) {
        if (slot)
            slot->invalidate();
    }
}

bool Schedule::isArmable(qsizetype row, qint64 nowMSecs) const
{
    if (row >= m_dates.size() || row >= m_ids.size())
        return false;
    const qint64 date = m_dates.at(row).toMSecsSinceEpoch();
    // Compared, not subtracted: a hand-edited date near the limits must not wrap into the past.
    // A moment this row already fired at is never armed again, whatever the clock did since.
    return date > nowMSecs && !hasFired(m_ids.at(row), date);
}

bool Schedule::hasItemAhead() const
{
    const qint64 nowMSecs = m_clock.nowMSecs();
    const QTimeZone systemZone = QTimeZone::systemTimeZone();
    for (qsizetype i = 0; i < m_paths.size(); ++i) {
        if (isArmable(i, nowMSecs) || (repeatAt(int(i)).hasRule() && repeatAt(int(i)).nextAfter(now(), systemZone)))
            return true;
    }
    return false;
}

QList<QDateTime> Schedule::upcoming(int row, int count) const
{
    QList<QDateTime> moments;
    if (row < 0 || row >= m_dates.size() || count < 1)
        return moments;
    const QDateTime now = this->now();
    const Repeat &repeat = repeatAt(row);
    QDateTime date = m_dates.at(row);
    if (repeat.hasRule() && date <= now) {
        const std::optional<QDateTime> next = repeat.nextAfter(now);
        if (!next)
            return moments;
        date = *next;
    }
    if (date <= now || hasFired(idAt(row), date.toMSecsSinceEpoch()))
        return moments;
    moments << date;
    if (repeat.hasRule())
        return moments + repeat.upcoming(date, count - 1);
    const qint64 period = repeatMSecs();
    while (period > 0 && moments.size() < count)
        moments << moments.last().addMSecs(period);
    return moments;
}

void Schedule::advanceRuled(qsizetype row, qint64 nowMSecs, const QTimeZone &systemZone)
{
    const Repeat &repeat = repeatAt(int(row));
    if (!repeat.hasRule() || row >= m_dates.size() || m_dates.at(row).toMSecsSinceEpoch() > nowMSecs)
        return;
    // A rule that has ended leaves the date where it fired last.
    if (const std::optional<QDateTime> next = repeat.nextAfter(QDateTime::fromMSecsSinceEpoch(nowMSecs, Qt::UTC), systemZone))
        m_dates[row] = *next;
}

void Schedule::startTimers(bool quiet)
{
    if (m_frozen)
        return;
    m_timersRemaining = 0;
    m_slotIndexStale = true;
    const qint64 nowMSecs = m_clock.nowMSecs();
    const QTimeZone systemZone = QTimeZone::systemTimeZone();
    for (qsizetype i = 0; i < m_timers.size(); ++i) {
        // Started by the user: a rule goes on from today, whatever it missed while stopped.
        if (!quiet)
            advanceRuled(i, nowMSecs, systemZone);
        if (isArmable(i, nowMSecs)) {
            m_timers[i] = armTimer(m_paths.at(i), m_dates.at(i).toMSecsSinceEpoch());
            ++m_timersRemaining;
        } else {
            m_timers[i] = TimerSlot();
        }
    }
    if (m_timersRemaining < 1) {
        showStopped();
        if (!quiet)
            Q_EMIT alertRequested(Texts::tr(Texts::NoItemsScheduled), Texts::tr(Texts::NoItemsScheduledInfo));
        return;
    }
    showRunning();
}

void Schedule::invalidateTimers(bool keepSlots)
{
    m_slotIndexStale = true;
    for (TimerSlot &slot : m_timers) {
        if (!slot)
            continue;
        slot->invalidate();
        if (!keepSlots)
            slot = TimerSlot();
    }
    showStopped();
}

bool Schedule::hasFired(quint64 id, qint64 dateMSecs) const
{
    const auto fired = m_lastFired.constFind(id);
    return fired != m_lastFired.cend() && *fired == dateMSecs;
}

void Schedule::restartTimers()
{
    const bool wasRunning = m_timersRunning;
    // An armed item whose moment has come while its firing still waits its turn fires now: a
    // re-arm (an add, a date change, a zone change) never drops it silently.
    QList<TimerSlot> due;
    if (wasRunning && !m_frozen) {
        const qint64 nowMSecs = m_clock.nowMSecs();
        for (const TimerSlot &slot : std::as_const(m_timers)) {
            if (slot && slot->isValid() && slot->fireMSecs() <= nowMSecs)
                due << slot;
        }
    }
    for (const TimerSlot &timer : std::as_const(due))
        launch(timer);
    invalidateTimers(false);
    startTimers(true);
    if (wasRunning && !m_timersRunning)
        Q_EMIT stoppedByItself(Texts::tr(Texts::StoppedNoFuture));
}

void Schedule::startStopButtonClicked()
{
    if (!m_timersRunning) {
        invalidateTimers(true);
        startTimers(false);
    } else {
        invalidateTimers(false);
        Q_EMIT stoppedByUser();
    }
}

void Schedule::launch(const TimerSlot &timer)
{
    if (m_frozen)
        return;
    const qsizetype k = slotOf(timer);
    if (k >= 0)
        m_lastFired.insert(idAt(int(k)), timer->fireMSecs());
    // The launcher hears it here, with the row and the moment that every report then carries.
    Q_EMIT launched(timer->path(), timer->fireDate(), k >= 0 ? idAt(int(k)) : 0);

    const qint64 period = repeatMSecs();
    const Repeat &repeat = repeatAt(int(k));
    if (repeat.hasRule()) {
        // The rule's next moment after the one that fired and after now: one launch, however
        // many moments a late firing passed over. A rule that has ended fired its last.
        const QDateTime after = std::max(timer->fireDate().toUTC(), now());
        if (const std::optional<QDateTime> next = k >= 0 && k < m_dates.size() ? repeat.nextAfter(after) : std::nullopt) {
            m_slotIndex.remove(timer.get());
            m_timers[k] = armTimer(timer->path(), next->toMSecsSinceEpoch());
            m_slotIndex.insert(m_timers[k].get(), k);
            m_dates[k] = *next;
            scheduleWakeUpSoon();
        } else {
            --m_timersRemaining;
        }
    } else if (period == 0) {
        --m_timersRemaining;
    } else {
        qint64 next = 0;
        if (qAddOverflow(timer->fireMSecs(), period, &next))
            next = std::numeric_limits<qint64>::max();
        const qint64 nowMSecs = m_clock.nowMSecs();
        // A late item fires again at once, and from then on its series counts from the present.
        const qint64 fireAt = next > nowMSecs ? next : nowMSecs;
        if (k < 0) {
            systemLog(QStringLiteral("A repeating item fired after its row was removed; it is not re-armed."));
        } else {
            m_slotIndex.remove(timer.get());
            m_timers[k] = armTimer(timer->path(), fireAt);
            m_slotIndex.insert(m_timers[k].get(), k);
            if (k < m_dates.size())
                m_dates[k] = QDateTime::fromMSecsSinceEpoch(next, Qt::UTC);
            scheduleWakeUpSoon();
        }
    }
    timer->invalidate();
    // Only this row: a burst of thousands of firings must not redraw the whole table each time.
    if (k >= 0)
        Q_EMIT rowChanged(int(k));

    if (m_timersRemaining == 0) {
        invalidateTimers(true); // which shows it stopped, once
        Q_EMIT stoppedByItself(Texts::tr(Texts::StoppedLastOpened));
        if (m_preferences.boolValue(Keys::QuitWhenDone))
            Q_EMIT quitRequested();
    }
}

// The slot of a timer, found by identity. Firing 30,000 repeating items in a second would make a
// search per firing quadratic; the map is rebuilt only after rows or slots changed.
qsizetype Schedule::slotOf(const TimerSlot &timer)
{
    if (m_slotIndexStale) {
        m_slotIndex.clear();
        m_slotIndex.reserve(m_timers.size());
        for (qsizetype i = 0; i < m_timers.size(); ++i) {
            if (m_timers.at(i))
                m_slotIndex.insert(m_timers.at(i).get(), i);
        }
        m_slotIndexStale = false;
    }
    return m_slotIndex.value(timer.get(), -1);
}

void Schedule::scheduleWakeUpSoon()
{
    // Each repeat asks again; one request per event-loop turn is enough.
    if (std::exchange(m_wakeUpQueued, true))
        return;
    QTimer::singleShot(0, this, [this] {
        m_wakeUpQueued = false;
        scheduleWakeUp();
    });
}

void Schedule::scheduleWakeUp()
{
    if (m_timers.isEmpty() || !m_power)
        return;
    // Every armed timer is in the queue, which keeps them in order; a timer of a removed row has
    // no owner left there and does not count.
    const std::optional<qint64> earliest = m_queue->earliestLiveAfter(m_clock.nowMSecs());
    if (earliest)
        m_power->schedulePowerWake(QDateTime::fromMSecsSinceEpoch(*earliest), WakeLeadSeconds);
}

void Schedule::datesChanged()
{
    // A running schedule follows a date change at once: the new dates are armed, and a
    // schedule left with nothing in the future stops (and says so).
    if (m_timersRunning)
        restartTimers();
}

void Schedule::afterWake()
{
    if (!m_timersRunning || m_frozen)
        return;
    const qint64 nowMSecs = m_clock.nowMSecs();
    QList<int> passed;
    for (qsizetype i = 0; i < m_timers.size(); ++i) {
        if (m_timers.at(i) && m_timers.at(i)->isValid() && m_timers.at(i)->fireMSecs() <= nowMSecs)
            passed << int(i);
    }
    // Told as missed: the re-arm that follows must not fire them after all.
    for (int row : std::as_const(passed))
        m_timers.at(row)->invalidate();
    settleMissed(passed, MissedWhile::Asleep);
}

void Schedule::settleMissed(QList<int> rows, MissedWhile when)
{
    if (m_frozen)
        return;
    rows.removeIf([this](int row) { return row < 0 || row >= count() || row >= m_dates.size(); });
    rows.removeIf([this](int row) { return hasFired(idAt(row), m_dates.at(row).toMSecsSinceEpoch()); });
    std::stable_sort(rows.begin(), rows.end(), [this](int a, int b) { return m_dates.at(a) < m_dates.at(b); });
    struct Due
    {
        QString path;
        QDateTime date;
        quint64 item;
    };
    QList<Due> due;
    const qint64 nowMSecs = m_clock.nowMSecs();
    const qint64 period = repeatMSecs();
    const bool byDefault = m_preferences.boolValue(Keys::OpenMissedItems);
    const QTimeZone systemZone = QTimeZone::systemTimeZone();
    for (int row : std::as_const(rows)) {
        const QDateTime date = m_dates.at(row);
        const MissedPolicy &policy = repeatAt(row).missed;
        const bool opens = policy.opens(date.secsTo(QDateTime::fromMSecsSinceEpoch(nowMSecs, Qt::UTC)), byDefault);
        Q_EMIT missed(m_paths.at(row), date, when, !opens && policy.kind != MissedPolicy::Kind::Default);
        if (opens) {
            due.append({ m_paths.at(row), date, idAt(row) });
            m_lastFired.insert(idAt(row), date.toMSecsSinceEpoch());
        }
        if (repeatAt(row).hasRule()) {
            advanceRuled(row, nowMSecs, systemZone);
        } else if (opens && period > 0) {
            // Once, not once per period missed: the series goes on from its next time after now.
            const qint64 dueMSecs = date.toMSecsSinceEpoch();
            const qint64 periods = nowMSecs >= dueMSecs ? (nowMSecs - dueMSecs) / period + 1 : 0;
            m_dates[row] = QDateTime::fromMSecsSinceEpoch(dueMSecs + periods * period, Qt::UTC);
        }
    }
    if (m_timersRunning)
        restartTimers();
    else
        startTimers(true);
    for (const Due &item : std::as_const(due))
        Q_EMIT caughtUp(item.path, item.date, item.item);
}

void Schedule::followSystemZone()
{
    const QDateTime now = this->now();
    const QTimeZone systemZone = QTimeZone::systemTimeZone();
    bool moved = false;
    for (qsizetype row = 0; row < m_dates.size() && row < m_ids.size(); ++row) {
        const Repeat &repeat = repeatAt(int(row));
        if (!repeat.hasRule() || !repeat.zoneId().isEmpty() || m_dates.at(row) <= now)
            continue;
        if (const std::optional<QDateTime> next = repeat.nextAfter(now, systemZone); next && *next != m_dates.at(row)) {
            m_dates[row] = *next;
            moved = true;
        }
    }
    if (moved)
        Q_EMIT reloadTable();
}

qint64 Schedule::repeatMSecs() const
{
    const int repeat = m_preferences.intValue(Keys::RepeatSeconds);
    if (repeat == 0)
        return 0;
    // 32-bit unsigned on purpose: a negative count or a huge product wraps as the stored type does.
    const quint32 period = quint32(repeat) * unitFactor(m_preferences.intValue(Keys::TimeUnit));
    // A product that wraps to exactly 0 would re-open the item without end.
    return qint64(period == 0 ? 1 : period) * 1000;
}

} // namespace Quillon

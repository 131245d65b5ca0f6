#include "Schedule.h"

#include "Preferences.h"
#include "SavedList.h"
#include "TimerQueue.h"
#include "WallClock.h"

#include <algorithm>

namespace Quillon {
namespace {
constexpr int InitialCapacity = 50;
} // namespace

// A date is a moment: held in UTC, so that a change of time zone moves no item. Only what is
// shown is local, in the zone of the moment it is shown.
QDateTime Schedule::instant(const QDateTime &date)
{
    return date.isValid() ? date.toUTC() : date;
}

Schedule::Schedule(Preferences &preferences, WallClock &clock, QObject *parent)
    : QObject(parent)
    , m_preferences(preferences)
    , m_clock(clock)
    , m_queue(new TimerQueue(clock, this))
{
    m_queue->setFireHandler([this](const TimerSlot &t) { launch(t); });
    connect(&m_clock, &WallClock::resumed, this, &Schedule::afterWake);
}

Schedule::~Schedule() = default;

QDateTime Schedule::now() const
{
    return instant(m_clock.now());
}

void Schedule::createArrays()
{
    m_paths.reserve(InitialCapacity);
    m_dates.reserve(InitialCapacity);
    m_timers.reserve(InitialCapacity);
    m_ids.reserve(InitialCapacity);
}

QList<quint64> Schedule::newIds(qsizetype n)
{
    QList<quint64> ids(n);
    for (quint64 &id : ids)
        id = m_nextId++;
    return ids;
}

void Schedule::beginReset()
{
    Q_EMIT aboutToRestore();
    Q_EMIT aboutToReset();
}

void Schedule::endReset()
{
    m_slotIndexStale = true;
    Q_EMIT reset();
    Q_EMIT reloadTable();
    Q_EMIT restored();
}

void Schedule::insertRows(const Rows &rows, bool rearm)
{
    const qsizetype n = rows.at.size();
    if (n == 0)
        return;
    const qsizetype total = m_paths.size() + n;
    const bool oneBlock = rows.at.last() - rows.at.first() == n - 1;
    if (oneBlock)
        Q_EMIT rowsAboutToBeInserted(rows.at.first(), rows.at.last());
    else
        beginReset();
    QStringList paths;
    QList<QDateTime> dates;
    QList<TimerSlot> timers;
    QList<quint64> ids;
    paths.reserve(total);
    dates.reserve(m_dates.size() + n);
    timers.reserve(total);
    ids.reserve(total);
    qsizetype old = 0, added = 0;
    for (qsizetype row = 0; row < total; ++row) {
        if (added < n && rows.at.at(added) == row) {
            paths.append(rows.paths.at(added));
            if (rows.dates.value(added).isValid())
                dates.append(instant(rows.dates.at(added)));
            timers.append(TimerSlot());
            ids.append(rows.ids.at(added));
            if (const Repeat repeat = rows.repeats.value(added); !repeat.isEmpty())
                m_repeats.insert(rows.ids.at(added), repeat);
            ++added;
        } else {
            paths.append(m_paths.at(old));
            if (old < m_dates.size())
                dates.append(m_dates.at(old));
            timers.append(m_timers.at(old));
            ids.append(m_ids.at(old));
            ++old;
        }
    }
    m_paths = std::move(paths);
    m_dates = std::move(dates);
    m_timers = std::move(timers);
    m_ids = std::move(ids);
    m_slotIndexStale = true;
    if (oneBlock)
        Q_EMIT rowsInserted();
    else
        endReset();
    if (rearm)
        datesChanged();
}

Schedule::Rows Schedule::takeRows(QList<int> rows)
{
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    rows.removeIf([this](int row) { return row < 0 || row >= count(); });
    Rows taken;
    if (rows.isEmpty())
        return taken;
    const bool oneBlock = rows.last() - rows.first() == rows.size() - 1;
    if (oneBlock)
        Q_EMIT rowsAboutToBeRemoved(rows.first(), rows.last());
    else
        beginReset();
    taken.at = rows;
    qsizetype next = 0, kept = 0, keptDates = 0;
    for (qsizetype row = 0; row < m_paths.size(); ++row) {
        const bool hasDate = row < m_dates.size();
        if (next < rows.size() && rows.at(next) == row) {
            taken.paths.append(m_paths.at(row));
            taken.dates.append(hasDate ? m_dates.at(row) : QDateTime());
            taken.ids.append(m_ids.at(row));
            taken.repeats.append(m_repeats.take(m_ids.at(row)));
            ++next;
            continue;
        }
        m_paths[kept] = m_paths.at(row);
        m_timers[kept] = m_timers.at(row);
        m_ids[kept] = m_ids.at(row);
        ++kept;
        if (hasDate)
            m_dates[keptDates++] = m_dates.at(row);
    }
    m_paths.resize(kept);
    m_timers.resize(kept);
    m_ids.resize(kept);
    m_dates.resize(keptDates);
    m_slotIndexStale = true;
    if (oneBlock)
        Q_EMIT rowsRemoved();
    else
        endReset();
    return taken;
}

void Schedule::moveRow(int from, int to)
{
    if (from == to || from < 0 || to < 0 || from >= count() || to >= count())
        return;
    Q_EMIT rowAboutToBeMoved(from, to);
    moveElement(m_paths, from, to);
    moveElement(m_timers, from, to);
    moveElement(m_ids, from, to);
    m_slotIndexStale = true;
    moveElement(m_dates, from, to);
    Q_EMIT rowMoved();
}

const Repeat &Schedule::repeatAt(int row) const
{
    static const Repeat none;
    const auto found = m_repeats.constFind(idAt(row));
    return found == m_repeats.cend() ? none : *found;
}

QList<Schedule::Timing> Schedule::setDates(const QList<int> &rows, const QList<QDateTime> &dates)
{
    QList<Timing> timings;
    timings.reserve(rows.size());
    for (qsizetype i = 0; i < rows.size(); ++i) {
        Timing timing { instant(dates.value(i, dates.value(0))), repeatAt(rows.at(i)) };
        // A rule counts from the date the user gave: the item then runs at its first moment.
        if (timing.repeat.hasRule()) {
            timing.repeat.anchorAt(timing.date);
            timing.date = timing.repeat.firstAfter(now()).value_or(timing.date);
        }
        timings.append(std::move(timing));
    }
    return setTimings(rows, timings);
}

QList<Schedule::Timing> Schedule::setTimings(const QList<int> &rows, const QList<Timing> &timings)
{
    QList<Timing> before;
    before.reserve(rows.size());
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const int row = rows.at(i);
        if (row < 0 || row >= m_dates.size()) {
            before.append(Timing());
            continue;
        }
        const quint64 id = m_ids.at(row);
        before.append({ m_dates.at(row), m_repeats.value(id) });
        const Timing &timing = timings.at(std::min(i, timings.size() - 1));
        m_dates[row] = instant(timing.date);
        if (timing.repeat.isEmpty())
            m_repeats.remove(id);
        else
            m_repeats.insert(id, timing.repeat);
        // A new moment: what became of the last one no longer says anything about it.
        m_outcomes.remove(id);
    }
    datesChanged();
    // Whoever asked (the window, a script), the table shows the new dates and rules.
    Q_EMIT reloadTable();
    return before;
}

void Schedule::setOutcome(quint64 id, const Outcome &outcome)
{
    m_outcomes.insert(id, outcome);
    if (const int row = rowOf(id); row >= 0)
        Q_EMIT rowChanged(row);
}

QStringList Schedule::saveItems()
{
    QList<Repeat> repeats;
    if (!m_repeats.isEmpty()) {
        repeats.reserve(m_ids.size());
        for (quint64 id : std::as_const(m_ids))
            repeats.append(m_repeats.value(id));
    }
    return SavedList::write(m_preferences, m_paths, m_dates, repeats, m_timersRunning);
}

int Schedule::restoreItems()
{
    Q_EMIT aboutToReset();
    SavedList saved = SavedList::read(m_preferences, now());
    m_paths += saved.paths;
    for (const QDateTime &date : std::as_const(saved.dates))
        m_dates.append(instant(date));
    m_timers.resize(m_paths.size());
    const QList<quint64> ids = newIds(saved.paths.size());
    for (qsizetype i = 0; i < saved.repeats.size() && i < ids.size(); ++i) {
        if (!saved.repeats.at(i).isEmpty())
            m_repeats.insert(ids.at(i), saved.repeats.at(i));
    }
    m_ids += ids;
    if (saved.running)
        m_timersRunning = *saved.running;
    m_slotIndexStale = true;
    Q_EMIT reset();
    Q_EMIT reloadTable();
    if (m_timersRunning)
        startTimers(true);
    return saved.shiftedFrom;
}

} // namespace Quillon

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

void Schedule::addPath(const QString &path, int index)
{
    Q_EMIT rowsAboutToBeInserted(index, index);
    m_paths.insert(index, path);
    m_dates.insert(std::min<qsizetype>(index, m_dates.size()), now());
    m_timers.insert(index, TimerSlot());
    m_ids.insert(index, m_nextId++);
    m_slotIndexStale = true;
    Q_EMIT rowsInserted();
}

void Schedule::appendPaths(const QStringList &paths)
{
    if (paths.isEmpty())
        return;
    Q_EMIT rowsAboutToBeInserted(count(), count() + int(paths.size()) - 1);
    for (const QString &path : paths) {
        m_paths.append(path);
        m_dates.append(now());
        m_timers.append(TimerSlot());
        m_ids.append(m_nextId++);
    }
    m_slotIndexStale = true;
    Q_EMIT rowsInserted();
}

void Schedule::insertPaths(int index, const QStringList &paths)
{
    if (paths.isEmpty())
        return;
    const qsizetype n = paths.size();
    Q_EMIT rowsAboutToBeInserted(index, index + int(n) - 1);
    const QDateTime stamp = now();
    m_paths.insert(index, n, QString());
    std::copy(paths.begin(), paths.end(), m_paths.begin() + index);
    m_dates.insert(std::min<qsizetype>(index, m_dates.size()), n, stamp);
    m_timers.insert(index, n, TimerSlot());
    const QList<quint64> ids = newIds(n);
    m_ids.insert(index, n, 0);
    std::copy(ids.begin(), ids.end(), m_ids.begin() + index);
    m_slotIndexStale = true;
    Q_EMIT rowsInserted();
}

void Schedule::removeRows(QList<int> rows)
{
    std::sort(rows.begin(), rows.end(), std::greater<>());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    rows.removeIf([this](int row) { return row < 0 || row >= count(); });
    // One removal per run of neighbouring rows, from the bottom: Select All and Delete on a long
    // list is one step, not one per row.
    for (qsizetype i = 0; i < rows.size();) {
        const int last = rows.at(i);
        int first = last;
        while (++i < rows.size() && rows.at(i) == first - 1)
            first = rows.at(i);
        const qsizetype n = last - first + 1;
        Q_EMIT rowsAboutToBeRemoved(first, last);
        m_paths.remove(first, n);
        // The dates may be fewer than the rows (a saved list with missing files).
        if (first < m_dates.size())
            m_dates.remove(first, std::min<qsizetype>(n, m_dates.size() - first));
        m_timers.remove(first, n);
        m_ids.remove(first, n);
        m_slotIndexStale = true;
        Q_EMIT rowsRemoved();
    }
}

void Schedule::removeAll()
{
    Q_EMIT aboutToReset();
    m_paths.clear();
    m_dates.clear();
    m_timers.clear();
    m_ids.clear();
    m_slotIndexStale = true;
    Q_EMIT reset();
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

void Schedule::setDate(const QList<int> &rows, const QDateTime &date)
{
    // A mask, not a search per row: selecting every one of 100,000 rows must stay linear.
    std::vector<bool> selected(size_t(m_dates.size()), false);
    for (int row : rows) {
        if (row >= 0 && row < m_dates.size())
            selected[size_t(row)] = true;
    }
    for (qsizetype i = 0; i < m_dates.size(); ++i) {
        if (selected[size_t(i)]) {
            m_dates[i] = instant(date);
            // A new moment: what became of the last one no longer says anything about it.
            m_outcomes.remove(m_ids.at(i));
        }
    }
    datesChanged();
}

void Schedule::setOutcome(quint64 id, const Outcome &outcome)
{
    m_outcomes.insert(id, outcome);
    if (const int row = rowOf(id); row >= 0)
        Q_EMIT rowChanged(row);
}

void Schedule::setDateAt(int row, const QDateTime &date)
{
    if (row >= 0 && row < m_dates.size())
        m_dates[row] = instant(date);
}

void Schedule::restore(const Snapshot &snapshot)
{
    QHash<quint64, qsizetype> current;
    current.reserve(m_ids.size());
    for (qsizetype i = 0; i < m_ids.size(); ++i)
        current.insert(m_ids.at(i), i);
    // Only a row that comes back or a date that changes asks a running schedule to re-arm; a
    // row that stays keeps its timer, armed or fired.
    bool datesChanged = false;
    QList<TimerSlot> timers(snapshot.paths.size());
    for (qsizetype i = 0; i < snapshot.ids.size() && i < timers.size(); ++i) {
        const qsizetype was = current.value(snapshot.ids.at(i), -1);
        if (was < 0) {
            datesChanged = true;
            continue;
        }
        timers[i] = m_timers.at(was);
        if (i >= snapshot.dates.size() || was >= m_dates.size() || snapshot.dates.at(i) != m_dates.at(was))
            datesChanged = true;
    }
    Q_EMIT aboutToRestore();
    Q_EMIT aboutToReset();
    m_paths = snapshot.paths;
    m_dates = snapshot.dates;
    for (QDateTime &date : m_dates)
        date = instant(date);
    m_timers = std::move(timers);
    m_ids = snapshot.ids;
    m_ids.resize(m_paths.size());
    m_slotIndexStale = true;
    Q_EMIT reset();
    Q_EMIT reloadTable();
    // Rows came back with their dates: a running schedule arms them as a date change would.
    if (datesChanged)
        this->datesChanged();
    Q_EMIT restored();
}

QStringList Schedule::saveItems()
{
    return SavedList::write(m_preferences, m_paths, m_dates, m_timersRunning);
}

int Schedule::restoreItems()
{
    Q_EMIT aboutToReset();
    SavedList saved = SavedList::read(m_preferences, now());
    m_paths += saved.paths;
    for (const QDateTime &date : std::as_const(saved.dates))
        m_dates.append(instant(date));
    m_timers.resize(m_paths.size());
    m_ids += newIds(saved.paths.size());
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

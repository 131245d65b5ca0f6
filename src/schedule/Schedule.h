#pragma once

#include "ItemTimer.h"
#include "Repeat.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QObject>
#include <QStringList>

#include <functional>

namespace Quillon {

class Preferences;
class PowerService;
class TimerQueue;
class WallClock;

// The schedule: three parallel lists (path, launch date, timer slot per row), the running flag
// and the timers that open items. The one owner of this state; everything else holds a reference.
class Schedule final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Schedule)
    // The list is changed only through the editor, so that every change is undoable and re-arms.
    friend class ScheduleEditor;

public:
    Schedule(Preferences &preferences, WallClock &clock, QObject *parent = nullptr);
    ~Schedule() override;

    void setPowerService(PowerService *power) { m_power = power; }

    const QStringList &paths() const { return m_paths; }
    const QList<QDateTime> &dates() const { return m_dates; }
    const QList<TimerSlot> &timers() const { return m_timers; }
    int count() const { return int(m_paths.size()); }
    bool timersRunning() const { return m_timersRunning; }
    int timersRemaining() const { return m_timersRemaining; }
    QDateTime now() const;
    // The moment a date names, in UTC: how every date of the list is held.
    static QDateTime instant(const QDateTime &date);
    WallClock &clock() const { return m_clock; }

    void createArrays();
    quint64 idAt(int row) const { return row >= 0 && row < m_ids.size() ? m_ids.at(row) : 0; }

    // What became of a row's last launch: the check mark says the time came, this what followed.
    struct Outcome
    {
        enum class Kind { None, Opened, OpenedLate, Failed, NotStarted };
        Kind kind = Kind::None;
        QString reason; // in words, for a failure or a late opening
    };
    void setOutcome(quint64 id, const Outcome &outcome);
    Outcome outcomeAt(int row) const { return m_outcomes.value(idAt(row)); }
    int rowOf(quint64 id) const { return int(m_ids.indexOf(id)); }
    // A row's own rule and missed policy; an empty one for a plain item.
    const Repeat &repeatAt(int row) const;

    // The paths that could not be saved (their later items' dates move at the next start).
    QStringList saveItems();
    // The first restored row whose date may be another item's, or -1 (see SavedList).
    int restoreItems();

    // The row's next moments from now on, by its rule or the repeat period: what it will do if
    // the schedule runs.
    QList<QDateTime> upcoming(int row, int count) const;
    // Whether Start would arm anything: a row with a moment ahead that it has not fired at.
    bool hasItemAhead() const;
    void startTimers(bool quiet);
    void invalidateTimers(bool keepSlots);
    void restartTimers();
    void launch(const TimerSlot &timer);
    void startStopButtonClicked();
    // At quit, once the list is saved: no timer fires and nothing is launched any more, so that
    // nothing happens that the saved list does not know of. The saved state is left as it was.
    void freeze();
    bool isFrozen() const { return m_frozen; }
    void scheduleWakeUp();
    // scheduleWakeUp() on the next event-loop turn, once however often it is asked for meanwhile.
    void scheduleWakeUpSoon();
    // The machine came back from sleep: items whose time passed meanwhile are missed (and caught
    // up when the preferences say so); the rest are armed again.
    void afterWake();
    enum class MissedWhile { Asleep, NotRunning };
    Q_ENUM(MissedWhile)
    // These rows' time passed unseen: each is opened late, once, in date order, or skipped, as
    // its own policy (or the preference) says; a repeating one goes on from the present.
    void settleMissed(QList<int> rows, MissedWhile when);
    // The system's zone changed: rules that follow it name other moments now.
    void followSystemZone();

Q_SIGNALS:
    // Row changes, for the table model.
    void rowsAboutToBeInserted(int first, int last);
    void rowsInserted();
    void rowsAboutToBeRemoved(int first, int last);
    void rowsRemoved();
    void rowAboutToBeMoved(int from, int to);
    void rowMoved();
    void aboutToReset();
    void reset();
    // Around restore(): rows may come back in another order, so a view keeps its selection by row id.
    void aboutToRestore();
    void restored();
    // Every cell may show something else now.
    void reloadTable();
    // One row's cells may show something else now (an item fired).
    void rowChanged(int row);
    void runningStateChanged(bool running);
    void alertRequested(const QString &message, const QString &informative);
    void quitRequested();
    // The schedule stopped without the user asking: text says why, for a status line.
    void stoppedByItself(const QString &text);
    // An item's time came: the launcher opens it. date is the time it was due, item its row's
    // identity (what a launch belongs to, whatever row it moves to).
    void launched(const QString &path, const QDateTime &date, quint64 item);
    // An item's time passed unseen; date is when it was due. skipped: its own policy left it out.
    void missed(const QString &path, const QDateTime &date, Quillon::Schedule::MissedWhile when, bool skipped);
    // A missed item is to be opened now, late; date is when it was due.
    void caughtUp(const QString &path, const QDateTime &date, quint64 item);
    // The user stopped a running schedule (not the last launch ending it).
    void stoppedByUser();

private:
    // Rows as the editor moves them in and out: at holds, in ascending order, the row each one
    // has in the list that contains them. A date that is not valid is a row without one (a saved
    // list may have fewer dates than items).
    struct Rows
    {
        QList<int> at;
        QStringList paths;
        QList<QDateTime> dates;
        QList<quint64> ids;
        QList<Repeat> repeats; // as many as rows, or none when no row has one
    };
    // When a row is due and by what rule, as an undo puts it back.
    struct Timing
    {
        QDateTime date;
        Repeat repeat;
    };
    // Each in one pass over the list, however many rows: removing every other row of a long list
    // must not cost a shift per row. rearm: rows coming back make a running schedule arm them.
    void insertRows(const Rows &rows, bool rearm);
    Rows takeRows(QList<int> rows);
    void moveRow(int from, int to);
    // Each row its own date (a rule then counts from it); returns what they had. A running
    // schedule re-arms at once.
    QList<Timing> setDates(const QList<int> &rows, const QList<QDateTime> &dates);
    QList<Timing> setTimings(const QList<int> &rows, const QList<Timing> &timings);

    // Around a change that is not one block: the views keep their selection by row identity.
    void beginReset();
    void endReset();

    void datesChanged();
    // The repeat period in ms, 0 without repeat.
    qint64 repeatMSecs() const;
    void showStopped();
    void showRunning();
    TimerSlot armTimer(const QString &path, qint64 fireMSecs);
    qsizetype slotOf(const TimerSlot &timer);
    QList<quint64> newIds(qsizetype n);
    // Whether this row already fired at that moment: a firing is the row and the moment.
    bool hasFired(quint64 id, qint64 dateMSecs) const;
    bool isArmable(qsizetype row, qint64 nowMSecs) const;
    // A ruled row whose date passed moves to its rule's next moment after now.
    void advanceRuled(qsizetype row, qint64 nowMSecs, const QTimeZone &systemZone);

    Preferences &m_preferences;
    WallClock &m_clock;
    TimerQueue *m_queue = nullptr;
    PowerService *m_power = nullptr;

    QStringList m_paths;
    QList<QDateTime> m_dates;
    QList<TimerSlot> m_timers;
    QList<quint64> m_ids;
    quint64 m_nextId = 1;
    // The last moment each row fired at (or was caught up for).
    QHash<quint64, qint64> m_lastFired;
    QHash<quint64, Outcome> m_outcomes;
    QHash<quint64, Repeat> m_repeats;
    bool m_timersRunning = false;
    qint32 m_timersRemaining = 0;
    QHash<const ItemTimer *, qsizetype> m_slotIndex;
    bool m_slotIndexStale = true;
    bool m_wakeUpQueued = false;
    bool m_frozen = false;
};

// Moves one element from s to t, shifting those between; out-of-range or equal indexes do nothing.
template<typename List> void moveElement(List &list, qsizetype s, qsizetype t)
{
    if (s == t || s < 0 || t < 0 || s >= list.size() || t >= list.size())
        return;
    auto element = list.at(s);
    if (s < t) {
        for (qsizetype i = s + 1; i <= t; ++i)
            list[i - 1] = list.at(i);
    } else {
        for (qsizetype i = s - 1; i >= t; --i)
            list[i + 1] = list.at(i);
    }
    list[t] = element;
}

} // namespace Quillon

#include "ScheduleEditor.h"

#include "FolderExpansion.h"
#include "ICalendar.h"
#include "Preferences.h"

#include <QCoreApplication>
#include <QFutureWatcher>
#include <QUndoCommand>
#include <QUndoStack>
#include <QtConcurrent/QtConcurrentRun>

#include <numeric>

namespace Quillon {
// Each change holds only what it changed: a long list edited one item at a time must not keep a
// copy of the whole list per step.
class ScheduleEditor::EditCommand : public QUndoCommand
{
public:
    EditCommand(Schedule &schedule, ScheduleEditor::Edit kind)
        : QUndoCommand(ScheduleEditor::text(kind))
        , m_schedule(schedule)
    { }
    void redo() final
    {
        // The change is made before it is pushed; only a redo after an undo puts it back.
        if (std::exchange(m_done, true))
            apply();
    }

protected:
    virtual void apply() = 0;
    Schedule &m_schedule;

private:
    bool m_done = false;
};

// Rows in (an add, a drop) or out (a removal, a clear): the rows themselves, kept once.
class ScheduleEditor::RowsCommand final : public EditCommand
{
public:
    RowsCommand(Schedule &schedule, ScheduleEditor::Edit kind, Schedule::Rows rows, bool inserted)
        : EditCommand(schedule, kind)
        , m_rows(std::move(rows))
        , m_inserted(inserted)
    { }
    void undo() override { m_inserted ? take() : put(); }

protected:
    void apply() override { m_inserted ? put() : take(); }

private:
    void put() { m_schedule.insertRows(m_rows, true); }
    void take() { m_schedule.takeRows(m_rows.at); }
    Schedule::Rows m_rows;
    bool m_inserted;
};

class ScheduleEditor::MoveCommand final : public EditCommand
{
public:
    MoveCommand(Schedule &schedule, int from, int to)
        : EditCommand(schedule, ScheduleEditor::Edit::Move)
        , m_from(from)
        , m_to(to)
    { }
    void undo() override { m_schedule.moveRow(m_to, m_from); }

protected:
    void apply() override { m_schedule.moveRow(m_from, m_to); }

private:
    int m_from;
    int m_to;
};

// A date or a rule changed on some rows: what each had before, and what they have now.
class ScheduleEditor::TimingCommand final : public EditCommand
{
public:
    TimingCommand(Schedule &schedule, ScheduleEditor::Edit kind, QList<int> rows, QList<quint64> ids, QList<Schedule::Timing> before)
        : EditCommand(schedule, kind)
        , m_rows(std::move(rows))
        , m_ids(std::move(ids))
        , m_before(std::move(before))
    {
        for (int row : std::as_const(m_rows))
            m_after.append({ schedule.dates().value(row), schedule.repeatAt(row) });
    }
    void undo() override { m_schedule.setTimings(m_rows, m_before); }
    int id() const override { return 1; }
    bool mergeWith(const QUndoCommand *other) override
    {
        // The same rows, by identity: stepping a date through the picker is one undo, but a date
        // change after a move or a re-add is an edit of its own.
        const auto *next = static_cast<const TimingCommand *>(other);
        if (next->m_ids != m_ids || next->text() != text() || text() != ScheduleEditor::text(Edit::DateChange))
            return false;
        m_after = next->m_after;
        return true;
    }

protected:
    void apply() override { m_schedule.setTimings(m_rows, m_after); }

private:
    QList<int> m_rows;
    QList<quint64> m_ids;
    QList<Schedule::Timing> m_before;
    QList<Schedule::Timing> m_after;
};

ScheduleEditor::ScheduleEditor(Schedule &schedule, Preferences &preferences, QObject *parent)
    : QObject(parent)
    , m_schedule(schedule)
    , m_preferences(preferences)
    , m_undo(new QUndoStack(this))
{ }

ScheduleEditor::~ScheduleEditor() = default;

QString ScheduleEditor::text(Edit kind)
{
    switch (kind) {
    case Edit::Add:
        return tr("Add");
    case Edit::Drop:
        return tr("Drop");
    case Edit::Move:
        return tr("Move");
    case Edit::Clear:
        return tr("Clear");
    case Edit::Remove:
        return tr("Remove");
    case Edit::DateChange:
        return tr("Date Change");
    case Edit::RepeatChange:
        return tr("Repeat Change");
    }
    return {};
}

QStringList ScheduleEditor::expandFolders(const QStringList &paths) const
{
    return FolderExpansion().expandDropped(paths, m_preferences.addFolderFiles(), m_preferences.addFolderFilesRecursively());
}

void ScheduleEditor::expandFoldersThen(const QStringList &paths, std::function<void(const QStringList &expanded)> then)
{
    const bool folderFiles = m_preferences.addFolderFiles(), recursive = m_preferences.addFolderFilesRecursively();
    auto *watcher = new QFutureWatcher<QStringList>(this);
    connect(watcher, &QFutureWatcher<QStringList>::finished, this, [watcher, then = std::move(then)] {
        then(watcher->result());
        watcher->deleteLater();
    });
    watcher->setFuture(QtConcurrent::run([paths, folderFiles, recursive] { return FolderExpansion().expandDropped(paths, folderFiles, recursive); }));
}

int ScheduleEditor::add(const QStringList &paths, const QDateTime &date)
{
    return insert(m_schedule.count(), paths, { date.isValid() ? date : m_schedule.now() }, Edit::Add);
}

int ScheduleEditor::add(const QStringList &paths, const QList<QDateTime> &dates, const QList<Repeat> &repeats)
{
    return insert(m_schedule.count(), paths, dates, Edit::Add, repeats);
}

int ScheduleEditor::drop(int index, const QStringList &paths)
{
    return insert(std::clamp(index, 0, m_schedule.count()), paths, { m_schedule.now() }, Edit::Drop);
}

int ScheduleEditor::insert(int index, QStringList paths, const QList<QDateTime> &dates, Edit kind, const QList<Repeat> &repeats)
{
    Schedule::Rows rows;
    for (qsizetype i = 0; i < paths.size(); ++i) {
        if (paths.at(i).isEmpty())
            continue;
        rows.paths.append(paths.at(i));
        rows.dates.append(dates.size() == 1 ? dates.first() : dates.value(i, m_schedule.now()));
        if (!repeats.isEmpty())
            rows.repeats.append(repeats.value(i));
    }
    const qsizetype n = rows.paths.size();
    if (n == 0)
        return 0;
    rows.at.resize(n);
    std::iota(rows.at.begin(), rows.at.end(), index);
    rows.ids = m_schedule.newIds(n);
    m_schedule.insertRows(rows, true);
    m_undo->push(new RowsCommand(m_schedule, kind, std::move(rows), true));
    return int(n);
}

void ScheduleEditor::remove(const QList<int> &rows)
{
    Schedule::Rows taken = m_schedule.takeRows(rows);
    if (!taken.at.isEmpty())
        m_undo->push(new RowsCommand(m_schedule, Edit::Remove, std::move(taken), false));
}

void ScheduleEditor::clear(QList<int> rows)
{
    if (rows.isEmpty()) {
        rows.resize(m_schedule.count());
        std::iota(rows.begin(), rows.end(), 0);
    }
    Schedule::Rows taken = m_schedule.takeRows(rows);
    if (!taken.at.isEmpty())
        m_undo->push(new RowsCommand(m_schedule, Edit::Clear, std::move(taken), false));
}

void ScheduleEditor::move(int from, int to)
{
    const int n = m_schedule.count();
    if (from == to || from < 0 || to < 0 || from >= n || to >= n)
        return;
    m_schedule.moveRow(from, to);
    m_undo->push(new MoveCommand(m_schedule, from, to));
}

QList<int> ScheduleEditor::datedRows(QList<int> rows) const
{
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    rows.removeIf([this](int row) { return row < 0 || row >= m_schedule.dates().size(); });
    return rows;
}

void ScheduleEditor::setDate(QList<int> rows, const QDateTime &date)
{
    rows = datedRows(std::move(rows));
    if (rows.isEmpty())
        return;
    const QDateTime instant = Schedule::instant(date);
    QList<quint64> ids;
    ids.reserve(rows.size());
    bool changes = false;
    for (int row : std::as_const(rows)) {
        ids.append(m_schedule.idAt(row));
        changes = changes || m_schedule.dates().at(row) != instant || m_schedule.repeatAt(row).hasRule();
    }
    QList<Schedule::Timing> before = m_schedule.setDates(rows, { date });
    if (changes)
        m_undo->push(new TimingCommand(m_schedule, Edit::DateChange, std::move(rows), std::move(ids), std::move(before)));
}

QString ScheduleEditor::setRepeat(QList<int> rows, const Repeat &rule, std::optional<MissedPolicy> missed)
{
    rows = datedRows(std::move(rows));
    QList<Schedule::Timing> timings;
    QList<quint64> ids;
    for (int row : std::as_const(rows)) {
        Schedule::Timing timing { m_schedule.dates().at(row), rule };
        timing.repeat.missed = missed.value_or(m_schedule.repeatAt(row).missed);
        if (rule.hasRule()) {
            // Without a start of its own, a rule counts from the row's date.
            if (!rule.hasStart())
                timing.repeat.anchorAt(timing.date);
            const std::optional<QDateTime> first = timing.repeat.firstAfter(m_schedule.now());
            if (!first)
                return tr("the rule has no time after now");
            timing.date = *first;
        }
        timings.append(timing);
        ids.append(m_schedule.idAt(row));
    }
    push(std::move(rows), std::move(ids), timings);
    return {};
}

void ScheduleEditor::setMissed(QList<int> rows, const MissedPolicy &missed)
{
    rows = datedRows(std::move(rows));
    QList<Schedule::Timing> timings;
    QList<quint64> ids;
    for (int row : std::as_const(rows)) {
        timings.append({ m_schedule.dates().at(row), m_schedule.repeatAt(row) });
        timings.last().repeat.missed = missed;
        ids.append(m_schedule.idAt(row));
    }
    push(std::move(rows), std::move(ids), timings);
}

QByteArray ScheduleEditor::exportCalendar() const
{
    QList<ICalendar::Item> items;
    for (int row = 0; row < m_schedule.count(); ++row)
        items.append({ m_schedule.paths().at(row), m_schedule.dates().value(row), m_schedule.repeatAt(row) });
    return ICalendar::write(items);
}

int ScheduleEditor::importCalendar(const QByteArray &text, QStringList &problems)
{
    const ICalendar::Read read = ICalendar::read(text, m_schedule.now());
    problems = read.problems;
    QStringList paths;
    QList<QDateTime> dates;
    QList<Repeat> repeats;
    for (const ICalendar::Item &item : read.items) {
        paths << item.path;
        dates << item.date;
        repeats << item.repeat;
    }
    return paths.isEmpty() ? 0 : add(paths, dates, repeats);
}

void ScheduleEditor::push(QList<int> rows, QList<quint64> ids, const QList<Schedule::Timing> &timings)
{
    if (rows.isEmpty())
        return;
    QList<Schedule::Timing> before = m_schedule.setTimings(rows, timings);
    m_undo->push(new TimingCommand(m_schedule, Edit::RepeatChange, std::move(rows), std::move(ids), std::move(before)));
}

} // namespace Quillon

#include "ScheduleEditor.h"

#include "FolderExpansion.h"
#include "Preferences.h"

#include <QCoreApplication>
#include <QUndoCommand>
#include <QUndoStack>

#include <numeric>

namespace Quillon {
namespace {
// One change of the list, kept as the list before and after it.
class ListChange final : public QUndoCommand
{
public:
    ListChange(Schedule &schedule, ScheduleEditor::Edit kind, Schedule::Snapshot before, Schedule::Snapshot after)
        : QUndoCommand(ScheduleEditor::text(kind))
        , m_schedule(schedule)
        , m_before(std::move(before))
        , m_after(std::move(after))
        , m_kind(kind)
    { }
    void undo() override { m_schedule.restore(m_before); }
    void redo() override
    {
        // The change is made before it is pushed; only a redo after an undo puts it back.
        if (std::exchange(m_done, true))
            m_schedule.restore(m_after);
    }
    int id() const override { return m_kind == ScheduleEditor::Edit::DateChange ? 1 : -1; }
    bool mergeWith(const QUndoCommand *other) override
    {
        // The same rows, by identity: a date change after a move or a re-add is an edit of its own.
        const auto *next = static_cast<const ListChange *>(other);
        if (next->m_before.ids != m_after.ids)
            return false;
        m_after = next->m_after;
        return true;
    }

private:
    Schedule &m_schedule;
    Schedule::Snapshot m_before;
    Schedule::Snapshot m_after;
    ScheduleEditor::Edit m_kind;
    bool m_done = false;
};
} // namespace

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
    }
    return {};
}

void ScheduleEditor::record(Edit kind, const std::function<void()> &change)
{
    Schedule::Snapshot before = m_schedule.snapshot();
    change();
    Schedule::Snapshot after = m_schedule.snapshot();
    if (after == before)
        return;
    m_undo->push(new ListChange(m_schedule, kind, std::move(before), std::move(after)));
}

QStringList ScheduleEditor::expandFolders(const QStringList &paths) const
{
    return FolderExpansion().expandDropped(paths, m_preferences.addFolderFiles(), m_preferences.addFolderFilesRecursively());
}

int ScheduleEditor::add(const QStringList &paths, const QDateTime &date)
{
    QStringList expanded = paths;
    expanded.removeAll(QString());
    if (expanded.isEmpty())
        return 0;
    record(Edit::Add, [&] {
        const int first = m_schedule.count();
        m_schedule.appendPaths(expanded);
        if (!date.isValid())
            return;
        QList<int> rows(expanded.size());
        std::iota(rows.begin(), rows.end(), first);
        m_schedule.setDate(rows, date);
    });
    return int(expanded.size());
}

void ScheduleEditor::remove(const QList<int> &rows)
{
    if (!rows.isEmpty())
        record(Edit::Remove, [&] { m_schedule.removeRows(rows); });
}

void ScheduleEditor::clear()
{
    record(Edit::Clear, [&] { m_schedule.removeAll(); });
}

void ScheduleEditor::move(int from, int to)
{
    record(Edit::Move, [&] { m_schedule.moveRow(from, to); });
}

void ScheduleEditor::setDate(const QList<int> &rows, const QDateTime &date)
{
    record(Edit::DateChange, [&] { m_schedule.setDate(rows, date); });
}

} // namespace Quillon

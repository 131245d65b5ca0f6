#pragma once

#include "Schedule.h"

#include <QObject>

#include <functional>

class QUndoStack;

namespace Quillon {

class Preferences;

// The one path by which the list is edited, whoever asks (the window, a drop, a script over
// D-Bus): each change is made on the schedule and put on the undo stack when it changed anything.
class ScheduleEditor final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ScheduleEditor)
public:
    enum class Edit { Add, Drop, Move, Clear, Remove, DateChange, RepeatChange };

    ScheduleEditor(Schedule &schedule, Preferences &preferences, QObject *parent = nullptr);
    ~ScheduleEditor() override;

    Schedule &schedule() const { return m_schedule; }
    QUndoStack *undoStack() const { return m_undo; }
    // How the edit is named in the Edit menu ("Undo Date Change").
    static QString text(Edit kind);

    // What a drop of these paths adds: a folder is its files when the preferences say so.
    QStringList expandFolders(const QStringList &paths) const;
    // The same off the event loop, for a folder of a million files takes seconds: then gets the
    // paths from the event loop, and is not called once the editor is gone.
    void expandFoldersThen(const QStringList &paths, std::function<void(const QStringList &expanded)> then);
    // Appends the paths as they are, with one launch date (now when none is given). Returns the
    // number of rows added.
    int add(const QStringList &paths, const QDateTime &date = {});
    // Each path with its own date, and its own rule when repeats has one for it.
    int add(const QStringList &paths, const QList<QDateTime> &dates, const QList<Repeat> &repeats = {});
    // Inserted at index as a drop there does, dated now.
    int drop(int index, const QStringList &paths);
    void remove(const QList<int> &rows);
    // The given rows, or every row when none is given.
    void clear(QList<int> rows = {});
    void move(int from, int to);
    void setDate(QList<int> rows, const QDateTime &date);
    // Gives these rows the rule (an empty one takes their rule away) and moves each to the rule's
    // first moment ahead; each keeps its missed policy unless one is given. Returns why it could
    // not, changing nothing.
    QString setRepeat(QList<int> rows, const Repeat &rule, std::optional<MissedPolicy> missed = std::nullopt);
    void setMissed(QList<int> rows, const MissedPolicy &missed);
    // The list as an iCalendar file, and a file's events added as items in one edit; problems
    // says what of it could not be used.
    QByteArray exportCalendar() const;
    int importCalendar(const QByteArray &text, QStringList &problems);

private:
    class EditCommand;
    class RowsCommand;
    class MoveCommand;
    class TimingCommand;
    QList<int> datedRows(QList<int> rows) const;
    void push(QList<int> rows, QList<quint64> ids, const QList<Schedule::Timing> &timings);
    int insert(int index, QStringList paths, const QList<QDateTime> &dates, Edit kind, const QList<Repeat> &repeats = {});

    Schedule &m_schedule;
    Preferences &m_preferences;
    QUndoStack *m_undo = nullptr;
};

} // namespace Quillon

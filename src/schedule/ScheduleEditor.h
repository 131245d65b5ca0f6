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
    enum class Edit { Add, Drop, Move, Clear, Remove, DateChange };

    ScheduleEditor(Schedule &schedule, Preferences &preferences, QObject *parent = nullptr);
    ~ScheduleEditor() override;

    Schedule &schedule() const { return m_schedule; }
    QUndoStack *undoStack() const { return m_undo; }
    // How the edit is named in the Edit menu ("Undo Date Change").
    static QString text(Edit kind);

    // Runs change and records it when it changed the list. Consecutive date changes to the same
    // rows merge, so that stepping a date through the picker is one undo.
    void record(Edit kind, const std::function<void()> &change);

    // What a drop of these paths adds: a folder is its files when the preferences say so.
    QStringList expandFolders(const QStringList &paths) const;
    // Appends the paths as they are, with one launch date (now when none is given). Returns the
    // number of rows added.
    int add(const QStringList &paths, const QDateTime &date = {});
    void remove(const QList<int> &rows);
    void clear();
    void move(int from, int to);
    void setDate(const QList<int> &rows, const QDateTime &date);

private:
    Schedule &m_schedule;
    Preferences &m_preferences;
    QUndoStack *m_undo = nullptr;
};

} // namespace Quillon

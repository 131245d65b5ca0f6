#include "FakeClock.h"
#include "Preferences.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "TestSupport.h"

#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

using namespace Quillon;
using Test::at;

// Every edit undoes to exactly the list before it and redoes to exactly the list after it, rows
// keeping their identity (and so their timers and outcomes) both ways.
class EditorTest : public QObject
{
    Q_OBJECT
    struct State
    {
        QStringList paths;
        QList<QDateTime> dates;
        QList<quint64> ids;
        bool operator==(const State &) const = default;
    };
    static State state(const Schedule &s)
    {
        State st { s.paths(), s.dates(), {} };
        for (int row = 0; row < s.count(); ++row)
            st.ids << s.idAt(row);
        return st;
    }

private Q_SLOTS:
    void undoAndRedoGiveBackTheListExactly_data()
    {
        QTest::addColumn<std::function<void(ScheduleEditor &)>>("edit");
        QTest::addColumn<QStringList>("after");
        QTest::addColumn<int>("steps"); // on the undo stack; a stepped date is one
        using Edit = std::function<void(ScheduleEditor &)>;
        const QStringList all { "/a", "/b", "/c", "/d", "/e" };
        QTest::newRow("add") << Edit([](ScheduleEditor &e) { e.add({ "/x", "/y" }, at(900)); }) << all + QStringList { "/x", "/y" } << 1;
        QTest::newRow("drop between rows") << Edit([](ScheduleEditor &e) {
            e.drop(2, { "/x", "/y" });
        }) << QStringList { "/a", "/b", "/x", "/y", "/c", "/d", "/e" }
                                           << 1;
        QTest::newRow("remove rows apart") << Edit([](ScheduleEditor &e) { e.remove({ 4, 0, 2, 2 }); }) << QStringList { "/b", "/d" } << 1;
        QTest::newRow("remove a run") << Edit([](ScheduleEditor &e) { e.remove({ 1, 2, 3 }); }) << QStringList { "/a", "/e" } << 1;
        QTest::newRow("clear") << Edit([](ScheduleEditor &e) { e.clear(); }) << QStringList {} << 1;
        QTest::newRow("move down") << Edit([](ScheduleEditor &e) { e.move(0, 3); }) << QStringList { "/b", "/c", "/d", "/a", "/e" } << 1;
        QTest::newRow("date change, stepped twice") << Edit([](ScheduleEditor &e) {
            e.setDate({ 3, 1 }, at(700));
            e.setDate({ 1, 3 }, at(800));
        }) << all << 1;
        // What changes nothing is not an edit.
        QTest::newRow("nothing changed") << Edit([](ScheduleEditor &e) {
            e.setDate({ 0 }, at(100));
            e.remove({ 5 });
            e.move(0, 0);
            e.add({ QString() });
        }) << all << 0;
    }
    void undoAndRedoGiveBackTheListExactly()
    {
        QFETCH(std::function<void(ScheduleEditor &)>, edit);
        QFETCH(QStringList, after);
        QFETCH(int, steps);
        TestSettings settings;
        Preferences preferences;
        FakeClock clock(Test::Now);
        Schedule schedule(preferences, clock);
        ScheduleEditor editor(schedule, preferences);
        editor.add({ "/a", "/b", "/c", "/d", "/e" }, QList { at(100), at(200), at(300), at(400), at(500) });
        editor.undoStack()->clear();
        const State before = state(schedule);
        edit(editor);
        const State done = state(schedule);
        QCOMPARE(done.paths, after);
        QCOMPARE(editor.undoStack()->count(), steps);
        for (int round = 0; round < 2 && steps > 0; ++round) {
            editor.undoStack()->undo();
            QCOMPARE(state(schedule), before);
            editor.undoStack()->redo();
            QCOMPARE(state(schedule), done);
        }
    }
};

QTEST_MAIN(EditorTest)
#include "editor_test.moc"

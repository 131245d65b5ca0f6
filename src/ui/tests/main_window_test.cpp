#include "FakeClock.h"
#include "FakeWorkspace.h"
#include "FocusCheck.h"
#include "FocusRingStyle.h"
#include "ItemTableModel.h"
#include "ItemTableView.h"
#include "MainWindow.h"
#include "Preferences.h"
#include "RepeatEditor.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "TestSupport.h"

#include <QAction>
#include <QCalendarWidget>
#include <QComboBox>
#include <QCompleter>
#include <QDateTimeEdit>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QScreen>
#include <QStatusBar>
#include <QTest>
#include <QUndoStack>

using namespace Quillon;
using namespace Qt::StringLiterals;

using Test::at;
using Test::Now;

class MainWindowTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new FocusRingStyle); }
    void init()
    {
        m_clock = std::make_unique<FakeClock>(Now);
        m_schedule = std::make_unique<Schedule>(m_prefs, *m_clock);
        m_editor = std::make_unique<ScheduleEditor>(*m_schedule, m_prefs);
        m_window = std::make_unique<MainWindow>(*m_editor, m_prefs, m_workspace);
        connect(m_schedule.get(), &Schedule::runningStateChanged, m_window.get(), &MainWindow::showRunningState);
        m_window->setupDatePickerControl();
        m_editor->add({ "/a", "/b", "/c" }, QList { at(100), at(200), at(300) });
        m_editor->undoStack()->clear(); // the list the user starts with
    }
    void cleanup()
    {
        m_window.reset();
        m_editor.reset();
        m_schedule.reset();
    }

    // Shows the current row's date, writes a picked one in whole seconds to every selected row.
    void pickerFollowsTheSelection()
    {
        select({ 1 });
        QVERIFY(m_window->datePicker()->isEnabled());
        QCOMPARE(m_window->datePicker()->dateTime(), at(200));
        select({ 0, 2 }, 2);
        QCOMPARE(m_window->datePicker()->dateTime(), at(300));
        QCOMPARE(m_schedule->dates().at(0), at(100));
        m_window->datePicker()->setDateTime(at(5000.8));
        const QList<QDateTime> picked { at(5000), at(200), at(5000) };
        QCOMPARE(m_schedule->dates(), picked);
        m_window->deselectAllButtonClicked();
        QVERIFY(!m_window->datePicker()->isEnabled());
        m_window->datePicker()->setEnabled(true);
        m_window->datePicker()->setDateTime(at(7000));
        QCOMPARE(m_schedule->dates(), picked);
        // Built anew (the Date & Time window opens), it keeps its value and can be used.
        m_window->useClockAndCalendarClicked();
        QVERIFY(m_window->datePicker()->isEnabled());
        QCOMPARE(m_window->datePicker()->dateTime(), at(7000));
    }

    // Dates as the user's locale writes them; a separator typed after a filled-up field does not skip the next.
    void pickerFollowsTheLocale_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("section");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QDateTime>("typed");
        const QLocale german(QLocale::German, QLocale::Germany);
        const QDateTime afternoon(QDate(2027, 1, 15), QTime(13, 45, 10));
        QTest::newRow("US English") << QLocale(QLocale::English, QLocale::UnitedStates) << u"1/15/2027"_s << 0 << u""_s << QDateTime();
        QTest::newRow("German, time with colons") << german << u"15.01.2027"_s << int(QDateTimeEdit::HourSection) << u"13:45:10"_s << afternoon;
        QTest::newRow("German, date with dots") << german << u"15.01.2027"_s << int(QDateTimeEdit::DaySection) << u"01.12.2026"_s
                                                << QDateTime(QDate(2026, 12, 1), QTime(7, 30, 5));
        QTest::newRow("German, digits only") << german << u"15.01.2027"_s << int(QDateTimeEdit::HourSection) << u"134510"_s << afternoon;
    }
    void pickerFollowsTheLocale()
    {
        QFETCH(QLocale, locale);
        QFETCH(QString, shown);
        QFETCH(int, section);
        QFETCH(QString, keys);
        QFETCH(QDateTime, typed);
        const QLocale previous;
        QLocale::setDefault(locale);
        auto restore = qScopeGuard([previous] { QLocale::setDefault(previous); });
        m_window->dateTimeClicked();
        QDateTimeEdit *picker = m_window->datePicker();
        picker->setDateTime(QDateTime(QDate(2027, 1, 15), QTime(7, 30, 5)));
        QVERIFY2(picker->text().startsWith(shown) && picker->text().contains(QLatin1String(":30:05")), qPrintable(picker->text()));
        if (keys.isEmpty())
            return;
        QVERIFY(QTest::qWaitForWindowExposed(m_window->calendarClockWindow()));
        picker->setFocus();
        picker->setSelectedSection(QDateTimeEdit::Section(section)); // as Tab into the field selects it
        QTest::keyClicks(picker, keys);
        QCOMPARE(picker->dateTime(), typed);
    }

    // Now sets the schedule's present; the calendar picks a day and keeps the time of day.
    void dateWindowSetsTheSelectedRows()
    {
        m_window->dateTimeClicked();
        QWidget *dateWindow = m_window->calendarClockWindow();
        auto *label = dateWindow->findChild<QLabel *>(u"selectionLabel"_s);
        select({ 0, 1, 2 });
        QCOMPARE(label->text(), u"Launch date and time of 3 selected items:"_s);
        m_window->fileTable()->selectionModel()->clearSelection();
        QVERIFY(label->text().contains(QLatin1String("changes nothing")));
        select({ 1 });
        QVERIFY(QTest::qWaitForWindowExposed(dateWindow));
        m_clock->advance(1'500);
        QTest::mouseClick(dateWindow->findChild<QPushButton *>(u"nowButton"_s), Qt::LeftButton);
        QCOMPARE(m_schedule->dates().at(1), at(1)); // whole seconds
        QTest::mouseClick(dateWindow->findChild<QPushButton *>(u"calendarButton"_s), Qt::LeftButton);
        QWidget *popup = dateWindow->findChild<QWidget *>(u"calendarPopup"_s);
        QVERIFY(popup->isVisible());
        auto *calendar = popup->findChild<QCalendarWidget *>(u"calendar"_s);
        QTest::keyClick(calendar->focusWidget() ? calendar->focusWidget() : calendar, Qt::Key_Right);
        QTest::keyClick(calendar->focusWidget() ? calendar->focusWidget() : calendar, Qt::Key_Return);
        QVERIFY(!popup->isVisible());
        QCOMPARE(m_schedule->dates().at(1), at(1).addDays(1));
        QCOMPARE(m_schedule->dates().at(0), at(100));
    }

    // Weekdays at 07:00 from the Repeat section, shown in the table, and one undo takes it back.
    // A rule the user writes is refused with its reason and changes nothing.
    void repeatFromTheDateWindow()
    {
        QVERIFY(shown());
        select({ 0 });
        m_window->dateTimeClicked();
        QWidget *dateWindow = m_window->calendarClockWindow();
        QVERIFY(QTest::qWaitForWindowExposed(dateWindow));
        auto *picker = dateWindow->findChild<QDateTimeEdit *>(u"datePicker"_s);
        const QDateTime saturday(QDate(2027, 1, 16), QTime(7, 0));
        picker->setDateTime(saturday);
        QCOMPARE(m_schedule->dates().at(0), saturday.toUTC());
        const int undoSteps = m_editor->undoStack()->count();

        auto *kind = dateWindow->findChild<QComboBox *>(u"repeatKind"_s);
        auto *apply = dateWindow->findChild<QPushButton *>(u"applyRepeat"_s);
        auto *preview = dateWindow->findChild<QLabel *>(u"repeatPreview"_s);
        kind->setFocus();
        QTest::keyClick(kind, Qt::Key_Down);
        QTest::keyClick(kind, Qt::Key_Down);
        QCOMPARE(kind->currentIndex(), int(RepeatEditor::Weekdays));
        QVERIFY2(preview->text().startsWith(QLatin1String("Weekdays at 07:00")), qPrintable(preview->text()));
        QTest::mouseClick(apply, Qt::LeftButton);
        QCOMPARE(m_schedule->repeatAt(0).rule(), u"FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR"_s);
        QCOMPARE(m_schedule->dates().at(0), QDateTime(QDate(2027, 1, 18), QTime(7, 0)).toUTC()); // Monday, not the Saturday
        QCOMPARE(m_window->model()->index(0, ItemTableModel::RepeatColumn).data().toString(), u"Weekdays at 07:00"_s);
        QCOMPARE(m_window->model()->index(1, ItemTableModel::RepeatColumn).data().toString(), QString());

        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(m_editor->undoStack()->count(), undoSteps + 1);
        QCOMPARE(m_editor->undoStack()->index(), undoSteps);
        QVERIFY(!m_schedule->repeatAt(0).hasRule());
        QCOMPARE(m_schedule->dates().at(0), saturday.toUTC());

        kind->setCurrentIndex(RepeatEditor::Custom);
        auto *custom = dateWindow->findChild<QLineEdit *>(u"customRule"_s);
        QTest::keyClicks(custom, u"FREQ=DAILY;BYDAY=XX"_s);
        QVERIFY2(preview->text().contains(u"“BYDAY=XX”"_s), qPrintable(preview->text()));
        QVERIFY(!apply->isEnabled());
        QTest::mouseClick(apply, Qt::LeftButton);
        QVERIFY(!m_schedule->repeatAt(0).hasRule());
        QCOMPARE(m_editor->undoStack()->index(), undoSteps);
    }

    // Real drag events on the viewport: onto the middle of a row is refused, between rows is taken.
    void dropOntoARowIsRefusedBetweenRowsTaken()
    {
        QVERIFY(shown());
        QWidget *viewport = m_window->fileTable()->viewport();
        const QRect row = m_window->fileTable()->visualRect(m_window->model()->index(1, ItemTableModel::NameColumn));
        QMimeData data;
        data.setUrls({ QUrl::fromLocalFile(u"/dropped"_s) });
        const auto dropAt = [&](QPoint at) {
            QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(viewport, &enter);
            QDragMoveEvent move(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(viewport, &move);
            QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(viewport, &drop);
            return move.isAccepted();
        };
        QVERIFY(!dropAt(row.center()));
        QCOMPARE(m_schedule->count(), 3);
        QVERIFY(dropAt(QPoint(row.center().x(), row.top() + 1)));
        QTRY_COMPARE(m_schedule->paths(), (QStringList { "/a", "/dropped", "/b", "/c" }));
    }

    // Ctrl+Down moves the selected row; undo puts the order back with the rows' marks, timers and selection.
    void undoKeepsOpenedMarksAndSelection()
    {
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_schedule->startTimers(true);
        m_clock->advanceSecs(150);
        const QList<TimerSlot> slots = m_schedule->timers();
        QVERIFY(slots.at(0) && !slots.at(0)->isValid());
        select({ 0 });
        m_window->fileTable()->setFocus();
        QTest::keyClick(m_window->fileTable(), Qt::Key_Down, Qt::ControlModifier);
        QCOMPARE(m_schedule->paths().at(1), u"/a"_s);
        QCOMPARE(m_window->selectedRow(), 1);
        // Tab leaves the table for the controls.
        QTest::keyClick(m_window->fileTable(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), m_window->findChild<QWidget *>(u"browseButton"_s));
        QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(m_schedule->paths(), (QStringList { "/a", "/b", "/c" }));
        QCOMPARE(m_schedule->timers(), slots);
        QVERIFY(m_schedule->timersRunning());
        QCOMPARE(m_window->selectedRows(), QList<int> { 0 });
        // Steps of the picker are one undo; undoing while running arms the old date again.
        select({ 1 });
        m_window->datePicker()->setDateTime(at(1000));
        m_window->datePicker()->setDateTime(at(2000));
        QCOMPARE(m_editor->undoStack()->count(), 1);
        m_editor->undoStack()->undo();
        QCOMPARE(m_schedule->dates(), (QList<QDateTime> { at(100), at(200), at(300) }));
        QCOMPARE(m_schedule->timers().at(1)->fireDate(), at(200));
    }

    // Ctrl+Shift+Z and Ctrl+Y both redo under GNOME's and KDE's key bindings too: a key bound twice does nothing.
    void redoKeysWorkOnEveryDesktop()
    {
        QTest::failOnWarning(QRegularExpression(u"Ambiguous shortcut"_s));
        QVERIFY(shown());
        // A bare X server has no window manager to activate the window; shortcuts need it active.
        QApplication::setActiveWindow(m_window.get());
        QTRY_COMPARE(QApplication::activeWindow(), m_window.get());
        // Clear with nothing selected takes every row, unasked; undo puts each back with its date.
        const auto before = std::pair { m_schedule->paths(), m_schedule->dates() };
        for (const QKeyCombination redo : { Qt::CTRL | Qt::SHIFT | Qt::Key_Z, Qt::CTRL | Qt::Key_Y }) {
            m_window->fileTable()->selectionModel()->clearSelection();
            QTest::mouseClick(m_window->findChild<QPushButton *>(u"clearButton"_s), Qt::LeftButton);
            QCOMPARE(m_schedule->count(), 0);
            QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier);
            QCOMPARE(std::pair(m_schedule->paths(), m_schedule->dates()), before);
            QTest::keyClick(m_window.get(), redo.key(), redo.keyboardModifiers());
            QCOMPARE(m_schedule->count(), 0);
            QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier);
        }
    }

    // At 600 px the window works: nothing clipped; what does not fit is left to the menus.
    void narrowWindowClipsNoControl()
    {
        QVERIFY(shown());
        m_window->resize(600, 400);
        QTRY_COMPARE(m_window->width(), 600);
        QWidget *row = m_window->findChild<QWidget *>(u"buttonRow"_s);
        // Each shown button whole and inside the row, once the layouts have settled.
        const auto nothingClipped = [row] {
            int shown = 0;
            for (auto *b : row->findChildren<QPushButton *>()) {
                if (b->isHidden())
                    continue;
                if (!row->rect().contains(b->geometry()) || b->width() < b->minimumSizeHint().width())
                    return false;
                ++shown;
            }
            return shown >= 3;
        };
        QTRY_VERIFY(nothingClipped());
        QVERIFY(!m_window->findChild<QPushButton *>(u"stopStartButton"_s)->isHidden());
        QVERIFY(!m_window->findChild<QPushButton *>(u"browseButton"_s)->isHidden());
        // Wide again: every button is back.
        m_window->resize(1200, 400);
        QTRY_VERIFY(!m_window->findChild<QPushButton *>(u"invertSelectionButton"_s)->isHidden());
    }

    // Saved on a larger screen, or at a larger scale: it comes back no larger than this screen.
    void windowComesBackNoLargerThanItsScreen()
    {
        const QSize screen = m_window->screen()->availableGeometry().size();
        m_window->resize(screen * 2);
        m_window->saveWindowState();
        MainWindow again(*m_editor, m_prefs, m_workspace);
        QVERIFY2(again.width() <= screen.width() && again.height() <= screen.height(), qPrintable(u"%1x%2"_s.arg(again.width()).arg(again.height())));
    }

    // Enter on a typed folder path goes into the folder; the button still reads "Choose" and adds.
    void chooserEnterOnAFolderNavigates()
    {
        QTemporaryDir home;
        QVERIFY(Test::writeFile(home.filePath(u"inner/file.txt"_s)));
        QVERIFY(shown());
        m_window->browseButtonClicked();
        auto *chooser = m_window->findChild<QFileDialog *>(u"chooser"_s);
        QVERIFY(chooser);
        chooser->setDirectory(home.path());
        auto *name = chooser->findChild<QLineEdit *>(u"fileNameEdit"_s);
        // Typed for real, so that the completer's pop-up shows and takes the Enter.
        QApplication::setActiveWindow(chooser);
        QTRY_COMPARE(QApplication::activeWindow(), chooser);
        name->setFocus();
        QTest::qWait(300); // the folder's listing comes in the background
        QTest::keyClicks(name, u"inne"_s);
        QTRY_VERIFY(name->completer()->popup()->isVisible());
        QTest::keyClick(name->completer()->popup(), Qt::Key_R);
        QTest::keyClick(name->completer()->popup(), Qt::Key_Return);
        QCOMPARE(chooser->directory().absolutePath(), QDir(home.filePath(u"inner"_s)).absolutePath());
        QVERIFY(chooser->isVisible());
        QCOMPARE(m_schedule->count(), 3);
        QTRY_COMPARE(chooser->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Open)->text(), u"Choose"_s);
        chooser->reject();
    }

    // The default button looked the same focused or not, and the list outlined one cell's text. Also run at 150 %.
    void focusIsVisibleOnEveryControl()
    {
        m_window->resize(800, 420);
        m_window->fileTable()->setFocus();
        QCOMPARE(Test::controlsWithoutVisibleFocus(m_window.get()), QStringList());
    }

    void clearRemovesSelectionOrEverything()
    {
        auto *hint = m_window->fileTable()->viewport()->findChild<QLabel *>(u"emptyHint"_s);
        QVERIFY(hint->isHidden());
        select({ 0, 2 });
        m_window->clearListButtonClicked();
        QCOMPARE(m_schedule->paths(), QStringList { "/b" });
        QCOMPARE(m_schedule->dates(), QList<QDateTime> { at(200) });
        m_window->deselectAllButtonClicked();
        m_window->clearListButtonClicked();
        QCOMPARE(m_schedule->count(), 0);
        QCOMPARE(m_schedule->dates().size(), 0);
        QVERIFY(!hint->isHidden()); // the empty list says how to fill it
        m_editor->add({ u"/x"_s });
        QVERIFY(hint->isHidden());
    }

    // The idle progress bar is hidden, not shown as an empty field.
    void runningStateShowsInTheControls()
    {
        auto *progress = m_window->findChild<QProgressBar *>(u"progress"_s);
        QVERIFY(progress->isHidden());
        m_schedule->startStopButtonClicked();
        QVERIFY(!progress->isHidden());
        QCOMPARE(m_window->stopStartButton()->text(), u"Stop"_s);
        QCOMPARE(m_window->stopStartButton()->accessibleName(), u"Stop"_s); // what a screen reader says
        QVERIFY(!m_window->clearButton()->isEnabled());
        QCOMPARE(m_window->model()->headerData(ItemTableModel::FileColumn, Qt::Horizontal).toString(), u"Time to Launch"_s);
        m_schedule->startStopButtonClicked();
        QCOMPARE(m_window->stopStartButton()->text(), u"Start"_s);
        QVERIFY(m_window->clearButton()->isEnabled() && progress->isHidden());
        QCOMPARE(m_window->model()->headerData(ItemTableModel::FileColumn, Qt::Horizontal).toString(), u"Location"_s);
        // Stopped by itself, when every item was moved into the past: the status bar says so.
        m_schedule->startTimers(true);
        select({ 0, 1, 2 });
        m_window->datePicker()->setDateTime(at(-60));
        QVERIFY(!m_schedule->timersRunning());
        QCOMPARE(m_window->statusBar()->currentMessage(), u"No item has a launch time in the future; the schedule stopped."_s);
        m_window->datePicker()->setDateTime(at(60));
        m_schedule->startTimers(true);
        QCOMPARE(m_window->statusBar()->currentMessage(), QString());
    }

private:
    bool shown()
    {
        m_window->show();
        return QTest::qWaitForWindowExposed(m_window.get());
    }
    void select(const QList<int> &rows, int current = -1)
    {
        QItemSelectionModel *sel = m_window->fileTable()->selectionModel();
        sel->clearSelection();
        for (int r : rows)
            sel->select(m_window->model()->index(r, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
        const int last = current >= 0 ? current : rows.last();
        sel->setCurrentIndex(m_window->model()->index(last, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }

    TestSettings m_settings; // first: it points the preferences at their folder
    Preferences m_prefs;
    std::unique_ptr<FakeClock> m_clock;
    FakeWorkspace m_workspace;
    std::unique_ptr<Schedule> m_schedule;
    std::unique_ptr<ScheduleEditor> m_editor;
    std::unique_ptr<MainWindow> m_window;
};

QTEST_MAIN(MainWindowTest)
#include "main_window_test.moc"

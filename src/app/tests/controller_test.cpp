#include "FakeClock.h"
#include "FakePowerService.h"
#include "FakeScriptRunner.h"
#include "FakeWorkspace.h"
#include "History.h"
#include "HistoryWindow.h"
#include "ItemTableModel.h"
#include "ItemTableView.h"
#include "MailTestSupport.h"
#include "MainWindow.h"
#include "PreferencesDialog.h"
#include "QuillonController.h"
#include "ScriptingService.h"
#include "SettingsKeys.h"
#include "TestSupport.h"

#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QStandardPaths>
#include <QStatusBar>
#include <QSystemTrayIcon>
#include <QTableView>
#include <QTcpServer>
#include <QTest>
#include <QWindow>

using namespace Quillon;
using namespace Qt::StringLiterals;

using Test::Now;

// The real window, driven offscreen through the controller, on fake desktop services.
class ControllerTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_config = std::make_unique<QTemporaryDir>();
        qputenv("XDG_CONFIG_HOME", m_config->path().toUtf8());
        qputenv("XDG_STATE_HOME", m_config->filePath(u"state"_s).toUtf8());
        m_clock = std::make_unique<FakeClock>(Now);
        m_workspace = FakeWorkspace();
        m_power = std::make_unique<FakePowerService>();
    }
    void cleanup() { m_controller.reset(); }

    // A script's change is the window's own edit: shown, undoable, and re-arming a running schedule.
    void aScriptsEditIsTheWindowsEdit()
    {
        QTemporaryDir files;
        QVERIFY(Test::writeFile(files.filePath(u"a.txt"_s)) && Test::writeFile(files.filePath(u"b.txt"_s)));
        start();
        ScriptingService scripting(m_controller->editor(), m_controller->launcher());
        MainWindow *window = m_controller->fileListWindow();
        const qint64 inAnHour = Now / 1000 + 3600;
        QCOMPARE(scripting.Add({ files.filePath(u"a.txt"_s), files.filePath(u"b.txt"_s) }, inAnHour), 2);
        QCOMPARE(window->model()->rowCount(), 2);
        auto *undo = window->findChild<QAction *>(u"undoAction"_s);
        QCOMPARE(undo->text(), u"&Undo Add"_s);
        undo->trigger();
        QCOMPARE(window->model()->rowCount(), 0);
        window->findChild<QAction *>(u"redoAction"_s)->trigger();
        QCOMPARE(window->model()->rowCount(), 2);

        scripting.Start();
        QVERIFY(scripting.running());
        scripting.SetDate({ 1 }, inAnHour + 60);
        QCOMPARE(m_controller->schedule().timers().at(1)->fireDate(), QDateTime::fromSecsSinceEpoch(inAnHour + 60));
        QVERIFY(m_controller->schedule().timers().at(1)->isValid());
        // Refused as in the window, where Remove is off while the schedule runs.
        scripting.Remove({ 0 });
        QCOMPARE(window->model()->rowCount(), 2);
    }

    // Missed is what was armed while Quillon last ran and came while it was off, never what the
    // history lacks: an item opened before the quit stays opened when the history is lost, one
    // added with a past date is never missed. A run that ended without its quit is told. Missed
    // once, not again at the start after; counted until looked at; opened late if asked.
    void missedIsWhatWasArmedWhileOff_data()
    {
        QTest::addColumn<int>("due"); // s after the first start
        QTest::addColumn<bool>("historyLost");
        QTest::addColumn<bool>("killed"); // a second run ends without its quit
        QTest::addColumn<bool>("catchUp");
        QTest::addColumn<QStringList>("recorded"); // at the last start, newest first
        QTest::newRow("due while off") << 600 << false << false << false << QStringList { "Missed" };
        QTest::newRow("due while off, opened late") << 600 << false << false << true << QStringList { "Opened late", "Missed" };
        QTest::newRow("opened, then the history was lost") << 30 << true << false << false << QStringList {};
        QTest::newRow("added with a past date") << -30 << false << false << false << QStringList {};
        QTest::newRow("due after a run that was killed") << 600 << false << true << false << QStringList { "Missed", "Did not quit normally" };
    }
    void missedIsWhatWasArmedWhileOff()
    {
        QFETCH(int, due);
        QFETCH(bool, historyLost);
        QFETCH(bool, killed);
        QFETCH(bool, catchUp);
        QFETCH(QStringList, recorded);
        const QString item = m_config->filePath(u"Grüße.txt"_s), later = m_config->filePath(u"later.txt"_s);
        QVERIFY(Test::writeFile(item) && Test::writeFile(later));
        // Qt keeps the first settings folder it saw: an earlier test's list must not come back.
        Preferences().setValues({ { Keys::Items, QVariantList {} }, { Keys::Dates, QVariantList {} }, { Keys::TimersRunning, false } });
        start();
        m_controller->preferences().setValue(Keys::OpenMissedItems, catchUp);
        m_controller->editor().add({ item }, Test::at(due));
        m_controller->editor().add({ later }, Test::at(36'000)); // keeps the schedule running
        m_controller->schedule().startStopButtonClicked();
        m_clock->advance(60'000);
        QCOMPARE(m_workspace.opened, due == 30 ? QStringList { item } : QStringList {});
        m_controller->applicationWillTerminate();
        m_controller.reset();
        m_workspace.opened.clear();
        if (historyLost)
            QVERIFY(QFile::remove(History::defaultFileName()));
        if (killed) {
            start();
            QCoreApplication::processEvents();
            m_controller.reset(); // no quit: as SIGKILL leaves it
        }
        m_clock->advance(1200'000);
        for (int again = 0; again < 2; ++again) {
            start();
            QCOMPARE(m_workspace.opened, catchUp && !again ? QStringList { item } : QStringList {});
            QPushButton *problems = m_controller->fileListWindow()->problemsButton();
            QCOMPARE(problems->isVisible(), !again && !recorded.isEmpty());
            if (problems->isVisible()) {
                const qsizetype count = recorded.size() - recorded.count(u"Opened late"_s);
                QCOMPARE(problems->text(), count == 1 ? u"1 problem since you last looked"_s : u"%1 problems since you last looked"_s.arg(count));
                QTest::mouseClick(problems, Qt::LeftButton);
                QVERIFY(!problems->isVisible());
            }
            m_controller->shell().showHistory();
            HistoryModel *model = m_controller->shell().historyWindow()->model();
            QStringList what;
            for (int row = 0; row < model->rowCount(); ++row)
                what << model->index(row, HistoryModel::WhatColumn).data().toString();
            QVERIFY2(what == recorded, qPrintable(what.join(QLatin1Char(','))));
            if (catchUp)
                QCOMPARE(model->index(0, HistoryModel::DetailColumn).data().toString(), u"document, 11 min late"_s);
            // Found by its name, and only by what it holds; and by what happened.
            model->setFilter(u"Grüße"_s, false);
            QCOMPARE(model->rowCount(), int(recorded.size() - recorded.count(u"Did not quit normally"_s)));
            model->setFilter(u"Köln"_s, false);
            QCOMPARE(model->rowCount(), 0);
            model->setFilter(u"missed"_s, false);
            QCOMPARE(model->rowCount(), int(recorded.count(u"Missed"_s)));
            m_controller->applicationWillTerminate();
            m_controller.reset();
            m_workspace.opened.clear();
        }
    }

    // The History's row actions as a user reaches them, with real input on the shown window: a
    // click selects a row, Ctrl+C copies its file, and each menu entry is taken by its key.
    void historyActionsWithRealInput()
    {
        if (QGuiApplication::platformName() != QLatin1String("xcb") || QStandardPaths::findExecutable(u"xdotool"_s).isEmpty())
            QSKIP("Real input needs an X server and xdotool.");
        const QString item = m_config->filePath(u"Résumé 100%.txt"_s);
        QVERIFY(Test::writeFile(item));
        start();
        m_controller->history().record(History::Kind::Missed, item, Test::at(-60), u"the computer was asleep"_s);
        m_controller->history().record(History::Kind::MailSent, {}, {}, u"Quillon launched path..."_s);
        m_controller->shell().showHistory();
        HistoryWindow *window = m_controller->shell().historyWindow();
        QVERIFY(QTest::qWaitForWindowActive(window));
        QTableView *table = window->table();
        // The missed record is the oldest, the last row; new records come in above it.
        const auto toTheRow = [table] {
            const QPoint row
                = table->viewport()->mapToGlobal(table->visualRect(table->model()->index(table->model()->rowCount() - 1, HistoryModel::ItemColumn)).center());
            return QStringList { u"mousemove"_s, QString::number(row.x()), QString::number(row.y()) };
        };
        const auto xdotool = [](const QStringList &arguments) { QCOMPARE(QProcess::execute(u"xdotool"_s, arguments), 0); };
        xdotool(toTheRow() + QStringList { u"click"_s, u"1"_s });
        QTRY_COMPARE(table->selectionModel()->selectedRows().size(), 1);
        QCOMPARE(table->selectionModel()->selectedRows().first().row(), 1);
        xdotool({ u"key"_s, u"ctrl+c"_s });
        QTRY_COMPARE(QApplication::clipboard()->text(), item);
        QApplication::clipboard()->clear();
        const QList<std::pair<QString, std::function<bool()>>> entries {
            { u"o"_s, [&] { return m_workspace.opened == QStringList { item }; } },
            { u"f"_s, [&] { return m_workspace.selected == QStringList { item }; } },
            { u"c"_s, [&] { return QApplication::clipboard()->text() == item; } },
        };
        for (const auto &[key, done] : entries) {
            m_workspace.opened.clear();
            m_workspace.selected.clear();
            QTRY_COMPARE(table->model()->rowCount(), key == QLatin1String("o") ? 2 : 3);
            QTRY_VERIFY(!QApplication::activePopupWidget());
            // The click that opens the menu must not choose from it.
            QTest::qWait(200); // the last entry's work (a refresh, the clipboard) done, as a person waits
            xdotool(toTheRow() + QStringList { u"click"_s, u"3"_s });
            QTRY_VERIFY2(qobject_cast<QMenu *>(QApplication::activePopupWidget()), qPrintable(key));
            QTest::qWait(100);
            QVERIFY(m_workspace.opened.isEmpty() && m_workspace.selected.isEmpty());
            const QList<QAction *> actions = QApplication::activePopupWidget()->actions();
            QVERIFY(std::all_of(actions.begin(), actions.end(), [](QAction *action) { return action->isEnabled(); }));
            xdotool({ u"key"_s, key });
            QTRY_VERIFY2(done(), qPrintable(key));
        }
        // Open Now's own record came in, above the rest.
        QCOMPARE(table->model()->rowCount(), 3);
    }

    // The check says the time came; what became of the item shows beside it, to the eye, to a
    // screen reader and to scripts: a failure is never a green check.
    void rowSaysWhatBecameOfIt_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("opens");
        QTest::addColumn<QString>("heard");
        QTest::addColumn<QString>("tip");
        QTest::newRow("opened") << u"a.txt"_s << true << u"Opened"_s << u"Opened at"_s;
        QTest::newRow("could not be opened") << u"gone.txt"_s << false << u"Could not be opened"_s << u"Could not open: it could not be opened"_s;
        QTest::newRow("a script that failed") << u"job.scpt"_s << true << u"Could not be opened"_s << u"Could not open: exit status 3"_s;
    }
    void rowSaysWhatBecameOfIt()
    {
        QFETCH(QString, name);
        QFETCH(bool, opens);
        QFETCH(QString, heard);
        QFETCH(QString, tip);
        const QString item = m_config->filePath(name);
        QVERIFY(Test::writeFile(item));
        m_workspace.openSucceeds = opens;
        m_scripts.outcomes[item] = { true, std::nullopt, u"exit status 3"_s, {}, {}, {} };
        start();
        m_controller->editor().add({ item }, Test::at(30));
        m_controller->schedule().startStopButtonClicked();
        m_clock->advance(31'000);
        const QModelIndex check = m_controller->fileListWindow()->model()->index(0, ItemTableModel::CheckColumn);
        QTRY_COMPARE(check.data(Qt::AccessibleTextRole).toString(), heard);
        QVERIFY2(check.data(Qt::ToolTipRole).toString().startsWith(tip), qPrintable(check.data(Qt::ToolTipRole).toString()));
        QCOMPARE(check.data(Qt::AccessibleDescriptionRole), check.data(Qt::ToolTipRole));
        ScriptingService scripting(m_controller->editor(), m_controller->launcher());
        // Scripts are told the same.
        QCOMPARE(scripting.Outcomes().value(0).outcome, heard == u"Opened"_s ? u"opened"_s : u"failed"_s);
    }

    // The same file on two rows, and the user opening it meanwhile: each record and each row's
    // outcome belongs to its own launch, never to another that shares the path.
    void eachLaunchIsToldOfItsOwnRowAndMoment()
    {
        const QString item = m_config->filePath(u"same.txt"_s);
        QVERIFY(Test::writeFile(item));
        start();
        QList<History::Record> records;
        connect(&m_controller->history(), &History::recorded, this, [&records](const History::Record &r) {
            if (r.kind == History::Kind::Opened || r.kind == History::Kind::OpenFailed)
                records << r;
        });
        m_controller->editor().add({ item, item }, QList { Test::at(30), Test::at(90) });
        m_controller->schedule().startStopButtonClicked();
        m_controller->launcher().openNow({ item });
        m_workspace.openSucceeds = false;
        m_clock->advance(31'000);
        m_workspace.openSucceeds = true;
        m_clock->advance(60'000);
        QTRY_COMPARE(records.size(), 3);
        QCOMPARE(records.at(0).scheduled, QDateTime()); // the user's, due at no time
        QCOMPARE(records.at(1).kind, History::Kind::OpenFailed);
        QCOMPARE(records.at(1).scheduled, Test::at(30));
        QCOMPARE(records.at(2).kind, History::Kind::Opened);
        QCOMPARE(records.at(2).scheduled, Test::at(90));
        QCOMPARE(m_controller->schedule().outcomeAt(0).kind, Schedule::Outcome::Kind::Failed);
        QCOMPARE(m_controller->schedule().outcomeAt(1).kind, Schedule::Outcome::Kind::Opened);
    }

    // GNOME has no tray: the window is shown and closed minimised, so a running Quillon stays in reach.
    void withoutATrayTheWindowStaysReachable()
    {
        if (QSystemTrayIcon::isSystemTrayAvailable())
            QSKIP("This session has a system tray.");
        m_controller = std::make_unique<QuillonController>(Platform { *m_clock, *m_power, m_workspace, m_scripts });
        m_controller->awakeFromNib();
        m_controller->startHidden();
        MainWindow *window = m_controller->fileListWindow();
        QTRY_VERIFY(window->isVisible());
        QVERIFY(window->windowState() & Qt::WindowMinimized);
        m_controller->showMainWindow();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QVERIFY(!window->close());
        QVERIFY(window->isVisible());
        QVERIFY(window->windowState() & Qt::WindowMinimized);
    }

    // Qt reads the launcher's token from the environment, which a program started meanwhile would inherit.
    void activationTokenIsGivenOnlyWhileNoProgramStarts()
    {
        start();
        MainWindow *window = m_controller->fileListWindow();
        window->hide();
        QByteArray seenAtShow = "(not shown)";
        const QObject watch;
        connect(window->windowHandle(), &QWindow::visibleChanged, &watch, [&] { seenAtShow = qgetenv("XDG_ACTIVATION_TOKEN"); });
        m_workspace.programStarting = true;
        m_controller->showMainWindow("kwin-8c1e");
        QTest::qWait(60);
        QVERIFY(!window->isVisible());
        m_workspace.programStarting = false;
        QTRY_VERIFY(window->isVisible());
        QCOMPARE(seenAtShow, QByteArray("kwin-8c1e"));
        QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
    }

    // Preferences and Date & Time stay above the list window, and only it (alertForms: the alerts).
    void dialogsBelongToTheListWindow()
    {
        start();
        MainWindow *window = m_controller->fileListWindow();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        m_controller->shell().showPreferences();
        window->dateTimeClicked();
        for (QWidget *own : { static_cast<QWidget *>(window->findChild<PreferencesDialog *>()), window->calendarClockWindow() }) {
            QVERIFY(QTest::qWaitForWindowExposed(own));
            QCOMPARE(own->windowHandle()->transientParent(), window->windowHandle());
            QVERIFY(!(own->windowFlags() & Qt::WindowStaysOnTopHint));
        }
    }

    // The display tick recomputes the countdowns while the schedule runs; stopped, it has nothing to do.
    void displayTickFollowsTheSchedule()
    {
        start();
        MainWindow *window = m_controller->fileListWindow();
        window->addChosenPaths({ u"/docs/a.txt"_s });
        m_controller->editor().setDate({ 0 }, QDateTime::fromMSecsSinceEpoch(Now + 3725'000));
        QTest::mouseClick(window->stopStartButton(), Qt::LeftButton);
        m_clock->advance(5'000);
        QSignalSpy changed(window->model(), &QAbstractItemModel::dataChanged);
        m_controller->handleUpdateDisplayTimer();
        QVERIFY(!changed.isEmpty());
        QTest::mouseClick(window->stopStartButton(), Qt::LeftButton);
        changed.clear();
        m_controller->handleUpdateDisplayTimer();
        QCOMPARE(changed.count(), 0);
    }

    // No nested loop; with a parent a sheet, whatever the style; plain text, or <ann@…> would vanish as a tag.
    void alertForms_data()
    {
        QTest::addColumn<int>("style"); // -1: Start pressed with nothing ahead
        QTest::addColumn<bool>("withParent");
        QTest::addColumn<int>("icon");
        QTest::addColumn<QString>("informative");
        const QString odd = u"100% %s done <ann@example.org>"_s;
        QTest::newRow("Start with nothing ahead") << -1 << true << int(QMessageBox::Warning)
                                                  << u"Make sure that at least one item has a scheduled run time in the future."_s;
        QTest::newRow("sheet ignores the style") << 2 << true << int(QMessageBox::Warning) << odd;
        QTest::newRow("free-standing informational") << 1 << false << int(QMessageBox::Information) << odd;
        QTest::newRow("free-standing critical") << 2 << false << int(QMessageBox::Critical) << odd;
    }
    void alertForms()
    {
        QFETCH(int, style);
        QFETCH(bool, withParent);
        QFETCH(int, icon);
        QFETCH(QString, informative);
        start();
        if (style < 0)
            QTest::mouseClick(m_controller->fileListWindow()->stopStartButton(), Qt::LeftButton);
        else
            m_controller->shell().doAlert(u"m"_s, informative, withParent ? m_controller->fileListWindow() : nullptr, style);
        QMessageBox *alert = m_controller->shell().currentAlert();
        QVERIFY(alert && alert->isVisible());
        if (style < 0)
            QCOMPARE(alert->text(), u"No items were scheduled to run."_s);
        QCOMPARE(int(alert->icon()), icon);
        QCOMPARE(alert->informativeText(), informative);
        QCOMPARE(alert->findChild<QLabel *>(u"qt_msgbox_informativelabel"_s)->textFormat(), Qt::PlainText);
        QCOMPARE(alert->windowModality(), withParent ? Qt::WindowModal : Qt::ApplicationModal);
        QCOMPARE(alert->buttons().size(), 1);
        alert->close();
    }

    // With "remember" off the list does not come back, and its file is not even rewritten.
    void theListIsNotRememberedWhenNotAsked()
    {
        const QString item = m_config->filePath(u"item.txt"_s);
        QVERIFY(Test::writeFile(item));
        start();
        m_controller->fileListWindow()->addChosenPaths({ item });
        m_controller->editor().setDate({ 0 }, QDateTime::fromMSecsSinceEpoch(Now + 60'000));
        m_controller->schedule().startStopButtonClicked();
        m_controller->applicationWillTerminate();
        const QVariant savedItems = m_controller->preferences().value(Keys::Items);
        QCOMPARE(savedItems.toList().size(), 1);
        m_controller->preferences().setValue(Keys::RememberItems, false);
        m_controller.reset();

        start();
        QCOMPARE(m_controller->schedule().paths(), QStringList {});
        QCOMPARE(m_controller->fileListWindow()->stopStartButton()->text(), u"Start"_s);
        const QString conf = m_controller->preferences().fileName();
        const QString before = Test::readFile(conf);
        m_controller->fileListWindow()->addChosenPaths({ u"/other"_s });
        m_controller->applicationWillTerminate();
        QCOMPARE(Test::readFile(conf), before);
        QVERIFY(QFile::exists(m_controller->preferences().windowStateFileName()));
        m_controller->preferences().synchronize();
        QCOMPARE(m_controller->preferences().value(Keys::Items), savedItems);
    }

    // Opening now, all or the selection, changes nothing of the schedule.
    void launchAllNowChangesNothingElse()
    {
        start();
        m_controller->fileListWindow()->addChosenPaths({ u"/1"_s, u"/2"_s, u"/3"_s });
        m_controller->editor().setDate({ 0, 1, 2 }, QDateTime::fromMSecsSinceEpoch(Now + 600'000));
        m_controller->schedule().startStopButtonClicked();
        const auto timers = m_controller->schedule().timers();
        const auto dates = m_controller->schedule().dates();
        // Asked first, with real clicks; told "don't ask again", the next click opens at once.
        MainWindow *window = m_controller->fileListWindow();
        QTest::mouseClick(window->findChild<QPushButton *>(u"launchAllNowButton"_s), Qt::LeftButton);
        auto *question = window->findChild<QMessageBox *>(u"confirmLaunchAll"_s);
        QVERIFY(question && question->isVisible());
        QVERIFY(m_workspace.opened.isEmpty());
        question->checkBox()->setChecked(true);
        QTest::mouseClick(question->defaultButton(), Qt::LeftButton);
        QCOMPARE(m_workspace.opened, (QStringList { "/1", "/2", "/3" }));
        QVERIFY(window->statusBar()->currentMessage().contains(QLatin1String("3 item")));
        QTest::mouseClick(window->findChild<QPushButton *>(u"launchAllNowButton"_s), Qt::LeftButton);
        QCOMPARE(m_workspace.opened.size(), 6);
        // Open Now from the row menu: the selection, top to bottom.
        m_workspace.opened.clear();
        window->fileTable()->selectRow(2);
        window->fileTable()->selectionModel()->select(window->model()->index(0, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
        Q_EMIT window->fileTable()->customContextMenuRequested(window->fileTable()->visualRect(window->model()->index(0, 1)).center());
        auto *menu = window->findChild<QMenu *>(u"rowMenu"_s);
        QVERIFY(menu);
        menu->findChild<QAction *>(u"openNowAction"_s)->trigger();
        QCOMPARE(m_workspace.opened, (QStringList { "/1", "/3" }));
        menu->close();
        QCOMPARE(m_controller->schedule().timers(), timers);
        QCOMPARE(m_controller->schedule().dates(), dates);
        QCOMPARE(m_controller->schedule().timersRemaining(), 3);
        for (const TimerSlot &t : timers)
            QVERIFY(t->isValid());
    }

    // Closed, the window leaves the schedule running, waking the machine for it.
    void closingTheWindowKeepsTheAppAndSchedule()
    {
        start();
        m_controller->fileListWindow()->addChosenPaths({ u"/1"_s, u"/2"_s });
        m_controller->editor().setDate({ 0 }, QDateTime::fromMSecsSinceEpoch(Now + 3600'000));
        m_controller->editor().setDate({ 1 }, QDateTime::fromMSecsSinceEpoch(Now + 1800'000));
        m_controller->schedule().startStopButtonClicked();
        m_controller->fileListWindow()->close();
        QVERIFY(m_controller->schedule().timersRunning());
        Q_EMIT m_power->willSleep();
        QCOMPARE(m_power->wakes, QList<QDateTime> { QDateTime::fromMSecsSinceEpoch(Now + 1800'000 - 15'000) });
        m_clock->advance(1800'000);
        QCOMPARE(m_workspace.opened, QStringList { "/2" });
    }

    // "Send Test Message" says next to the button what became of it, for the settings the window
    // shows, a port typed a moment ago included; a result is gone once a field changes.
    void testMessageSaysWhatHappened_data()
    {
        QTest::addColumn<bool>("serverUp");
        QTest::addColumn<bool>("typeClosedPort"); // the file names the server; the window then another port
        QTest::addColumn<QString>("outcome");
        QTest::newRow("sent") << true << false << u"Sent to ann@example.org"_s;
        QTest::newRow("connection refused") << false << false << u"Not sent: Connection refused"_s;
        QTest::newRow("a closed port typed just before") << true << true << u"Not sent: Connection refused"_s;
    }
    void testMessageSaysWhatHappened()
    {
        QFETCH(bool, serverUp);
        QFETCH(bool, typeClosedPort);
        QFETCH(QString, outcome);
        QTemporaryDir certs;
        MailTest::Server server;
        QTcpServer closed;
        QVERIFY(closed.listen(QHostAddress::LocalHost));
        const int closedPort = closed.serverPort();
        closed.close();
        if (serverUp)
            QVERIFY(server.start(certs, {}));
        start();
        m_controller->preferences().setValues({ { Keys::RecipientEmail, u"ann@example.org"_s }, { Keys::ServerAddress, u"127.0.0.1"_s },
            { Keys::ServerPort, serverUp ? server.port : closedPort } });
        m_controller->shell().showPreferences();
        auto *dialog = m_controller->fileListWindow()->findChild<PreferencesDialog *>();
        QVERIFY(dialog);
        auto *label = dialog->findChild<QLabel *>(u"testOutcome"_s);
        if (typeClosedPort) {
            auto *port = dialog->findChild<QSpinBox *>(QString(Keys::ServerPort));
            port->selectAll();
            QTest::keyClicks(port, QString::number(closedPort));
        }
        QTest::mouseClick(dialog->findChild<QPushButton *>(u"testEmailButton"_s), Qt::LeftButton);
        QCOMPARE(label->text(), u"Sending…"_s);
        QTRY_VERIFY2_WITH_TIMEOUT(label->text().startsWith(outcome), qPrintable(label->text()), 15'000);
        QTest::keyClicks(dialog->findChild<QLineEdit *>(QString(Keys::ServerAddress)), u"x"_s);
        QVERIFY(label->text().isEmpty());
    }

private:
    void start()
    {
        m_controller = std::make_unique<QuillonController>(Platform { *m_clock, *m_power, m_workspace, m_scripts });
        m_controller->awakeFromNib();
        m_controller->applicationWillFinishLaunching();
    }

    std::unique_ptr<QTemporaryDir> m_config;
    std::unique_ptr<FakeClock> m_clock;
    std::unique_ptr<FakePowerService> m_power;
    FakeWorkspace m_workspace;
    FakeScriptRunner m_scripts;
    std::unique_ptr<QuillonController> m_controller;
};

QTEST_MAIN(ControllerTest)
#include "controller_test.moc"

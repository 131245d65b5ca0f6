#include "QuillonController.h"

#include "History.h"
#include "HistoryWindow.h"
#include "ItemTableModel.h"
#include "Log.h"
#include "MailSettings.h"
#include "MainWindow.h"
#include "MediumDateFormat.h"
#include "PowerService.h"
#include "PreferencesDialog.h"
#include "ProblemNotifier.h"
#include "SettingsKeys.h"
#include "Texts.h"
#include "WallClock.h"
#include "WindowState.h"
#include "Workspace.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QStatusBar>
#include <QSystemTrayIcon>
#include <QTableView>
#include <QTimer>

namespace Quillon {

QuillonController::QuillonController(Platform platform, QObject *parent)
    : QObject(parent)
    , m_platform(platform)
    , m_password(m_preferences, platform.secrets)
    , m_schedule(m_preferences, platform.clock)
    , m_editor(m_schedule, m_preferences)
    , m_mail(m_preferences, &m_password)
    , m_launcher(m_preferences, platform.workspace, platform.scripts, [this](const QString &body, const QString &subject) { sendMail(body, subject); })
    , m_heartbeat(QFileInfo(platform.historyFile.isEmpty() ? History::defaultFileName() : platform.historyFile).absolutePath() + QStringLiteral("/running"))
{
    connect(&m_mail, &MailDispatcher::alertRequested, this, [this](const QString &m, const QString &i) { doAlert(m, i); });
    // Only once the quit has come to the deliveries: earlier steps may still be under way.
    connect(&m_mail, &MailDispatcher::allFinished, this, [this] {
        if (m_quitting && m_waitingForDeliveries)
            exitNow();
    });
    m_history = std::make_unique<History>(platform.historyFile.isEmpty() ? History::defaultFileName() : platform.historyFile, platform.clock);
    // What the window layout would hold: the window and its controls exist before awakeFromNib.
    m_window = std::make_unique<MainWindow>(m_editor, m_preferences, platform.workspace);
}

QuillonController::~QuillonController() = default;

void QuillonController::awakeFromNib()
{
    m_updateDisplayTimer = new QTimer(this);
    m_updateDisplayTimer->setInterval(500);
    connect(m_updateDisplayTimer, &QTimer::timeout, this, &QuillonController::handleUpdateDisplayTimer);
    m_updateDisplayTimer->start();

    m_window->setupDatePickerControl();
    m_schedule.createArrays();

    m_schedule.setLauncher([this](const QString &path, quint64 item) { m_launcher.launchItem(path, Launcher::Origin::Schedule, item); });
    connect(&m_schedule, &Schedule::runningStateChanged, m_window.get(), &MainWindow::showRunningState);
    connect(&m_schedule, &Schedule::alertRequested, this, [this](const QString &m, const QString &i) { doAlert(m, i); });
    connect(&m_schedule, &Schedule::quitRequested, this, &QuillonController::quitWhenIdle, Qt::QueuedConnection);
    // Their moments are past: without a record nothing would ever say that they did not open.
    connect(&m_schedule, &Schedule::stoppedByUser, this, [this] {
        for (const QString &path : m_launcher.dropScheduled()) {
            m_history->record(History::Kind::NotStarted, path, m_due.take(path), tr("it waited for a script when the schedule was stopped"));
            tellRow(path, Schedule::Outcome::Kind::NotStarted, tr("it waited for a script when the schedule was stopped"));
        }
    });
    connect(m_window.get(), &MainWindow::startStopRequested, &m_schedule, &Schedule::startStopButtonClicked);
    connect(m_window.get(), &MainWindow::launchAllNowRequested, this, &QuillonController::launchAllNow);
    connect(m_window.get(), &MainWindow::preferencesRequested, this, &QuillonController::showPreferences);
    connect(m_window.get(), &MainWindow::helpRequested, this, &QuillonController::openHelpURL);
    connect(m_window.get(), &MainWindow::aboutRequested, this, &QuillonController::showAbout);
    connect(m_window.get(), &MainWindow::openNowRequested, this, [this](const QStringList &paths) {
        for (const QString &path : paths)
            m_launcher.launchItem(path, Launcher::Origin::User);
    });
    connect(m_window.get(), &MainWindow::quitRequested, this, &QuillonController::terminate);

    m_schedule.setPowerService(&m_platform.power);
    // A wake noticed by logind and by the timer itself must run the after-wake action once.
    connect(&m_platform.power, &PowerService::willSleep, &m_schedule, &Schedule::scheduleWakeUp);
    connect(&m_platform.power, &PowerService::didWake, &m_platform.clock, &WallClock::checkForResume);
    m_platform.power.registerForNotifications();

    wireHistory();
    const Heartbeat::Last last = m_heartbeat.read(m_preferences.fileName());
    if (!last.quitNormally) {
        const QString since = last.savedAt.isValid() ? formatMediumDateTime(last.savedAt) : tr("the last quit");
        systemLog(QStringLiteral("Quillon did not quit normally; changes since %1 were not saved.").arg(since));
        m_history->record(History::Kind::DidNotQuit, {}, {}, tr("Quillon did not quit normally; changes since %1 were not saved").arg(since));
    }
    const bool wasRunning = m_preferences.boolValue(Keys::TimersRunning);
    if (m_preferences.rememberItems()) {
        // Kept as it always was (the saved dates stay whole), and made visible.
        if (const int shifted = m_schedule.restoreItems(); shifted >= 0) {
            const QString text = tr("A saved item could not be found: the dates from row %1 on may belong to the items above them.").arg(shifted + 1);
            m_history->record(History::Kind::DatesMoved, {}, {}, text);
            m_window->statusBar()->showMessage(text);
        }
        recordMissedWhileOff(wasRunning, last.runningUntil);
    }
    m_heartbeat.begin(m_platform.clock.now(), m_schedule.timersRunning());
    // Every change of what is armed, and now and then while it runs: a kill loses at most a turn.
    connect(&m_schedule, &Schedule::runningStateChanged, this, &QuillonController::beatSoon);
    connect(&m_schedule, &Schedule::rowChanged, this, &QuillonController::beatSoon);
    for (auto signal : { &Schedule::rowsInserted, &Schedule::reset, &Schedule::reloadTable })
        connect(&m_schedule, signal, this, &QuillonController::beatSoon);
    auto *beats = new QTimer(this);
    connect(beats, &QTimer::timeout, this, &QuillonController::beatSoon);
    beats->start(std::chrono::minutes(1));
    showUnseenProblems();
    m_password.migrate();

    connect(m_window.get(), &MainWindow::doubleClicked, this, &QuillonController::doubleAction);
    setUpTray();
}

void QuillonController::wireHistory()
{
    History &history = *m_history;
    connect(&m_schedule, &Schedule::launched, this, [this](const QString &path, const QDateTime &date, quint64 item) {
        m_due.insert(path, date);
        m_launchedItem.insert(path, item);
    });
    connect(&m_schedule, &Schedule::missed, this, [&history](const QString &path, const QDateTime &date) {
        history.record(History::Kind::Missed, path, date, QStringLiteral("the computer was asleep"));
    });
    connect(&m_schedule, &Schedule::caughtUp, this, [this](const QString &path, const QDateTime &date, quint64 item) {
        m_late.insert(path, date);
        m_launchedItem.insert(path, item);
    });
    m_launcher.setLateReport([this](const QString &path, const QString &reason) { m_waitedBehindScript.insert(path, reason); });
    m_platform.workspace.setOutcomeHandler([this](const QString &path, const QString &how, const QString &failure) {
        if (m_waitedBehindScript.contains(path)) {
            const QString reason = m_waitedBehindScript.take(path);
            m_history->record(failure.isEmpty() ? History::Kind::OpenedLate : History::Kind::OpenFailed, path, m_due.take(path),
                failure.isEmpty() ? QStringLiteral("%1, %2").arg(how, reason) : failure);
            tellRow(path, failure.isEmpty() ? Schedule::Outcome::Kind::OpenedLate : Schedule::Outcome::Kind::Failed, failure.isEmpty() ? reason : failure);
            return;
        }
        if (m_late.contains(path)) {
            const QDateTime due = m_late.take(path);
            const QString late = History::latenessText(due.secsTo(m_platform.clock.now()));
            m_history->record(failure.isEmpty() ? History::Kind::OpenedLate : History::Kind::OpenFailed, path, due,
                failure.isEmpty() ? QStringLiteral("%1, %2").arg(how, late) : failure);
            tellRow(path, failure.isEmpty() ? Schedule::Outcome::Kind::OpenedLate : Schedule::Outcome::Kind::Failed, failure.isEmpty() ? late : failure);
            return;
        }
        m_history->record(failure.isEmpty() ? History::Kind::Opened : History::Kind::OpenFailed, path, m_due.take(path), failure.isEmpty() ? how : failure);
        tellRow(path, failure.isEmpty() ? Schedule::Outcome::Kind::Opened : Schedule::Outcome::Kind::Failed, failure);
    });
    m_launcher.setScriptReport([this](const QString &path, Launcher::ScriptEnd end, const QString &detail) {
        const QDateTime due = m_late.contains(path) ? m_late.take(path) : m_due.take(path);
        static constexpr History::Kind kinds[] = { History::Kind::ScriptFinished, History::Kind::ScriptFailed, History::Kind::ScriptEndedByQuit };
        m_history->record(kinds[int(end)], path, due, detail);
        if (end != Launcher::ScriptEnd::EndedByQuit)
            tellRow(path, end == Launcher::ScriptEnd::Finished ? Schedule::Outcome::Kind::Opened : Schedule::Outcome::Kind::Failed, detail);
    });
    connect(&history, &History::recorded, this, [this](const History::Record &record) {
        if (m_notifier)
            m_notifier->notice(record);
        if (History::isProblem(record.kind)) {
            ++m_unseenProblems;
            m_window->setUnseenProblems(m_unseenProblems);
        }
    });
    if (m_platform.notifications) {
        m_notifier = std::make_unique<ProblemNotifier>(*m_platform.notifications, m_preferences, m_platform.clock);
        connect(m_notifier.get(), &ProblemNotifier::historyRequested, this, &QuillonController::showHistory);
        connect(m_notifier.get(), &ProblemNotifier::openNowRequested, this, [this](const QStringList &paths) {
            for (const QString &path : paths)
                m_launcher.launchItem(path, Launcher::Origin::User);
        });
    }
    connect(m_window.get(), &MainWindow::historyRequested, this, &QuillonController::showHistory);
    connect(&history, &History::writingChanged, m_window.get(), [window = m_window.get()](const QString &why) {
        if (why.isEmpty())
            window->statusBar()->clearMessage();
        else
            window->statusBar()->showMessage(tr("The history cannot be written now (%1); it is kept until it can be.").arg(why));
    });
}

// The row a scheduled launch of this path belongs to learns what became of it; a launch the user
// asked for (Open Now) belongs to no row.
void QuillonController::tellRow(const QString &path, Schedule::Outcome::Kind kind, const QString &reason)
{
    if (const quint64 item = m_launchedItem.take(path))
        m_schedule.setOutcome(item, { kind, reason });
}

void QuillonController::beatSoon()
{
    if (std::exchange(m_beatQueued, true))
        return;
    QTimer::singleShot(0, this, [this] {
        m_beatQueued = false;
        // After the quit's own word, nothing more: the file says the quit was clean.
        if (!m_terminated)
            m_heartbeat.beat(m_platform.clock.now(), m_schedule.timersRunning());
    });
}

// A schedule saved as running whose items' moments came after it was last seen running: armed,
// and nobody was there to open them. An item whose moment had passed before (opened then, added
// with a past date, dropped by Stop) is not missed, whatever the history holds.
void QuillonController::recordMissedWhileOff(bool wasRunning, const std::optional<QDateTime> &runningUntil)
{
    if (!wasRunning || !runningUntil)
        return;
    const QDateTime now = m_platform.clock.now();
    QList<int> missed;
    for (int row = 0; row < m_schedule.count() && row < m_schedule.dates().size(); ++row) {
        const QDateTime date = m_schedule.dates().at(row);
        if (date > *runningUntil && date <= now) {
            m_history->record(History::Kind::Missed, m_schedule.paths().at(row), date, QStringLiteral("Quillon was not running"));
            missed << row;
        }
    }
    if (missed.isEmpty() || !m_preferences.boolValue(Keys::OpenMissedItems))
        return;
    m_schedule.catchUp(missed);
    // A repeating item caught up has a time ahead again: the schedule that was running runs on.
    if (!m_schedule.timersRunning())
        m_schedule.startTimers(true);
}

void QuillonController::showUnseenProblems()
{
    m_unseenProblems = m_history->problemsAfter(WindowState(m_preferences).historySeen());
    m_window->setUnseenProblems(m_unseenProblems);
}

void QuillonController::showHistory()
{
    if (!m_historyWindow) {
        m_historyWindow = new HistoryWindow(*m_history, m_platform.workspace, m_window.get());
        m_historyWindow->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_historyWindow, &HistoryWindow::openNowRequested, this, [this](const QStringList &paths) {
            for (const QString &path : paths)
                m_launcher.launchItem(path, Launcher::Origin::User);
        });
        // New records show while it is open, once per turn however many come.
        connect(m_history.get(), &History::recorded, m_historyWindow,
            [window = m_historyWindow.data()] { QMetaObject::invokeMethod(window->model(), &HistoryModel::refresh, Qt::QueuedConnection); });
    } else {
        m_historyWindow->model()->refresh();
    }
    m_historyWindow->show();
    m_historyWindow->raise();
    m_historyWindow->activateWindow();
    WindowState(m_preferences).setHistorySeen(m_history->lastId());
    m_unseenProblems = 0;
    m_window->setUnseenProblems(0);
}

SimpleSMTP *QuillonController::sendMail(const QString &body, const QString &subject)
{
    SimpleSMTP *delivery = m_mail.send(body, subject);
    // A launch notice's body is the item's path; other mail belongs to no item.
    const QString path = subject == Texts::LaunchedSubject ? body : QString();
    connect(delivery, &SimpleSMTP::finished, this, [this, delivery, path, subject] {
        const History::Kind kind = delivery->wasSent() ? History::Kind::MailSent
            : delivery->wasRefused()                   ? History::Kind::MailRefused
                                                       : History::Kind::MailFailed;
        m_history->record(kind, path, {}, delivery->wasSent() ? subject : delivery->problem());
    });
    return delivery;
}

void QuillonController::applicationWillFinishLaunching()
{
    showMainWindow();
}

void QuillonController::terminate()
{
    if (m_quitting)
        return;
    m_quitting = true;
    applicationWillTerminate();
    // The list is safe first; then whatever is still under way may take its time.
    const QStringList waiting = m_launcher.abandon([this] { quitAfterOpenings(); });
    if (!waiting.isEmpty())
        systemLog(QStringLiteral("Quitting: %1 launches waiting for a script were not started.").arg(waiting.size()));
    // Named one by one: their dates are past, so nothing else would ever tell that they did not open.
    for (const QString &path : waiting) {
        systemLog(QStringLiteral("Not started: %1 (it waited for a script when Quillon quit; it stays in the list).").arg(path));
        m_history->record(History::Kind::NotStarted, path, m_due.take(path), QStringLiteral("it waited for a script when Quillon quit"));
    }
    m_history->flush();
}

void QuillonController::quitAfterOpenings()
{
    m_platform.workspace.finishOpenings(std::chrono::seconds(30), [this](int) { quitAfterDeliveries(); });
}

void QuillonController::quitAfterDeliveries()
{
    m_waitingForDeliveries = true;
    if (m_mail.inFlight() == 0) {
        exitNow();
        return;
    }
    // Only the sessions still at work get the time.
    m_mail.closeIdle();
    if (m_mail.inFlight() == 0)
        return;
    QTimer::singleShot(std::chrono::seconds(20), this, [this] {
        systemLog(QStringLiteral("Quitting: %1 mail deliveries did not finish in time.").arg(m_mail.inFlight()));
        exitNow();
    });
}

void QuillonController::exitNow()
{
    if (std::exchange(m_exiting, true))
        return;
    // exit(), not quit(): quit() asks every window to close first, and a window that only
    // minimises would cancel it.
    m_platform.power.release([] { QCoreApplication::exit(0); });
}

void QuillonController::quitWhenIdle()
{
    // Queued, so that terminate never runs inside the launcher's own loop.
    m_launcher.whenIdle([this] {
        QMetaObject::invokeMethod(
            this,
            [this] {
                // Started again meanwhile: it is no longer done.
                if (!m_schedule.timersRunning())
                    terminate();
            },
            Qt::QueuedConnection);
    });
}

void QuillonController::applicationWillTerminate()
{
    if (std::exchange(m_terminated, true))
        return;
    m_window->saveWindowState();
    if (m_preferences.rememberItems()) {
        for (const QString &path : m_schedule.saveItems())
            m_history->record(
                History::Kind::DatesMoved, path, {}, tr("it could not be saved; the items after it will show the dates before theirs at the next start"));
    }
    m_heartbeat.quit(m_platform.clock.now(), m_schedule.timersRunning());
    m_schedule.freeze();
    m_history->flush();
    m_window->hide();
    if (m_historyWindow)
        m_historyWindow->hide();
}

void QuillonController::showMainWindow(const QByteArray &activationToken)
{
    const auto present = [this] {
        if (m_window->isMinimized())
            m_window->showNormal();
        m_window->show();
        m_window->raise();
        m_window->activateWindow();
    };
    if (activationToken.isEmpty()) {
        present();
        return;
    }
    // Qt's Wayland plugin takes the token from the environment when the window asks to be
    // activated, and no public call hands it over. The variable lives only through this call
    // (where the compositor offers no activation Qt leaves it set), and is set only while no
    // opening starts a program that would inherit it; scripts start on this thread.
    const bool presented = m_platform.workspace.whileNoProgramStarts([&] {
        qputenv("XDG_ACTIVATION_TOKEN", activationToken);
        present();
        qunsetenv("XDG_ACTIVATION_TOKEN");
    });
    if (!presented)
        QTimer::singleShot(20, this, [this, activationToken] { showMainWindow(activationToken); });
}

void QuillonController::startHidden()
{
    if (!m_tray)
        m_window->showMinimized();
}

void QuillonController::showAbout()
{
    // Not QMessageBox::about(): that runs a nested event loop, and the timers must go on.
    auto *box = new QMessageBox(QMessageBox::NoIcon, tr("About Quillon"),
        tr("<h3>Quillon %1</h3><p>Opens files, applications and scripts at the times you choose.</p>"
           "<p>Free software under the GNU General Public License, version 3 or later.</p>")
            .arg(QCoreApplication::applicationVersion()),
        QMessageBox::Ok, m_window.get());
    box->setObjectName(QStringLiteral("aboutDialog"));
    box->setIconPixmap(QApplication::windowIcon().pixmap(96, 96));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void QuillonController::setUpTray()
{
    const bool trayAvailable = QSystemTrayIcon::isSystemTrayAvailable();
    m_window->setCloseHides(trayAvailable);
    if (!trayAvailable)
        return;
    m_tray = new QSystemTrayIcon(QApplication::windowIcon(), this);
    m_tray->setToolTip(QStringLiteral("Quillon"));
    auto *menu = new QMenu(m_window.get());
    menu->addAction(tr("Show Quillon"), this, [this] { showMainWindow(); });
    menu->addAction(tr("Quit"), this, &QuillonController::terminate);
    m_tray->setContextMenu(menu);
    connect(m_tray, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger)
            showMainWindow();
    });
    m_tray->show();
}

void QuillonController::timeZoneChanged()
{
    forgetMediumDateFormats();
    m_window->model()->reloadAll();
    if (m_schedule.timersRunning())
        m_schedule.restartTimers();
}

void QuillonController::handleUpdateDisplayTimer()
{
    if (m_schedule.timersRunning())
        m_window->model()->refreshCountdown();
}

void QuillonController::doubleAction()
{
    m_launcher.doubleAction(m_window->selectedRow(), m_schedule.paths());
}

void QuillonController::doAlert(const QString &message, const QString &informative)
{
    doAlert(message, informative.isNull() ? QString(QLatin1String("")) : informative, m_window.get(), 0);
}

void QuillonController::doAlert(const QString &message, const std::optional<QString> &informative, QWidget *parentWindow, int alertStyle)
{
    QApplication::beep();
    static const QMessageBox::Icon styles[] = { QMessageBox::Warning, QMessageBox::Information, QMessageBox::Critical };
    // A sheet keeps the default style whatever was asked; only a free-standing alert takes it.
    const QMessageBox::Icon icon = parentWindow || alertStyle < 0 || alertStyle > 2 ? QMessageBox::Warning : styles[alertStyle];
    auto *box = new QMessageBox(icon, QStringLiteral("Quillon"), message, QMessageBox::Ok, parentWindow);
    box->setTextFormat(Qt::PlainText);
    if (informative) {
        box->setInformativeText(*informative);
        // Plain text too: an address in angle brackets would otherwise vanish as an HTML tag.
        if (auto *label = box->findChild<QLabel *>(QStringLiteral("qt_msgbox_informativelabel")))
            label->setTextFormat(Qt::PlainText);
    }
    box->setAttribute(Qt::WA_DeleteOnClose);
    m_alert = box;
    // Never a nested event loop: timers go on firing while the alert is up.
    if (parentWindow) {
        box->open();
    } else {
        box->setWindowModality(Qt::ApplicationModal);
        box->show();
    }
}

void QuillonController::openHelpURL()
{
    const QString appDir = QCoreApplication::applicationDirPath();
    for (const QString &candidate : { appDir + QLatin1String("/../share/quillon/help/index.html"), QStringLiteral("/usr/share/quillon/help/index.html") }) {
        if (QFileInfo::exists(candidate)) {
            m_platform.workspace.openUrl(QUrl::fromLocalFile(QDir::cleanPath(candidate)));
            return;
        }
    }
}

void QuillonController::testEmail()
{
    if (m_preferencesDialog)
        m_preferencesDialog->showTestOutcome(tr("Sending…"));
    SimpleSMTP *delivery = sendMail(Texts::TestBody, Texts::TestSubject);
    // In time even for the guard's errors: those finish the delivery on the next turn.
    connect(delivery, &SimpleSMTP::finished, this, [this, delivery] {
        if (!m_preferencesDialog)
            return;
        m_preferencesDialog->showTestOutcome(
            delivery->wasSent() ? tr("Sent to %1").arg(MailSettings(m_preferences).getRecipientEmail()) : tr("Not sent: %1").arg(delivery->problem()));
    });
}

void QuillonController::showPreferences()
{
    if (!m_preferencesDialog) {
        m_preferencesDialog = new PreferencesDialog(m_preferences, m_window.get(), &m_password);
        m_preferencesDialog->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_preferencesDialog, &PreferencesDialog::testEmailRequested, this, &QuillonController::testEmail);
    }
    m_preferencesDialog->show();
    m_preferencesDialog->raise();
    m_preferencesDialog->activateWindow();
}

} // namespace Quillon

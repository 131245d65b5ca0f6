#include "QuillonController.h"

#include "History.h"
#include "ItemTableModel.h"
#include "Log.h"
#include "MainWindow.h"
#include "MediumDateFormat.h"
#include "PowerService.h"
#include "ProblemNotifier.h"
#include "SettingsKeys.h"
#include "Texts.h"
#include "WallClock.h"
#include "Workspace.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStatusBar>
#include <QTimer>

namespace Quillon {

QuillonController::QuillonController(Platform platform, QObject *parent)
    : QObject(parent)
    , m_platform(platform)
    , m_password(m_preferences, platform.secrets)
    , m_schedule(m_preferences, platform.clock)
    , m_editor(m_schedule, m_preferences)
    , m_mail(m_preferences, &m_password)
    , m_launcher(m_preferences, platform.workspace, platform.scripts)
    , m_heartbeat(QFileInfo(platform.historyFile.isEmpty() ? History::defaultFileName() : platform.historyFile).absolutePath() + QStringLiteral("/running"))
{
    m_history = std::make_unique<History>(platform.historyFile.isEmpty() ? History::defaultFileName() : platform.historyFile, platform.clock);
    m_journal = std::make_unique<LaunchJournal>(m_schedule, m_launcher, *m_history, m_mail, m_preferences, platform.clock);
    // What the window layout would hold: the window and its controls exist before awakeFromNib.
    m_window = std::make_unique<MainWindow>(m_editor, m_preferences, platform.workspace);
    m_shell = std::make_unique<Shell>(*m_window, m_preferences, *m_history, platform.workspace, &m_password);
    connect(&m_mail, &MailDispatcher::alertRequested, m_shell.get(), [this](const QString &m, const QString &i) { m_shell->doAlert(m, i); });
    // Only once the quit has come to the deliveries: earlier steps may still be under way.
    connect(&m_mail, &MailDispatcher::allFinished, this, [this] {
        if (m_quitting && m_waitingForDeliveries)
            exitNow();
    });
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

    connect(&m_schedule, &Schedule::runningStateChanged, m_window.get(), &MainWindow::showRunningState);
    connect(&m_schedule, &Schedule::alertRequested, m_shell.get(), [this](const QString &m, const QString &i) { m_shell->doAlert(m, i); });
    connect(&m_schedule, &Schedule::quitRequested, this, &QuillonController::quitWhenIdle, Qt::QueuedConnection);
    // Their moments are past: without a record nothing would ever say that they did not open.
    connect(&m_schedule, &Schedule::stoppedByUser, this,
        [this] { m_journal->notStarted(m_launcher.dropScheduled(), tr("it waited for a script when the schedule was stopped")); });
    connect(m_window.get(), &MainWindow::startStopRequested, &m_schedule, &Schedule::startStopButtonClicked);
    connect(m_window.get(), &MainWindow::launchAllNowRequested, this, &QuillonController::launchAllNow);
    connect(m_window.get(), &MainWindow::openNowRequested, &m_launcher, &Launcher::openNow);
    connect(m_window.get(), &MainWindow::quitRequested, this, &QuillonController::terminate);
    connect(m_window.get(), &MainWindow::doubleClicked, this, [this] { m_launcher.doubleAction(m_window->selectedRow(), m_schedule.paths()); });
    connect(m_shell.get(), &Shell::openNowRequested, &m_launcher, &Launcher::openNow);
    connect(m_shell.get(), &Shell::quitRequested, this, &QuillonController::terminate);
    connect(m_shell.get(), &Shell::testEmailRequested, this, [this] { m_shell->watchTestMail(m_journal->sendMail(Texts::TestBody, Texts::TestSubject)); });
    if (m_platform.notifications) {
        m_notifier = std::make_unique<ProblemNotifier>(*m_platform.notifications, m_preferences, m_platform.clock);
        connect(m_history.get(), &History::recorded, m_notifier.get(), &ProblemNotifier::notice);
        connect(m_notifier.get(), &ProblemNotifier::historyRequested, m_shell.get(), &Shell::showHistory);
        connect(m_notifier.get(), &ProblemNotifier::openNowRequested, &m_launcher, &Launcher::openNow);
    }

    m_schedule.setPowerService(&m_platform.power);
    // A wake noticed by logind and by the timer itself must run the after-wake action once.
    connect(&m_platform.power, &PowerService::willSleep, &m_schedule, &Schedule::scheduleWakeUp);
    connect(&m_platform.power, &PowerService::didWake, &m_platform.clock, &WallClock::checkForResume);
    m_platform.power.registerForNotifications();

    reportLastRun();
    // Every change of what is armed, and now and then while it runs: a kill loses at most a turn.
    connect(&m_schedule, &Schedule::runningStateChanged, this, &QuillonController::beatSoon);
    connect(&m_schedule, &Schedule::rowChanged, this, &QuillonController::beatSoon);
    for (auto signal : { &Schedule::rowsInserted, &Schedule::reset, &Schedule::reloadTable })
        connect(&m_schedule, signal, this, &QuillonController::beatSoon);
    auto *beats = new QTimer(this);
    connect(beats, &QTimer::timeout, this, &QuillonController::beatSoon);
    beats->start(std::chrono::minutes(1));
    m_password.migrate();
    m_shell->setUpTray();
}

// What the last run left: an end that was not a quit, a saved list whose dates may have moved,
// items whose moment came while Quillon was not running.
void QuillonController::reportLastRun()
{
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
        m_journal->missedWhileOff(wasRunning, last.runningUntil);
    }
    m_heartbeat.begin(m_platform.clock.now(), m_schedule.timersRunning());
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

void QuillonController::applicationWillFinishLaunching()
{
    m_shell->showMainWindow();
}

void QuillonController::terminate()
{
    if (m_quitting)
        return;
    m_quitting = true;
    applicationWillTerminate();
    // The list is safe first; then whatever is still under way may take its time.
    const QList<Launch> waiting = m_launcher.abandon([this] { quitAfterOpenings(); });
    if (!waiting.isEmpty())
        systemLog(QStringLiteral("Quitting: %1 launches waiting for a script were not started.").arg(waiting.size()));
    // Named one by one: their dates are past, so nothing else would ever tell that they did not open.
    for (const Launch &launch : waiting)
        systemLog(QStringLiteral("Not started: %1 (it waited for a script when Quillon quit; it stays in the list).").arg(launch.path));
    m_journal->notStarted(waiting, QStringLiteral("it waited for a script when Quillon quit"));
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
    m_preferences.flush();
    m_heartbeat.quit(m_platform.clock.now(), m_schedule.timersRunning());
    m_schedule.freeze();
    m_history->flush();
    m_shell->hideAll();
}

void QuillonController::timeZoneChanged()
{
    forgetMediumDateFormats();
    m_schedule.followSystemZone();
    m_window->model()->reloadAll();
    if (m_schedule.timersRunning())
        m_schedule.restartTimers();
}

void QuillonController::handleUpdateDisplayTimer()
{
    if (m_schedule.timersRunning())
        m_window->model()->refreshCountdown();
}

} // namespace Quillon

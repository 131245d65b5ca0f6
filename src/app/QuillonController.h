#pragma once

#include "Heartbeat.h"
#include "LaunchJournal.h"
#include "Launcher.h"
#include "MailDispatcher.h"
#include "MailPassword.h"
#include "Preferences.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "Shell.h"

#include <QObject>

#include <memory>

class QTimer;

namespace Quillon {

class Notifications;
class History;
class MainWindow;
class ProblemNotifier;
class PowerService;
class ScriptRunner;
class SecretStore;
class WallClock;
class Workspace;

// The desktop services the application runs on; tests hand in fakes.
struct Platform
{
    WallClock &clock;
    PowerService &power;
    Workspace &workspace;
    ScriptRunner &scripts;
    SecretStore *secrets = nullptr; // none: the mail password stays in the settings file
    Notifications *notifications = nullptr; // none: no desktop notifications
    QString historyFile = {}; // empty: where the user's state lives
};

// Brings the application up and down, and wires its parts together.
class QuillonController final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(QuillonController)
public:
    explicit QuillonController(Platform platform, QObject *parent = nullptr);
    ~QuillonController() override;

    void awakeFromNib();
    void applicationWillFinishLaunching();
    void applicationWillTerminate();
    // The one way out: every quit ends here. The list is saved and the window hidden at once; then,
    // each step driven by the event loop, a running script is ended (SIGTERM, SIGKILL after 5 s),
    // programs already due get up to 30 s to start, and mail still at work up to 20 s.
    void terminate();
    // From the save on: the list is what was saved, and no change is taken any more.
    bool isQuitting() const { return m_terminated; }

    void handleUpdateDisplayTimer();
    // The system's time zone changed: the list is shown in the new one; the moments stay.
    void timeZoneChanged();
    void launchItem(const QString &path) { m_launcher.launchItem(path); }
    // Quit when done: the last launch may be a script, or have items queued behind one; they
    // run to their end (and mail what they must) before the quit.
    void quitWhenIdle();
    void launchAllNow() { m_launcher.launchAllNow(m_schedule.paths()); }
    SimpleSMTP *sendMail(const QString &body, const QString &subject) { return m_journal->sendMail(body, subject); }
    void showMainWindow(const QByteArray &activationToken = {}) { m_shell->showMainWindow(activationToken); }
    // A start at login: the schedule runs, the window stays in the tray (minimised without one).
    void startHidden() { m_shell->startHidden(); }

    Schedule &schedule() { return m_schedule; }
    ScheduleEditor &editor() { return m_editor; }
    Launcher &launcher() { return m_launcher; }
    Preferences &preferences() { return m_preferences; }
    History &history() { return *m_history; }
    Shell &shell() { return *m_shell; }
    MainWindow *fileListWindow() const { return m_window.get(); }

private:
    void quitAfterOpenings();
    void quitAfterDeliveries();
    void exitNow();
    void reportLastRun();
    // The heartbeat says where the schedule stands, once per event-loop turn however often asked.
    void beatSoon();

    Platform m_platform;
    Preferences m_preferences;
    MailPassword m_password;
    Schedule m_schedule;
    ScheduleEditor m_editor;
    MailDispatcher m_mail;
    Launcher m_launcher;
    std::unique_ptr<MainWindow> m_window;
    std::unique_ptr<History> m_history;
    std::unique_ptr<LaunchJournal> m_journal;
    std::unique_ptr<Shell> m_shell;
    Heartbeat m_heartbeat;
    bool m_beatQueued = false;
    std::unique_ptr<ProblemNotifier> m_notifier;
    QTimer *m_updateDisplayTimer = nullptr;
    bool m_quitting = false;
    bool m_waitingForDeliveries = false;
    bool m_terminated = false;
    bool m_exiting = false;
};

} // namespace Quillon

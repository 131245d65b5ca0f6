#pragma once

#include "Heartbeat.h"
#include "HistoryWindow.h"
#include "Launcher.h"
#include "MailDispatcher.h"
#include "MailPassword.h"
#include "Preferences.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "SimpleSMTP.h"

#include <QDateTime>
#include <QHash>
#include <QMessageBox>
#include <QObject>
#include <QPointer>

#include <memory>

class QSystemTrayIcon;
class QTimer;

namespace Quillon {

class DesktopNotifications;
class History;
class HistoryWindow;
class MainWindow;
class ProblemNotifier;
class PowerService;
class PreferencesDialog;
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
    DesktopNotifications *notifications = nullptr; // none: no desktop notifications
    QString historyFile = {}; // empty: where the user's state lives
};

// Brings the application up and down, wires the window to the schedule, and tells the user
// about failures.
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
    int deliveriesInFlight() const { return m_mail.inFlight(); }
    // From the save on: the list is what was saved, and no change is taken any more.
    bool isQuitting() const { return m_terminated; }
    MailDispatcher &mail() { return m_mail; }

    void doAlert(const QString &message, const QString &informative = QString());
    void doAlert(const QString &message, const std::optional<QString> &informative, QWidget *parentWindow, int alertStyle);
    void openHelpURL();

    void handleUpdateDisplayTimer();
    // The system's time zone changed: the list is shown in the new one; the moments stay.
    void timeZoneChanged();
    void launchItem(const QString &path) { m_launcher.launchItem(path); }
    // Quit when done: the last launch may be a script, or have items queued behind one; they
    // run to their end (and mail what they must) before the quit.
    void quitWhenIdle();
    void launchAllNow() { m_launcher.launchAllNow(m_schedule.paths()); }
    void doubleAction();
    // The delivery runs on its own and is freed when it is over; the pointer is for watching it.
    SimpleSMTP *sendMail(const QString &body, const QString &subject);
    void testEmail();
    void showPreferences();
    // activationToken: what the launcher gave the start that asked for the window; on Wayland a
    // window takes the focus only with it.
    void showMainWindow(const QByteArray &activationToken = {});
    // A start at login: the schedule runs, the window stays in the tray (minimised without one).
    void startHidden();
    void showAbout();
    // Schedule ▸ History; looking clears the status bar's count of problems.
    void showHistory();
    History &history() { return *m_history; }
    HistoryWindow *historyWindow() const { return m_historyWindow; }

    Schedule &schedule() { return m_schedule; }
    ScheduleEditor &editor() { return m_editor; }
    Launcher &launcher() { return m_launcher; }
    Preferences &preferences() { return m_preferences; }
    MainWindow *fileListWindow() const { return m_window.get(); }
    QTimer *updateDisplayTimer() const { return m_updateDisplayTimer; }
    QMessageBox *currentAlert() const { return m_alert; }

private:
    void setUpTray();
    void quitAfterOpenings();
    void quitAfterDeliveries();
    void exitNow();
    void wireHistory();
    void recordMissedWhileOff(bool wasRunning, const std::optional<QDateTime> &runningUntil);
    // The heartbeat says where the schedule stands, once per event-loop turn however often asked.
    void beatSoon();
    void tellRow(const QString &path, Schedule::Outcome::Kind kind, const QString &reason);
    void deliver(SimpleSMTP *delivery);
    void showUnseenProblems();

    Platform m_platform;
    Preferences m_preferences;
    MailPassword m_password;
    Schedule m_schedule;
    ScheduleEditor m_editor;
    MailDispatcher m_mail;
    Launcher m_launcher;
    std::unique_ptr<MainWindow> m_window;
    std::unique_ptr<History> m_history;
    Heartbeat m_heartbeat;
    bool m_beatQueued = false;
    std::unique_ptr<ProblemNotifier> m_notifier;
    QPointer<HistoryWindow> m_historyWindow;
    // When each item now opening was due: what the launcher reports later belongs to that date.
    QHash<QString, QDateTime> m_due;
    QHash<QString, QDateTime> m_late;
    QHash<QString, QString> m_waitedBehindScript;
    // The row each path's last scheduled launch came from, until its outcome is told.
    QHash<QString, quint64> m_launchedItem;
    int m_unseenProblems = 0;
    QTimer *m_updateDisplayTimer = nullptr;
    QSystemTrayIcon *m_tray = nullptr;
    QPointer<PreferencesDialog> m_preferencesDialog;
    QPointer<QMessageBox> m_alert;
    bool m_quitting = false;
    bool m_waitingForDeliveries = false;
    bool m_terminated = false;
    bool m_exiting = false;
};

} // namespace Quillon

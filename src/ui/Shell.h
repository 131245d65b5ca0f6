#pragma once

#include "HistoryWindow.h"
#include "PreferencesDialog.h"

#include <QMessageBox>
#include <QObject>
#include <QPointer>

#include <optional>

class QSystemTrayIcon;

namespace Quillon {

class History;
class MailPassword;
class MainWindow;
class Preferences;
class SimpleSMTP;
class Workspace;

// Everything around the main window: the tray icon, alerts, About, help, the Preferences and
// History windows, and the count of problems the user has not looked at yet.
class Shell final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Shell)
public:
    Shell(MainWindow &window, Preferences &preferences, History &history, Workspace &workspace, MailPassword *password, QObject *parent = nullptr);
    ~Shell() override;

    // The tray where the desktop has one; without one, closing the window minimises it.
    void setUpTray();
    // activationToken: what the launcher gave the start that asked for the window; on Wayland a
    // window takes the focus only with it.
    void showMainWindow(const QByteArray &activationToken = {});
    // A start at login: the window stays in the tray (minimised without one).
    void startHidden();
    void showAbout();
    void openHelpURL();
    void showPreferences();
    // Schedule ▸ History; looking clears the status bar's count of problems.
    void showHistory();
    // The test message's delivery: its result shows in Preferences when it is over.
    void watchTestMail(SimpleSMTP *delivery);
    // Hides what is shown, at quit.
    void hideAll();

    void doAlert(const QString &message, const QString &informative = QString());
    void doAlert(const QString &message, const std::optional<QString> &informative, QWidget *parentWindow, int alertStyle);

    HistoryWindow *historyWindow() const { return m_historyWindow; }
    QMessageBox *currentAlert() const { return m_alert; }

Q_SIGNALS:
    void quitRequested();
    void openNowRequested(const QStringList &paths);
    void testEmailRequested();

private:
    void showUnseenProblems();

    MainWindow &m_window;
    Preferences &m_preferences;
    History &m_history;
    Workspace &m_workspace;
    MailPassword *m_password;
    QSystemTrayIcon *m_tray = nullptr;
    QPointer<PreferencesDialog> m_preferencesDialog;
    QPointer<HistoryWindow> m_historyWindow;
    QPointer<QMessageBox> m_alert;
    int m_unseenProblems = 0;
};

} // namespace Quillon

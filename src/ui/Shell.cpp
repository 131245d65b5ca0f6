#include "Shell.h"

#include "History.h"
#include "HistoryWindow.h"
#include "MailSettings.h"
#include "MainWindow.h"
#include "PreferencesDialog.h"
#include "SimpleSMTP.h"
#include "WindowState.h"
#include "Workspace.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QStatusBar>
#include <QSystemTrayIcon>
#include <QTimer>

namespace Quillon {

Shell::Shell(MainWindow &window, Preferences &preferences, History &history, Workspace &workspace, MailPassword *password, QObject *parent)
    : QObject(parent)
    , m_window(window)
    , m_preferences(preferences)
    , m_history(history)
    , m_workspace(workspace)
    , m_password(password)
{
    connect(&window, &MainWindow::preferencesRequested, this, &Shell::showPreferences);
    connect(&window, &MainWindow::helpRequested, this, &Shell::openHelpURL);
    connect(&window, &MainWindow::aboutRequested, this, &Shell::showAbout);
    connect(&window, &MainWindow::historyRequested, this, &Shell::showHistory);
    connect(&history, &History::recorded, this, [this](const History::Record &record) {
        if (History::isProblem(record.kind))
            m_window.setUnseenProblems(++m_unseenProblems);
    });
    connect(&history, &History::writingChanged, this, [this](const QString &why) {
        if (why.isEmpty())
            m_window.statusBar()->clearMessage();
        else
            m_window.statusBar()->showMessage(tr("The history cannot be written now (%1); it is kept until it can be.").arg(why));
    });
    showUnseenProblems();
}

Shell::~Shell() = default;

void Shell::showUnseenProblems()
{
    m_unseenProblems = m_history.problemsAfter(WindowState(m_preferences).historySeen());
    m_window.setUnseenProblems(m_unseenProblems);
}

void Shell::showHistory()
{
    if (!m_historyWindow) {
        m_historyWindow = new HistoryWindow(m_history, m_workspace, &m_window);
        m_historyWindow->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_historyWindow, &HistoryWindow::openNowRequested, this, &Shell::openNowRequested);
        // New records show while it is open, once per turn however many come.
        connect(&m_history, &History::recorded, m_historyWindow,
            [window = m_historyWindow.data()] { QMetaObject::invokeMethod(window->model(), &HistoryModel::refresh, Qt::QueuedConnection); });
    } else {
        m_historyWindow->model()->refresh();
    }
    m_historyWindow->show();
    m_historyWindow->raise();
    m_historyWindow->activateWindow();
    WindowState(m_preferences).setHistorySeen(m_history.lastId());
    m_unseenProblems = 0;
    m_window.setUnseenProblems(0);
}

void Shell::hideAll()
{
    m_window.hide();
    if (m_historyWindow)
        m_historyWindow->hide();
}

void Shell::showMainWindow(const QByteArray &activationToken)
{
    const auto present = [this] {
        if (m_window.isMinimized())
            m_window.showNormal();
        m_window.show();
        m_window.raise();
        m_window.activateWindow();
    };
    if (activationToken.isEmpty()) {
        present();
        return;
    }
    // Qt's Wayland plugin takes the token from the environment when the window asks to be
    // activated, and no public call hands it over. The variable lives only through this call
    // (where the compositor offers no activation Qt leaves it set), and is set only while no
    // opening starts a program that would inherit it; scripts start on this thread.
    const bool presented = m_workspace.whileNoProgramStarts([&] {
        qputenv("XDG_ACTIVATION_TOKEN", activationToken);
        present();
        qunsetenv("XDG_ACTIVATION_TOKEN");
    });
    if (!presented)
        QTimer::singleShot(20, this, [this, activationToken] { showMainWindow(activationToken); });
}

void Shell::startHidden()
{
    if (!m_tray)
        m_window.showMinimized();
}

void Shell::showAbout()
{
    // Not QMessageBox::about(): that runs a nested event loop, and the timers must go on.
    auto *box = new QMessageBox(QMessageBox::NoIcon, tr("About Quillon"),
        tr("<h3>Quillon %1</h3><p>Opens files, applications and scripts at the times you choose.</p>"
           "<p>Free software under the GNU General Public License, version 3 or later.</p>")
            .arg(QCoreApplication::applicationVersion()),
        QMessageBox::Ok, &m_window);
    box->setObjectName(QStringLiteral("aboutDialog"));
    box->setIconPixmap(QApplication::windowIcon().pixmap(96, 96));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void Shell::setUpTray()
{
    const bool trayAvailable = QSystemTrayIcon::isSystemTrayAvailable();
    m_window.setCloseHides(trayAvailable);
    if (!trayAvailable)
        return;
    m_tray = new QSystemTrayIcon(QApplication::windowIcon(), this);
    m_tray->setToolTip(QStringLiteral("Quillon"));
    auto *menu = new QMenu(&m_window);
    menu->addAction(tr("Show Quillon"), this, [this] { showMainWindow(); });
    menu->addAction(tr("Quit"), this, &Shell::quitRequested);
    m_tray->setContextMenu(menu);
    connect(m_tray, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger)
            showMainWindow();
    });
    m_tray->show();
}

void Shell::doAlert(const QString &message, const QString &informative)
{
    doAlert(message, informative.isNull() ? QString(QLatin1String("")) : informative, &m_window, 0);
}

void Shell::doAlert(const QString &message, const std::optional<QString> &informative, QWidget *parentWindow, int alertStyle)
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

void Shell::openHelpURL()
{
    const QString appDir = QCoreApplication::applicationDirPath();
    for (const QString &candidate : { appDir + QLatin1String("/../share/quillon/help/index.html"), QStringLiteral("/usr/share/quillon/help/index.html") }) {
        if (QFileInfo::exists(candidate)) {
            m_workspace.openUrl(QUrl::fromLocalFile(QDir::cleanPath(candidate)));
            return;
        }
    }
}

void Shell::watchTestMail(SimpleSMTP *delivery)
{
    if (m_preferencesDialog)
        m_preferencesDialog->showTestOutcome(tr("Sending…"));
    // In time even for the guard's errors: those finish the delivery on the next turn.
    connect(delivery, &SimpleSMTP::finished, this, [this, delivery] {
        if (!m_preferencesDialog)
            return;
        m_preferencesDialog->showTestOutcome(
            delivery->wasSent() ? tr("Sent to %1").arg(MailSettings(m_preferences).getRecipientEmail()) : tr("Not sent: %1").arg(delivery->problem()));
    });
}

void Shell::showPreferences()
{
    if (!m_preferencesDialog) {
        m_preferencesDialog = new PreferencesDialog(m_preferences, &m_window, m_password);
        m_preferencesDialog->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_preferencesDialog, &PreferencesDialog::testEmailRequested, this, &Shell::testEmailRequested);
    }
    m_preferencesDialog->show();
    m_preferencesDialog->raise();
    m_preferencesDialog->activateWindow();
}

} // namespace Quillon

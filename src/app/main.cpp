#include "DesktopWorkspace.h"
#include "LogindPowerService.h"
#include "QuillonController.h"
#include "ShebangScriptRunner.h"
#include "TimerFdClock.h"
#include "UnixSignalWatcher.h"

#include <QApplication>
#include <QIcon>

using namespace Quillon;

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Quillon"));
    QApplication::setApplicationName(QStringLiteral("Quillon"));
    QApplication::setDesktopFileName(QStringLiteral("quillon"));
    // Outside a full desktop Qt knows no icon theme; file icons then come from Adwaita.
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == QLatin1String("hicolor"))
        QIcon::setThemeName(QStringLiteral("Adwaita"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("alarm-symbolic"), QIcon::fromTheme(QStringLiteral("appointment-soon"))));
    // A running schedule lives on when the window is closed.
    QApplication::setQuitOnLastWindowClosed(false);

    TimerFdClock clock;
    LogindPowerService power;
    DesktopWorkspace workspace;
    ShebangScriptRunner scripts;
    QuillonController controller(Platform{clock, power, workspace, scripts});
    controller.awakeFromNib();
    controller.applicationWillFinishLaunching();

    // Every way of ending the app runs the one quit path, which saves the list.
    UnixSignalWatcher signals;
    QObject::connect(&signals, &UnixSignalWatcher::terminationRequested, &app, &QuillonController::terminate);
    QObject::connect(&app, &QGuiApplication::commitDataRequest, &app, &QuillonController::terminate);
    QObject::connect(&app, &QCoreApplication::aboutToQuit, &controller, &QuillonController::applicationWillTerminate);
    return app.exec();
}

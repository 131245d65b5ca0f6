#include "DesktopWorkspace.h"
#include "LogindPowerService.h"
#include "QuillonController.h"
#include "ShebangScriptRunner.h"
#include "TimerFdClock.h"
#include "UnixSignalWatcher.h"
#include "WakeAlarms.h"

#include <QApplication>
#include <QIcon>

#include <sys/resource.h>

using namespace Quillon;

namespace {
// Every program we start may hold a descriptor for a moment; sessions hand out a soft limit of 1024
// and a much higher hard one. Done first, before any thread exists.
void raiseOpenFileLimit()
{
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}
} // namespace

int main(int argc, char *argv[])
{
    raiseOpenFileLimit();
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
    // Ways of waking the machine, best first.
    LogindPowerService power({new HelperWakeAlarm(HelperWakeAlarm::installedHelper()), new KdeWakeAlarm, new SystemdWakeAlarm});
    DesktopWorkspace workspace;
    ShebangScriptRunner scripts;
    // Every way of ending the app runs the one quit path, which saves the list. The handlers come
    // before the settings are even read: a signal during a slow start is kept for the loop.
    UnixSignalWatcher signals;
    QuillonController controller(Platform{clock, power, workspace, scripts});
    QObject::connect(&signals, &UnixSignalWatcher::terminationRequested, &controller, &QuillonController::terminate);
    QObject::connect(&app, &QGuiApplication::commitDataRequest, &controller, &QuillonController::terminate);
    QObject::connect(&app, &QCoreApplication::aboutToQuit, &controller, &QuillonController::applicationWillTerminate);

    controller.awakeFromNib();
    controller.applicationWillFinishLaunching();
    return app.exec();
}

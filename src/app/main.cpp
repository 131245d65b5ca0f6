#include "CommandLine.h"
#include "DesktopActivation.h"
#include "DesktopNotifications.h"
#include "DesktopWorkspace.h"
#include "FocusRingStyle.h"
#include "Log.h"
#include "LogindPowerService.h"
#include "ProcessFamily.h"
#include "QuillonController.h"
#include "ScriptingService.h"
#include "SecretServiceStore.h"
#include "ShebangScriptRunner.h"
#include "SingleInstance.h"
#include "TimeZoneWatcher.h"
#include "TimerFdClock.h"
#include "TlsTrust.h"
#include "Translations.h"
#include "UnixSignalWatcher.h"
#include "WakeAlarms.h"
#include "WaylandSeat.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QFile>
#include <QIcon>
#include <QStandardPaths>

#include <csignal>
#include <cstdio>
#include <sys/resource.h>
#include <unistd.h>

using namespace Quillon;

namespace {
// Every program we start may hold a descriptor for a moment; sessions hand out a soft limit of 1024
// and a much higher hard one. Done first, before any thread exists.
void raiseOpenFileLimit()
{
    rlimit limit {};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

bool haveDisplay()
{
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (!platform.isEmpty() && !platform.startsWith("xcb") && !platform.startsWith("wayland"))
        return true; // offscreen, vnc, ...: Qt needs no display server for those
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}
void describeOptions(QCommandLineParser &parser, QCommandLineOption &autostart)
{
    parser.setApplicationDescription(QCoreApplication::translate("main", "Quillon opens files, applications and scripts at the times you choose."));
    parser.addHelpOption();
    parser.addVersionOption();
    autostart.setDescription(QCoreApplication::translate("main", "Start as the login session does: the schedule runs, the window stays hidden."));
    parser.addOption(autostart);
}
} // namespace

int main(int argc, char *argv[])
{
    raiseOpenFileLimit();
    // A log line to a terminal or pipe that has gone away must not end the schedule.
    std::signal(SIGPIPE, SIG_IGN);
    QCoreApplication::setOrganizationName(QStringLiteral("Quillon"));
    QCoreApplication::setApplicationName(QStringLiteral("Quillon"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QUILLON_VERSION));

    // The command line is read before anything touches the display or the settings.
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    // quillon add ..., list, ...: a command for the running instance, without a window of its own.
    if (CommandLine::isVerb(arguments.value(1))) {
        QCoreApplication app(argc, argv);
        installTranslations(app);
        return CommandLine::run(arguments);
    }
    // The folder it was started from is no business of a program that runs for weeks: kept as the
    // working folder, it would hold a removable disk busy. Done before any thread exists.
    if (::chdir(QFile::encodeName(QDir::homePath()).constData()) != 0)
        std::fprintf(stderr, "quillon: could not change to the home folder\n");
    QCommandLineParser parser;
    QCommandLineOption autostart(QStringLiteral("autostart"));
    describeOptions(parser, autostart);
    const QCommandLineOption helpOption(QStringLiteral("help")), versionOption(QStringLiteral("version"));
    if (!parser.parse(arguments)) {
        std::fprintf(stderr, "quillon: %s (try --help)\n", qPrintable(parser.errorText()));
        return 2;
    }
    if (parser.isSet(helpOption)) {
        QCoreApplication app(argc, argv);
        installTranslations(app);
        // Described again now that the translations are in: Qt's own texts are translated as they are added.
        QCommandLineParser described;
        QCommandLineOption autostartDescribed(QStringLiteral("autostart"));
        describeOptions(described, autostartDescribed);
        const QString text
            = described.helpText().replace(QCoreApplication::arguments().constFirst(), QLatin1String("quillon")) + QLatin1Char('\n') + CommandLine::help();
        std::fputs(text.toLocal8Bit().constData(), stdout);
        return 0;
    }
    if (parser.isSet(versionOption)) {
        std::printf("quillon %s\n", QUILLON_VERSION);
        return 0;
    }
    if (!parser.positionalArguments().isEmpty()) {
        std::fprintf(stderr, "quillon: unexpected argument '%s' (try --help)\n", qPrintable(parser.positionalArguments().first()));
        return 2;
    }
    if (!haveDisplay()) {
        std::fputs("quillon: no display to show the window on (neither DISPLAY nor WAYLAND_DISPLAY is set)\n", stderr);
        return 1;
    }

    // Read before Qt starts: the Wayland plugin takes it for a window of its own.
    const QByteArray activationToken = qgetenv("XDG_ACTIVATION_TOKEN");
    const bool noSeat = WaylandSeat::compositorHasNoSeat();
    if (noSeat)
        WaylandSeat::disableInputMethod();
    QApplication app(argc, argv);
    WaylandSeat::restoreInputMethod();
    QApplication::setDesktopFileName(QStringLiteral(QUILLON_APP_ID));
    // A second start hands over to the running one before it reads or writes the settings.
    SingleInstance instance(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/Quillon/Quillon.conf"));
    switch (instance.claim(activationToken)) {
    case SingleInstance::Claim::Ours:
        break;
    case SingleInstance::Claim::HandedOver:
        return 0;
    case SingleInstance::Claim::Elsewhere:
        std::fputs(
            "quillon: another Quillon runs on these settings in another session (see the log above); not starting, so that no item opens twice\n", stderr);
        return 1;
    case SingleInstance::Claim::Impossible:
        std::fputs("quillon: no private folder for the instance lock (see the log above); not starting, so that no item opens twice\n", stderr);
        return 1;
    }

    installTranslations(app);
    if (noSeat)
        systemLog(QStringLiteral("The Wayland compositor has no seat; text fields work without an input method."));
    QApplication::setStyle(new FocusRingStyle);
    trustCertificatesFromEnvironment();
    // Outside a full desktop Qt knows no icon theme; file icons then come from Adwaita.
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == QLatin1String("hicolor"))
        QIcon::setThemeName(QStringLiteral("Adwaita"));
    // Our own icon, built in: the tray must never be blank because a theme lacks one.
    QIcon icon;
    for (const char *size : { "48", "128", "256" })
        icon.addFile(QStringLiteral(":/icons/quillon-%1.png").arg(QLatin1String(size)));
    QApplication::setWindowIcon(icon);
    // A running schedule lives on when the window is closed.
    QApplication::setQuitOnLastWindowClosed(false);

    TimerFdClock clock;
    // Ways of waking the machine, best first.
    // The desktop's own ways first; Quillon's system service where neither is there.
    LogindPowerService power({ new KdeWakeAlarm, new SystemdWakeAlarm, new ServiceWakeAlarm });
    DesktopWorkspace workspace;
    ShebangScriptRunner scripts;
    // What a script leaves running when its parent ends comes back to us, to be ended at quit and
    // reaped; so do programs that launchers double-fork, and the reaper takes those too.
    if (!ProcessFamily::becomeSubreaper())
        systemLog(QStringLiteral("Quillon could not become the reaper of what its scripts start; a script's orphans go to the system."));
    OrphanReaper orphans;
    SecretServiceStore secrets(QStringLiteral(QUILLON_APP_ID));

    // Every way of ending the app runs the one quit path, which saves the list. The handlers come
    // before the settings are even read: a signal during a slow start is kept for the loop.
    UnixSignalWatcher signals;
    DesktopNotifications notifications(QDBusConnection::sessionBus());
    QuillonController controller(Platform { clock, power, workspace, scripts, &secrets, &notifications });
    QObject::connect(&signals, &UnixSignalWatcher::terminationRequested, &controller, &QuillonController::terminate);
    QObject::connect(&app, &QGuiApplication::commitDataRequest, &controller, &QuillonController::terminate);
    QObject::connect(&app, &QCoreApplication::aboutToQuit, &controller, &QuillonController::applicationWillTerminate);
    // Scripts in the session reach the list through the bus; without one Quillon works on alone.
    ScriptingService scripting(controller.editor(), controller.launcher());
    // A launcher that starts Quillon through the bus then asks for the window this way.
    auto *desktop = new DesktopActivation(&scripting);
    QObject::connect(desktop, &DesktopActivation::windowRequested, &controller, [&controller](const QByteArray &token) { controller.showMainWindow(token); });
    // The lock above already keeps a second Quillon of these settings out: whoever holds the name is
    // another program or a Quillon of other settings, and scripts would drive the wrong list.
    if (!scripting.registerOn(QDBusConnection::sessionBus()) && QDBusConnection::sessionBus().isConnected()
        && QDBusConnection::sessionBus().interface()->isServiceRegistered(QLatin1String(ScriptingService::ServiceName))) {
        std::fputs("quillon: the session bus name org.quillon.Quillon belongs to another program or to a Quillon of other settings; "
                   "not starting, so that scripts cannot reach the wrong list\n",
            stderr);
        return 1;
    }
    QObject::connect(&instance, &SingleInstance::activationRequested, &controller, [&controller](const QByteArray &token) {
        systemLog(token.isEmpty() ? QStringLiteral("Another start asked for the window.")
                                  : QStringLiteral("Another start asked for the window, with an activation token."));
        controller.showMainWindow(token);
    });

    TimeZoneWatcher zones;
    QObject::connect(&zones, &TimeZoneWatcher::zoneChanged, &controller, &QuillonController::timeZoneChanged);

    controller.awakeFromNib();
    if (parser.isSet(autostart))
        controller.startHidden();
    else
        controller.applicationWillFinishLaunching();
    return app.exec();
}

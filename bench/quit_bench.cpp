// Quitting with everything under way: a script that ignores SIGTERM, 100 programs due and a mail
// delivery to a server that never answers. Prints the longest the event loop went without a turn
// while the quit ran, and how long the quit took against its bounds.
#include "BenchUtil.h"
#include "DesktopWorkspace.h"
#include "PowerService.h"
#include "QuillonController.h"
#include "SettingsKeys.h"
#include "ShebangScriptRunner.h"
#include "TestSupport.h"
#include "TimerFdClock.h"

#include <QApplication>
#include <QTcpServer>
#include <QTimer>

using namespace Quillon;

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QTemporaryDir home;
    useHome(home);
    QTcpServer silent; // accepts, never says a word
    silent.listen(QHostAddress::LocalHost);

    TimerFdClock clock;
    NullPowerService power;
    DesktopWorkspace workspace;
    ShebangScriptRunner scripts;
    QuillonController controller(Platform { clock, power, workspace, scripts });
    controller.preferences().setValues({ { Keys::RememberItems, false }, { Keys::RecipientEmail, QStringLiteral("ann@example.org") },
        { Keys::ServerAddress, QStringLiteral("127.0.0.1") }, { Keys::ServerPort, silent.serverPort() } });
    controller.awakeFromNib();
    controller.applicationWillFinishLaunching();

    const QString script = home.filePath(QStringLiteral("stubborn.scpt"));
    Test::writeFile(script, "#!/bin/sh\ntrap '' TERM\nsleep 60\n");
    controller.launchItem(script);
    for (int i = 0; i < 100; ++i) {
        const QString program = home.filePath(QStringLiteral("programs/p%1").arg(i));
        Test::writeFile(program, "#!/bin/sh\nexit 0\n", true);
        workspace.openFile(program);
    }
    controller.sendMail(QStringLiteral("body"), QStringLiteral("subject"));

    LoopBlockMeter meter;
    qint64 quitStart = 0;
    QTimer::singleShot(500, [&] {
        meter.start();
        quitStart = monotonicNs();
        controller.terminate();
    });
    app.exec();
    std::printf("quit with a script ignoring SIGTERM, 100 programs due and a delivery to a silent server: longest event-loop block "
                "%.1f ms (target at most 50 ms); the quit took %.1f s (bounds: 5 s for the script, 30 s for the programs, 20 s for mail)\n",
        meter.longestMs(), (monotonicNs() - quitStart) / 1e9);
    return 0;
}

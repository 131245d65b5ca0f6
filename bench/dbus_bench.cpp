// A script adds 10,000 files in one Add call to the running app (its window shown), over a
// private session bus: prints the call's round trip, the longest the app's event loop went
// without a turn meanwhile, and the round trip of List with those 10,000 rows.
#include "BenchUtil.h"
#include "FakeClock.h"
#include "FakePowerService.h"
#include "FakeScriptRunner.h"
#include "FakeWorkspace.h"
#include "QuillonController.h"
#include "ScriptingService.h"
#include "SettingsKeys.h"
#include "TestSupport.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QElapsedTimer>
#include <QProcess>

#include <cstdio>

using namespace Quillon;

namespace {
constexpr int Items = 10'000;

// Sends the call and returns its round trip in ms once the reply is in; the loop turns meanwhile.
double roundTrip(const QDBusConnection &bus, const QString &method, const QVariantList &arguments, QDBusMessage *reply = nullptr)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QLatin1String(ScriptingService::ServiceName), QLatin1String(ScriptingService::ObjectPath), QLatin1String(ScriptingService::InterfaceName), method);
    call.setArguments(arguments);
    QElapsedTimer clock;
    clock.start();
    QDBusPendingCallWatcher watcher(bus.asyncCall(call, 120'000));
    double ms = -1;
    QEventLoop wait;
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &wait, [&] {
        ms = double(clock.nsecsElapsed()) / 1e6;
        if (reply)
            *reply = watcher.reply();
        wait.quit();
    });
    wait.exec();
    return ms;
}
} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QTemporaryDir home;
    useHome(home);
    QStringList paths;
    for (int i = 0; i < Items; ++i) {
        paths << home.filePath(QStringLiteral("files/f%1.txt").arg(i));
        Test::writeFile(paths.back());
    }

    Test::PrivateBus daemon;
    if (!daemon.start()) {
        std::puts("dbus-daemon did not start");
        return 1;
    }
    const QString address = daemon.address();
    const QDBusConnection serverBus = QDBusConnection::connectToBus(address, QStringLiteral("app"));
    const QDBusConnection clientBus = QDBusConnection::connectToBus(address, QStringLiteral("script"));

    FakeClock clock(QDateTime::currentMSecsSinceEpoch());
    FakePowerService power;
    FakeWorkspace workspace;
    FakeScriptRunner scripts;
    QuillonController controller(Platform { clock, power, workspace, scripts });
    controller.preferences().setValue(Keys::RememberItems, false);
    controller.awakeFromNib();
    controller.applicationWillFinishLaunching();
    ScriptingService scripting(controller.editor(), controller.launcher());
    if (!scripting.registerOn(serverBus)) {
        std::puts("could not take the bus name");
        return 1;
    }
    QCoreApplication::processEvents();

    LoopBlockMeter meter;
    meter.start();
    QDBusMessage reply;
    const double addMs = roundTrip(clientBus, QStringLiteral("Add"), { paths, QDateTime::currentSecsSinceEpoch() + 3600 }, &reply);
    // The rows reach the table in the same turn; the next turns show them.
    QElapsedTimer settle;
    settle.start();
    while (settle.elapsed() < 300)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    meter.stop();
    std::printf("Add of %d paths in one call: %.0f ms round trip (target <= 1000 ms), %d rows added\n", Items, addMs, reply.arguments().value(0).toInt());
    std::printf("longest event-loop block meanwhile: %.1f ms (target <= 50 ms)\n", meter.longestMs());
    const double listMs = roundTrip(clientBus, QStringLiteral("List"), {}, &reply);
    std::printf("List with %d rows: %.0f ms round trip\n", controller.schedule().count(), listMs);
    return 0;
}

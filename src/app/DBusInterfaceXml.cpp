// Writes the interface description that is installed for org.quillon.Quillon1, as the running
// program introspects it: the exported class is the one source, so the two cannot drift.
// qdbuscpp2xml cannot do this: it drops every method whose type is one of ours.
#include "FakeClock.h"
#include "FakeScriptRunner.h"
#include "FakeWorkspace.h"
#include "Launcher.h"
#include "Preferences.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "ScriptingService.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServer>
#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>

using namespace Quillon;

int main(int argc, char *argv[])
{
    if (argc != 2) {
        std::fputs("usage: dbus-interface-xml OUTPUT.xml\n", stderr);
        return 2;
    }
    // A settings folder of its own: the build never reads or writes the user's.
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toUtf8());
    QCoreApplication app(argc, argv);

    Preferences preferences;
    FakeClock clock;
    Schedule schedule(preferences, clock);
    ScheduleEditor editor(schedule, preferences);
    FakeWorkspace workspace;
    FakeScriptRunner scripts;
    Launcher launcher(preferences, workspace, scripts, {});
    ScriptingService service(editor, launcher);

    // A private peer-to-peer connection: no bus daemon is needed to ask the object.
    QDBusServer server(QStringLiteral("unix:tmpdir=") + config.path());
    bool exported = false;
    QObject::connect(&server, &QDBusServer::newConnection, &app, [&](QDBusConnection connection) { exported = service.exportOn(connection); });
    QDBusConnection client = QDBusConnection::connectToPeer(server.address(), QStringLiteral("introspection"));
    while (!exported && client.isConnected())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const QDBusMessage reply = client.call(QDBusMessage::createMethodCall(QString(), QLatin1String(ScriptingService::ObjectPath),
                                               QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect")),
        QDBus::BlockWithGui);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        std::fprintf(stderr, "dbus-interface-xml: %s\n", qPrintable(reply.errorMessage()));
        return 1;
    }

    // Only our interface: the standard ones every object has are described by the bus's own files.
    QDomDocument live;
    live.setContent(reply.arguments().value(0).toString());
    QDomElement node = live.documentElement();
    for (QDomElement iface = node.firstChildElement(QStringLiteral("interface")); !iface.isNull();) {
        const QDomElement next = iface.nextSiblingElement(QStringLiteral("interface"));
        if (iface.attribute(QStringLiteral("name")) != QLatin1String(ScriptingService::InterfaceName))
            node.removeChild(iface);
        iface = next;
    }
    node.insertBefore(
        live.createComment(QStringLiteral(" Generated from the program at build time; README.md says what each member does. ")), node.firstChild());
    QFile out(QString::fromLocal8Bit(argv[1]));
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate) || out.write(live.toByteArray(2)) < 0) {
        std::fprintf(stderr, "dbus-interface-xml: cannot write %s\n", argv[1]);
        return 1;
    }
    return 0;
}

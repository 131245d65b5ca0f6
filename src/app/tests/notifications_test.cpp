#include "DBusMock.h"
#include "DesktopNotifications.h"
#include "FakeClock.h"
#include "Preferences.h"
#include "ProblemNotifier.h"
#include "SettingsKeys.h"
#include "TestSupport.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Quillon;
using Kind = History::Kind;

namespace {
const QString Service = QStringLiteral("org.freedesktop.Notifications");
const QString Path = QStringLiteral("/org/freedesktop/Notifications");

struct Notify
{
    uint replaces = 0;
    QString summary;
    QString body;
    QStringList actions;
    QString desktopEntry;
};
} // namespace

// The notifier as the application makes it, on the test's server, with settings of its own.
struct Notifier
{
    TestSettings settings;
    Preferences preferences;
    FakeClock clock { Test::Now };
    DesktopNotifications notifications { QDBusConnection::sessionBus() };
    ProblemNotifier notifier { notifications, preferences, clock };
};

// What dbusmock's notification daemon is told on a private session bus, and an action sent back.
class NotificationsTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_bus.start());
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
        QVERIFY(startServer("body actions"));
    }

    void problemsAreGroupedAndReplaced()
    {
        Notifier n;
        QTRY_VERIFY(n.notifications.supportsActions());

        n.notifier.notice({ n.clock.now(), QStringLiteral("/home/ann/a <1>.txt"), Test::at(-60), Kind::Missed, QStringLiteral("the computer was asleep") });
        n.notifier.notice({ n.clock.now(), QStringLiteral("/home/ann/b.txt"), Test::at(-30), Kind::Missed, QStringLiteral("the computer was asleep") });
        QTRY_COMPARE(calls().size(), 2);
        const QList<Notify> first = calls();
        QCOMPARE(first.at(0).replaces, 0u);
        QCOMPARE(first.at(1).replaces, 1u); // the server's id for the first: updated, not a second one
        QCOMPARE(first.at(1).summary, QStringLiteral("2 items were missed while the computer slept"));
        QCOMPARE(first.at(1).body, QStringLiteral("a <1>.txt\nb.txt")); // no markup capability: as it is
        QCOMPARE(first.at(1).actions, (QStringList { "open-missed", "Open Now", "show-history", "Show History" }));
        QCOMPARE(first.at(1).desktopEntry, QStringLiteral("org.quillon.Quillon"));

        // A minute later it is news of its own.
        n.clock.advance(61'000);
        n.notifier.notice({ n.clock.now(), QStringLiteral("/home/ann/c.txt"), Test::at(30), Kind::Missed, QStringLiteral("the computer was asleep") });
        QTRY_COMPARE(calls().size(), 3);
        QCOMPARE(calls().at(2).replaces, 0u);
        QCOMPARE(calls().at(2).summary, QStringLiteral("1 item was missed while the computer slept"));

        // Open Now, clicked on that notification, opens what it names.
        QSignalSpy openNow(&n.notifier, &ProblemNotifier::openNowRequested);
        QSignalSpy history(&n.notifier, &ProblemNotifier::historyRequested);
        // The server's id comes with Notify's answer, which may still be on its way: a user clicks again.
        const auto clickOpenNow = [&] {
            if (openNow.isEmpty())
                emitAction(2, QStringLiteral("open-missed"));
            return !openNow.isEmpty();
        };
        QTRY_VERIFY(clickOpenNow());
        QCOMPARE(openNow.at(0).at(0).toStringList(), QStringList { QStringLiteral("/home/ann/c.txt") });
        QVERIFY(history.isEmpty());
        emitAction(2, QStringLiteral("show-history"));
        QTRY_COMPARE(history.size(), 1);

        // Launches only when asked for; problems not when turned off.
        n.notifier.notice({ n.clock.now(), QStringLiteral("/x"), Test::at(30), Kind::Opened, QStringLiteral("document") });
        n.preferences.setValue(Keys::NotifyProblems, false);
        n.notifier.notice({ n.clock.now(), QStringLiteral("/y"), Test::at(30), Kind::OpenFailed, QStringLiteral("gone") });
        n.preferences.setValue(Keys::NotifyEveryLaunch, true);
        n.notifier.notice({ n.clock.now(), QStringLiteral("/z"), Test::at(30), Kind::Opened, QStringLiteral("document") });
        QTRY_COMPARE(calls().size(), 4);
        QTest::qWait(200);
        QCOMPARE(calls().size(), 4);
        QCOMPARE(calls().at(3).summary, QStringLiteral("Quillon opened 1 item"));
    }

    // Whatever the server is and whenever it comes: control and direction characters never reach
    // it, markup is escaped unless it is known to show plain text (also before its answer, and for
    // a server started later), and a click on another program's notification is not ours.
    void whatGoesOutIsSafe()
    {
        const QString hostile = QStringLiteral("550 <a href=\"https://evil.example\">x</a> & <img src=\"y\">\u202e\x1b[31m\rdone");
        const QString stripped = QStringLiteral("550 <a href=\"https://evil.example\">x</a> & <img src=\"y\">[31mdone");
        QVERIFY(startServer("body actions")); // no calls of the test before
        DesktopNotifications notifications(QDBusConnection::sessionBus());
        QSignalSpy clicked(&notifications, &DesktopNotifications::actionInvoked);
        uint ours = 0;
        notifications.notify(0, QStringLiteral("Mail\u202e refused"), hostile, {}, [&ours](uint id) { ours = id; }); // before the capabilities
        QTRY_VERIFY(ours != 0);
        QTRY_VERIFY(notifications.supportsActions());
        notifications.notify(0, QStringLiteral("Mail refused"), hostile, {}, [](uint) {});
        QTRY_COMPARE(calls().size(), 2);
        QCOMPARE(calls().at(0).summary, QStringLiteral("Mail refused"));
        QCOMPARE(calls().at(0).body, stripped.toHtmlEscaped());
        QCOMPARE(calls().at(1).body, stripped); // this server shows plain text
        emitAction(ours + 100, QStringLiteral("show-history"));
        emitAction(ours, QStringLiteral("show-history"));
        QTRY_COMPARE(clicked.size(), 1);
        QCOMPARE(clicked.at(0).at(0).toUInt(), ours);

        // Another server takes over, one that reads markup.
        QVERIFY(startServer("body body-markup actions"));
        QTest::qWait(300);
        notifications.notify(0, QStringLiteral("Mail refused"), hostile, {}, [](uint) {});
        QTRY_COMPARE(calls().size(), 1);
        QCOMPARE(calls().at(0).body, stripped.toHtmlEscaped());
    }

    // Missed items that catch-up opens are told as opened late, never with an Open Now that would
    // open them again; failed scripts are each named with their own reason.
    void caughtUpAndFailedScriptsAreToldAsTheyWere()
    {
        QVERIFY(startServer("body actions"));
        Notifier n;
        QTRY_VERIFY(n.notifications.supportsActions());
        const auto record = [&](const char *name, Kind kind, const QString &detail) {
            n.notifier.notice({ n.clock.now(), QStringLiteral("/home/ann/%1").arg(QLatin1String(name)), Test::at(-60), kind, detail });
        };
        record("a.txt", Kind::MissedWhileOff, QStringLiteral("Quillon was not running"));
        record("b.txt", Kind::MissedWhileOff, QStringLiteral("Quillon was not running"));
        QTRY_COMPARE(calls().size(), 2);
        // The two notices go out in either order.
        const auto last = [this](const QString &summary) {
            const QList<Notify> all = calls();
            for (auto it = all.rbegin(); it != all.rend(); ++it) {
                if (it->summary == summary)
                    return *it;
            }
            return Notify();
        };
        record("a.txt", Kind::OpenedLate, QStringLiteral("document, 10 min late"));
        QTRY_COMPARE(calls().size(), 4);
        QCOMPARE(last(QStringLiteral("1 item was missed while Quillon was not running")).body, QStringLiteral("b.txt")); // Open Now for b only
        QCOMPARE(last(QStringLiteral("1 missed item was opened late")).actions, (QStringList { "show-history", "Show History" }));
        record("b.txt", Kind::OpenedLate, QStringLiteral("document, 10 min late"));
        QTRY_COMPARE(calls().size(), 5);
        QCOMPARE(calls().at(4).summary, QStringLiteral("2 missed items were opened late"));
        QTRY_COMPARE(closed(), QList<uint> { 1 }); // the missed notice, with its Open Now, is gone

        for (const char *name : { "backup.scpt", "sync.scpt", "mail.scpt" })
            record(name, Kind::ScriptFailed, QStringLiteral("exit status %1").arg(qstrlen(name)));
        // Updated in place as they come: the last word names all three.
        QTRY_COMPARE(calls().constLast().summary, QStringLiteral("3 scripts failed"));
        QCOMPARE(calls().constLast().body, QStringLiteral("backup.scpt: exit status 11\nsync.scpt: exit status 9\nmail.scpt: exit status 9"));
    }

private:
    // The mock's log of one method's calls, each as its arguments.
    QList<QVariantList> calledWith(const QString &method)
    {
        const QDBusArgument list = m_mock->control(Path, QStringLiteral("GetCalls")).arguments().value(0).value<QDBusArgument>();
        QList<QVariantList> out;
        list.beginArray();
        while (!list.atEnd()) {
            quint64 time = 0;
            QString name;
            QVariantList args;
            list.beginStructure();
            list >> time >> name >> args;
            list.endStructure();
            if (name != method)
                continue;
            for (QVariant &arg : args)
                arg = arg.canConvert<QDBusVariant>() ? arg.value<QDBusVariant>().variant() : arg;
            out << args;
        }
        list.endArray();
        return out;
    }
    QList<uint> closed()
    {
        QList<uint> ids;
        for (const QVariantList &args : calledWith(QStringLiteral("CloseNotification")))
            ids << args.value(0).toUInt();
        return ids;
    }
    QList<Notify> calls()
    {
        QList<Notify> out;
        for (const QVariantList &args : calledWith(QStringLiteral("Notify"))) {
            Notify n;
            n.replaces = args.value(1).toUInt();
            n.summary = args.value(3).toString();
            n.body = args.value(4).toString();
            n.actions = qdbus_cast<QStringList>(args.value(5));
            n.desktopEntry = qdbus_cast<QVariantMap>(args.value(6)).value(QStringLiteral("desktop-entry")).toString();
            out << n;
        }
        return out;
    }
    void emitAction(uint id, const QString &key)
    {
        m_mock->control(Path, QStringLiteral("EmitSignal"),
            { Service, QStringLiteral("ActionInvoked"), QStringLiteral("us"), QVariant::fromValue(QVariantList { id, key }) });
    }

    bool startServer(const char *capabilities)
    {
        m_mock.reset(); // its name goes with it
        m_mock = std::make_unique<Test::DBusMock>();
        return m_mock->start({ QStringLiteral("--template"), QStringLiteral("notification_daemon"), QStringLiteral("-p"),
                                 QStringLiteral("{\"capabilities\": \"%1\"}").arg(QLatin1String(capabilities)) },
            Service);
    }

    Test::PrivateBus m_bus;
    std::unique_ptr<Test::DBusMock> m_mock;
};

QTEST_GUILESS_MAIN(NotificationsTest)
#include "notifications_test.moc"

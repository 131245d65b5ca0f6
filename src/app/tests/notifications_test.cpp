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
using namespace Qt::StringLiterals;
using Kind = History::Kind;

namespace {
const QString Service = u"org.freedesktop.Notifications"_s;
const QString Path = u"/org/freedesktop/Notifications"_s;

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

        n.notifier.notice({ n.clock.now(), u"/home/ann/a <1>.txt"_s, Test::at(-60), Kind::Missed, u"the computer was asleep"_s });
        n.notifier.notice({ n.clock.now(), u"/home/ann/b.txt"_s, Test::at(-30), Kind::Missed, u"the computer was asleep"_s });
        QTRY_COMPARE(calls().size(), 2);
        const QList<Notify> first = calls();
        QCOMPARE(first.at(0).replaces, 0u);
        QCOMPARE(first.at(1).replaces, 1u); // the server's id for the first: updated, not a second one
        QCOMPARE(first.at(1).summary, u"2 items were missed while the computer slept"_s);
        QCOMPARE(first.at(1).body, u"a <1>.txt\nb.txt"_s); // no markup capability: as it is
        QCOMPARE(first.at(1).actions, (QStringList { "open-missed", "Open Now", "show-history", "Show History" }));
        QCOMPARE(first.at(1).desktopEntry, u"org.quillon.Quillon"_s);

        // A minute later it is news of its own.
        n.clock.advance(61'000);
        n.notifier.notice({ n.clock.now(), u"/home/ann/c.txt"_s, Test::at(30), Kind::Missed, u"the computer was asleep"_s });
        QTRY_COMPARE(calls().size(), 3);
        QCOMPARE(calls().at(2).replaces, 0u);
        QCOMPARE(calls().at(2).summary, u"1 item was missed while the computer slept"_s);

        // Open Now, clicked on that notification, opens what it names.
        QSignalSpy openNow(&n.notifier, &ProblemNotifier::openNowRequested);
        QSignalSpy history(&n.notifier, &ProblemNotifier::historyRequested);
        // The server's id comes with Notify's answer, which may still be on its way: a user clicks again.
        const auto clickOpenNow = [&] {
            if (openNow.isEmpty())
                emitAction(2, u"open-missed"_s);
            return !openNow.isEmpty();
        };
        QTRY_VERIFY(clickOpenNow());
        QCOMPARE(openNow.at(0).at(0).toStringList(), QStringList { u"/home/ann/c.txt"_s });
        QVERIFY(history.isEmpty());
        emitAction(2, u"show-history"_s);
        QTRY_COMPARE(history.size(), 1);

        // Launches only when asked for; problems not when turned off.
        n.notifier.notice({ n.clock.now(), u"/x"_s, Test::at(30), Kind::Opened, u"document"_s });
        n.preferences.setValue(Keys::NotifyProblems, false);
        n.notifier.notice({ n.clock.now(), u"/y"_s, Test::at(30), Kind::OpenFailed, u"gone"_s });
        n.preferences.setValue(Keys::NotifyEveryLaunch, true);
        n.notifier.notice({ n.clock.now(), u"/z"_s, Test::at(30), Kind::Opened, u"document"_s });
        QTRY_COMPARE(calls().size(), 4);
        QTest::qWait(200);
        QCOMPARE(calls().size(), 4);
        QCOMPARE(calls().at(3).summary, u"Quillon opened 1 item"_s);
    }

    // Whatever the server is and whenever it comes: control and direction characters never reach
    // it, markup is escaped unless it is known to show plain text (also before its answer, and for
    // a server started later), and a click on another program's notification is not ours.
    void whatGoesOutIsSafe()
    {
        const QString hostile = u"550 <a href=\"https://evil.example\">x</a> & <img src=\"y\">\u202e\x1b[31m\rdone"_s;
        const QString stripped = u"550 <a href=\"https://evil.example\">x</a> & <img src=\"y\">[31mdone"_s;
        QVERIFY(startServer("body actions")); // no calls of the test before
        DesktopNotifications notifications(QDBusConnection::sessionBus());
        QSignalSpy clicked(&notifications, &DesktopNotifications::actionInvoked);
        uint ours = 0;
        notifications.notify(0, u"Mail\u202e refused"_s, hostile, {}, [&ours](uint id) { ours = id; }); // before the capabilities
        QTRY_VERIFY(ours != 0);
        QTRY_VERIFY(notifications.supportsActions());
        notifications.notify(0, u"Mail refused"_s, hostile, {}, [](uint) {});
        QTRY_COMPARE(calls().size(), 2);
        QCOMPARE(calls().at(0).summary, u"Mail refused"_s);
        QCOMPARE(calls().at(0).body, stripped.toHtmlEscaped());
        QCOMPARE(calls().at(1).body, stripped); // this server shows plain text
        emitAction(ours + 100, u"show-history"_s);
        emitAction(ours, u"show-history"_s);
        QTRY_COMPARE(clicked.size(), 1);
        QCOMPARE(clicked.at(0).at(0).toUInt(), ours);

        // Another server takes over, one that reads markup.
        QVERIFY(startServer("body body-markup actions"));
        QTest::qWait(300);
        notifications.notify(0, u"Mail refused"_s, hostile, {}, [](uint) {});
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
            n.notifier.notice({ n.clock.now(), u"/home/ann/%1"_s.arg(QLatin1String(name)), Test::at(-60), kind, detail });
        };
        record("a.txt", Kind::MissedWhileOff, u"Quillon was not running"_s);
        record("b.txt", Kind::MissedWhileOff, u"Quillon was not running"_s);
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
        record("a.txt", Kind::OpenedLate, u"document, 10 min late"_s);
        QTRY_COMPARE(calls().size(), 4);
        QCOMPARE(last(u"1 item was missed while Quillon was not running"_s).body, u"b.txt"_s); // Open Now for b only
        QCOMPARE(last(u"1 missed item was opened late"_s).actions, (QStringList { "show-history", "Show History" }));
        record("b.txt", Kind::OpenedLate, u"document, 10 min late"_s);
        QTRY_COMPARE(calls().size(), 5);
        QCOMPARE(calls().at(4).summary, u"2 missed items were opened late"_s);
        QTRY_COMPARE(closed(), QList<uint> { 1 }); // the missed notice, with its Open Now, is gone

        for (const char *name : { "backup.scpt", "sync.scpt", "mail.scpt" })
            record(name, Kind::ScriptFailed, u"exit status %1"_s.arg(qstrlen(name)));
        // Updated in place as they come: the last word names all three.
        QTRY_COMPARE(calls().constLast().summary, u"3 scripts failed"_s);
        QCOMPARE(calls().constLast().body, u"backup.scpt: exit status 11\nsync.scpt: exit status 9\nmail.scpt: exit status 9"_s);
    }

private:
    // The mock's log of one method's calls, each as its arguments.
    QList<QVariantList> calledWith(const QString &method)
    {
        const QDBusArgument list = m_mock->control(Path, u"GetCalls"_s).arguments().value(0).value<QDBusArgument>();
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
        for (const QVariantList &args : calledWith(u"CloseNotification"_s))
            ids << args.value(0).toUInt();
        return ids;
    }
    QList<Notify> calls()
    {
        QList<Notify> out;
        for (const QVariantList &args : calledWith(u"Notify"_s)) {
            Notify n;
            n.replaces = args.value(1).toUInt();
            n.summary = args.value(3).toString();
            n.body = args.value(4).toString();
            n.actions = qdbus_cast<QStringList>(args.value(5));
            n.desktopEntry = qdbus_cast<QVariantMap>(args.value(6)).value(u"desktop-entry"_s).toString();
            out << n;
        }
        return out;
    }
    void emitAction(uint id, const QString &key)
    {
        m_mock->control(Path, u"EmitSignal"_s, { Service, u"ActionInvoked"_s, u"us"_s, QVariant::fromValue(QVariantList { id, key }) });
    }

    bool startServer(const char *capabilities)
    {
        m_mock.reset(); // its name goes with it
        m_mock = std::make_unique<Test::DBusMock>();
        return m_mock->start({ u"--template"_s, u"notification_daemon"_s, u"-p"_s, u"{\"capabilities\": \"%1\"}"_s.arg(QLatin1String(capabilities)) }, Service);
    }

    Test::PrivateBus m_bus;
    std::unique_ptr<Test::DBusMock> m_mock;
};

QTEST_GUILESS_MAIN(NotificationsTest)
#include "notifications_test.moc"

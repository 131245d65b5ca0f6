#include "DBusMock.h"
#include "FakeClock.h"
#include "FakeWakeAlarm.h"
#include "LogindPowerService.h"
#include "Preferences.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "SettingsKeys.h"
#include "TestSupport.h"
#include "TimerFdClock.h"
#include "WakeAlarms.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDir>
#include <QProcess>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>

#include <ctime>
#include <unistd.h>

using namespace Quillon;
using namespace Qt::StringLiterals;
using Test::at;
using Test::readFile;

namespace {
const QString Logind = u"org.freedesktop.login1"_s;
const QString LogindPath = u"/org/freedesktop/login1"_s;
const QString LogindManager = u"org.freedesktop.login1.Manager"_s;

// The power service on a fake alarm and a schedule on a fake clock, wired as the program wires them.
struct Machine
{
    explicit Machine(Preferences &prefs)
        : power({ alarm })
        , schedule(prefs, clock)
        , editor(schedule, prefs)
    {
        schedule.setPowerService(&power);
        QObject::connect(&power, &PowerService::willSleep, &schedule, &Schedule::scheduleWakeUp);
        QObject::connect(&power, &PowerService::didWake, &clock, &WallClock::checkForResume);
    }
    void start(const QList<std::pair<const char *, double>> &items)
    {
        for (const auto &[path, offset] : items)
            editor.add({ QString::fromUtf8(path) }, at(offset));
        schedule.startStopButtonClicked();
    }
    FakeWakeAlarm *alarm = new FakeWakeAlarm; // owned by the service
    LogindPowerService power;
    FakeClock clock { Test::Now };
    Schedule schedule;
    ScheduleEditor editor;
};

QDBusMessage call(const QString &service, const QString &path, const QString &interface, const QString &method, const QVariantList &args)
{
    QDBusMessage m = QDBusMessage::createMethodCall(service, path, interface, method);
    m.setArguments(args);
    return QDBusConnection::sessionBus().call(m);
}
} // namespace

// Sleep and wake against mocked logind, KDE and systemd services, and the real kernel timer and alarm.
class WakeTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_bus.start());
        const QByteArray address = m_bus.address().toUtf8();
        // One private bus stands in for both; set before Qt connects to either.
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", address);
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        QVERIFY(QDBusConnection::sessionBus().isConnected());
    }
    void init() { m_log.clear(); }

    void sleepRequestsOneWake_data()
    {
        QTest::addColumn<QString>("canSuspend");
        QTest::addColumn<QString>("story");
        QTest::addColumn<QList<qint64>>("requests");
        const qint64 wake = at(1800 - 15).toSecsSinceEpoch();
        QTest::newRow("10:00 and 09:30: one wake at 09:29:45") << u"yes"_s << u"two"_s << QList<qint64> { wake };
        QTest::newRow("no armed item") << u"yes"_s << u"none"_s << QList<qint64> {};
        QTest::newRow("schedule stopped") << u"yes"_s << u"stopped"_s << QList<qint64> {};
        QTest::newRow("sleep not available (na)") << u"na"_s << u"two"_s << QList<qint64> {};
    }
    void sleepRequestsOneWake()
    {
        QFETCH(QString, canSuspend);
        QFETCH(QString, story);
        QFETCH(QList<qint64>, requests);
        Test::DBusMock logind;
        QVERIFY(startLogind(logind, canSuspend));
        Machine m(m_prefs);
        QVERIFY(m.power.registerForNotifications());
        QTRY_VERIFY(m.power.holdsInhibitor());
        if (story != QLatin1String("none"))
            m.start({ { "/ten", 3600 }, { "/half-past-nine", 1800 } });
        if (story == QLatin1String("stopped"))
            m.schedule.startStopButtonClicked();
        QTest::qWait(100); // CanSuspend's answer
        emitPrepareForSleep(true);
        QTRY_VERIFY(!m.power.holdsInhibitor());
        QCOMPARE(m.alarm->requests, requests);
    }

    // Due during sleep: missed and dropped, or opened once after the wake when asked, a daily one going on tomorrow.
    void itemsDueDuringSleepAreMissed_data()
    {
        QTest::addColumn<bool>("catchUp");
        QTest::newRow("dropped") << false;
        QTest::newRow("caught up") << true;
    }
    void itemsDueDuringSleepAreMissed()
    {
        QFETCH(bool, catchUp);
        Test::DBusMock logind;
        QVERIFY(startLogind(logind));
        m_prefs.setValues({ { Keys::OpenMissedItems, catchUp }, { Keys::RepeatSeconds, 1 }, { Keys::TimeUnit, 3 } });
        auto reset = qScopeGuard([this] { m_prefs.setValues({ { Keys::OpenMissedItems, false }, { Keys::RepeatSeconds, 0 } }); });
        Machine m(m_prefs);
        QStringList opened;
        for (auto told : { &Schedule::launched, &Schedule::caughtUp })
            QObject::connect(&m.schedule, told, &m.schedule, [&opened](const QString &path) { opened << path; });
        QSignalSpy missed(&m.schedule, &Schedule::missed);
        QVERIFY(m.power.registerForNotifications());
        m.start({ { "/tomorrow", 86'400 + 600 }, { "/daily-later", 120 }, { "/daily-first", 60 } });
        emitPrepareForSleep(true);
        m.clock.suspend(3600'000, false);
        emitPrepareForSleep(false);
        QTRY_COMPARE(missed.size(), 2);
        QCOMPARE(missed.at(0).at(1).toDateTime(), at(60));
        const QStringList expected = catchUp ? QStringList { u"/daily-first"_s, u"/daily-later"_s } : QStringList {};
        QCOMPARE(opened, expected);
        const QList<TimerSlot> timers = m.schedule.timers();
        QCOMPARE(m.schedule.dates().at(2), catchUp ? at(60 + 86'400) : at(60));
        QCOMPARE(timers.at(2) && timers.at(2)->isValid(), catchUp);
        QVERIFY(timers.at(0)->isValid());
    }

    // Held while awake; let go only once the request is with the kernel or the daemon; taken again on wake.
    void inhibitorIsReleasedOnlyAfterTheRequest()
    {
        Test::DBusMock logind;
        QVERIFY(startLogind(logind));
        Machine m(m_prefs);
        m.alarm->hold = true;
        QVERIFY(m.power.registerForNotifications());
        QTRY_VERIFY(m.power.holdsInhibitor());
        QTRY_COMPARE(inhibitors(), 1);
        m.start({ { "/item", 600 } });

        emitPrepareForSleep(true);
        QTRY_COMPARE(m.alarm->requests.size(), 1);
        QTest::qWait(200);
        QVERIFY(m.power.holdsInhibitor());
        m.alarm->acknowledge();
        QVERIFY(!m.power.holdsInhibitor());
        QTRY_COMPARE(inhibitors(), 0);

        emitPrepareForSleep(false);
        QTRY_VERIFY(m.power.holdsInhibitor());
        QTRY_COMPARE(inhibitors(), 1);
        // Nothing slept in the fake clock's view: the schedule is left as it was.
        QVERIFY(m.schedule.timersRunning());
        QCOMPARE(m.schedule.timersRemaining(), 1);
    }

    // The first way that works does the work; with none, the log says so once.
    void firstAvailableWayIsUsed()
    {
        auto *missing = new FakeWakeAlarm(false);
        auto *present = new FakeWakeAlarm(true);
        LogindPowerService power({ missing, present });
        power.registerForNotifications();
        QCOMPARE(power.chosenAlarm(), present);
        QVERIFY(power.schedulePowerWake(at(100), 15));
        QCOMPARE(present->requests, QList<qint64> { at(85).toSecsSinceEpoch() });

        LogindPowerService none({ new FakeWakeAlarm(false) });
        none.registerForNotifications();
        QVERIFY(!none.schedulePowerWake(at(100), 15));
        QVERIFY(!none.schedulePowerWake(at(200), 15));
        // Says what really happens to those items: the timer engine drops them after wake.
        QCOMPARE(m_log.filter(u"No wake-up can be arranged, so items due while the machine sleeps are skipped"_s).size(), 1);
    }

    void kdePowerDaemonGetsTheEpochSeconds()
    {
        const QString service = u"org.kde.Solid.PowerManagement"_s;
        const QString log = m_home.filePath(u"kde.log"_s);
        Test::DBusMock kde;
        QVERIFY(kde.start({ service, u"/org/kde/Solid/PowerManagement"_s, service }, service, log));
        kde.control(u"/org/kde/Solid/PowerManagement"_s, u"AddMethod"_s, { service, u"scheduleWakeup"_s, u"sot"_s, u"u"_s, u"ret = 7"_s });
        KdeWakeAlarm alarm;
        QCOMPARE(armThrough(alarm, 1'900'000'123), QString());
        QTRY_VERIFY2(readFile(log).contains(QLatin1String("scheduleWakeup")) && readFile(log).contains(QLatin1String("1900000123")), qPrintable(readFile(log)));
    }

    void systemdTimerOnlyFrom254_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("used");
        QTest::newRow("254") << u"254"_s << true;
        QTest::newRow("252 (Debian 12)") << u"252.22-1~deb12u1"_s << false;
    }
    void systemdTimerOnlyFrom254()
    {
        QFETCH(QString, version);
        QFETCH(bool, used);
        const QString service = u"org.freedesktop.systemd1"_s;
        const QString log = m_home.filePath(u"systemd-%1.log"_s.arg(version));
        Test::DBusMock systemd;
        QVERIFY(systemd.start({ u"--session"_s, u"--template"_s, u"systemd"_s }, service, log));
        call(service, u"/org/freedesktop/systemd1"_s, u"org.freedesktop.DBus.Properties"_s, u"Set"_s,
            { u"org.freedesktop.systemd1.Manager"_s, u"Version"_s, QVariant::fromValue(QDBusVariant(version)) });
        auto *alarm = new SystemdWakeAlarm;
        LogindPowerService power({ alarm });
        QSignalSpy chosen(&power, &LogindPowerService::wakeChoiceMade);
        power.registerForNotifications();
        QTRY_COMPARE(chosen.count(), 1);
        QCOMPARE(power.chosenAlarm() == alarm, used);
        QSignalSpy done(alarm, &WakeAlarm::requestDone);
        power.schedulePowerWake(QDateTime(QDate(2027, 1, 15), QTime(7, 0, 15), Qt::UTC), 15);
        if (!used) {
            QTest::qWait(200);
            QVERIFY(!readFile(log).contains(QLatin1String("StartTransientUnit")));
            return;
        }
        QTRY_COMPARE(done.count(), 1);
        const QString calls = readFile(log);
        QVERIFY2(calls.contains(QLatin1String("StartTransientUnit")), qPrintable(calls));
        QVERIFY2(calls.contains(QLatin1String("WakeSystem")) && calls.contains(QLatin1String("2027-01-15 07:00:00 UTC")), qPrintable(calls));
    }

    // The kernel timer: a resume is told once, before anything fires, whoever notices it first.
    void resumeIsToldOnceAndBeforeAnyFiring_data()
    {
        QTest::addColumn<bool>("loginNoticesFirst");
        QTest::newRow("the timer notices") << false;
        QTest::newRow("logind notices first") << true;
    }
    void resumeIsToldOnceAndBeforeAnyFiring()
    {
        QFETCH(bool, loginNoticesFirst);
        qint64 slept = 0;
        TimerFdClock clock([&slept] { return slept; });
        QStringList events;
        connect(&clock, &WallClock::resumed, this, [&] { events << u"resumed"_s; });
        connect(&clock, &WallClock::expired, this, [&] { events << u"expired"_s; });

        clock.aimAt(clock.nowMSecs() + 100);
        slept += 60'000'000'000; // a minute asleep
        if (loginNoticesFirst)
            clock.checkForResume();
        QTRY_VERIFY(!events.isEmpty());
        QTest::qWait(200);
        QCOMPARE(events.first(), u"resumed"_s);
        QCOMPARE(events.count(u"resumed"_s), 1);
        clock.checkForResume();
        QCOMPARE(events.count(u"resumed"_s), 1);

        // Awake again, the timer fires as before.
        events.clear();
        clock.aimAt(clock.nowMSecs() + 50);
        QTRY_COMPARE(events, QStringList { u"expired"_s });
    }

    void settingTheClockIsReported()
    {
        if (::geteuid() != 0)
            QSKIP("Needs root (CAP_SYS_TIME) to set the wall clock.");
        TimerFdClock clock;
        QSignalSpy changed(&clock, &WallClock::clockChanged);
        QSignalSpy expired(&clock, &WallClock::expired);
        clock.aimAt(clock.nowMSecs() + 3600'000);
        // Set to what it already reads: any setting of the clock cancels the timer.
        timespec now {};
        ::clock_gettime(CLOCK_REALTIME, &now);
        QCOMPARE(::clock_settime(CLOCK_REALTIME, &now), 0);
        QTRY_COMPARE(changed.count(), 1);
        QCOMPARE(expired.count(), 0);
    }
    // The system service on a private bus with a mocked polkit: an alarm timer armed for the time
    // asked (as root, which holds CAP_WAKE_ALARM) for a caller polkit allows, none for one it
    // refuses or for a time that is not ahead within a year; gone when the caller leaves the bus.
    void serviceArmsOnlyForWhomPolkitAllows_data()
    {
        QTest::addColumn<QStringList>("allowed");
        QTest::addColumn<qint64>("inSecs");
        QTest::addColumn<QString>("error"); // empty: armed
        const QStringList wake { u"org.quillon.wake"_s };
        QTest::newRow("allowed") << wake << qint64(3600) << u""_s;
        QTest::newRow("refused by polkit") << QStringList() << qint64(3600) << u"AccessDenied"_s;
        QTest::newRow("a moment past") << wake << qint64(-5) << u"InvalidArgs"_s;
        QTest::newRow("more than a year ahead") << wake << qint64(400) * 86'400 << u"InvalidArgs"_s;
    }
    void serviceArmsOnlyForWhomPolkitAllows()
    {
        QFETCH(QStringList, allowed);
        QFETCH(qint64, inSecs);
        QFETCH(QString, error);
        if (error.isEmpty() && ::geteuid() != 0)
            QSKIP("Arming a wake alarm needs CAP_WAKE_ALARM, which root holds.");
        Test::DBusMock polkit;
        QVERIFY(polkit.start({ u"--system"_s, u"--template"_s, u"polkitd"_s }, u"org.freedesktop.PolicyKit1"_s));
        QCOMPARE(polkit.control(u"/org/freedesktop/PolicyKit1/Authority"_s, u"SetAllowed"_s, { allowed }).type(), QDBusMessage::ReplyMessage);
        QProcess service;
        service.setProcessChannelMode(QProcess::ForwardedChannels);
        service.start(QStringLiteral(WAKE_SERVICE), {});
        QDBusConnectionInterface *bus = QDBusConnection::sessionBus().interface();
        QVERIFY(QTest::qWaitFor([bus] { return bus->isServiceRegistered(u"org.quillon.Wake1"_s).value(); }, 10'000));
        const auto stop = qScopeGuard([&service] {
            service.terminate();
            service.waitForFinished(3000);
        });

        {
            QDBusConnection caller = QDBusConnection::connectToBus(m_bus.address(), u"caller"_s);
            QDBusMessage arm = QDBusMessage::createMethodCall(u"org.quillon.Wake1"_s, u"/org/quillon/Wake1"_s, u"org.quillon.Wake1"_s, u"Arm"_s);
            arm << QDateTime::currentSecsSinceEpoch() + inSecs;
            const QDBusMessage reply = caller.call(arm);
            QVERIFY2(error.isEmpty() ? reply.type() == QDBusMessage::ReplyMessage : reply.errorName().endsWith(error), qPrintable(reply.errorMessage()));
            QCOMPARE(wakeAlarmsOf(service.processId()), error.isEmpty() ? QList<qint64> { inSecs } : QList<qint64> {});
        }
        QDBusConnection::disconnectFromBus(u"caller"_s);
        QTRY_COMPARE(wakeAlarmsOf(service.processId()), QList<qint64> {});
        if (error.isEmpty()) {
            // Quillon's side finds the service and has it arm one.
            ServiceWakeAlarm ours;
            QCOMPARE(armThrough(ours, QDateTime::currentSecsSinceEpoch() + 600), QString());
        }
    }

private:
    // Probed, then asked to wake at epochSecs: empty once the way has the request, else why not.
    static QString armThrough(WakeAlarm &alarm, qint64 epochSecs)
    {
        QSignalSpy probed(&alarm, &WakeAlarm::probed);
        QSignalSpy done(&alarm, &WakeAlarm::requestDone);
        alarm.probe();
        if (!QTest::qWaitFor([&] { return !probed.isEmpty(); }, 10'000) || !probed.first().first().toBool())
            return u"not available: "_s + probed.value(0).value(1).toString();
        alarm.request(epochSecs);
        if (!QTest::qWaitFor([&] { return !done.isEmpty(); }, 10'000))
            return u"no answer"_s;
        return done.first().first().toBool() ? QString() : done.first().last().toString();
    }
    // The wake alarm timers (clock 8, CLOCK_REALTIME_ALARM) a process holds: seconds left, rounded
    // to the minute the tests ask in.
    static QList<qint64> wakeAlarmsOf(qint64 pid)
    {
        QList<qint64> left;
        for (const QString &fd : QDir(u"/proc/%1/fd"_s.arg(pid)).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)) {
            const QString info = readFile(u"/proc/%1/fdinfo/%2"_s.arg(pid).arg(fd));
            if (info.contains(QLatin1String("clockid: 8")))
                left << (info.section(QLatin1String("it_value: ("), 1).section(QLatin1Char(','), 0, 0).toLongLong() + 30) / 60 * 60;
        }
        return left;
    }
    bool startLogind(Test::DBusMock &logind, const QString &canSuspend = u"yes"_s)
    {
        return logind.start(
            { u"--system"_s, u"--template"_s, u"logind"_s, u"-p"_s, u"{\"CanSuspend\": \"%1\"}"_s.arg(canSuspend) }, Logind, m_home.filePath(u"logind.log"_s));
    }
    void emitPrepareForSleep(bool start)
    {
        call(Logind, LogindPath, u"org.freedesktop.DBus.Mock"_s, u"EmitSignal"_s,
            { LogindManager, u"PrepareForSleep"_s, u"b"_s, QVariant::fromValue(QVariantList { start }) });
    }
    int inhibitors()
    {
        const QDBusMessage reply = call(Logind, LogindPath, LogindManager, u"ListInhibitors"_s, {});
        return int(qdbus_cast<QVariantList>(reply.arguments().value(0)).size());
    }

    Test::PrivateBus m_bus;
    QTemporaryDir m_home;
    TestSettings m_settings; // first: it points the preferences at their folder
    Preferences m_prefs;
    Test::CapturedLog m_log;
};

QTEST_GUILESS_MAIN(WakeTest)
#include "wake_test.moc"

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
using Test::at;
using Test::readFile;

namespace {
const QString Logind = QStringLiteral("org.freedesktop.login1");
const QString LogindPath = QStringLiteral("/org/freedesktop/login1");
const QString LogindManager = QStringLiteral("org.freedesktop.login1.Manager");

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
        QTest::newRow("10:00 and 09:30: one wake at 09:29:45") << "yes"
                                                               << "two" << QList<qint64> { wake };
        QTest::newRow("no armed item") << "yes"
                                       << "none" << QList<qint64> {};
        QTest::newRow("schedule stopped") << "yes"
                                          << "stopped" << QList<qint64> {};
        QTest::newRow("sleep not available (na)") << "na"
                                                  << "two" << QList<qint64> {};
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
        const QStringList expected = catchUp ? QStringList { QStringLiteral("/daily-first"), QStringLiteral("/daily-later") } : QStringList {};
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
        QCOMPARE(m_log.filter(QStringLiteral("No wake-up can be arranged, so items due while the machine sleeps are skipped")).size(), 1);
    }

    void kdePowerDaemonGetsTheEpochSeconds()
    {
        const QString service = QStringLiteral("org.kde.Solid.PowerManagement");
        const QString log = m_home.filePath(QStringLiteral("kde.log"));
        Test::DBusMock kde;
        QVERIFY(kde.start({ service, QStringLiteral("/org/kde/Solid/PowerManagement"), service }, service, log));
        kde.control(QStringLiteral("/org/kde/Solid/PowerManagement"), QStringLiteral("AddMethod"),
            { service, QStringLiteral("scheduleWakeup"), QStringLiteral("sot"), QStringLiteral("u"), QStringLiteral("ret = 7") });
        KdeWakeAlarm alarm;
        QSignalSpy probed(&alarm, &WakeAlarm::probed);
        QSignalSpy done(&alarm, &WakeAlarm::requestDone);
        alarm.probe();
        QTRY_COMPARE(probed.count(), 1);
        QVERIFY(probed.first().first().toBool());
        alarm.request(1'900'000'123);
        QTRY_COMPARE(done.count(), 1);
        QVERIFY(done.first().first().toBool());
        QTRY_VERIFY(readFile(log).contains(QLatin1String("scheduleWakeup")));
        QVERIFY2(readFile(log).contains(QLatin1String("1900000123")), qPrintable(readFile(log)));
    }

    void systemdTimerOnlyFrom254_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("used");
        QTest::newRow("254") << "254" << true;
        QTest::newRow("252 (Debian 12)") << "252.22-1~deb12u1" << false;
    }
    void systemdTimerOnlyFrom254()
    {
        QFETCH(QString, version);
        QFETCH(bool, used);
        const QString service = QStringLiteral("org.freedesktop.systemd1");
        const QString log = m_home.filePath(QStringLiteral("systemd-%1.log").arg(version));
        Test::DBusMock systemd;
        QVERIFY(systemd.start({ QStringLiteral("--session"), QStringLiteral("--template"), QStringLiteral("systemd") }, service, log));
        call(service, QStringLiteral("/org/freedesktop/systemd1"), QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Set"),
            { QStringLiteral("org.freedesktop.systemd1.Manager"), QStringLiteral("Version"), QVariant::fromValue(QDBusVariant(version)) });
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
        connect(&clock, &WallClock::resumed, this, [&] { events << QStringLiteral("resumed"); });
        connect(&clock, &WallClock::expired, this, [&] { events << QStringLiteral("expired"); });

        clock.aimAt(clock.nowMSecs() + 100);
        slept += 60'000'000'000; // a minute asleep
        if (loginNoticesFirst)
            clock.checkForResume();
        QTRY_VERIFY(!events.isEmpty());
        QTest::qWait(200);
        QCOMPARE(events.first(), QStringLiteral("resumed"));
        QCOMPARE(events.count(QStringLiteral("resumed")), 1);
        clock.checkForResume();
        QCOMPARE(events.count(QStringLiteral("resumed")), 1);

        // Awake again, the timer fires as before.
        events.clear();
        clock.aimAt(clock.nowMSecs() + 50);
        QTRY_COMPARE(events, QStringList { QStringLiteral("expired") });
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
        const QStringList wake { QStringLiteral("org.quillon.wake") };
        QTest::newRow("allowed") << wake << qint64(3600) << "";
        QTest::newRow("refused by polkit") << QStringList() << qint64(3600) << "AccessDenied";
        QTest::newRow("a moment past") << wake << qint64(-5) << "InvalidArgs";
        QTest::newRow("more than a year ahead") << wake << qint64(400) * 86'400 << "InvalidArgs";
    }
    void serviceArmsOnlyForWhomPolkitAllows()
    {
        QFETCH(QStringList, allowed);
        QFETCH(qint64, inSecs);
        QFETCH(QString, error);
        if (error.isEmpty() && ::geteuid() != 0)
            QSKIP("Arming a wake alarm needs CAP_WAKE_ALARM, which root holds.");
        Test::DBusMock polkit;
        QVERIFY(polkit.start(
            { QStringLiteral("--system"), QStringLiteral("--template"), QStringLiteral("polkitd") }, QStringLiteral("org.freedesktop.PolicyKit1")));
        QCOMPARE(polkit.control(QStringLiteral("/org/freedesktop/PolicyKit1/Authority"), QStringLiteral("SetAllowed"), { allowed }).type(),
            QDBusMessage::ReplyMessage);
        QProcess service;
        service.setProcessChannelMode(QProcess::ForwardedChannels);
        service.start(QStringLiteral(WAKE_SERVICE), {});
        QDBusConnectionInterface *bus = QDBusConnection::sessionBus().interface();
        QVERIFY(QTest::qWaitFor([bus] { return bus->isServiceRegistered(QStringLiteral("org.quillon.Wake1")).value(); }, 10'000));
        const auto stop = qScopeGuard([&service] {
            service.terminate();
            service.waitForFinished(3000);
        });

        {
            QDBusConnection caller = QDBusConnection::connectToBus(m_bus.address(), QStringLiteral("caller"));
            QDBusMessage arm = QDBusMessage::createMethodCall(
                QStringLiteral("org.quillon.Wake1"), QStringLiteral("/org/quillon/Wake1"), QStringLiteral("org.quillon.Wake1"), QStringLiteral("Arm"));
            arm << QDateTime::currentSecsSinceEpoch() + inSecs;
            const QDBusMessage reply = caller.call(arm);
            QVERIFY2(error.isEmpty() ? reply.type() == QDBusMessage::ReplyMessage : reply.errorName().endsWith(error), qPrintable(reply.errorMessage()));
            QCOMPARE(wakeAlarmsOf(service.processId()), error.isEmpty() ? QList<qint64> { inSecs } : QList<qint64> {});
        }
        QDBusConnection::disconnectFromBus(QStringLiteral("caller"));
        QTRY_COMPARE(wakeAlarmsOf(service.processId()), QList<qint64> {});
        if (error.isEmpty()) {
            // Quillon's side finds the service and has it arm one.
            ServiceWakeAlarm ours;
            QSignalSpy probed(&ours, &WakeAlarm::probed);
            QSignalSpy done(&ours, &WakeAlarm::requestDone);
            ours.probe();
            QTRY_COMPARE(probed.count(), 1);
            QVERIFY(probed.first().first().toBool());
            ours.request(QDateTime::currentSecsSinceEpoch() + 600);
            QTRY_COMPARE(done.count(), 1);
            QVERIFY2(done.first().first().toBool(), qPrintable(done.first().last().toString()));
        }
    }

private:
    // The wake alarm timers (clock 8, CLOCK_REALTIME_ALARM) a process holds: seconds left, rounded
    // to the minute the tests ask in.
    static QList<qint64> wakeAlarmsOf(qint64 pid)
    {
        QList<qint64> left;
        for (const QString &fd : QDir(QStringLiteral("/proc/%1/fd").arg(pid)).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)) {
            const QString info = readFile(QStringLiteral("/proc/%1/fdinfo/%2").arg(pid).arg(fd));
            if (info.contains(QLatin1String("clockid: 8")))
                left << (info.section(QLatin1String("it_value: ("), 1).section(QLatin1Char(','), 0, 0).toLongLong() + 30) / 60 * 60;
        }
        return left;
    }
    bool startLogind(Test::DBusMock &logind, const QString &canSuspend = QStringLiteral("yes"))
    {
        return logind.start({ QStringLiteral("--system"), QStringLiteral("--template"), QStringLiteral("logind"), QStringLiteral("-p"),
                                QStringLiteral("{\"CanSuspend\": \"%1\"}").arg(canSuspend) },
            Logind, m_home.filePath(QStringLiteral("logind.log")));
    }
    void emitPrepareForSleep(bool start)
    {
        call(Logind, LogindPath, QStringLiteral("org.freedesktop.DBus.Mock"), QStringLiteral("EmitSignal"),
            { LogindManager, QStringLiteral("PrepareForSleep"), QStringLiteral("b"), QVariant::fromValue(QVariantList { start }) });
    }
    int inhibitors()
    {
        const QDBusMessage reply = call(Logind, LogindPath, LogindManager, QStringLiteral("ListInhibitors"), {});
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

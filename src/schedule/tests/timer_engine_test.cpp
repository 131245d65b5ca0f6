#include "Countdown.h"
#include "FakeClock.h"
#include "FakePowerService.h"
#include "Preferences.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "SettingsKeys.h"
#include "TestSupport.h"
#include "TimerFdClock.h"

#include <QDir>
#include <QSignalSpy>
#include <QTest>

#include <limits>

using namespace Quillon;
using namespace Qt::StringLiterals;

using Test::at;
using Test::Now;

class TimerEngineTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_settings.clear(m_prefs);
        m_clock = std::make_unique<FakeClock>(Now);
        m_schedule = std::make_unique<Schedule>(m_prefs, *m_clock);
        m_editor = std::make_unique<ScheduleEditor>(*m_schedule, m_prefs);
        m_schedule->createArrays();
        m_launched.clear();
        m_launchTimes.clear();
        // What the launcher would hear: a firing, or a missed item opened late.
        for (auto told : { &Schedule::launched, &Schedule::caughtUp }) {
            connect(m_schedule.get(), told, this, [this](const QString &p) {
                m_launched << p;
                m_launchTimes << m_clock->nowMSecs();
            });
        }
    }

    void onlyStrictlyFutureDatesAreArmed()
    {
        add({ { "now", 0 }, { "past", -5 }, { "soon", 0.001 }, { "later", 60 } });
        m_schedule->startTimers(false);
        QVERIFY(m_schedule->timersRunning());
        QCOMPARE(m_schedule->timersRemaining(), 2);
        QVERIFY(!m_schedule->timers()[0]);
        QVERIFY(!m_schedule->timers()[1]);
        QVERIFY(m_schedule->timers()[2] && m_schedule->timers()[2]->isValid());
        QCOMPARE(m_schedule->timers()[3]->fireDate(), at(60));
        QCOMPARE(m_schedule->timers()[3]->path(), u"later"_s);
    }

    void emptyScheduleAlertsOnlyFromTheButton_data()
    {
        QTest::addColumn<int>("how");
        QTest::addColumn<int>("alerts");
        QTest::newRow("button") << 0 << 1;
        QTest::newRow("quiet start (restore)") << 1 << 0;
        QTest::newRow("restart (date change, wake)") << 2 << 0;
    }
    void emptyScheduleAlertsOnlyFromTheButton()
    {
        QFETCH(int, how);
        QFETCH(int, alerts);
        add({ { "past", -1 } });
        QSignalSpy spy(m_schedule.get(), &Schedule::alertRequested);
        if (how == 0)
            m_schedule->startStopButtonClicked();
        else if (how == 1)
            m_schedule->startTimers(true);
        else
            m_schedule->restartTimers();
        QCOMPARE(spy.count(), alerts); // what it says: the controller's alert test
        QVERIFY(!m_schedule->timersRunning());
    }

    void itemsFireInDateOrderNeverEarlyAndTheLastStops_data()
    {
        QTest::addColumn<bool>("quitWhenDone");
        QTest::newRow("stops") << false;
        QTest::newRow("quits when done") << true;
    }
    void itemsFireInDateOrderNeverEarlyAndTheLastStops()
    {
        QFETCH(bool, quitWhenDone);
        m_prefs.setValue(Keys::QuitWhenDone, quitWhenDone);
        add({ { "c", 30 }, { "a", 10 }, { "b", 20 } });
        QSignalSpy quit(m_schedule.get(), &Schedule::quitRequested);
        QSignalSpy told(m_schedule.get(), &Schedule::stoppedByItself);
        m_schedule->startStopButtonClicked();
        QSignalSpy running(m_schedule.get(), &Schedule::runningStateChanged);
        m_clock->advance(9999);
        QVERIFY(m_launched.isEmpty());
        m_clock->advance(1);
        QCOMPARE(m_launched, QStringList { "a" });
        QVERIFY(!m_schedule->timers()[1]->isValid()); // fired, kept in its slot
        m_clock->advance(10'000);
        QCOMPARE(quit.count(), 0);
        m_clock->advance(10'000);
        QCOMPARE(m_launched, (QStringList { "a", "b", "c" }));
        QCOMPARE(m_launchTimes, (QList<qint64> { Now + 10'000, Now + 20'000, Now + 30'000 }));
        QVERIFY(!m_schedule->timersRunning());
        QCOMPARE(quit.count(), quitWhenDone ? 1 : 0);
        QCOMPARE(told.count(), 1);
        QCOMPARE(running.count(), 1); // told stopped once
        QCOMPARE(told.first().first().toString(), u"The last item was opened; the schedule stopped."_s);
        // The automatic stop keeps each fired timer in its slot, spent: the row keeps its check mark.
        for (const TimerSlot &slot : m_schedule->timers())
            QVERIFY(slot && !slot->isValid());
        m_clock->advance(100'000);
        QCOMPARE(m_launched.size(), 3);
    }

    void datesNearTheLimitsNeverOpenAtOnce_data()
    {
        QTest::addColumn<qint64>("msecs");
        QTest::addColumn<bool>("armed");
        QTest::newRow("far past") << std::numeric_limits<qint64>::min() + 1 << false;
        QTest::newRow("far future") << std::numeric_limits<qint64>::max() - 1 << true;
    }
    void datesNearTheLimitsNeverOpenAtOnce()
    {
        QFETCH(qint64, msecs);
        QFETCH(bool, armed);
        m_prefs.setValue(Keys::RepeatSeconds, 1);
        add({ { "edge", 0 } });
        m_editor->setDate({ 0 }, QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC));
        m_schedule->startTimers(true);
        QCOMPARE(m_schedule->timersRemaining(), armed ? 1 : 0);
        m_clock->advance(86'400'000);
        QCOMPARE(m_launched.size(), 0);
    }

    void stopAndStartAgain()
    {
        add({ { "a", 10 }, { "b", 100 } });
        m_schedule->startStopButtonClicked();
        m_clock->advance(10'000);
        QCOMPARE(m_launched, QStringList { "a" });
        m_schedule->startStopButtonClicked(); // stop
        QVERIFY(!m_schedule->timersRunning());
        QVERIFY(!m_schedule->timers()[0] && !m_schedule->timers()[1]);
        QCOMPARE(m_schedule->dates(), (QList<QDateTime> { at(10), at(100) }));
        m_clock->advance(200'000);
        QCOMPARE(m_launched.size(), 1); // stopped timers never fire
        m_editor->setDate({ 1 }, at(300));
        m_schedule->startStopButtonClicked();
        QCOMPARE(m_schedule->timersRemaining(), 1); // "a" is past and not armed again
        m_clock->advance(100'000);
        QCOMPARE(m_launched, (QStringList { "a", "b" }));
    }

    void repeatPeriod_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("unit");
        QTest::addColumn<qint64>("periodSecs");
        QTest::newRow("2 hours") << 2 << 2 << qint64(7200);
        QTest::newRow("unknown unit 7 is seconds") << 5 << 7 << qint64(5);
        QTest::newRow("negative count wraps") << -1 << 0 << qint64(4294967295);
        QTest::newRow("product wraps at 2^32") << 50000 << 3 << qint64(25032704);
        // Re-opening the item without end would be the alternative.
        QTest::newRow("product wraps to exactly 0: one second") << (1 << 30) << 1 << qint64(1);
    }
    void repeatPeriod()
    {
        QFETCH(int, count);
        QFETCH(int, unit);
        QFETCH(qint64, periodSecs);
        m_prefs.setValue(Keys::RepeatSeconds, count);
        m_prefs.setValue(Keys::TimeUnit, unit);
        add({ { "r", 10 } });
        m_schedule->startStopButtonClicked();
        // Fire a little late: the next date counts from the scheduled date, not the firing.
        m_clock->advance(10'250);
        QCOMPARE(m_launched.size(), 1);
        QCOMPARE(m_schedule->dates()[0], at(10 + double(periodSecs)));
        QVERIFY(m_schedule->timers()[0]->isValid());
        QCOMPARE(m_schedule->timers()[0]->fireDate(), at(10 + double(periodSecs)));
        QCOMPARE(m_schedule->timersRemaining(), 1);
        QVERIFY(m_schedule->timersRunning());
    }

    void lateRepeatingItemOpensAtMostTwice()
    {
        m_prefs.setValue(Keys::RepeatSeconds, 60);
        add({ { "r", 10 } });
        m_schedule->startStopButtonClicked();
        m_clock->advance(10'000 + 3600'000); // an hour late: sixty periods missed
        QCOMPARE(m_launched.size(), 1);
        QTRY_COMPARE(m_launched.size(), 2); // once more, at once
        QTest::qWait(20);
        QCOMPARE(m_launched.size(), 2);
        // Anchored to the present from now on.
        QCOMPARE(m_schedule->timers()[0]->fireMSecs(), m_launchTimes[1] + 60'000);
        m_clock->advance(60'000);
        QCOMPARE(m_launched.size(), 3);
    }

    // An item's own rule: a late firing opens once and moves on; COUNT ends it; a missed moment
    // follows the item's policy. The global period does not apply to it.
    void ruledItems_data()
    {
        QTest::addColumn<QString>("rule");
        QTest::addColumn<QString>("missed");
        QTest::addColumn<bool>("asleep");
        QTest::addColumn<qint64>("lateSecs");
        QTest::addColumn<int>("launches");
        QTest::addColumn<bool>("running");
        QTest::newRow("an hour late, opened once") << u"FREQ=MINUTELY;INTERVAL=10"_s << u"default"_s << false << qint64(3600) << 1 << true;
        QTest::newRow("COUNT reached: done") << u"FREQ=MINUTELY;COUNT=1"_s << u"default"_s << false << qint64(0) << 1 << false;
        QTest::newRow("asleep, skipped") << u"FREQ=DAILY"_s << u"skip"_s << true << qint64(7200) << 0 << true;
        QTest::newRow("asleep, opened once") << u"FREQ=DAILY"_s << u"once"_s << true << qint64(7200) << 1 << true;
        QTest::newRow("asleep, too late") << u"FREQ=DAILY"_s << u"within 1h"_s << true << qint64(7200) << 0 << true;
        QTest::newRow("asleep, late enough") << u"FREQ=DAILY"_s << u"within 1h"_s << true << qint64(1800) << 1 << true;
    }
    void ruledItems()
    {
        QFETCH(QString, rule);
        QFETCH(QString, missed);
        QFETCH(bool, asleep);
        QFETCH(qint64, lateSecs);
        QFETCH(int, launches);
        QFETCH(bool, running);
        m_prefs.setValue(Keys::RepeatSeconds, 60);
        add({ { "r", 60 } });
        Repeat repeat = *Repeat::fromRule(rule);
        QVERIFY(repeat.setZoneId("UTC"));
        repeat.missed = *MissedPolicy::parse(missed);
        QCOMPARE(m_editor->setRepeat({ 0 }, repeat, repeat.missed), QString());
        QCOMPARE(m_schedule->dates()[0], at(60)); // the row's date is the rule's start
        QSignalSpy told(m_schedule.get(), &Schedule::missed);
        m_schedule->startStopButtonClicked();
        const qint64 ms = (60 + lateSecs) * 1000;
        asleep ? m_clock->suspend(ms) : m_clock->advance(ms);
        QTest::qWait(20);
        QCOMPARE(m_launched.size(), launches);
        QCOMPARE(m_schedule->timersRunning(), running);
        QCOMPARE(told.size(), asleep ? 1 : 0);
        if (asleep)
            QCOMPARE(told.first().at(3).toBool(), launches == 0);
        if (running)
            QCOMPARE(m_schedule->dates()[0], *m_schedule->repeatAt(0).nextAfter(m_schedule->now()));
    }

    // Set forward past a far date: it fires at once. Set back by an hour: the item waits the hour too.
    void wallClockChanges_data()
    {
        QTest::addColumn<double>("due");
        QTest::addColumn<qint64>("jump");
        QTest::addColumn<bool>("firedBefore");
        QTest::newRow("forward past the date") << 50.0 * 86400 << qint64(51) * 86'400'000 << true;
        QTest::newRow("back an hour") << 60.0 << qint64(-3600'000) << false;
    }
    void wallClockChanges()
    {
        QFETCH(double, due);
        QFETCH(qint64, jump);
        QFETCH(bool, firedBefore);
        add({ { "a", due } });
        m_schedule->startStopButtonClicked();
        QTest::qWait(10);
        m_clock->setClock(Now + jump);
        m_clock->advance(61'000);
        QTRY_COMPARE(m_launched.size(), firedBefore ? 1 : 0);
        m_clock->advance(3600'000);
        QCOMPARE(m_launched, QStringList { "a" });
    }

    // A firing is the row and its moment: once it happened, no re-arm, clock step or restart opens
    // it again, and the same moment set anew by the user does not either.
    void aFiringHappensOnce_data()
    {
        QTest::addColumn<int>("rearm"); // 0: a date change elsewhere, 1: Stop and Start
        QTest::newRow("clock back 40 s, then a re-arm") << 0;
        QTest::newRow("clock back 40 s, then Stop and Start") << 1;
    }
    void aFiringHappensOnce()
    {
        QFETCH(int, rearm);
        add({ { "a", 30 }, { "later", 3600 } });
        m_schedule->startStopButtonClicked();
        m_clock->advance(31'000);
        QCOMPARE(m_launched, QStringList { "a" });
        m_clock->setClock(Now - 10'000);
        if (rearm == 0) {
            m_editor->setDate({ 1 }, at(3000));
        } else {
            m_schedule->startStopButtonClicked();
            m_schedule->startStopButtonClicked();
        }
        m_clock->advance(60'000);
        QCOMPARE(m_launched, QStringList { "a" });
    }

    void repeatAsksForAWakeBeforeTheEarliestItem()
    {
        FakePowerService power;
        m_schedule->setPowerService(&power);
        m_prefs.setValue(Keys::RepeatSeconds, 1);
        m_prefs.setValue(Keys::TimeUnit, 2);
        add({ { "a", 10 }, { "b", 1800 }, { "c", 10 } });
        m_schedule->startStopButtonClicked();
        m_clock->advance(10'000);
        // Two repeats in one turn, one request.
        QTRY_COMPARE(power.wakes, QList<QDateTime> { at(1800 - 15) });
        QTest::qWait(20);
        QCOMPARE(power.wakes.size(), 1);
    }

    // 15 s ahead of the earliest timer still armed and to come; fired and cancelled timers do not count.
    void sleepAsksForOneWake()
    {
        FakePowerService power;
        m_schedule->setPowerService(&power);
        add({ { "ten", 3600 }, { "half past nine", 1800 }, { "soon", 5 } });
        m_schedule->startStopButtonClicked();
        m_clock->advance(5000); // "soon" fires and is spent
        m_editor->setDate({ 1 }, at(7200));
        m_schedule->restartTimers(); // its old timer is cancelled
        m_schedule->scheduleWakeUp();
        QCOMPARE(power.wakes, QList<QDateTime> { at(3600 - 15) });
    }

    // On the kernel timer: dates 50 days ahead are armed, 100,000 of them without a descriptor
    // each, and a near one fires on time, never early.
    void realClockArmsFarDatesAndFiresNearOnesOnTime()
    {
        TimerFdClock real;
        Schedule schedule(m_prefs, real);
        ScheduleEditor editor(schedule, m_prefs);
        const auto openDescriptors = [] { return QDir(u"/proc/self/fd"_s).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System).size(); };
        const qsizetype before = openDescriptors();
        QList<qint64> firedAt;
        connect(&schedule, &Schedule::launched, this, [&] { firedAt << real.nowMSecs(); });
        QStringList paths { u"near"_s };
        QList<QDateTime> dates { QDateTime() };
        for (int i = 0; i < 100'000; ++i) {
            paths << u"/item/%1"_s.arg(i);
            dates << QDateTime::fromMSecsSinceEpoch(real.nowMSecs() + qint64(50) * 86'400'000 + i);
        }
        editor.add(paths, dates);
        schedule.startStopButtonClicked();
        QCOMPARE(schedule.timersRemaining(), 100'000);
        QCOMPARE(openDescriptors(), before);
        // Set once all is armed, however long that took: a date the user changes while it runs.
        const qint64 nearDate = real.nowMSecs() + 300;
        editor.setDate({ 0 }, QDateTime::fromMSecsSinceEpoch(nearDate));
        QTRY_COMPARE(firedAt.size(), 1);
        QVERIFY2(firedAt[0] >= nearDate, "fired early");
        QTest::qWait(200);
        QCOMPARE(firedAt.size(), 1);
        QVERIFY(schedule.timers()[1]->isValid());
        QVERIFY(schedule.timersRunning());
    }

    void countdownCells_data()
    {
        QTest::addColumn<double>("remaining");
        QTest::addColumn<QString>("expected");
        QTest::newRow("half a second left reads 0 secs") << 0.5 << u"0 secs"_s;
        QTest::newRow("1.99 truncates to 1") << 1.99 << u"1 sec "_s;
        QTest::newRow("60") << 60.0 << u"1 min "_s;
        QTest::newRow("61") << 61.0 << u"1 min 1 sec "_s;
        QTest::newRow("3725") << 3725.0 << u"1 hr 2 mins 5 secs "_s;
        QTest::newRow("at the fire date: empty") << 0.0 << u""_s;
        QTest::newRow("past: empty") << -3.0 << u""_s;
        QTest::newRow("not a number: empty") << qQNaN() << u""_s;
        QTest::newRow("a year ahead") << 366.0 * 86400 << u"8784 hrs "_s;
    }
    void countdownCells()
    {
        QFETCH(double, remaining);
        QFETCH(QString, expected);
        QCOMPARE(countdownText(remaining), expected);
    }

private:
    void add(const QList<std::pair<const char *, double>> &items)
    {
        for (const auto &[name, offset] : items)
            m_editor->add({ QString::fromLatin1(name) }, at(offset));
    }

    TestSettings m_settings; // first: it points the preferences at their folder
    Preferences m_prefs;
    std::unique_ptr<FakeClock> m_clock;
    std::unique_ptr<Schedule> m_schedule;
    std::unique_ptr<ScheduleEditor> m_editor;
    QStringList m_launched;
    QList<qint64> m_launchTimes;
};

QTEST_GUILESS_MAIN(TimerEngineTest)
#include "timer_engine_test.moc"

#include "TimerFdClock.h"

#include <QSignalSpy>
#include <QTest>

#include <ctime>
#include <unistd.h>

using namespace Quillon;

// A resume is told once, before anything fires, whoever notices it first; a set clock is reported.
class TimerFdClockTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
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
        QTRY_COMPARE(events, QStringList{QStringLiteral("expired")});
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
        timespec now{};
        ::clock_gettime(CLOCK_REALTIME, &now);
        QCOMPARE(::clock_settime(CLOCK_REALTIME, &now), 0);
        QTRY_COMPARE(changed.count(), 1);
        QCOMPARE(expired.count(), 0);
    }
};

QTEST_GUILESS_MAIN(TimerFdClockTest)
#include "timerfd_clock_test.moc"

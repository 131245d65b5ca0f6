// Items with their own calendar rules: arming 100,000 of them beside 100,000 plain ones, the next
// 1,000 moments of one rule, and how long the event loop is held when 10,000 ruled items fire
// within one second and each works out its next moment.
#include "BenchUtil.h"
#include "Preferences.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "TimerFdClock.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTimer>

using namespace Quillon;

namespace {
Repeat ruleAt(const QString &text, const QDateTime &start)
{
    Repeat repeat = *Repeat::fromRule(text);
    repeat.anchorAt(start);
    return repeat;
}

// Milliseconds for Start on n items due from offsetMSecs on, with or without a rule each.
double arming(Preferences &prefs, int n, qint64 offsetMSecs, bool ruled)
{
    TimerFdClock clock;
    Schedule schedule(prefs, clock);
    QStringList paths;
    QList<QDateTime> dates;
    QList<Repeat> repeats;
    for (int i = 0; i < n; ++i) {
        paths << QStringLiteral("/bench/%1").arg(i);
        dates << QDateTime::fromMSecsSinceEpoch(clock.nowMSecs() + offsetMSecs + i);
        if (ruled)
            repeats << ruleAt(QStringLiteral("FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR"), dates.last());
    }
    ScheduleEditor(schedule, prefs).add(paths, dates, repeats);
    const qint64 t0 = monotonicNs();
    schedule.startStopButtonClicked();
    const double ms = double(monotonicNs() - t0) / 1e6;
    if (schedule.timersRemaining() != n)
        std::printf("  (only %d of %d armed)\n", schedule.timersRemaining(), n);
    return ms;
}
} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toUtf8());
    Preferences prefs;

    const double plain = arming(prefs, 100'000, 86'400'000, false);
    const double ahead = arming(prefs, 100'000, 86'400'000, true);
    // Every date passed while the schedule was stopped: each rule works out its next moment.
    const double passed = arming(prefs, 100'000, -86'400'000, true);
    std::printf("arming 100000 plain items: %.1f ms\n", plain);
    std::printf("arming 100000 ruled items, due ahead: %.1f ms (%.2f x plain; target <= 1000 ms)\n", ahead, ahead / plain);
    std::printf("arming 100000 ruled items, all passed: %.1f ms (%.2f x plain)\n", passed, passed / plain);

    {
        TimerFdClock clock;
        Schedule schedule(prefs, clock);
        const QDateTime start = QDateTime::fromMSecsSinceEpoch(clock.nowMSecs() + 60'000);
        ScheduleEditor(schedule, prefs)
            .add({ QStringLiteral("/bench/one") }, { start },
                { ruleAt(QStringLiteral("FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR;BYHOUR=7,12,18;BYMINUTE=0;BYSECOND=0"), start) });
        const qint64 t0 = monotonicNs();
        const QList<QDateTime> moments = schedule.upcoming(0, 1000);
        std::printf(
            "upcoming 1000 moments of one rule: %.1f ms (%lld moments; target <= 50 ms)\n", double(monotonicNs() - t0) / 1e6, (long long)moments.size());
    }

    {
        constexpr int Burst = 10'000;
        TimerFdClock clock;
        Schedule schedule(prefs, clock);
        const qint64 first = clock.nowMSecs() + 1000;
        QStringList paths;
        QList<QDateTime> dates;
        QList<Repeat> repeats;
        for (int i = 0; i < Burst; ++i) {
            paths << QStringLiteral("/bench/%1").arg(i);
            dates << QDateTime::fromMSecsSinceEpoch(first + qint64(i) * 1000 / Burst);
            repeats << ruleAt(QStringLiteral("FREQ=DAILY"), dates.last());
        }
        ScheduleEditor(schedule, prefs).add(paths, dates, repeats);
        int fired = 0;
        QEventLoop loop;
        QObject::connect(&schedule, &Schedule::launched, &schedule, [&] {
            if (++fired == Burst)
                loop.quit();
        });
        LoopBlockMeter meter;
        schedule.startTimers(true);
        meter.start();
        QTimer::singleShot(20'000, &loop, &QEventLoop::quit);
        loop.exec();
        meter.stop();
        std::printf("%d ruled items firing within 1 s: longest event-loop block %.1f ms (fired %d; target <= 50 ms)\n", Burst, meter.longestMs(), fired);
    }
    return 0;
}

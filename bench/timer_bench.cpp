// Arms many items due within a few seconds of each other on the real wall-clock timer and
// reports how late each one opened, and how long arming 100,000 items takes.
#include "BenchUtil.h"
#include "Preferences.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "TimerFdClock.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QEventLoop>
#include <QHash>
#include <QTemporaryDir>
#include <QTimer>

using namespace Quillon;

static void lateness(Preferences &prefs, int count)
{
    TimerFdClock clock;
    Schedule schedule(prefs, clock);
    QStringList paths;
    for (int i = 0; i < count; ++i)
        paths << QStringLiteral("/bench/%1").arg(i);
    const qint64 start = clock.nowMSecs() + 1000;
    QList<qint64> dueNs(count);
    QList<QDateTime> dates;
    for (int i = 0; i < count; ++i) {
        // Spread over three seconds, several items sharing some milliseconds.
        const qint64 due = start + (qint64(i) * 3000) / count;
        dates << QDateTime::fromMSecsSinceEpoch(due);
    }
    ScheduleEditor(schedule, prefs).add(paths, dates);
    QHash<QString, qint64> dueByPath;
    for (int i = 0; i < count; ++i)
        dueByPath.insert(paths[i], schedule.dates()[i].toMSecsSinceEpoch() * 1'000'000);
    QList<qint64> late;
    late.reserve(count);
    int early = 0;
    QEventLoop loop;
    QObject::connect(&schedule, &Schedule::launched, &schedule, [&](const QString &path) {
        const qint64 l = realtimeNs() - dueByPath.value(path);
        if (l < 0)
            ++early;
        late << l;
        if (late.size() == count)
            loop.quit();
    });
    schedule.startTimers(true);
    QTimer::singleShot(15'000, &loop, &QEventLoop::quit);
    loop.exec();
    char label[64];
    std::snprintf(label, sizeof label, "lateness, %d items", count);
    printSpread(label, late);
    std::printf("  fired %lld of %d, early: %d\n", (long long)late.size(), count, early);
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toUtf8());
    Preferences prefs;
    lateness(prefs, 1000);
    lateness(prefs, 10'000);

    TimerFdClock clock;
    Schedule schedule(prefs, clock);
    QStringList paths;
    for (int i = 0; i < 100'000; ++i)
        paths << QStringLiteral("/bench/%1").arg(i);
    QList<QDateTime> dates;
    for (int i = 0; i < 100'000; ++i)
        dates << QDateTime::fromMSecsSinceEpoch(clock.nowMSecs() + 86'400'000 + i);
    ScheduleEditor(schedule, prefs).add(paths, dates);
    const qint64 t0 = monotonicNs();
    schedule.startTimers(true);
    std::printf("arming 100000 items: %.1f ms (%d armed)\n", (monotonicNs() - t0) / 1e6, schedule.timersRemaining());
    return 0;
}

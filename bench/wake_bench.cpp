// 30,000 repeating items fall due within one second. Prints the longest the event loop went
// without a turn while they fire and re-arm, and how many wake requests that made.
#include "BenchUtil.h"
#include "Log.h"
#include "PowerService.h"
#include "Preferences.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "SettingsKeys.h"
#include "TimerFdClock.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTimer>

using namespace Quillon;

namespace {
constexpr int Items = 30'000;

class CountingPower final : public PowerService
{
public:
    bool registerForNotifications() override { return true; }
    bool schedulePowerWake(const QDateTime &, quint32) override
    {
        ++requests;
        return true;
    }
    int requests = 0;
};
} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    setLogSink([](const QString &) {});
    QTemporaryDir dir;
    qputenv("XDG_CONFIG_HOME", dir.path().toUtf8());
    Preferences prefs;
    prefs.setValues({ { Keys::RepeatSeconds, 1 }, { Keys::TimeUnit, 3 } });
    TimerFdClock clock;
    CountingPower power;
    Schedule schedule(prefs, clock);
    schedule.createArrays();
    schedule.setPowerService(&power);
    int launched = 0;
    QObject::connect(&schedule, &Schedule::launched, &schedule, [&] { ++launched; });
    QStringList paths;
    for (int i = 0; i < Items; ++i)
        paths << QStringLiteral("/items/%1").arg(i);
    const qint64 due = clock.nowMSecs() + 1000;
    QList<QDateTime> dates;
    for (int i = 0; i < Items; ++i)
        dates << QDateTime::fromMSecsSinceEpoch(due + qint64(i) * 1000 / Items);
    ScheduleEditor(schedule, prefs).add(paths, dates);
    schedule.startTimers(true);

    LoopBlockMeter meter;
    meter.start();
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &app, [&] {
        if (launched >= Items && clock.nowMSecs() > due + 1200)
            QCoreApplication::quit();
    });
    watch.start(10);
    QTimer::singleShot(20'000, &app, &QCoreApplication::quit);
    app.exec();

    std::printf("%d repeating items due within 1 s: %d opened and re-armed\n", Items, launched);
    std::printf("longest event-loop block: %.1f ms (target under 100 ms)\n", meter.longestMs());
    std::printf("wake requests made: %d\n", power.requests);
    return 0;
}

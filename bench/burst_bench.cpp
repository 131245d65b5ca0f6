// 3,000 executables fall due within one second while a 10 s script runs. Prints how many started
// (each once), when the last one started, and the longest the event loop went without a turn.
#include "BenchUtil.h"
#include "DesktopWorkspace.h"
#include "Launcher.h"
#include "Log.h"
#include "Preferences.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "ShebangScriptRunner.h"
#include "TestSupport.h"
#include "TimerFdClock.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <QTimer>

using namespace Quillon;

namespace {
constexpr int Programs = 3000;
constexpr int ScriptSecs = 10;
} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    setLogSink([](const QString &) {});
    qputenv("XDG_CONFIG_HOME", dir.filePath(QStringLiteral("config")).toUtf8());
    const QString log = dir.filePath(QStringLiteral("started.log"));

    Preferences prefs;
    TimerFdClock clock;
    DesktopWorkspace workspace;
    ShebangScriptRunner scripts;
    Launcher launcher(prefs, workspace, scripts);
    Schedule schedule(prefs, clock);
    schedule.createArrays();
    QObject::connect(&schedule, &Schedule::launched, &launcher,
        [&](const QString &path, const QDateTime &, quint64 item) { launcher.launchItem(path, Launcher::Origin::Schedule, item); });

    const QString script = dir.filePath(QStringLiteral("long.scpt"));
    Test::writeFile(script, "#!/bin/sh\nsleep " + QByteArray::number(ScriptSecs) + "\n", false);
    QStringList paths { script };
    for (int i = 0; i < Programs; ++i) {
        const QString exe = dir.filePath(QStringLiteral("prog%1").arg(i));
        Test::writeFile(exe, "#!/bin/sh\necho " + QByteArray::number(i) + " >> '" + QFile::encodeName(log) + "'\n", true);
        paths << exe;
    }
    const qint64 due = clock.nowMSecs() + 1000;
    QList<QDateTime> dates { QDateTime::fromMSecsSinceEpoch(due) };
    for (int i = 1; i <= Programs; ++i)
        dates << QDateTime::fromMSecsSinceEpoch(due + 100 + (i * 800) / Programs);
    ScheduleEditor(schedule, prefs).add(paths, dates);
    schedule.startTimers(true);

    LoopBlockMeter meter;
    meter.start();
    qint64 allStartedAt = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &app, [&] {
        if (!allStartedAt && Test::readFile(log).toUtf8().count('\n') >= Programs) {
            allStartedAt = clock.nowMSecs();
            QCoreApplication::quit();
        }
    });
    watch.start(10);
    QTimer::singleShot((ScriptSecs + 60) * 1000, &app, &QCoreApplication::quit);
    app.exec();

    const QList<QByteArray> lines = Test::readFile(log).toUtf8().trimmed().split('\n');
    QSet<QByteArray> distinct(lines.begin(), lines.end());
    std::printf("programs started: %d of %d, started twice: %d\n", int(distinct.size()), Programs, int(lines.size() - distinct.size()));
    if (allStartedAt)
        std::printf("last one started %.2f s after the script began (script runs %d s; all due within 1 s of it)\n", (allStartedAt - due) / 1e3, ScriptSecs);
    else
        std::printf("not all started within %d s\n", ScriptSecs + 60);
    std::printf("longest event-loop gap: %.1f ms\n", meter.longestMs());
    while (workspace.isBusy())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    return 0;
}

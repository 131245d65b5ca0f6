// The history under load: prints the longest event-loop block while 1,000 events a second are
// recorded, the time the History window takes to open on 100,000 records, and the file's size.
#include "BenchUtil.h"
#include "FakeWorkspace.h"
#include "History.h"
#include "HistoryWindow.h"
#include "TimerFdClock.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTableView>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <tuple>
#include <vector>

using namespace Quillon;

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QTemporaryDir home;
    const QString file = home.filePath(QStringLiteral("state/Quillon/history.sqlite"));
    TimerFdClock clock;
    History history(file, clock);

    // 1,000 events a second for 5 s, each from an event-loop turn of its own, as launches come;
    // the turn's write (what the end of the turn does) is timed where it happens.
    auto measure = [&](bool recording) {
        LoopBlockMeter meter;
        meter.start();
        std::vector<double> writes;
        int sent = 0;
        QTimer events;
        events.setTimerType(Qt::PreciseTimer);
        QObject::connect(&events, &QTimer::timeout, [&] {
            if (recording) {
                history.record(History::Kind::Opened, QStringLiteral("/home/ann/Documents/report %1.odt").arg(sent), clock.now(), QStringLiteral("document"));
                QElapsedTimer write;
                write.start();
                history.flush();
                writes.push_back(double(write.nsecsElapsed()) / 1e6);
            }
            if (++sent == 5000)
                QCoreApplication::quit();
        });
        events.start(1);
        app.exec();
        meter.stop();
        std::sort(writes.begin(), writes.end());
        return std::tuple { meter.longestMs(), writes.empty() ? 0.0 : writes[writes.size() * 99 / 100], writes.empty() ? 0.0 : writes.back() };
    };
    const auto [idleBlock, unused1, unused2] = measure(false);
    const auto [block, p99, worst] = measure(true);
    std::printf("recording 5,000 events at about 1,000/s, one write per turn: %.2f ms at the 99th percentile, %.2f ms at worst "
                "(target <= 1 ms per turn)\n",
        p99, worst);
    std::printf("longest event-loop block meanwhile %.2f ms; the same loop without recording: %.2f ms (this machine's own jitter)\n", block, idleBlock);
    const int sent = 5000;

    // Up to 100,000 records, mixed kinds, written in one go.
    for (int i = sent; i < History::KeepRecords; ++i)
        history.record(History::Kind(1 + i % 10), QStringLiteral("/home/ann/Documents/file %1.txt").arg(i), clock.now(),
            i % 10 == 1 ? QStringLiteral("the file no longer exists") : QStringLiteral("document"));
    history.flush();
    QThreadPool::globalInstance()->waitForDone(); // the history's own checkpoint, if one runs
    {
        // Measured once the log is folded into the file, as it is after a checkpoint.
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("size"));
        db.setDatabaseName(file);
        if (db.open())
            QSqlQuery(db).exec(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("size"));
    std::printf("history file with %d records: %.1f MB (its write-ahead log now: %.1f MB)\n", History::KeepRecords, double(QFileInfo(file).size()) / 1e6,
        double(QFileInfo(file + QStringLiteral("-wal")).size()) / 1e6);

    FakeWorkspace workspace;
    QElapsedTimer opening;
    opening.start();
    HistoryWindow window(history, workspace);
    window.show();
    QCoreApplication::processEvents();
    std::printf("History window open with %d records: %.0f ms (target <= 200 ms), %d rows fetched so far\n", History::KeepRecords,
        double(opening.nsecsElapsed()) / 1e6, window.model()->rowCount());
    return 0;
}

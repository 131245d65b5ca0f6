// The history file under a long stream of launches and a large trim: prints the write-ahead
// log's size after recording 1,000 launches a second for 60 s (the seconds may be given as the
// argument), and the longest event-loop block while a file of 1,000,000 old records is trimmed.
#include "BenchUtil.h"
#include "History.h"
#include "TimerFdClock.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QTimer>

#include <algorithm>
#include <cstdio>

using namespace Quillon;

namespace {
double walMB(const QString &file)
{
    return double(QFileInfo(file + QStringLiteral("-wal")).size()) / 1e6;
}

// Old records written straight into the file, as a year of heavy use would leave them.
void fillWithOldRecords(const QString &file, int count, qint64 at)
{
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("fill"));
        db.setDatabaseName(file);
        db.open();
        QSqlQuery q(db);
        q.exec(QStringLiteral("CREATE TABLE IF NOT EXISTS events (id INTEGER PRIMARY KEY, at INTEGER NOT NULL, path TEXT NOT NULL,"
                              " scheduled INTEGER, kind INTEGER NOT NULL, detail TEXT NOT NULL DEFAULT '')"));
        q.exec(QStringLiteral("CREATE INDEX IF NOT EXISTS events_at ON events (at)"));
        q.exec(QStringLiteral("CREATE INDEX IF NOT EXISTS events_item ON events (path, scheduled)"));
        db.transaction();
        q.prepare(QStringLiteral("INSERT INTO events (at, path, scheduled, kind, detail) VALUES (?, ?, ?, 1, 'document')"));
        for (int i = 0; i < count; ++i) {
            q.addBindValue(at + i);
            q.addBindValue(QByteArray("/home/ann/Documents/old report ") + QByteArray::number(i) + ".odt");
            q.addBindValue(at + i);
            q.exec();
        }
        db.commit();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("fill"));
}
} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const int seconds = argc > 1 ? QByteArray(argv[1]).toInt() : 60;
    QTemporaryDir home;
    TimerFdClock clock;
    {
        const QString file = home.filePath(QStringLiteral("stream/history.sqlite"));
        History history(file, clock);
        double largest = 0;
        int sent = 0;
        QTimer events;
        events.setTimerType(Qt::PreciseTimer);
        // Ten a millisecond-timer turn: 1,000 a second whatever the timer's own granularity.
        QElapsedTimer elapsed;
        elapsed.start();
        QObject::connect(&events, &QTimer::timeout, [&] {
            const qint64 due = elapsed.elapsed();
            for (; sent < due; ++sent)
                history.record(History::Kind::Opened, QStringLiteral("/home/ann/Documents/report %1.odt").arg(sent), clock.now(), QStringLiteral("document"));
            largest = std::max(largest, walMB(file));
            if (due >= qint64(seconds) * 1000)
                QCoreApplication::quit();
        });
        events.start(10);
        app.exec();
        history.flush();
        std::printf(
            "recording %d launches in %d s: the write-ahead log ended at %.1f MB, at most %.1f MB (target <= 64 MB)\n", sent, seconds, walMB(file), largest);
    }
    QThreadPool::globalInstance()->waitForDone();

    const QString file = home.filePath(QStringLiteral("trim/history.sqlite"));
    QDir().mkpath(QFileInfo(file).absolutePath());
    constexpr int Old = 1'000'000;
    fillWithOldRecords(file, Old, clock.now().addDays(-History::KeepDays - 30).toMSecsSinceEpoch());
    LoopBlockMeter meter;
    meter.start();
    QElapsedTimer trimming;
    trimming.start();
    History history(file, clock);
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [] {
        if (QThreadPool::globalInstance()->activeThreadCount() == 0)
            QCoreApplication::quit();
    });
    watch.start(5);
    app.exec();
    meter.stop();
    std::printf("trimming %d old records took %.1f s off the event loop; longest event-loop block %.2f ms (target <= 50 ms)\n", Old,
        double(trimming.elapsed()) / 1000, meter.longestMs());
    return 0;
}

#include "FakeClock.h"
#include "FileName.h"
#include "History.h"
#include "TestSupport.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSignalSpy>
#include <QTest>

#include <sys/stat.h>

using namespace Quillon;
using Kind = History::Kind;

// The history in a real SQLite file, and in files that cannot be used.
class HistoryTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { m_log.clear(); }

    void recordsOneTurnInOneGo()
    {
        QTemporaryDir home;
        const QString file = home.filePath(QStringLiteral("state/Quillon/history.sqlite"));
        FakeClock clock(Test::Now);
        History history(file, clock);
        history.record(Kind::Opened, QStringLiteral("/home/ann/Résumé 100%.txt"), Test::at(-5), QStringLiteral("document"));
        history.record(Kind::OpenFailed, QStringLiteral("/home/ann/gone.txt"), Test::at(-4), QStringLiteral("the file no longer exists"));
        history.record(Kind::MailRefused, QString(), {}, QStringLiteral("550 no"));
        QCOMPARE(rows(file), 0); // not yet: at the end of the turn
        QTRY_COMPARE(rows(file), 3);
        QVERIFY(history.handled(QStringLiteral("/home/ann/Résumé 100%.txt"), Test::at(-5)));
        QVERIFY(!history.handled(QStringLiteral("/home/ann/Résumé 100%.txt"), Test::at(-6)));
        // A name that is not UTF-8 comes back as the same bytes; rows of older versions hold text.
        const QString latin1 = FileName::decode("/home/ann/caf\xe9.txt");
        history.record(Kind::Opened, latin1, Test::at(-3));
        history.flush();
        QCOMPARE(History::pathOf(query(file, QStringLiteral("SELECT path FROM events ORDER BY id DESC"))), latin1);
        QVERIFY(history.handled(latin1, Test::at(-3)));
        query(file, QStringLiteral("INSERT INTO events (at, path, scheduled, kind, detail) VALUES (0, '/old/Grüße', 7, 0, '')"));
        QVERIFY(history.handled(QStringLiteral("/old/Grüße"), QDateTime::fromMSecsSinceEpoch(7)));
        QCOMPARE(history.problemsAfter(0), 2);
        QCOMPARE(history.problemsAfter(history.lastId()), 0);
        QCOMPARE(Test::modeOf(file), 0600u);
        QCOMPARE(Test::modeOf(home.filePath(QStringLiteral("state/Quillon"))), 0700u);
        // Older than 90 days goes when the file is next opened.
        clock.advance(qint64(History::KeepDays + 1) * 86'400'000);
        History later(home.filePath(QStringLiteral("state/Quillon/history.sqlite")), clock);
        later.record(Kind::Opened, QStringLiteral("/x"));
        later.flush();
        QCOMPARE(rows(file), 1);
    }

    void unusableFileIsSetAside_data()
    {
        QTest::addColumn<bool>("locked");
        QTest::newRow("not a database") << false;
        QTest::newRow("held by another writer") << true;
    }
    void unusableFileIsSetAside()
    {
        QFETCH(bool, locked);
        QTemporaryDir home;
        const QString file = home.filePath(QStringLiteral("history.sqlite"));
        if (locked) {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
            db.setDatabaseName(file);
            QVERIFY(db.open());
            QSqlQuery(db).exec(QStringLiteral("CREATE TABLE t (x)"));
            QVERIFY(QSqlQuery(db).exec(QStringLiteral("BEGIN EXCLUSIVE")));
        } else {
            QVERIFY(Test::writeFile(file, QByteArray(4096, '\x5a')));
        }
        FakeClock clock(Test::Now);
        {
            History history(file, clock);
            QVERIFY(history.isOpen());
            history.record(Kind::Missed, QStringLiteral("/a"), Test::at(-60));
        }
        QSqlDatabase::removeDatabase(QStringLiteral("other"));
        QCOMPARE(QDir(home.path()).entryList({QStringLiteral("history.sqlite.damaged-*")}, QDir::Files).size(), 1);
        QCOMPARE(rows(file), 1);
        QVERIFY(!m_log.filter(QStringLiteral("was set aside")).isEmpty());
    }

    // Nothing can be created there, not even by root; recording goes on, in memory only.
    void nowhereToWriteLeavesItOff()
    {
        FakeClock clock(Test::Now);
        History history(QStringLiteral("/proc/quillon-test/history.sqlite"), clock);
        QVERIFY(!history.isOpen());
        QSignalSpy recorded(&history, &History::recorded);
        history.record(Kind::Opened, QStringLiteral("/a"));
        QCOMPARE(recorded.size(), 1);
        QVERIFY(!history.handled(QStringLiteral("/a"), {}));
        QVERIFY(!m_log.filter(QStringLiteral("goes on without it")).isEmpty());
    }

private:
    // The first value, through a connection of its own; an opened file without the table counts no rows.
    static QVariant query(const QString &file, const QString &sql)
    {
        QVariant value;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("reader"));
            db.setDatabaseName(file);
            QSqlQuery q(db);
            if (db.open() && q.exec(sql) && q.next())
                value = q.value(0);
            else if (db.isOpen())
                value = 0;
        }
        QSqlDatabase::removeDatabase(QStringLiteral("reader"));
        return value;
    }
    static int rows(const QString &file)
    {
        const QVariant n = query(file, QStringLiteral("SELECT COUNT(*) FROM events"));
        return n.isValid() ? n.toInt() : -1;
    }

    Test::CapturedLog m_log;
};

QTEST_GUILESS_MAIN(HistoryTest)
#include "history_test.moc"

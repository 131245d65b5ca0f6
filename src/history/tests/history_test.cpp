#include "FakeClock.h"
#include "FileName.h"
#include "History.h"
#include "TestSupport.h"

#include <QScopeGuard>
#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>
#include <QTimer>

#include <sys/stat.h>

using namespace Quillon;
using namespace Qt::StringLiterals;
using Kind = History::Kind;

// The history in a real SQLite file, and in files that cannot be used.
class HistoryTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { m_log.clear(); }

    // A state folder others can write in, or another user's, is not where the history goes.
    void aStateFolderNotOurOwnIsPassedOver_data()
    {
        QTest::addColumn<QString>("folder"); // under XDG_STATE_HOME
        QTest::addColumn<uint>("mode");
        QTest::addColumn<bool>("others");
        QTest::newRow("ours") << u"Quillon"_s << 0700u << false;
        QTest::newRow("state home anyone can write") << u""_s << 0777u << false;
        QTest::newRow("our folder, another user's") << u"Quillon"_s << 0700u << true;
    }
    void aStateFolderNotOurOwnIsPassedOver()
    {
        QFETCH(QString, folder);
        QFETCH(uint, mode);
        QFETCH(bool, others);
        if (others && ::geteuid() != 0)
            QSKIP("Giving a folder to another user needs root.");
        QTemporaryDir state;
        QVERIFY(QDir().mkpath(state.filePath(u"Quillon"_s)));
        const QByteArray given = QFile::encodeName(state.filePath(folder));
        QCOMPARE(::chmod(given.constData(), mode), 0);
        if (others)
            QCOMPARE(::chown(given.constData(), 65534, 65534), 0);
        const Test::ScopedEnv home("XDG_STATE_HOME", state.path().toUtf8());
        const bool ours = mode == 0700u && !others;
        QCOMPARE(History::defaultFileName().startsWith(state.path()), ours);
        QCOMPARE(m_log.filter(u"is not yours alone"_s).size(), ours ? 0 : 1);
    }

    void recordsOneTurnInOneGo()
    {
        QTemporaryDir home;
        const QString file = home.filePath(u"state/Quillon/history.sqlite"_s);
        FakeClock clock(Test::Now);
        History history(file, clock);
        history.record(Kind::Opened, u"/home/ann/Résumé 100%.txt"_s, Test::at(-5), u"document"_s);
        history.record(Kind::OpenFailed, u"/home/ann/gone.txt"_s, Test::at(-4), u"the file no longer exists"_s);
        history.record(Kind::MailRefused, QString(), {}, u"550 no"_s);
        QCOMPARE(rows(file), 0); // not yet: at the end of the turn
        QTRY_COMPARE(rows(file), 3);
        QVERIFY(history.handled(u"/home/ann/Résumé 100%.txt"_s, Test::at(-5)));
        QVERIFY(!history.handled(u"/home/ann/Résumé 100%.txt"_s, Test::at(-6)));
        // A name that is not UTF-8 comes back as the same bytes; rows of older versions hold text.
        const QString latin1 = FileName::decode("/home/ann/caf\xe9.txt");
        history.record(Kind::Opened, latin1, Test::at(-3));
        history.flush();
        QCOMPARE(History::pathOf(query(file, u"SELECT path FROM events ORDER BY id DESC"_s)), latin1);
        QVERIFY(history.handled(latin1, Test::at(-3)));
        query(file, u"INSERT INTO events (at, path, scheduled, kind, detail) VALUES (0, '/old/Grüße', 7, 0, '')"_s);
        QVERIFY(history.handled(u"/old/Grüße"_s, QDateTime::fromMSecsSinceEpoch(7)));
        QCOMPARE(history.problemsAfter(0), 2);
        QCOMPARE(history.problemsAfter(history.lastId()), 0);
        QCOMPARE(Test::modeOf(file), 0600u);
        QCOMPARE(Test::modeOf(home.filePath(u"state/Quillon"_s)), 0700u);
        // Older than 90 days goes when the file is next opened.
        clock.advance(qint64(History::KeepDays + 1) * 86'400'000);
        History later(home.filePath(u"state/Quillon/history.sqlite"_s), clock);
        later.record(Kind::Opened, u"/x"_s);
        later.flush();
        QTRY_COMPARE(rows(file), 1);
    }

    // Only what SQLite calls damaged is set aside (with its log); another program's lock is waited
    // out with the records kept; a FIFO or a folder is left alone, and never blocks the start.
    void filesThatCannotBeUsedAsTheyAre_data()
    {
        QTest::addColumn<QString>("found");
        QTest::addColumn<int>("setAside");
        QTest::addColumn<int>("rowsMeanwhile");
        QTest::addColumn<int>("rowsAfter"); // -1: no history is kept, the file is not touched
        QTest::addColumn<QString>("logged");
        QTest::newRow("not a database") << u"junk"_s << 1 << 1 << 1 << u"was set aside"_s;
        QTest::newRow("locked before the open") << u"locked"_s << 0 << 0 << 1 << u"cannot be written now"_s;
        QTest::newRow("locked while it writes") << u"locked later"_s << 0 << 0 << 1 << u"cannot be written now"_s;
        QTest::newRow("a FIFO") << u"fifo"_s << 0 << -1 << -1 << u"it is a FIFO"_s;
        QTest::newRow("a folder") << u"folder"_s << 0 << -1 << -1 << u"it is a folder"_s;
    }
    void filesThatCannotBeUsedAsTheyAre()
    {
        QFETCH(QString, found);
        QFETCH(int, setAside);
        QFETCH(int, rowsMeanwhile);
        QFETCH(int, rowsAfter);
        QFETCH(QString, logged);
        QTemporaryDir home;
        const QString file = home.filePath(u"history.sqlite"_s);
        const QByteArray name = QFile::encodeName(file);
        QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
        other.setDatabaseName(file);
        const auto removeOther = qScopeGuard([&other] {
            other.close();
            other = {};
            QSqlDatabase::removeDatabase(u"other"_s);
        });
        const auto lock = [&other](const char *begin) {
            QVERIFY(other.open());
            QSqlQuery(other).exec(u"CREATE TABLE IF NOT EXISTS t (x)"_s);
            QVERIFY(QSqlQuery(other).exec(QString::fromLatin1(begin)));
            QVERIFY(QSqlQuery(other).exec(u"INSERT INTO t VALUES (1)"_s));
            // Held as a second program would hold it, for longer than anything waits.
            QTimer::singleShot(1500, [&other] { QVERIFY(other.commit()); });
        };
        if (found == QLatin1String("junk"))
            QVERIFY(Test::writeFile(file, QByteArray(4096, '\x5a')));
        else if (found == QLatin1String("locked"))
            lock("BEGIN EXCLUSIVE");
        else if (found == QLatin1String("fifo"))
            QCOMPARE(::mkfifo(name.constData(), 0600), 0);
        else if (found == QLatin1String("folder"))
            QVERIFY(QDir().mkpath(file));
        FakeClock clock(Test::Now);
        {
            History history(file, clock);
            if (found == QLatin1String("locked later")) {
                QVERIFY(history.isOpen());
                lock("BEGIN IMMEDIATE");
            }
            history.record(Kind::Missed, u"/a"_s, Test::at(-60));
            QTest::qWait(500);
            if (rowsAfter >= 0) {
                QCOMPARE(rows(file), rowsMeanwhile);
                QTRY_COMPARE_WITH_TIMEOUT(rows(file), rowsAfter, 5000);
            }
        }
        QCOMPARE(QDir(home.path()).entryList({ u"history.sqlite.damaged-*"_s }, QDir::Files).size(), setAside);
        // Said once however often it is tried again, and once more when it works again.
        QVERIFY2(m_log.filter(logged).size() == 1, qPrintable(m_log.join(QLatin1Char('|'))));
        QCOMPARE(m_log.filter(u"can be written again"_s).size(), int(logged.startsWith(QLatin1String("cannot be written"))));
        struct stat st = {};
        QCOMPARE(::lstat(name.constData(), &st), 0);
        QCOMPARE(S_ISFIFO(st.st_mode), found == QLatin1String("fifo"));
        QCOMPARE(S_ISDIR(st.st_mode), found == QLatin1String("folder"));
    }

    void latenessInTheUnitThatFits_data()
    {
        QTest::addColumn<qint64>("seconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("seconds") << qint64(35) << u"35 s late"_s;
        QTest::newRow("just under two minutes") << qint64(119) << u"119 s late"_s;
        QTest::newRow("minutes") << qint64(12 * 60 + 59) << u"12 min late"_s;
        QTest::newRow("hours") << qint64(5 * 3600) << u"5 h late"_s;
        QTest::newRow("days") << qint64(4 * 86400 + 7) << u"4 days late"_s;
    }
    void latenessInTheUnitThatFits()
    {
        QFETCH(qint64, seconds);
        QFETCH(QString, text);
        QCOMPARE(History::latenessText(seconds), text);
    }

    // Nothing can be created there, not even by root; recording goes on, in memory only.
    void nowhereToWriteLeavesItOff()
    {
        FakeClock clock(Test::Now);
        History history(u"/proc/quillon-test/history.sqlite"_s, clock);
        QVERIFY(!history.isOpen());
        QSignalSpy recorded(&history, &History::recorded);
        history.record(Kind::Opened, u"/a"_s);
        QCOMPARE(recorded.size(), 1);
        QVERIFY(!history.handled(u"/a"_s, {}));
        QVERIFY(!m_log.filter(u"goes on without it"_s).isEmpty());
    }

private:
    // The first value, through a connection of its own; an opened file without the table counts no rows.
    static QVariant query(const QString &file, const QString &sql)
    {
        QVariant value;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"reader"_s);
            db.setDatabaseName(file);
            db.setConnectOptions(u"QSQLITE_BUSY_TIMEOUT=0"_s); // a locked file reads as empty, at once
            QSqlQuery q(db);
            if (db.open() && q.exec(sql) && q.next())
                value = q.value(0);
            else if (db.isOpen())
                value = 0;
        }
        QSqlDatabase::removeDatabase(u"reader"_s);
        return value;
    }
    static int rows(const QString &file)
    {
        const QVariant n = query(file, u"SELECT COUNT(*) FROM events"_s);
        return n.isValid() ? n.toInt() : -1;
    }

    Test::CapturedLog m_log;
};

QTEST_GUILESS_MAIN(HistoryTest)
#include "history_test.moc"

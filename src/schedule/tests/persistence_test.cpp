#include "FakeClock.h"
#include "FileName.h"
#include "FileReference.h"
#include "Preferences.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "SettingsKeys.h"
#include "TestSupport.h"

#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>

#include <ctime>

#include <cstdio>
#include <sys/inotify.h>
#include <unistd.h>

using namespace Quillon;
using namespace Qt::StringLiterals;

using Test::at;
using Test::Now;

class PersistenceTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_settings.clear(m_prefs);
        m_files = std::make_unique<QTemporaryDir>();
    }

    // A deleted item drops out and the next takes its date ("Dates" is written whole); all past: stopped, unalerted.
    void savedListComesBack_data()
    {
        QTest::addColumn<bool>("deleteMiddle");
        QTest::addColumn<int>("hoursLater");
        QTest::addColumn<QList<int>>("rows");
        QTest::addColumn<int>("armed");
        QTest::addColumn<QByteArray>("restoredIn"); // the zone of the next start; saved in Berlin
        QTest::newRow("as saved") << false << 0 << QList<int> { 0, 1, 2 } << 2 << QByteArray("Europe/Berlin");
        QTest::newRow("middle file deleted") << true << 0 << QList<int> { 0, 2 } << 2 << QByteArray("Europe/Berlin");
        QTest::newRow("every date passed") << false << 1 << QList<int> { 0, 1, 2 } << 0 << QByteArray("Europe/Berlin");
        // A laptop that travelled: the moments are the same, 8 hours later on the wall.
        QTest::newRow("started in another zone") << false << 0 << QList<int> { 0, 1, 2 } << 2 << QByteArray("Asia/Tokyo");
    }
    void savedListComesBack()
    {
        QFETCH(bool, deleteMiddle);
        QFETCH(int, hoursLater);
        QFETCH(QList<int>, rows);
        QFETCH(int, armed);
        QFETCH(QByteArray, restoredIn);
        Test::SystemZone zone("Europe/Berlin");
        const QStringList paths = { file("a.txt"), file("b.txt"), file("c.txt") };
        // Moments: a local date of the test itself would move with the zone.
        const QList<QDateTime> dates { at(100).toUTC(), at(200).toUTC(), at(-300).toUTC() };
        {
            auto s = makeSchedule();
            ScheduleEditor editor(*s, m_prefs);
            editor.add(paths, dates);
            // Each rule belongs to its own item, wherever the items around it went.
            QCOMPARE(editor.setRepeat({ 0 }, *Repeat::fromRule(u"daily"_s)), QString());
            QCOMPARE(editor.setRepeat({ 1 }, *Repeat::fromRule(u"weekly"_s)), QString());
            s->startTimers(true);
            if (deleteMiddle)
                QVERIFY(QFile::remove(paths[1]));
            // Left out, and told: the dates are written whole, so the last item takes the middle one's.
            QCOMPARE(s->saveItems(), deleteMiddle ? QStringList { paths[1] } : QStringList {});
        }
        m_clock.advance(qint64(hoursLater) * 3600'000);
        Test::SystemZone::set(restoredIn);
        auto resetClock = qScopeGuard([this] { m_clock.setClock(Now); });
        auto s = makeSchedule();
        QSignalSpy alerts(s.get(), &Schedule::alertRequested);
        QSignalSpy running(s.get(), &Schedule::runningStateChanged);
        QCOMPARE(s->restoreItems(), deleteMiddle ? 0 : -1); // fewer items than dates: any may have moved
        QStringList kept;
        for (int r : rows)
            kept << paths[r];
        QCOMPARE(s->paths(), kept);
        QCOMPARE(s->dates(), dates);
        const QStringList rules { u"FREQ=DAILY"_s, u"FREQ=WEEKLY"_s, QString() };
        for (int row = 0; row < rows.size(); ++row)
            QCOMPARE(s->repeatAt(row).rule(), rules.at(rows.at(row)));
        QCOMPARE(s->timersRemaining(), armed);
        QCOMPARE(s->timersRunning(), armed > 0);
        QCOMPARE(running.last().first().toBool(), armed > 0);
        QCOMPARE(alerts.count(), 0);
    }

    // Cleared stays cleared: the read-back must not take "@Invalid()" for a failed write. No copy goes outside the folder.
    void clearedListStaysCleared()
    {
        QTemporaryDir tmp;
        const Test::ScopedEnv tmpDir("TMPDIR", tmp.path().toUtf8());
        const int watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        QVERIFY(::inotify_add_watch(watch, QFile::encodeName(tmp.path()).constData(), IN_CREATE) >= 0);
        auto closeWatch = qScopeGuard([watch] { ::close(watch); });
        const Test::CapturedLog log;
        {
            auto s = makeSchedule();
            ScheduleEditor editor(*s, m_prefs);
            editor.add({ file("a.txt"), file("b.txt") }, at(100));
            s->startTimers(true);
            s->saveItems();
            s->startStopButtonClicked();
            editor.clear();
            s->saveItems();
        }
        QVERIFY2(log.isEmpty(), qPrintable(log.join(QLatin1Char('\n'))));
        auto s = makeSchedule();
        s->restoreItems();
        QCOMPARE(s->count(), 0);
        QVERIFY(!s->timersRunning());
        char event[4096];
        QCOMPARE(::read(watch, event, sizeof event), ssize_t(-1));
    }

    void filesFoundAfterRenameOrMove_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::newRow("renamed in its folder") << u"docs/report.txt"_s << u"docs/final report.txt"_s;
        QTest::newRow("moved to a sibling folder") << u"docs/report.txt"_s << u"archive/report.txt"_s;
        QTest::newRow("moved and renamed, old folder gone") << u"old/deep/report.txt"_s << u"new/place/r.txt"_s;
        QTest::newRow("moved into a subfolder") << u"report.txt"_s << u"a/b/c/report.txt"_s;
        // Names from a Latin-1 system are not UTF-8: found by their bytes all the same.
        QTest::newRow("Latin-1, renamed") << FileName::decode("caf\xe9.txt") << FileName::decode("d\xe9j\xe0.txt");
    }
    void filesFoundAfterRenameOrMove()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        const QString before = file(from);
        const QByteArray ref = FileReference::make(before);
        QVERIFY(!ref.isEmpty());
        const QString after = m_files->filePath(to);
        QDir().mkpath(QFileInfo(after).absolutePath());
        QCOMPARE(std::rename(FileName::encode(before).constData(), FileName::encode(after).constData()), 0);
        // QTemporaryDir cannot see a name that is not UTF-8 to remove it.
        const auto remove = qScopeGuard([&] { ::unlink(FileName::encode(after).constData()); });
        if (from.startsWith(QLatin1String("old/")))
            QVERIFY(QDir(m_files->filePath(u"old"_s)).removeRecursively());
        QCOMPARE(FileReference::resolve(ref), std::optional<QString>(after));
    }

    void referenceEdgeCases()
    {
        // An editor's atomic save puts a new file at the same path.
        const QString path = file("edited.txt");
        const QByteArray ref = FileReference::make(path);
        QVERIFY(QFile::remove(path));
        file("edited.txt");
        QCOMPARE(FileReference::resolve(ref), std::optional<QString>(path));
        // Gone for good.
        QVERIFY(QFile::remove(path));
        QCOMPARE(FileReference::resolve(ref), std::nullopt);
        // Plain paths, as a hand-written list holds them.
        const QString plain = file("plain.txt");
        QCOMPARE(FileReference::resolve(plain.toUtf8()), std::optional<QString>(plain));
        QCOMPARE(FileReference::resolve("relative/path"), std::nullopt);
        QCOMPARE(FileReference::resolve(QByteArray("QUILLON-REF\x01garbage")), std::nullopt);
        // Longer than the 1023 bytes a saved path may have.
        QString longPath = m_files->path();
        while (longPath.toUtf8().size() <= 1023)
            longPath += u"/"_s + QString(200, QLatin1Char('d'));
        QCOMPARE(FileReference::make(longPath), QByteArray());
        QCOMPARE(FileReference::make(m_files->filePath(u"missing"_s)), QByteArray());
    }

    // Read as far as it can be, a date that is not one as now, stopped and unalerted. TWO: two existing files.
    void handWrittenFileIsReadAsFarAsItCan_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<int>("items");
        QTest::addColumn<int>("dates");
        QTest::addColumn<bool>("datesAreNow");
        QTest::newRow("no file: the first start") << QByteArray() << 0 << 0 << true;
        QTest::newRow("Items a number") << QByteArray("Items=42\nTimersRunning=false\n") << 0 << 0 << true;
        QTest::newRow("Items one path is a list of one") << QByteArray("Items=/etc/hostname\n") << 1 << 1 << true;
        QTest::newRow("Items holds an empty entry") << QByteArray("Items=@ByteArray(), /etc/hostname\n") << 1 << 1 << true;
        QTest::newRow("TimersRunning text true") << QByteArray("Items=TWO\nTimersRunning=true\n") << 2 << 2 << true;
        QTest::newRow("TimersRunning a list") << QByteArray("Items=TWO\nTimersRunning=1, 2\n") << 2 << 2 << true;
        QTest::newRow("Dates present but empty: no dates at all") << QByteArray("Items=TWO\nDates=@Invalid()\n") << 2 << 0 << false;
        QTest::newRow("Dates one value is a list of one") << QByteArray("Items=TWO\nDates=12\n") << 2 << 1 << true;
        QTest::newRow("Dates non-date elements become now") << QByteArray("Items=TWO\nDates=x, 7\n") << 2 << 2 << true;
        QTest::newRow("Dates ISO text is a date") << QByteArray("Items=TWO\nDates=2027-01-15T07:00:00Z, 2027-01-16T07:00:00Z\n") << 2 << 2 << false;
        QTest::newRow("Dates ISO text alone is a list of one") << QByteArray("Items=TWO\nDates=2027-01-15T07:00:00Z\n") << 2 << 1 << false;
    }
    void handWrittenFileIsReadAsFarAsItCan()
    {
        QFETCH(QByteArray, ini);
        QFETCH(int, items);
        QFETCH(int, dates);
        QFETCH(bool, datesAreNow);
        if (!ini.isEmpty())
            m_settings.writeRaw("[General]\n" + ini.replace("TWO", file("x").toUtf8() + ", " + file("y").toUtf8()));
        m_prefs.synchronize();
        auto s = makeSchedule();
        QSignalSpy alerts(s.get(), &Schedule::alertRequested);
        s->restoreItems();
        QCOMPARE(s->count(), items);
        QCOMPARE(s->dates().size(), dates);
        for (const QDateTime &d : s->dates())
            QCOMPARE(d == at(0), datesAreNow);
        if (QByteArray(QTest::currentDataTag()).contains("ISO"))
            QCOMPARE(s->dates().first(), QDateTime(QDate(2027, 1, 15), QTime(7, 0), Qt::UTC));
        QVERIFY(!s->timersRunning());
        QCOMPARE(alerts.count(), 0);
    }

private:
    std::unique_ptr<Schedule> makeSchedule()
    {
        auto s = std::make_unique<Schedule>(m_prefs, m_clock);
        s->createArrays();
        return s;
    }
    QString file(const QString &relative)
    {
        QString path = m_files->filePath(relative);
        Test::writeFile(path, "x");
        return path;
    }

    TestSettings m_settings; // first: it points the preferences at their folder
    Preferences m_prefs;
    std::unique_ptr<QTemporaryDir> m_files;
    FakeClock m_clock { Now };
};

QTEST_GUILESS_MAIN(PersistenceTest)
#include "persistence_test.moc"

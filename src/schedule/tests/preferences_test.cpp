#include "Preferences.h"
#include "SettingsKeys.h"
#include "TestSupport.h"

#include <QScopeGuard>

#include <QSet>
#include <QTest>

#include <atomic>
#include <thread>

#include <sys/stat.h>

using namespace Quillon;

class PreferencesTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        QFile::remove(m_settings.file());
        m_p.synchronize();
    }

    void storedBooleans_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<bool>("remember");
        QTest::addColumn<bool>("folders");
        QTest::newRow("absent: remembered, no folder contents") << QByteArray() << true << false;
        QTest::newRow("written by us") << QByteArray("rememberItems=false\naddFolderFiles=true\n") << false << true;
        QTest::newRow("numbers") << QByteArray("rememberItems=0\naddFolderFiles=1\n") << false << true;
        QTest::newRow("words") << QByteArray("rememberItems=no\naddFolderFiles=yes\n") << false << true;
        QTest::newRow("garbage is false, even for rememberItems") << QByteArray("rememberItems=maybe\naddFolderFiles=maybe\n") << false << false;
        QTest::newRow("empty value") << QByteArray("rememberItems=\naddFolderFiles=\n") << false << false;
    }
    void storedBooleans()
    {
        QFETCH(QByteArray, ini);
        QFETCH(bool, remember);
        QFETCH(bool, folders);
        m_settings.writeRaw("[General]\n" + ini);
        m_p.synchronize();
        QCOMPARE(m_p.rememberItems(), remember);
        QCOMPARE(m_p.addFolderFiles(), folders);
    }

    void ownFileIsPrivateAndOthersKeepTheirMode()
    {
        QDir(m_settings.configDir()).removeRecursively();
        const mode_t old = ::umask(022);
        m_p.setValue(Keys::LoginPassword, QStringLiteral("secret"));
        QCOMPARE(Test::modeOf(m_settings.file()), 0600u);
        QCOMPARE(Test::modeOf(m_settings.configDir()), 0700u);

        // Loosened by the user: theirs now, and left so by the next write.
        ::chmod(QFile::encodeName(m_settings.file()).constData(), 0640);
        ::chmod(QFile::encodeName(m_settings.configDir()).constData(), 0750);
        m_p.setValue(Keys::ServerPort, 25);
        ::umask(old);
        QCOMPARE(Test::modeOf(m_settings.file()), 0640u);
        QCOMPARE(Test::modeOf(m_settings.configDir()), 0750u);
        QCOMPARE(m_settings.read(QStringLiteral("loginPassword")).toString(), QStringLiteral("secret"));
        QVERIFY(!QFile::exists(m_settings.file() + QStringLiteral(".bak")));
    }

    // Programs started on another thread while the list is saved must get the user's umask.
    void savingNeverTouchesTheUmask()
    {
        const mode_t old = ::umask(022);
        std::atomic<bool> done = false;
        QSet<QByteArray> seen;
        std::thread watcher([&] {
            while (!done) {
                QFile status(QStringLiteral("/proc/self/status"));
                status.open(QIODevice::ReadOnly);
                for (const QByteArray &line : status.readAll().split('\n')) {
                    if (line.startsWith("Umask:"))
                        seen.insert(line.mid(6).trimmed());
                }
            }
        });
        for (int i = 0; i < 300; ++i)
            m_p.setValue(Keys::RepeatSeconds, i);
        done = true;
        watcher.join();
        ::umask(old);
        QCOMPARE(seen, QSet<QByteArray>{"0022"});
    }

    void fallbackFilesAreNotRead()
    {
        const QString parentConf = QFileInfo(m_settings.configDir()).absolutePath() + QStringLiteral("/Quillon.conf");
        QVERIFY(Test::writeFile(parentConf, "[General]\nrememberItems=false\nsendEmail=true\n"));
        Preferences fresh;
        QFile::remove(parentConf);
        QVERIFY(fresh.rememberItems());
        QVERIFY(!fresh.boolValue(Keys::SendEmail));
    }

    // A hand-edited file with a typo at its end is kept aside; what could be read goes on working.
    void malformedFileKeepsEveryReadableKey()
    {
        m_settings.writeRaw("[General]\nserverAddress=smtp.example.org\nrecipientEmail=ann@example.org\nrepeatSeconds=5\n[General\nsendEmail=true\n");
        Preferences fresh;
        fresh.setValue(Keys::TimersRunning, false);
        QCOMPARE(m_settings.read(QStringLiteral("serverAddress")).toString(), QStringLiteral("smtp.example.org"));
        QCOMPARE(m_settings.read(QStringLiteral("recipientEmail")).toString(), QStringLiteral("ann@example.org"));
        QCOMPARE(m_settings.read(QStringLiteral("repeatSeconds")).toInt(), 5);
        const QStringList kept = QDir(m_settings.configDir()).entryList({QStringLiteral("Quillon.conf.unreadable-*")});
        QCOMPARE(kept.size(), 1);
        QDir(m_settings.configDir()).remove(kept.first());
    }

    // A damaged time-zone byte parses but cannot be written back: left out, kept in the copy, saves go on.
    void unreadableDateIsLeftOut()
    {
        const QByteArray bad = "@DateTime(\\0\\0\\0\\x10\\0\\0\\0\\0\\0\\0%\\x8e\\xed\\x1\\xee\\x62\\x80\\x7)";
        const QByteArray good = "@DateTime(\\0\\0\\0\\x10\\0\\0\\0\\0\\0\\0%\\x8e\\xed\\x1\\xee\\x62\\x80\\x1)";
        m_settings.writeRaw("[General]\nserverPort=25\nWhen=" + bad + "\nDates=" + good + ", " + bad + "\n");
        const Test::CapturedLog log;
        Preferences fresh;
        fresh.setValue(Keys::RepeatSeconds, 5);
        fresh.setValue(Keys::RepeatSeconds, 6);
        QVERIFY2(log.filter(QStringLiteral("Could not write")).isEmpty(), qPrintable(log.join(QLatin1Char('\n'))));
        QCOMPARE(m_settings.read(QStringLiteral("repeatSeconds")).toInt(), 6);
        QCOMPARE(m_settings.read(QStringLiteral("serverPort")).toInt(), 25);
        QVERIFY(m_settings.read(QStringLiteral("When")).isNull());
        QCOMPARE(m_settings.read(QStringLiteral("Dates")).toList().size(), 2);
        const QStringList kept = QDir(m_settings.configDir()).entryList({QStringLiteral("Quillon.conf.unreadable-*")});
        QCOMPARE(kept.size(), 1);
        QVERIFY(Test::readFile(m_settings.configDir() + QLatin1Char('/') + kept.first()).contains(QLatin1String("When=")));
        QDir(m_settings.configDir()).remove(kept.first());
    }

private:
    TestSettings m_settings; // first: it points the preferences at their folder
    Preferences m_p;
};

QTEST_GUILESS_MAIN(PreferencesTest)
#include "preferences_test.moc"

#include "Preferences.h"
#include "SettingsKeys.h"
#include "TestSupport.h"

#include <QSet>
#include <QSettings>
#include <QTest>

#include <atomic>
#include <thread>

#include <sys/stat.h>

using namespace Quillon;
using namespace Qt::StringLiterals;

class PreferencesTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { m_settings.clear(m_p); }

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
        m_p.setValue(Keys::LoginPassword, u"secret"_s);
        m_p.flush();
        QCOMPARE(Test::modeOf(m_settings.file()), 0600u);
        QCOMPARE(Test::modeOf(m_settings.configDir()), 0700u);

        // Loosened by the user: theirs now, and left so by the next write.
        ::chmod(QFile::encodeName(m_settings.file()).constData(), 0640);
        ::chmod(QFile::encodeName(m_settings.configDir()).constData(), 0750);
        m_p.setValue(Keys::ServerPort, 25);
        m_p.flush();
        ::umask(old);
        QCOMPARE(Test::modeOf(m_settings.file()), 0640u);
        QCOMPARE(Test::modeOf(m_settings.configDir()), 0750u);
        QCOMPARE(m_settings.read(u"loginPassword"_s).toString(), u"secret"_s);
        QVERIFY(!QFile::exists(m_settings.file() + u".bak"_s));
    }

    // Programs started on another thread while the list is saved must get the user's umask.
    void savingNeverTouchesTheUmask()
    {
        const mode_t old = ::umask(022);
        std::atomic<bool> done = false;
        QSet<QByteArray> seen;
        std::thread watcher([&] {
            while (!done) {
                QFile status(u"/proc/self/status"_s);
                status.open(QIODevice::ReadOnly);
                for (const QByteArray &line : status.readAll().split('\n')) {
                    if (line.startsWith("Umask:"))
                        seen.insert(line.mid(6).trimmed());
                }
            }
        });
        for (int i = 0; i < 300; ++i) {
            m_p.setValue(Keys::RepeatSeconds, i);
            m_p.flush();
        }
        done = true;
        watcher.join();
        ::umask(old);
        QCOMPARE(seen, QSet<QByteArray> { "0022" });
    }

    // A burst of changes reads back at once and reaches the file in one write, a moment later or
    // when the settings object goes; the last change of a key wins.
    void changesMadeTogetherAreWrittenOnce_data()
    {
        QTest::addColumn<bool>("byTheEventLoop");
        QTest::newRow("a moment later") << true;
        QTest::newRow("when the object goes") << false;
    }
    void changesMadeTogetherAreWrittenOnce()
    {
        QFETCH(bool, byTheEventLoop);
        auto prefs = std::make_unique<Preferences>();
        prefs->setValues({ { Keys::ServerPort, 1 }, { Keys::RecipientEmail, u"ann@example.org"_s } });
        prefs->flush();
        for (int i = 2; i <= 100; ++i)
            prefs->setValue(Keys::ServerPort, i);
        prefs->remove(Keys::RecipientEmail);
        QCOMPARE(prefs->intValue(Keys::ServerPort), 100);
        QVERIFY(!prefs->contains(Keys::RecipientEmail));
        QCOMPARE(m_settings.read(u"serverPort"_s).toInt(), 1);
        if (byTheEventLoop)
            QTRY_COMPARE(m_settings.read(u"serverPort"_s).toInt(), 100);
        else
            prefs.reset();
        QCOMPARE(m_settings.read(u"serverPort"_s).toInt(), 100);
        QVERIFY(m_settings.read(u"recipientEmail"_s).isNull());
    }

    void fallbackFilesAreNotRead()
    {
        const QString parentConf = QFileInfo(m_settings.configDir()).absolutePath() + u"/Quillon.conf"_s;
        QVERIFY(Test::writeFile(parentConf, "[General]\nrememberItems=false\nsendEmail=true\n"));
        Preferences fresh;
        QFile::remove(parentConf);
        QVERIFY(fresh.rememberItems());
        QVERIFY(!fresh.boolValue(Keys::SendEmail));
    }

    // A typo at the end of a hand-edited file, or a damaged time-zone byte that parses but cannot be
    // written back: the file is kept aside as it was, and what could be read goes on being saved.
    void damagedFileKeepsEveryReadableKey_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<QString>("gone"); // a key left out of the working file, but kept in the copy
        const QByteArray bad = "@DateTime(\\0\\0\\0\\x10\\0\\0\\0\\0\\0\\0%\\x8e\\xed\\x1\\xee\\x62\\x80\\x7)";
        const QByteArray good = "@DateTime(\\0\\0\\0\\x10\\0\\0\\0\\0\\0\\0%\\x8e\\xed\\x1\\xee\\x62\\x80\\x1)";
        QTest::newRow("malformed section") << QByteArray("serverPort=25\nrecipientEmail=ann@example.org\n[General\nsendEmail=true\n") << u""_s;
        QTest::newRow("damaged date") << "serverPort=25\nrecipientEmail=ann@example.org\nWhen=" + bad + "\nDates=" + good + ", " + bad + "\n" << u"When"_s;
        QByteArray junk;
        for (int i = 0; i < 2000; ++i)
            junk += "\x7f" + QByteArray::number(i, 36) + "=\x01\n";
        QTest::newRow("junk that parses as keys") << "serverPort=25\nrecipientEmail=ann@example.org\n" + junk + "[General\n" << u""_s;
    }
    void damagedFileKeepsEveryReadableKey()
    {
        QFETCH(QByteArray, ini);
        QFETCH(QString, gone);
        m_settings.writeRaw("[General]\n" + ini);
        const Test::CapturedLog log;
        Preferences fresh;
        fresh.setValue(Keys::RepeatSeconds, 5);
        fresh.flush();
        fresh.setValue(Keys::RepeatSeconds, 6);
        fresh.flush();
        QVERIFY2(log.filter(u"Could not write"_s).isEmpty(), qPrintable(log.join(QLatin1Char('\n'))));
        QCOMPARE(m_settings.read(u"repeatSeconds"_s).toInt(), 6);
        QCOMPARE(m_settings.read(u"serverPort"_s).toInt(), 25);
        QCOMPARE(m_settings.read(u"recipientEmail"_s).toString(), u"ann@example.org"_s);
        // Only keys of ours are saved anew; the rest stays in the kept copy.
        const QStringList saved = QSettings(m_settings.file(), QSettings::IniFormat).allKeys();
        QVERIFY2(
            std::all_of(saved.begin(), saved.end(), [](const QString &key) { return Keys::isKnown(key); }), qPrintable(saved.join(QLatin1Char(' ')).left(300)));
        if (!gone.isEmpty())
            QVERIFY(m_settings.read(gone).isNull() && m_settings.read(u"Dates"_s).toList().size() == 2);
        const QStringList kept = QDir(m_settings.configDir()).entryList({ u"Quillon.conf.unreadable-*"_s });
        QCOMPARE(kept.size(), 1);
        QCOMPARE(Test::readFile(m_settings.configDir() + QLatin1Char('/') + kept.first()).toUtf8(), "[General]\n" + ini);
        QDir(m_settings.configDir()).remove(kept.first());
    }

private:
    TestSettings m_settings; // first: it points the preferences at their folder
    Preferences m_p;
};

QTEST_GUILESS_MAIN(PreferencesTest)
#include "preferences_test.moc"

#include "Preferences.h"
#include "SettingsKeys.h"
#include "TestSupport.h"

#include <QTest>

#include <sys/stat.h>

using namespace Quillon;

class PreferencesTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        m_settings = std::make_unique<TestSettings>();
        m_p = std::make_unique<Preferences>();
    }
    void init()
    {
        QFile::remove(m_settings->file());
        m_p->synchronize();
    }

    void absentKeys()
    {
        QVERIFY(!QFile::exists(m_settings->file()));
        QVERIFY(m_p->rememberItems());
        QVERIFY(!m_p->addFolderFiles());
        QVERIFY(!m_p->addFolderFilesRecursively());
        QCOMPARE(m_p->intValue(Keys::RepeatSeconds), 0);
        QVERIFY(!m_p->boolValue(Keys::QuitWhenDone));
        QVERIFY(!m_p->boolValue(Keys::SendEmail));
    }

    void storedBooleans_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<bool>("remember");
        QTest::addColumn<bool>("folders");
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
        m_settings->writeRaw("[General]\n" + ini);
        m_p->synchronize();
        QCOMPARE(m_p->rememberItems(), remember);
        QCOMPARE(m_p->addFolderFiles(), folders);
    }

    void fileIsPrivateAfterEveryWrite()
    {
        const mode_t old = ::umask(022);
        m_p->setValue(Keys::LoginPassword, QStringLiteral("secret"));
        struct stat fileStat{}, dirStat{};
        QCOMPARE(::stat(QFile::encodeName(m_settings->file()).constData(), &fileStat), 0);
        QCOMPARE(fileStat.st_mode & 0777, 0600u);
        QCOMPARE(::stat(QFile::encodeName(m_settings->configDir()).constData(), &dirStat), 0);
        QCOMPARE(dirStat.st_mode & 0777, 0700u);

        // Loosened by hand, tightened again by the next write.
        ::chmod(QFile::encodeName(m_settings->file()).constData(), 0644);
        ::chmod(QFile::encodeName(m_settings->configDir()).constData(), 0755);
        m_p->setValue(Keys::ServerPort, 25);
        ::umask(old);
        QCOMPARE(::stat(QFile::encodeName(m_settings->file()).constData(), &fileStat), 0);
        QCOMPARE(fileStat.st_mode & 0777, 0600u);
        QCOMPARE(::stat(QFile::encodeName(m_settings->configDir()).constData(), &dirStat), 0);
        QCOMPARE(dirStat.st_mode & 0777, 0700u);
        QCOMPARE(m_settings->read(QStringLiteral("loginPassword")).toString(), QStringLiteral("secret"));
    }

    void synchronizeSeesAnotherWriter()
    {
        m_p->setValue(Keys::SendEmail, false);
        m_settings->writeRaw("[General]\nsendEmail=true\n");
        m_p->synchronize();
        QVERIFY(m_p->boolValue(Keys::SendEmail));
    }

private:
    std::unique_ptr<TestSettings> m_settings;
    std::unique_ptr<Preferences> m_p;
};

QTEST_GUILESS_MAIN(PreferencesTest)
#include "preferences_test.moc"

#include "FileTrust.h"
#include "TestSupport.h"

#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Quillon;

// What may run as the user: whose file it is, who can change it or its folder, and whether a
// desktop entry is marked executable.
class FileTrustTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void whoMayRunWhat_data()
    {
        QTest::addColumn<QString>("name"); // under a folder of the given mode
        QTest::addColumn<uint>("folderMode");
        QTest::addColumn<uint>("fileMode");
        QTest::addColumn<bool>("others"); // the file belongs to another user (root only)
        QTest::addColumn<QString>("refusal"); // empty: it runs
        QTest::newRow("own script") << "s.scpt" << 0755u << 0644u << false << "";
        QTest::newRow("another user's script") << "s.scpt" << 0755u << 0644u << true << "another user";
        QTest::newRow("a script anyone can write") << "s.scpt" << 0755u << 0666u << false << "others can change it";
        QTest::newRow("in a folder anyone can write") << "s.scpt" << 0777u << 0644u << false << "its folder";
        QTest::newRow("in a sticky shared folder, such as /tmp") << "s.scpt" << 01777u << 0644u << false << "";
        QTest::newRow("desktop entry not marked executable") << "e.desktop" << 0755u << 0644u << false << "marked executable";
        QTest::newRow("desktop entry marked executable") << "e.desktop" << 0755u << 0755u << false << "";
        QTest::newRow("another user's executable desktop entry") << "e.desktop" << 0755u << 0755u << true << "another user";
        QTest::newRow("in the user's applications folder") << "applications/e.desktop" << 0755u << 0644u << false << "";
    }
    void whoMayRunWhat()
    {
        QFETCH(QString, name);
        QFETCH(uint, folderMode);
        QFETCH(uint, fileMode);
        QFETCH(bool, others);
        QFETCH(QString, refusal);
        if (others && ::geteuid() != 0)
            QSKIP("Giving a file to another user needs root.");
        QTemporaryDir home;
        qputenv("XDG_DATA_HOME", home.path().toUtf8());
        const QString file = home.filePath(name);
        QVERIFY(Test::writeFile(file));
        QCOMPARE(::chmod(QFile::encodeName(file).constData(), fileMode), 0);
        QCOMPARE(::chmod(QFile::encodeName(QFileInfo(file).absolutePath()).constData(), folderMode), 0);
        if (others)
            QCOMPARE(::chown(QFile::encodeName(file).constData(), 65534, 65534), 0);
        const auto kind = name.endsWith(QLatin1String(".desktop")) ? FileTrust::Kind::DesktopEntry : FileTrust::Kind::Script;
        const QString why = FileTrust::whyNotRun(file, kind);
        QVERIFY2(refusal.isEmpty() ? why.isEmpty() : why.contains(refusal), qPrintable(why));
        // Through a link from a folder of the user's own, the file it leads to is what counts.
        const QString link = home.filePath(QStringLiteral("link"));
        QVERIFY(QFile::link(file, link));
        QCOMPARE(FileTrust::whyNotRun(link, kind), why);
    }
};

QTEST_GUILESS_MAIN(FileTrustTest)
#include "file_trust_test.moc"

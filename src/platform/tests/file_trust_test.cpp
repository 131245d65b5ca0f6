#include "FileTrust.h"
#include "TestSupport.h"

#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Quillon;
using namespace Qt::StringLiterals;

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
        QTest::newRow("own script") << u"s.scpt"_s << 0755u << 0644u << false << u""_s;
        QTest::newRow("another user's script") << u"s.scpt"_s << 0755u << 0644u << true << u"another user"_s;
        QTest::newRow("a script anyone can write") << u"s.scpt"_s << 0755u << 0666u << false << u"others can change it"_s;
        QTest::newRow("in a folder anyone can write") << u"s.scpt"_s << 0777u << 0644u << false << u"its folder"_s;
        QTest::newRow("in a sticky shared folder, such as /tmp") << u"s.scpt"_s << 01777u << 0644u << false << u""_s;
        QTest::newRow("desktop entry not marked executable") << u"e.desktop"_s << 0755u << 0644u << false << u"marked executable"_s;
        QTest::newRow("desktop entry marked executable") << u"e.desktop"_s << 0755u << 0755u << false << u""_s;
        QTest::newRow("another user's executable desktop entry") << u"e.desktop"_s << 0755u << 0755u << true << u"another user"_s;
        QTest::newRow("in the user's applications folder") << u"applications/e.desktop"_s << 0755u << 0644u << false << u""_s;
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
        const QString link = home.filePath(u"link"_s);
        QVERIFY(QFile::link(file, link));
        QCOMPARE(FileTrust::whyNotRun(link, kind), why);
    }
};

QTEST_GUILESS_MAIN(FileTrustTest)
#include "file_trust_test.moc"

#include "FileReference.h"
#include "TestSupport.h"

#include <QProcess>
#include <QScopeGuard>
#include <QTest>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Quillon;

// Without birth times (ext4 with 128-byte inodes) a deleted item's inode goes to the next new file.
class FileReferenceTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        if (::geteuid() != 0)
            QSKIP("Needs root to mount a filesystem image and to create a file as another user.");
        const QString image = m_dir.filePath(QStringLiteral("fs.img"));
        QFile file(image);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(8 * 1024 * 1024));
        file.close();
        QProcess mkfs;
        mkfs.start(QStringLiteral("mkfs.ext4"), {QStringLiteral("-q"), QStringLiteral("-F"), QStringLiteral("-I"), QStringLiteral("128"), image});
        QVERIFY(mkfs.waitForFinished(30'000) && mkfs.exitCode() == 0);
        m_mount = m_dir.filePath(QStringLiteral("mnt"));
        QDir().mkpath(m_mount);
        QProcess mount;
        mount.start(QStringLiteral("mount"), {QStringLiteral("-o"), QStringLiteral("loop"), image, m_mount});
        QVERIFY(mount.waitForFinished(30'000));
        if (mount.exitCode() != 0)
            QSKIP("Loop devices are not available here.");
        m_mounted = true;
        // Another user must be able to reach the shared folder.
        ::chmod(QFile::encodeName(m_dir.path()).constData(), 0755);
    }
    void cleanupTestCase()
    {
        if (m_mounted)
            ::umount2(QFile::encodeName(m_mount).constData(), MNT_DETACH);
    }

    void onlyTheSameFileIsFoundAgain_data()
    {
        QTest::addColumn<QString>("after");   // what happens to docs/report.sh once it is referenced
        QTest::addColumn<bool>("found");
        QTest::newRow("moved by the user") << "mv" << true;
        QTest::newRow("deleted; another user's new file in a shared folder gets its inode") << "nobody" << false;
        QTest::newRow("deleted; another file of the user's own gets its inode") << "own" << false;
    }
    void onlyTheSameFileIsFoundAgain()
    {
        QFETCH(QString, after);
        QFETCH(bool, found);
        const QString root = m_mount + QLatin1Char('/') + QString::fromLatin1(QTest::currentDataTag()).left(8).simplified().replace(QLatin1Char(' '), QLatin1Char('-'));
        QVERIFY(QDir().mkpath(root + QStringLiteral("/docs")) && QDir().mkpath(root + QStringLiteral("/kept")));
        const QString shared = root + QStringLiteral("/shared");
        QVERIFY(QDir().mkpath(shared));
        ::chmod(QFile::encodeName(shared).constData(), 01777);
        const QString item = root + QStringLiteral("/docs/report.sh");
        QVERIFY(Test::writeFile(item, "#!/bin/sh\necho mine\n", true));
        const QByteArray reference = FileReference::make(item);
        QVERIFY(!reference.isEmpty());
        struct stat before{};
        ::stat(QFile::encodeName(item).constData(), &before);

        QString other;
        if (after == QLatin1String("mv")) {
            other = root + QStringLiteral("/kept/report.sh");
            QVERIFY(QFile::rename(item, other));
        } else {
            QVERIFY(QFile::remove(item));
            other = after == QLatin1String("nobody") ? shared + QStringLiteral("/evil.sh") : root + QStringLiteral("/kept/notes.txt");
            const QStringList as = after == QLatin1String("nobody") ? QStringList{QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"), QStringLiteral("--clear-groups")}
                                                                   : QStringList{QStringLiteral("--reuid=0")};
            QProcess create;
            create.start(QStringLiteral("setpriv"), as + QStringList{QStringLiteral("sh"), QStringLiteral("-c"), QStringLiteral("echo 'other things entirely' > '%1'").arg(other)});
            QVERIFY(create.waitForFinished(10'000) && create.exitCode() == 0);
        }
        struct stat now{};
        ::stat(QFile::encodeName(other).constData(), &now);
        QCOMPARE(now.st_ino, before.st_ino); // the case this is about: the inode is the same
        QCOMPARE(FileReference::resolve(reference), found ? std::optional<QString>(other) : std::nullopt);
    }

private:
    QTemporaryDir m_dir;
    QString m_mount;
    bool m_mounted = false;
};

QTEST_GUILESS_MAIN(FileReferenceTest)
#include "file_reference_test.moc"

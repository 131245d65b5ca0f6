#include "FileName.h"
#include "FileReference.h"
#include "TestSupport.h"

#include <QTest>
#include <QUrl>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Quillon;
using namespace Qt::StringLiterals;

// A file's name and its reference bring back that file, and no other.
class FileReferenceTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cleanupTestCase()
    {
        if (!m_mount.isEmpty())
            ::umount2(QFile::encodeName(m_mount).constData(), MNT_DETACH);
    }

    // Without birth times (ext4 with 128-byte inodes) a deleted item's inode goes to the next new file.
    void onlyTheSameFileIsFoundAgain_data()
    {
        QTest::addColumn<QString>("after"); // what happens to docs/report.sh once it is referenced
        QTest::addColumn<bool>("found");
        QTest::newRow("moved by the user") << u"mv"_s << true;
        QTest::newRow("deleted; another user's new file in a shared folder gets its inode") << u"nobody"_s << false;
        QTest::newRow("deleted; another file of the user's own gets its inode") << u"own"_s << false;
        // Name, size and the second it was written are not identity.
        QTest::newRow("deleted; a new file of the same name elsewhere gets its inode") << u"same name"_s << false;
        QTest::newRow("deleted; a new file of the same size and second gets its inode") << u"same size"_s << false;
    }
    void onlyTheSameFileIsFoundAgain()
    {
        QFETCH(QString, after);
        QFETCH(bool, found);
        if (::geteuid() != 0)
            QSKIP("Needs root to mount a filesystem image and to create a file as another user.");
        if (m_mount.isEmpty()) {
            QVERIFY(makeImage());
            if (!Test::run(u"mount"_s, { u"-o"_s, u"loop"_s, image(), m_dir.filePath(u"mnt"_s) }))
                QSKIP("Loop devices are not available here.");
            m_mount = m_dir.filePath(u"mnt"_s);
        }
        const QString root
            = m_mount + QLatin1Char('/') + QString::fromLatin1(QTest::currentDataTag()).left(8).simplified().replace(QLatin1Char(' '), QLatin1Char('-'));
        QVERIFY(QDir().mkpath(root + u"/docs"_s) && QDir().mkpath(root + u"/kept"_s));
        const QString shared = root + u"/shared"_s;
        QVERIFY(QDir().mkpath(shared));
        ::chmod(QFile::encodeName(shared).constData(), 01777);
        const QString item = root + u"/docs/report.sh"_s;
        QVERIFY(Test::writeFile(item, "#!/bin/sh\necho mine\n", true));
        const QByteArray reference = FileReference::make(item);
        QVERIFY(!reference.isEmpty());
        struct stat before = {};
        ::stat(QFile::encodeName(item).constData(), &before);

        QString other;
        if (after == QLatin1String("mv")) {
            other = root + u"/kept/report.sh"_s;
            QVERIFY(QFile::rename(item, other));
        } else {
            QVERIFY(QFile::remove(item));
            other = after == QLatin1String("nobody")  ? shared + u"/evil.sh"_s
                : after == QLatin1String("same name") ? root + u"/kept/report.sh"_s
                : after == QLatin1String("same size") ? root + u"/kept/other.sh"_s
                                                      : root + u"/kept/notes.txt"_s;
            const QByteArray text = after.startsWith(QLatin1String("same")) ? "#!/bin/sh\necho evil\n" : "other things entirely\n";
            const QStringList as = after == QLatin1String("nobody") ? QStringList { u"--reuid=65534"_s, u"--regid=65534"_s, u"--clear-groups"_s }
                                                                    : QStringList { u"--reuid=0"_s };
            QVERIFY(Test::run(u"setpriv"_s, as + QStringList { u"sh"_s, u"-c"_s, u"printf '%1' > '%2'"_s.arg(QString::fromLatin1(text), other) }));
            const timespec times[2] = { before.st_atim, before.st_mtim };
            QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(other).constData(), times, 0), 0);
        }
        struct stat now = {};
        ::stat(QFile::encodeName(other).constData(), &now);
        QCOMPARE(now.st_ino, before.st_ino); // the case this is about: the inode is the same
        QCOMPARE(FileReference::resolve(reference), found ? std::optional<QString>(other) : std::nullopt);
    }

    // File names are bytes: one that is not UTF-8 comes back byte for byte from text and from a URL.
    void bytesComeBackExactly_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("utf8");
        QTest::newRow("ASCII") << QByteArray("/home/ann/notes.txt") << true;
        QTest::newRow("UTF-8 with a 4-byte sequence") << QByteArray("/Gr\xc3\xbc\xc3\x9f\xc3\xa9 \xf0\x9f\x8e\xb5") << true;
        QTest::newRow("Latin-1") << QByteArray("/home/ann/r\xe9sum\xe9.txt") << false;
        QTest::newRow("a surrogate written as UTF-8") << QByteArray("/a\xed\xb2\x80z") << false;
        QTest::newRow("overlong slash") << QByteArray("/a\xc0\xafz") << false;
        QTest::newRow("cut-off sequence at the end") << QByteArray("/a\xe2\x82") << false;
    }
    void bytesComeBackExactly()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, utf8);
        const QString text = FileName::decode(bytes);
        QCOMPARE(FileName::encode(text), bytes);
        if (utf8)
            QCOMPARE(text, QString::fromUtf8(bytes));
        // Shown as Qt would show it.
        QCOMPARE(FileName::display(text), QString::fromUtf8(bytes));
        QUrl url;
        url.setPath(QString::fromLatin1(bytes.toPercentEncoding("/")), QUrl::TolerantMode);
        url.setScheme(u"file"_s);
        QCOMPARE(FileName::fromUrl(url), text);
    }

private:
    QString image() const { return m_dir.filePath(u"fs.img"_s); }
    bool makeImage()
    {
        QFile file(image());
        // Another user must be able to reach the shared folder.
        return file.open(QIODevice::WriteOnly) && file.resize(qint64(8) * 1024 * 1024) && QDir().mkpath(m_dir.filePath(u"mnt"_s))
            && ::chmod(QFile::encodeName(m_dir.path()).constData(), 0755) == 0 && Test::run(u"mkfs.ext4"_s, { u"-q"_s, u"-F"_s, u"-I"_s, u"128"_s, image() });
    }

    QTemporaryDir m_dir;
    QString m_mount;
};

QTEST_GUILESS_MAIN(FileReferenceTest)
#include "file_reference_test.moc"

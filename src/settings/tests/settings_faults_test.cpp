#include "Preferences.h"
#include "SettingsKeys.h"
#include "TestSupport.h"

#include <QDirIterator>
#include <QProcess>
#include <QTest>

#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

using namespace Quillon;
using namespace Qt::StringLiterals;

namespace {
constexpr uid_t Nobody = 65534;

const QStringList AsNobody { u"--reuid=65534"_s, u"--regid=65534"_s, u"--clear-groups"_s };

// The probe saves a one-item list with its settings under home, as uid 65534 where asked; -1 if it hung.
int runProbe(QProcess &probe, const QString &home, bool asNobody = false)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"XDG_CONFIG_HOME"_s, home);
    probe.setProcessEnvironment(env);
    // setpriv with no options runs the program as it is.
    probe.start(u"setpriv"_s, (asNobody ? AsNobody : QStringList()) + QStringList { QStringLiteral(SETTINGS_PROBE), u"/etc/hostname"_s });
    return probe.waitForFinished(20'000) ? probe.exitCode() : -1;
}
} // namespace

// A settings file that cannot be read, written or held: the user's file survives, its mode unchanged.
class SettingsFaultsTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void fileThatCannotBeReadOrWrittenSurvives_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<uint>("fileMode");
        QTest::addColumn<uint>("dirMode");
        const QByteArray good = "[General]\nItems=/etc/hostname, /etc/passwd\nloginPassword=secret\n";
        QTest::newRow("unreadable (000)") << good << 0000u << 0700u;
        QTest::newRow("write-only (0200)") << good << 0200u << 0700u;
        QTest::newRow("read-only (0400)") << good << 0400u << 0700u;
        QTest::newRow("read-only folder (0500)") << good << 0600u << 0500u;
        QTest::newRow("malformed: a quote swallows the rest")
            << QByteArray("[General]\nrecipientName=\"Ann\nItems=/etc/hostname\nsendEmail=true\n") << 0600u << 0700u;
    }
    void fileThatCannotBeReadOrWrittenSurvives()
    {
        if (::geteuid() != 0)
            QSKIP("Needs root to run the probe as another user (root ignores file modes).");
        QFETCH(QByteArray, ini);
        QFETCH(uint, fileMode);
        QFETCH(uint, dirMode);
        QTemporaryDir home;
        const QString dir = home.filePath(u"Quillon"_s);
        const QString file = dir + u"/Quillon.conf"_s;
        QVERIFY(Test::writeFile(file, ini));
        for (const QString &p : { home.path(), dir, file })
            QCOMPARE(::chown(QFile::encodeName(p).constData(), Nobody, Nobody), 0);
        ::chmod(QFile::encodeName(file).constData(), fileMode);
        ::chmod(QFile::encodeName(dir).constData(), dirMode);
        struct stat before = {};
        ::stat(QFile::encodeName(file).constData(), &before);

        QProcess probe;
        QCOMPARE(runProbe(probe, home.path(), true), 0);
        const QString log = QString::fromUtf8(probe.readAllStandardError());
        QVERIFY2(log.contains(QLatin1String("settings file")), qPrintable(log));

        // The user's bytes are still there: as the file, or as the copy kept before writing, which
        // leaves out the mail password.
        ::chmod(QFile::encodeName(dir).constData(), 0700);
        bool kept = false;
        for (QDirIterator it(dir, QDir::Files | QDir::Hidden); it.hasNext();) {
            const QString path = it.next();
            ::chmod(QFile::encodeName(path).constData(), 0600);
            const QByteArray bytes = Test::readFile(path).toUtf8();
            const bool copy = path.contains(QLatin1String(".unreadable-"));
            kept = kept || bytes == (copy ? QByteArray(ini).replace("loginPassword=secret\n", "") : ini);
            QVERIFY2(!copy || !bytes.contains("secret"), path.toUtf8().constData());
        }
        QVERIFY2(kept, qPrintable(log));
        struct stat after = {};
        if (::stat(QFile::encodeName(file).constData(), &after) == 0 && after.st_ino == before.st_ino)
            QCOMPARE(uint(after.st_mode & 07777), 0600u); // set back by us above: the probe left the inode alone
        QCOMPARE(Test::modeOf(home.path()), 0700u);
    }

    // A settings folder that is not the user's alone (XDG_CONFIG_HOME pointing at a shared folder)
    // is neither read nor written: its list is not loaded, its file keeps its bytes and mode.
    void aFolderNotOurOwnIsRefused_data()
    {
        QTest::addColumn<QString>("folder"); // the one given away, under XDG_CONFIG_HOME
        QTest::addColumn<uint>("mode");
        QTest::addColumn<bool>("others"); // owned by another user (root only)
        QTest::newRow("config home anyone can write") << u""_s << 0777u << false;
        QTest::newRow("our folder anyone can write") << u"Quillon"_s << 0777u << false;
        QTest::newRow("our folder, another user's") << u"Quillon"_s << 0700u << true;
    }
    void aFolderNotOurOwnIsRefused()
    {
        QFETCH(QString, folder);
        QFETCH(uint, mode);
        QFETCH(bool, others);
        if (others && ::geteuid() != 0)
            QSKIP("Giving a folder to another user needs root.");
        QTemporaryDir home;
        const QString file = home.filePath(u"Quillon/Quillon.conf"_s);
        const QByteArray planted = "[General]\nItems=/etc/passwd\nTimersRunning=true\n";
        QVERIFY(Test::writeFile(file, planted));
        ::chmod(QFile::encodeName(file).constData(), 0666);
        const QByteArray given = QFile::encodeName(home.filePath(folder));
        QCOMPARE(::chmod(given.constData(), mode), 0);
        if (others)
            QCOMPARE(::chown(given.constData(), Nobody, Nobody), 0);
        QProcess probe;
        QCOMPARE(runProbe(probe, home.path()), 0);
        const QString log = QString::fromUtf8(probe.readAllStandardError());
        QVERIFY2(log.contains(QLatin1String("is not yours alone")), qPrintable(log));
        QCOMPARE(Test::readFile(file).toUtf8(), planted);
        QCOMPARE(Test::modeOf(file), 0666u);
        QCOMPARE(QDir(home.filePath(u"Quillon"_s)).entryList(QDir::Files | QDir::Hidden), QStringList { u"Quillon.conf"_s });
    }

    // A FIFO would block open for ever, a folder as lock every save: set aside with a log line, and the list is saved.
    void oddFilesInTheSettingsFolder_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("kind");
        QTest::newRow("FIFO as the settings file") << u"Quillon.conf"_s << u"fifo"_s;
        QTest::newRow("FIFO as the window state") << u"window.conf"_s << u"fifo"_s;
        QTest::newRow("folder as the settings file") << u"Quillon.conf"_s << u"folder"_s;
        QTest::newRow("folder as the settings lock") << u"Quillon.conf.lock"_s << u"folder"_s;
    }
    void oddFilesInTheSettingsFolder()
    {
        QFETCH(QString, name);
        QFETCH(QString, kind);
        QTemporaryDir home;
        const QString dir = home.filePath(u"Quillon"_s);
        QVERIFY(QDir().mkpath(dir));
        const QByteArray odd = QFile::encodeName(dir + QLatin1Char('/') + name);
        if (kind == QLatin1String("fifo"))
            QCOMPARE(::mkfifo(odd.constData(), 0600), 0);
        else
            QVERIFY(QDir().mkpath(QFile::decodeName(odd)));
        QProcess probe;
        QCOMPARE(runProbe(probe, home.path()), 0); // -1: it hung
        const QString log = QString::fromUtf8(probe.readAllStandardError());
        const QString conf = dir + u"/Quillon.conf"_s;
        QVERIFY2(log.contains(QLatin1String("set aside")), qPrintable(log));
        QVERIFY(QFileInfo(conf).isFile());
        QVERIFY(Test::readFile(conf).contains(QLatin1String("QUILLON-REF")));
        QCOMPARE(QDir(dir).entryList({ name + u".unreadable-*"_s }, QDir::AllEntries | QDir::System).size(), 1);
    }

    // In a folder of mode 0755 the new settings file is never readable by others, not even for an instant.
    void firstWriteIsNeverReadableByOthers()
    {
        if (::geteuid() != 0)
            QSKIP("Needs root to read as another user.");
        QTemporaryDir home;
        const QString dir = home.filePath(u"Quillon"_s);
        QVERIFY(QDir().mkpath(dir));
        for (const QString &p : { home.path(), dir })
            ::chmod(QFile::encodeName(p).constData(), 0755);
        QProcess reader;
        reader.start(u"setpriv"_s,
            AsNobody
                + QStringList { u"/usr/bin/python3"_s, u"-c"_s, QStringLiteral(R"(
import contextlib, os, sys
d, stop, seen = sys.argv[1], sys.argv[2], b''
print('ready', flush=True)
while not os.path.exists(stop):
    for name in os.listdir(d):
        with contextlib.suppress(OSError), open(os.path.join(d, name), 'rb') as f:
            seen += f.read()
sys.stdout.buffer.write(seen)
)"),
                    dir, home.filePath(u"stop"_s) });
        QVERIFY(reader.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(reader.canReadLine() || reader.state() != QProcess::Running, 10'000);
        const bool ready = reader.readLine() == "ready\n";
        QVERIFY2(ready, qPrintable(u"the reader could not start as uid 65534: "_s + QString::fromUtf8(reader.readAllStandardError())));
        for (int i = 0; i < 20; ++i) {
            QFile::remove(dir + u"/Quillon.conf"_s);
            QProcess writer;
            QCOMPARE(runProbe(writer, home.path()), 0);
            QCOMPARE(Test::modeOf(dir + u"/Quillon.conf"_s), 0600u);
        }
        QVERIFY(Test::writeFile(home.filePath(u"stop"_s)));
        QVERIFY(reader.waitForFinished(10'000));
        const QByteArray seen = reader.readAllStandardOutput();
        QVERIFY2(!seen.contains("Items"), seen.left(200).constData());
    }

    // Through a link, the file the link names is the one kept, and the log says which it is.
    void fullDiskKeepsThePreviousFile_data()
    {
        QTest::addColumn<bool>("throughLink");
        QTest::newRow("the settings file") << false;
        QTest::newRow("a link to the settings file") << true;
    }
    void fullDiskKeepsThePreviousFile()
    {
        QFETCH(bool, throughLink);
        if (::geteuid() != 0)
            QSKIP("Needs root to mount a small tmpfs.");
        // One place for every row: QSettings learns where its files live once per process.
        QTemporaryDir &mountPoint = m_mountPoint;
        QVERIFY(::mount("quillon-test", QFile::encodeName(mountPoint.path()).constData(), "tmpfs", 0, "size=64k,mode=0700") == 0);
        auto unmount = qScopeGuard([&] { ::umount2(QFile::encodeName(mountPoint.path()).constData(), MNT_DETACH); });
        const QString real = mountPoint.filePath(u"dotfiles/Quillon.conf"_s);
        if (throughLink) {
            QVERIFY(Test::writeFile(real, "[General]\n") && QDir().mkpath(mountPoint.filePath(u"Quillon"_s)));
            QVERIFY(QFile::link(real, mountPoint.filePath(u"Quillon/Quillon.conf"_s)));
        }
        const Test::ScopedEnv home("XDG_CONFIG_HOME", mountPoint.path().toUtf8());

        const Test::CapturedLog log;
        Preferences prefs;
        prefs.setValues({ { Keys::LoginPassword, u"secret"_s }, { Keys::Items, QVariantList { QByteArray(200, 'a') } } });
        prefs.flush();
        const QString before = Test::readFile(prefs.fileName());
        QVERIFY(before.contains(QLatin1String("secret")));

        // Leave less room than the new file needs.
        struct statvfs fs = {};
        QCOMPARE(::statvfs(QFile::encodeName(mountPoint.path()).constData(), &fs), 0);
        QFile filler(mountPoint.filePath(u"filler"_s));
        QVERIFY(filler.open(QIODevice::WriteOnly));
        filler.write(QByteArray(qint64(fs.f_bavail * fs.f_frsize) - 8192, 'x'));
        filler.close();
        QVariantList many;
        for (int i = 0; i < 180; ++i)
            many << QByteArray(100, char('a' + i % 26));
        prefs.setValue(Keys::Items, many);
        prefs.flush();
        QCOMPARE(Test::readFile(prefs.fileName()), before);
        const QString said = log.join(QLatin1Char('\n'));
        QVERIFY2(said.contains(QLatin1String("Could not write the settings file %1").arg(throughLink ? real : prefs.fileName())), qPrintable(said));
        QCOMPARE(QFileInfo(prefs.fileName()).isSymLink(), throughLink);
        QVERIFY(!QFile::exists(prefs.fileName() + u".bak"_s) && !QFile::exists(real + u".bak"_s));
    }

private:
    QTemporaryDir m_mountPoint;
};

QTEST_GUILESS_MAIN(SettingsFaultsTest)
#include "settings_faults_test.moc"

#include "TestSupport.h"

#include <QTest>

#include <csignal>

using namespace Quillon;

// The real program started twice in one session: one Quillon, always.
class InstanceTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    // The second start hands over before touching the settings; no private runtime folder: the lock goes by the settings.
    void secondStartHandsOverAndLeavesTheSettingsAlone_data()
    {
        QTest::addColumn<QString>("runtime");
        QTest::addColumn<QString>("lockFolder");
        QTest::addColumn<QByteArray>("token"); // to raise the window on Wayland; a malformed one is not passed on
        QTest::addColumn<QByteArray>("said");
        const QByteArray plain = "Another start asked for the window.";
        const QByteArray withToken = "Another start asked for the window, with an activation token.";
        QTest::newRow("private runtime folder") << "runtime" << "runtime" << QByteArray("kwin-8c1e_4f:20") << withToken;
        QTest::newRow("runtime folder open to all") << "shared" << "config/Quillon" << QByteArray() << plain;
        QTest::newRow("runtime folder unset") << "" << "config/Quillon" << QByteArray("two words") << plain;
    }
    void secondStartHandsOverAndLeavesTheSettingsAlone()
    {
        QFETCH(QString, runtime);
        QFETCH(QString, lockFolder);
        QFETCH(QByteArray, token);
        QFETCH(QByteArray, said);
        QTemporaryDir session;
        QDir().mkpath(session.filePath(QStringLiteral("shared")));
        QFile::setPermissions(session.filePath(QStringLiteral("shared")), QFileDevice::Permissions(0x7777));
        QProcess first;
        start(first, session, runtime, QStringLiteral("wayland-1"));
        const QString lock = session.filePath(lockFolder);
        QTRY_VERIFY_WITH_TIMEOUT(!QDir(lock).entryList({QStringLiteral("quillon-*.socket")}, QDir::System).isEmpty(), 10'000);
        // The first start may still be writing its files on a busy machine: wait until they settle.
        const auto settings = [&] { return QDir(session.filePath(QStringLiteral("config/Quillon"))).entryList(QDir::Files); };
        QStringList settingsBefore;
        for (int i = 0; i < 20 && (i < 2 || settings() != settingsBefore); ++i) {
            settingsBefore = settings();
            QTest::qWait(300);
        }
        QProcess second;
        start(second, session, runtime, QStringLiteral("wayland-2"), token);
        QVERIFY(second.waitForFinished(10'000));
        QCOMPARE(second.exitStatus(), QProcess::NormalExit);
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(QDir(session.filePath(QStringLiteral("config/Quillon"))).entryList(QDir::Files), settingsBefore);
        QByteArray log;
        QTRY_VERIFY((log += first.readAllStandardError()).contains(said));
        QCOMPARE(log.contains("the instance lock is kept in"), lockFolder != runtime);
        QCOMPARE(first.state(), QProcess::Running);
        stop(first);
    }

    void staleLockFromAKilledInstanceDoesNotBlock()
    {
        QTemporaryDir session;
        QProcess killed;
        start(killed, session);
        const auto locks = [&session] { return QDir(session.filePath(QStringLiteral("runtime"))).entryList({QStringLiteral("quillon-*.lock")}); };
        QTRY_VERIFY_WITH_TIMEOUT(!locks().isEmpty(), 10'000);
        killed.kill();
        QVERIFY(killed.waitForFinished(5000));
        QVERIFY(!locks().isEmpty());
        QProcess next;
        start(next, session);
        QVERIFY(!next.waitForFinished(3000));
        QCOMPARE(next.state(), QProcess::Running);
        stop(next);
    }

    // The command line follows convention and never touches the display or the settings.
    void commandLine_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("display");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("output");
        QTest::newRow("--version") << QStringList{"--version"} << false << 0 << "quillon " QUILLON_VERSION "\n";
        QTest::newRow("--help") << QStringList{"--help"} << false << 0 << "Usage: quillon [options]";
        QTest::newRow("unknown option") << QStringList{"--frobnicate"} << true << 2 << "quillon: Unknown option 'frobnicate'. (try --help)\n";
        QTest::newRow("stray argument") << QStringList{"file.txt"} << true << 2 << "quillon: unexpected argument 'file.txt' (try --help)\n";
        QTest::newRow("no display") << QStringList{} << false << 1
                                    << "quillon: no display to show the window on (neither DISPLAY nor WAYLAND_DISPLAY is set)\n";
    }
    void commandLine()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, display);
        QFETCH(int, exitCode);
        QFETCH(QString, output);
        QTemporaryDir session;
        QProcessEnvironment env = Test::sessionEnvironment(session);
        if (!display)
            env.remove(QStringLiteral("QT_QPA_PLATFORM"));
        QProcess p;
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(QUILLON_BINARY), arguments);
        QVERIFY(p.waitForFinished(10'000));
        QCOMPARE(p.exitCode(), exitCode);
        const QString printed = QString::fromLocal8Bit(p.readAllStandardOutput() + p.readAllStandardError());
        QVERIFY2(printed.startsWith(output), qPrintable(printed));
        // Nothing written: no settings, no lock.
        QCOMPARE(QDir(session.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden), QStringList{QStringLiteral("runtime")});
        QVERIFY(QDir(session.filePath(QStringLiteral("runtime"))).isEmpty());
    }

private:
    static void start(QProcess &p, const QTemporaryDir &session, const QString &runtime = QStringLiteral("runtime"), const QString &display = {},
                      const QByteArray &token = {})
    {
        QProcessEnvironment env = Test::sessionEnvironment(session);
        if (runtime.isEmpty())
            env.remove(QStringLiteral("XDG_RUNTIME_DIR"));
        else
            env.insert(QStringLiteral("XDG_RUNTIME_DIR"), session.filePath(runtime));
        if (!display.isEmpty())
            env.insert(QStringLiteral("WAYLAND_DISPLAY"), display);
        if (!token.isEmpty())
            env.insert(QStringLiteral("XDG_ACTIVATION_TOKEN"), QString::fromLatin1(token));
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(QUILLON_BINARY), {});
        QVERIFY(p.waitForStarted());
    }
    static void stop(QProcess &p)
    {
        ::kill(pid_t(p.processId()), SIGTERM);
        QVERIFY(p.waitForFinished(10'000));
        QCOMPARE(p.exitCode(), 0);
    }
};

QTEST_GUILESS_MAIN(InstanceTest)
#include "instance_test.moc"

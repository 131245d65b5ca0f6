#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

// The real program started twice in one session: one Quillon, always.
class InstanceTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void secondStartHandsOverAndLeavesTheSettingsAlone()
    {
        QTemporaryDir session;
        QProcess first;
        start(first, session, QStringLiteral("config-a"));
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(session.filePath(QStringLiteral("runtime/quillon-default.socket"))), 10'000);
        QTest::qWait(300);
        QProcess second;
        start(second, session, QStringLiteral("config-b"));
        QVERIFY(second.waitForFinished(10'000));
        QCOMPARE(second.exitStatus(), QProcess::NormalExit);
        QCOMPARE(second.exitCode(), 0);
        // The second start never created its settings folder.
        QVERIFY(!QFileInfo::exists(session.filePath(QStringLiteral("config-b/Quillon"))));
        QByteArray log;
        QTRY_VERIFY((log += first.readAllStandardError()).contains("Another start asked for the window."));
        QCOMPARE(first.state(), QProcess::Running);
        stop(first);
    }

    void twoAtTheSameMomentGiveOne()
    {
        QTemporaryDir session;
        QProcess a, b;
        start(a, session, QStringLiteral("config"));
        start(b, session, QStringLiteral("config"));
        QTRY_VERIFY_WITH_TIMEOUT(a.state() == QProcess::NotRunning || b.state() == QProcess::NotRunning, 10'000);
        QTest::qWait(1000);
        QCOMPARE(int(a.state() == QProcess::Running) + int(b.state() == QProcess::Running), 1);
        QProcess &gone = a.state() == QProcess::Running ? b : a;
        QCOMPARE(gone.exitCode(), 0);
        stop(a.state() == QProcess::Running ? a : b);
    }

    void staleLockFromAKilledInstanceDoesNotBlock()
    {
        QTemporaryDir session;
        QProcess killed;
        start(killed, session, QStringLiteral("config"));
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(session.filePath(QStringLiteral("runtime/quillon-default.lock"))), 10'000);
        killed.kill();
        QVERIFY(killed.waitForFinished(5000));
        QVERIFY(QFile::exists(session.filePath(QStringLiteral("runtime/quillon-default.lock"))));
        QProcess next;
        start(next, session, QStringLiteral("config"));
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
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), session.filePath(QStringLiteral("config")));
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), session.filePath(QStringLiteral("runtime")));
        env.remove(QStringLiteral("DISPLAY"));
        env.remove(QStringLiteral("WAYLAND_DISPLAY"));
        if (display)
            env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        else
            env.remove(QStringLiteral("QT_QPA_PLATFORM"));
        QProcess p;
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(QUILLON_BINARY), arguments);
        QVERIFY(p.waitForFinished(10'000));
        QCOMPARE(p.exitCode(), exitCode);
        const QString printed = QString::fromLocal8Bit(p.readAllStandardOutput() + p.readAllStandardError());
        QVERIFY2(printed.startsWith(output), qPrintable(printed));
        QVERIFY(QDir(session.path()).isEmpty());
    }

private:
    static void start(QProcess &p, const QTemporaryDir &session, const QString &config)
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), session.filePath(QStringLiteral("runtime")));
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), session.filePath(config));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.remove(QStringLiteral("DISPLAY"));
        env.remove(QStringLiteral("WAYLAND_DISPLAY"));
        QDir().mkpath(session.filePath(QStringLiteral("runtime")));
        QFile::setPermissions(session.filePath(QStringLiteral("runtime")), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
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

#include "DesktopWorkspace.h"
#include "FileName.h"
#include "Launcher.h"
#include "Log.h"
#include "Preferences.h"
#include "ProcessFamily.h"
#include "SettingsKeys.h"
#include "ShebangScriptRunner.h"
#include "TestSupport.h"

#include <QRegularExpression>
#include <QScopeGuard>
#include <QTest>
#include <QThread>

#include <QDeadlineTimer>
#include <QElapsedTimer>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Quillon;
using namespace Qt::StringLiterals;
using Test::readFile;

namespace {

// Whether a child of ours has ended and was never reaped (looked at, not reaped here).
bool zombieChild()
{
    siginfo_t info {};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT | __WALL) == 0 && info.si_pid != 0;
}
} // namespace

// The real desktop services, in a private XDG home with our own default handler for text files.
class DesktopLaunchTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        const QString data = m_home.filePath(u"data"_s);
        const QString config = m_home.filePath(u"config"_s);
        m_marker = m_home.filePath(u"marker"_s);
        qputenv("XDG_DATA_HOME", data.toUtf8());
        qputenv("XDG_CONFIG_HOME", config.toUtf8());
        qputenv("XDG_DATA_DIRS", "/usr/share");
        QVERIFY(Test::writeFile(m_home.filePath(u"bin/handler.sh"_s), "#!/bin/sh\necho \"handler $1\" >> '" + m_marker.toUtf8() + "'\n", true));
        QVERIFY(Test::writeFile(data + u"/applications/quillon-test-handler.desktop"_s,
            "[Desktop Entry]\nType=Application\nName=Test Handler\nMimeType=text/plain;\nExec=" + m_home.filePath(u"bin/handler.sh"_s).toUtf8() + " %f\n"));
        QVERIFY(Test::writeFile(config + u"/mimeapps.list"_s, "[Default Applications]\ntext/plain=quillon-test-handler.desktop\n"));
        m_prefs = std::make_unique<Preferences>();
        m_prefs->setValue(Keys::EmailScriptResults, true);
        m_launcher = std::make_unique<Launcher>(*m_prefs, m_workspace, m_scripts);
        connect(m_launcher.get(), &Launcher::mailWanted, this, [this](const Launch &, const QString &body) { m_results << body; });
    }
    void init()
    {
        QFile::remove(m_marker);
        m_results.clear();
        m_log.clear();
        setLogSink([this](const QString &line) { m_log << line; });
    }
    void cleanup() { setLogSink({}); }

    void scriptOutputBecomesTheResult_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QStringList>("results");
        QTest::newRow("shell, one trailing newline dropped") << QByteArray("#!/bin/sh\nprintf 'line one\\n\\n'\n") << QStringList { "line one\n" };
        QTest::newRow("no #! line runs with sh") << QByteArray("echo plain\n") << QStringList { "plain" };
        QTest::newRow("interpreter with an argument") << QByteArray("#!/usr/bin/env sh\necho via-env\n") << QStringList { "via-env" };
        QTest::newRow("empty output is a text") << QByteArray("#!/bin/sh\ntrue\n") << QStringList { "" };
        QTest::newRow("non-zero exit: no result") << QByteArray("#!/bin/sh\necho partial\nexit 3\n") << QStringList {};
        QTest::newRow("beyond 1 MiB: cut there") << QByteArray("#!/bin/sh\nhead -c 3000000 /dev/zero | tr '\\0' a\n")
                                                 << QStringList { QString(ShebangScriptRunner::MaxOutput, QLatin1Char('a')) };
        QTest::newRow("killed by a signal: no result") << QByteArray("#!/bin/sh\nkill -9 $$\n") << QStringList {};
        QTest::newRow("missing interpreter: not loaded") << QByteArray("#!/no/such/interpreter\necho x\n") << QStringList {};
        // Only a regular file is read and run: a FIFO or a link to /dev/zero would never end.
        QTest::newRow("missing") << QByteArray("(missing)") << QStringList {};
        QTest::newRow("FIFO") << QByteArray("(FIFO)") << QStringList {};
        QTest::newRow("link to /dev/zero") << QByteArray("(link to /dev/zero)") << QStringList {};
        QTest::newRow("folder") << QByteArray("(folder)") << QStringList {};
    }
    void scriptOutputBecomesTheResult()
    {
        QFETCH(QByteArray, script);
        QFETCH(QStringList, results);
        const QString path = m_home.filePath(u"scripts/%1.scpt"_s.arg(QTest::currentDataTag()));
        QDir().mkpath(QFileInfo(path).absolutePath());
        if (script == "(FIFO)")
            QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        else if (script == "(link to /dev/zero)")
            QVERIFY(QFile::link(u"/dev/zero"_s, path));
        else if (script == "(folder)")
            QVERIFY(QDir().mkpath(path));
        else if (script != "(missing)")
            QVERIFY(Test::writeFile(path, script));
        m_launcher->launchItem(path);
        waitForScript();
        QCOMPARE(m_results, results);
        QCOMPARE(m_log.filter(u"more than 1 MiB"_s).size(), int(QByteArray(QTest::currentDataTag()).contains("MiB")));
        // A script is run, never handed to a text editor.
        QTest::qWait(100);
        QVERIFY(!QFile::exists(m_marker));
    }

    // The event loop goes on while a script runs; what falls due meanwhile opens after it, in order.
    void laterItemsWaitForTheRunningScript()
    {
        const QString script = m_home.filePath(u"scripts/slow.scpt"_s);
        QVERIFY(Test::writeFile(script, "#!/bin/sh\nsleep 1\necho slow >> '" + m_marker.toUtf8() + "'\necho finished\n"));
        const QString doc = m_home.filePath(u"docs/after.txt"_s);
        QVERIFY(Test::writeFile(doc, "x"));
        QElapsedTimer clock;
        clock.start();
        m_launcher->launchAllNow({ script, doc });
        QVERIFY(clock.elapsed() < 500);
        QVERIFY(m_scripts.isRunning());
        QTest::qWait(300);
        QVERIFY(!QFile::exists(m_marker));
        QTRY_COMPARE(readFile(m_marker), u"slow\nhandler %1\n"_s.arg(doc));
        QCOMPARE(m_results, QStringList { u"finished"_s });
    }

    // Quitting or the time limit ends the script and all it started that is still in the session,
    // whatever process group either moved to, SIGTERM ignored or not; a daemon that started a
    // session of its own stays. A limit due after the quit once fired on a dropped process.
    void endingReachesAllTheScriptStarted_data()
    {
        QTest::addColumn<QByteArray>("prelude");
        QTest::addColumn<QByteArray>("child"); // left running in the background; writes its pid to PIDFILE once in place
        QTest::addColumn<QByteArray>("rest"); // what the script does then
        QTest::addColumn<int>("limit"); // s; 0 for none
        QTest::addColumn<int>("quitAfter"); // ms; -1: no quit, the limit ends it
        QTest::addColumn<bool>("childStays");
        const QByteArray sleeper = "sh -c 'echo $$ > PIDFILE; exec sleep 300'";
        const QByteArray ownGroup
            = "/usr/bin/python3 -c 'import os, time; os.setpgid(0, 0); open(\"PIDFILE\", \"w\").write(\"%d\\n\" % os.getpid()); time.sleep(300)'";
        const QByteArray loop = "while :; do sleep 1; done";
        const QByteArray joinOtherGroup = "exec /usr/bin/python3 -c 'import os, time; os.setpgid(0, os.getpgid(os.getppid())); time.sleep(300)'";
        const QByteArray ignoreTerm = "trap '' TERM\n";
        QTest::newRow("quit, obeys SIGTERM") << QByteArray() << sleeper << loop << 0 << 0 << false;
        QTest::newRow("quit, ignores SIGTERM") << ignoreTerm << sleeper << loop << 0 << 0 << false;
        QTest::newRow("quit, child in a group of its own") << QByteArray() << ownGroup << loop << 0 << 0 << false;
        QTest::newRow("quit, script joined another group") << QByteArray() << sleeper << joinOtherGroup << 0 << 500 << false;
        QTest::newRow("quit, child left the session") << QByteArray() << QByteArray("setsid " + sleeper) << loop << 0 << 0 << true;
        QTest::newRow("time limit") << QByteArray() << sleeper << loop << 2 << -1 << false;
        QTest::newRow("quit before the limit, SIGTERM ignored") << ignoreTerm << sleeper << loop << 2 << 1000 << false;
    }
    void endingReachesAllTheScriptStarted()
    {
        QFETCH(QByteArray, prelude);
        QFETCH(QByteArray, child);
        QFETCH(QByteArray, rest);
        QFETCH(int, limit);
        QFETCH(int, quitAfter);
        QFETCH(bool, childStays);
        m_prefs->setValue(Keys::ScriptTimeLimit, limit);
        auto noLimit = qScopeGuard([this] { m_prefs->remove(Keys::ScriptTimeLimit); });
        const QString pidFile = m_home.filePath(u"child.pid"_s);
        QFile::remove(pidFile);
        const QString script = m_home.filePath(u"scripts/endless.scpt"_s);
        QVERIFY(Test::writeFile(script, "#!/bin/sh\n" + prelude + QByteArray(child).replace("PIDFILE", pidFile.toUtf8()) + " &\n" + rest + "\n"));
        m_launcher->launchItem(script);
        QTRY_VERIFY(readFile(pidFile).endsWith(QLatin1Char('\n')));
        const pid_t childPid = readFile(pidFile).trimmed().toInt();
        QVERIFY(childPid > 0);
        auto cleanUp = qScopeGuard([childPid] { ::kill(childPid, SIGKILL); });
        if (quitAfter < 0) {
            const QString after = m_home.filePath(u"tools/after"_s);
            QVERIFY(Test::writeFile(after, "#!/bin/sh\necho after >> '" + m_marker.toUtf8() + "'\n", true));
            m_launcher->launchItem(after);
            QTRY_COMPARE_WITH_TIMEOUT(readFile(m_marker), u"after\n"_s, 10'000);
            QVERIFY2(m_log.filter(u"ran for more than 2 s and was ended"_s).size() == 1, qPrintable(m_log.join('|')));
        } else {
            QTest::qWait(quitAfter);
            bool stopped = false;
            QVERIFY(m_launcher->abandon([&stopped] { stopped = true; }).isEmpty());
            QVERIFY(!m_scripts.isRunning());
            QTRY_VERIFY_WITH_TIMEOUT(stopped, 10'000);
            QCOMPARE(m_log.filter(u"was ended before it finished"_s).size(), 1);
            // Past the limit the quit came before: nothing may fire on what is gone.
            QTest::qWait(limit * 1000);
        }
        QVERIFY(!m_scripts.isRunning());
        if (childStays) {
            QTest::qWait(500);
            QVERIFY(isAlive(childPid));
        } else {
            QTRY_VERIFY_WITH_TIMEOUT(!isAlive(childPid), 10'000);
        }
        QVERIFY(m_results.isEmpty());
    }

    // A failure keeps what the script said; an orphan it leaves behind comes back to the
    // subreaper and is reaped, while QProcess still gets its own child's true exit status.
    void failedScriptSaysWhyAndLeavesNoZombie()
    {
        QVERIFY(ProcessFamily::becomeSubreaper());
        OrphanReaper orphans;
        QStringList reports;
        const auto report = connect(
            m_launcher.get(), &Launcher::scriptEnded, this, [&reports](const Launch &, Launcher::ScriptEnd, const QString &detail) { reports << detail; });
        const QString script = m_home.filePath(u"scripts/fails.scpt"_s);
        QVERIFY(Test::writeFile(script, "#!/bin/sh\n(sleep 0.2) &\necho 'checking disk'\necho 'disk full' >&2\nexit 3\n"));
        m_launcher->launchItem(script);
        waitForScript();
        disconnect(report);
        QCOMPARE(reports.size(), 1);
        QVERIFY2(QRegularExpression(u"^exit status 3, ran 0\\.\\d s; output: checking disk; errors: disk full$"_s).match(reports.first()).hasMatch(),
            qPrintable(reports.first()));
        QTest::qWait(300);
        QTRY_VERIFY_WITH_TIMEOUT(!zombieChild(), 3000);
    }

    // As a file manager opens it; run bit or not, only a program by its content is started as one.
    void openedAsTheDesktopWould_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("contents");
        QTest::addColumn<bool>("executable");
        QTest::addColumn<QString>("expected"); // %1 the item, %2 its folder
        QTest::newRow("document in its default application") << u"docs/My Notes.txt"_s << QByteArray("hello") << false << u"handler %1\n"_s;
        QTest::newRow("desktop file runs its Exec line")
            << u"apps/tool.desktop"_s << QByteArray("[Desktop Entry]\nType=Application\nName=Tool\nExec=/bin/sh -c \"echo desktop-ran >> MARKER\"\n") << true
            << u"desktop-ran\n"_s;
        QTest::newRow("document with the run bit opens in its application")
            << u"notes.txt"_s << QByteArray("echo ran-as-shell >> MARKER\n") << true << u"handler %1\n"_s;
        QTest::newRow("#! program runs in its folder") << u"job"_s << QByteArray("#!/bin/sh\npwd >> MARKER\n") << true << u"%2\n"_s;
        QTest::newRow("AppDir runs its AppRun inside it") << u"Tool.AppDir/AppRun"_s << QByteArray("#!/bin/sh\npwd >> MARKER\n") << true << u"%2\n"_s;
        // Names from a Latin-1 system are not UTF-8: opened by their bytes all the same.
        QTest::newRow("Latin-1 document") << FileName::decode("r\xe9sum\xe9.txt") << QByteArray("x\n") << false << u"handler %1\n"_s;
        QTest::newRow("Latin-1 program") << FileName::decode("caf\xe9") << QByteArray("#!/bin/sh\npwd >> MARKER\n") << true << u"%2\n"_s;
        QTest::newRow("Latin-1 script") << FileName::decode("gr\xfc\xdf.scpt") << QByteArray("#!/bin/sh\necho \"$0\" >> MARKER\n") << false << u"%1\n"_s;
    }
    void openedAsTheDesktopWould()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, contents);
        QFETCH(bool, executable);
        QFETCH(QString, expected);
        const QString file = m_home.filePath(u"kinds/"_s + name);
        QVERIFY(Test::writeFile(file, contents.replace("MARKER", "'" + m_marker.toUtf8() + "'"), executable));
        // QTemporaryDir cannot see a name that is not UTF-8 to remove it.
        const auto remove = qScopeGuard([&] { ::unlink(FileName::encode(file).constData()); });
        const QString item = name.contains(QLatin1String(".AppDir")) ? QFileInfo(file).absolutePath() : file;
        m_launcher->launchItem(item);
        // What the programs wrote is read as UTF-8, a kept byte as U+FFFD.
        QTRY_COMPARE(
            readFile(m_marker), expected.replace(QLatin1String("%1"), FileName::display(item)).replace(QLatin1String("%2"), QFileInfo(file).absolutePath()));
        // A script is reaped from the event loop: the next test holds the loop up and counts zombies.
        waitForScript();
    }

    // Another user's desktop entry and script, readable by all, do not run as this user; each
    // failure says why. (A folder the user added may hold them: a shared one, ~/Downloads.)
    void anotherUsersFilesDoNotRun()
    {
        if (::geteuid() != 0)
            QSKIP("Giving a file to another user needs root.");
        const QString entry = m_home.filePath(u"shared/evil.desktop"_s), script = m_home.filePath(u"shared/run.scpt"_s);
        QVERIFY(Test::writeFile(entry, "[Desktop Entry]\nType=Application\nName=Evil\nExec=/bin/sh -c \"echo ran >> '" + m_marker.toUtf8() + "'\"\n", true));
        QVERIFY(Test::writeFile(script, "echo ran >> '" + m_marker.toUtf8() + "'\n"));
        for (const QString &file : { entry, script })
            QVERIFY(::chown(FileName::encode(file).constData(), 65534, 65534) == 0);
        QStringList why;
        const QObject watch;
        connect(m_launcher.get(), &Launcher::failed, &watch, [&why](const Launch &, Workspace::OpenFailure, const QString &detail) { why << detail; });
        connect(m_launcher.get(), &Launcher::scriptEnded, &watch, [&why](const Launch &, Launcher::ScriptEnd, const QString &detail) { why << detail; });
        m_launcher->launchAllNow({ entry, script });
        QTRY_COMPARE(why.size(), 2);
        for (const QString &detail : std::as_const(why))
            QVERIFY2(detail.contains(QLatin1String("another user")), qPrintable(detail));
        QTest::qWait(200);
        QVERIFY(!QFile::exists(m_marker));
    }

    // Reaped off the event loop: a loop held up must not leave children holding descriptors until spawning fails.
    void programsStartWhileTheEventLoopIsHeldUp()
    {
        QTRY_VERIFY(!zombieChild());
        rlimit saved {};
        ::getrlimit(RLIMIT_NOFILE, &saved);
        rlimit tight = saved;
        tight.rlim_cur = 128;
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &tight), 0);
        auto restore = qScopeGuard([&] { ::setrlimit(RLIMIT_NOFILE, &saved); });
        const QString exe = m_home.filePath(u"tools/tick"_s);
        QVERIFY(Test::writeFile(exe, "#!/bin/sh\necho >> '" + m_marker.toUtf8() + "'\n", true));
        constexpr int Count = 300;
        for (int i = 0; i < Count; ++i)
            QVERIFY(m_workspace.openFile(exe));
        // No event is processed from here on.
        QDeadlineTimer deadline(30'000);
        while (readFile(m_marker).size() < Count && !deadline.hasExpired())
            QThread::msleep(20);
        QCOMPARE(readFile(m_marker).size(), Count);
        while (m_workspace.unreapedChildren() > 0 && !deadline.hasExpired())
            QThread::msleep(20);
        QCOMPARE(m_workspace.unreapedChildren(), 0);
        QVERIFY(!zombieChild());
    }

    // Started off the event loop, a failure still reaches the log, from the event loop's thread.
    void failureToStartIsLogged_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("contents");
        QTest::addColumn<bool>("executable");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QString>("reason");
        QTest::newRow("missing file") << u"gone.txt"_s << QByteArray() << false << false << u"the file no longer exists"_s;
        QTest::newRow("desktop file naming no program")
            << u"broken.desktop"_s << QByteArray("[Desktop Entry]\nType=Application\nName=Broken\nExec=/no/such/program\n") << true << true
            << u"the program it names is not installed"_s;
        QTest::newRow("not a desktop entry") << u"junk.desktop"_s << QByteArray("just text\n") << true << true << u"not a valid desktop entry"_s;
        QTest::newRow("desktop file not marked executable")
            << u"plain.desktop"_s << QByteArray("[Desktop Entry]\nType=Application\nName=P\nExec=true\n") << false << false << u"marked executable"_s;
        QTest::newRow("executable with a missing interpreter") << u"job"_s << QByteArray("#!/no/such/interpreter\n") << true << true << u"No such file"_s;
    }
    void failureToStartIsLogged()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, contents);
        QFETCH(bool, executable);
        QFETCH(bool, accepted);
        QFETCH(QString, reason);
        const QString path = m_home.filePath(u"failing/"_s + name);
        if (!contents.isEmpty())
            QVERIFY(Test::writeFile(path, contents, executable));
        Qt::HANDLE loggedFrom = nullptr;
        setLogSink([&](const QString &line) {
            m_log << line;
            loggedFrom = QThread::currentThreadId();
        });
        QCOMPARE(m_workspace.openFile(path), accepted);
        QTRY_COMPARE(m_log.size(), 1);
        QVERIFY2(m_log.first().startsWith(u"Could not open %1"_s.arg(path)) && m_log.first().contains(reason), qPrintable(m_log.first()));
        QCOMPARE(loggedFrom, QThread::currentThreadId());
    }

    // The reaper sleeps while a program lives: it wakes when the child ends, not ten times a second.
    void reaperSleepsWhileAProgramRuns()
    {
        const QString exe = m_home.filePath(u"tools/lingering"_s);
        QVERIFY(Test::writeFile(exe, "#!/bin/sh\nsleep 3\necho ended >> '" + m_marker.toUtf8() + "'\n", true));
        QVERIFY(m_workspace.openFile(exe));
        QTRY_COMPARE(m_workspace.unreapedChildren(), 1);
        QString reaper;
        for (const QString &tid : QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            if (readFile(u"/proc/self/task/%1/comm"_s.arg(tid)).trimmed() == QLatin1String("quillon-reaper"))
                reaper = u"/proc/self/task/%1/status"_s.arg(tid);
        }
        QVERIFY(!reaper.isEmpty());
        const auto wakeUps = [&reaper] {
            const QString status = readFile(reaper);
            const qsizetype at = status.indexOf(QLatin1String("voluntary_ctxt_switches:"));
            return status.mid(at + 24).section(QLatin1Char('\n'), 0, 0).trimmed().toInt();
        };
        const int before = wakeUps();
        QTest::qWait(1000);
        QVERIFY2(wakeUps() - before <= 1, qPrintable(QString::number(wakeUps() - before)));
        QTRY_COMPARE_WITH_TIMEOUT(m_workspace.unreapedChildren(), 0, 10'000);
        QVERIFY(!zombieChild());
    }

    void quittingDropsWhatHasNotStartedAndSaysHowMuch()
    {
        const QString exe = m_home.filePath(u"tools/tock"_s);
        QVERIFY(Test::writeFile(exe, "#!/bin/sh\necho >> '" + m_marker.toUtf8() + "'\n", true));
        for (int i = 0; i < 200; ++i)
            QVERIFY(m_workspace.openFile(exe));
        int dropped = -1;
        m_workspace.finishOpenings(std::chrono::milliseconds(0), [&dropped](int n) { dropped = n; });
        QTRY_VERIFY(dropped >= 0);
        QVERIFY(dropped > 0);
        QTRY_COMPARE(readFile(m_marker).size(), 200 - dropped);
        QTRY_COMPARE(m_log, QStringList { u"Quitting: %1 launches that were due were not started."_s.arg(dropped) });
    }

private:
    void waitForScript()
    {
        QTRY_VERIFY(!m_scripts.isRunning());
        // A script that could not start reports from the next event-loop turn.
        QCoreApplication::processEvents();
    }
    static bool isAlive(pid_t pid)
    {
        const QString stat = readFile(u"/proc/%1/stat"_s.arg(pid));
        return !stat.isEmpty() && !stat.contains(QLatin1String(") Z "));
    }

    QTemporaryDir m_home;
    QString m_marker;
    DesktopWorkspace m_workspace;
    ShebangScriptRunner m_scripts;
    std::unique_ptr<Preferences> m_prefs;
    std::unique_ptr<Launcher> m_launcher;
    QStringList m_results;
    QStringList m_log;
};

QTEST_GUILESS_MAIN(DesktopLaunchTest)
#include "desktop_launch_test.moc"

#include "DesktopWorkspace.h"
#include "Launcher.h"
#include "Log.h"
#include "Preferences.h"
#include "SettingsKeys.h"
#include "ShebangScriptRunner.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <unistd.h>

using namespace Quillon;

namespace {
QString readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

// Children of ours that have ended but were never reaped.
int zombieChildren()
{
    int zombies = 0;
    const QString self = QString::number(::getpid());
    for (const QString &pid : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        const QString stat = readFile(QStringLiteral("/proc/%1/stat").arg(pid));
        const qsizetype close = stat.lastIndexOf(QLatin1Char(')'));
        if (close < 0)
            continue;
        const QStringList fields = stat.mid(close + 2).split(QLatin1Char(' '));
        if (fields.size() > 1 && fields[0] == QLatin1String("Z") && fields[1] == self)
            ++zombies;
    }
    return zombies;
}
} // namespace

// The real desktop services, in a private XDG home with our own default handler for text files.
class DesktopLaunchTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        const QString data = m_home.filePath(QStringLiteral("data"));
        const QString config = m_home.filePath(QStringLiteral("config"));
        m_marker = m_home.filePath(QStringLiteral("marker"));
        qputenv("XDG_DATA_HOME", data.toUtf8());
        qputenv("XDG_CONFIG_HOME", config.toUtf8());
        qputenv("XDG_DATA_DIRS", "/usr/share");
        QVERIFY(Test::writeFile(m_home.filePath(QStringLiteral("bin/handler.sh")),
                  "#!/bin/sh\necho \"handler $1\" >> '" + m_marker.toUtf8() + "'\n", true));
        QVERIFY(Test::writeFile(data + QStringLiteral("/applications/quillon-test-handler.desktop"),
                  "[Desktop Entry]\nType=Application\nName=Test Handler\nMimeType=text/plain;\nExec=" +
                      m_home.filePath(QStringLiteral("bin/handler.sh")).toUtf8() + " %f\n"));
        QVERIFY(Test::writeFile(config + QStringLiteral("/mimeapps.list"), "[Default Applications]\ntext/plain=quillon-test-handler.desktop\n"));
        m_prefs = std::make_unique<Preferences>();
        m_prefs->setValue(Keys::EmailScriptResults, true);
        m_launcher = std::make_unique<Launcher>(*m_prefs, m_workspace, m_scripts, [this](const QString &body, const QString &) { m_results << body; });
    }
    void init()
    {
        QFile::remove(m_marker);
        m_results.clear();
        m_log.clear();
        setLogSink([this](const QString &line) { m_log << line; });
    }
    void cleanup() { setLogSink({}); }

    void documentReachesItsDefaultHandler()
    {
        const QString doc = m_home.filePath(QStringLiteral("docs/My Notes.txt"));
        QVERIFY(Test::writeFile(doc, "hello"));
        m_launcher->launchItem(doc);
        QTRY_COMPARE(readFile(m_marker), QStringLiteral("handler %1\n").arg(doc));
    }

    void desktopFileRunsItsExecLine()
    {
        const QString item = m_home.filePath(QStringLiteral("apps/tool.desktop"));
        QVERIFY(Test::writeFile(item, "[Desktop Entry]\nType=Application\nName=Tool\nExec=/bin/sh -c \"echo desktop-ran >> " + m_marker.toUtf8() + "\"\n"));
        m_launcher->launchItem(item);
        QTRY_COMPARE(readFile(m_marker), QStringLiteral("desktop-ran\n"));
    }

    void executableRunsInItsOwnFolder()
    {
        const QString exe = m_home.filePath(QStringLiteral("tools/job"));
        QVERIFY(Test::writeFile(exe, "#!/bin/sh\npwd >> '" + m_marker.toUtf8() + "'\n", true));
        m_launcher->launchItem(exe);
        QTRY_COMPARE(readFile(m_marker), m_home.filePath(QStringLiteral("tools")) + QLatin1Char('\n'));
    }

    void scriptOutputBecomesTheResult_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QStringList>("results");
        QTest::newRow("shell, one trailing newline dropped") << QByteArray("#!/bin/sh\nprintf 'line one\\n\\n'\n") << QStringList{"line one\n"};
        QTest::newRow("no #! line runs with sh") << QByteArray("echo plain\n") << QStringList{"plain"};
        QTest::newRow("UTF-8 output") << QByteArray("#!/bin/sh\nprintf 'caf\\303\\251'\n") << QStringList{QStringLiteral("caf\u00e9")};
        QTest::newRow("interpreter with an argument") << QByteArray("#!/usr/bin/env sh\necho via-env\n") << QStringList{"via-env"};
        QTest::newRow("empty output is a text") << QByteArray("#!/bin/sh\ntrue\n") << QStringList{""};
        QTest::newRow("non-zero exit: no result") << QByteArray("#!/bin/sh\necho partial\nexit 3\n") << QStringList{};
        QTest::newRow("killed by a signal: no result") << QByteArray("#!/bin/sh\nkill -9 $$\n") << QStringList{};
        QTest::newRow("missing interpreter: not loaded") << QByteArray("#!/no/such/interpreter\necho x\n") << QStringList{};
    }
    void scriptOutputBecomesTheResult()
    {
        QFETCH(QByteArray, script);
        QFETCH(QStringList, results);
        const QString path = m_home.filePath(QStringLiteral("scripts/job.scpt"));
        QVERIFY(Test::writeFile(path, script));
        m_launcher->launchItem(path);
        QCOMPARE(m_results, results);
        // A script is run, never handed to a text editor.
        QTest::qWait(100);
        QVERIFY(!QFile::exists(m_marker));
    }

    void unreadableScriptDoesNothing()
    {
        m_launcher->launchItem(m_home.filePath(QStringLiteral("nowhere/gone.scpt")));
        QVERIFY(m_results.isEmpty());
    }

    // Starting happens off the event loop; a failure must still reach the log, and from the
    // event loop's thread.
    void failureToStartIsLogged_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("contents");
        QTest::addColumn<bool>("executable");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("missing file") << "gone.txt" << QByteArray() << false << false;
        QTest::newRow("desktop file naming no program")
            << "broken.desktop" << QByteArray("[Desktop Entry]\nType=Application\nName=Broken\nExec=/no/such/program\n") << false << true;
        QTest::newRow("not a desktop entry") << "junk.desktop" << QByteArray("just text\n") << false << true;
        QTest::newRow("executable with a missing interpreter") << "job" << QByteArray("#!/no/such/interpreter\n") << true << true;
    }
    void failureToStartIsLogged()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, contents);
        QFETCH(bool, executable);
        QFETCH(bool, accepted);
        const QString path = m_home.filePath(QStringLiteral("failing/") + name);
        if (!contents.isEmpty())
            QVERIFY(Test::writeFile(path, contents, executable));
        const Qt::HANDLE eventLoopThread = QThread::currentThreadId();
        Qt::HANDLE loggedFrom = nullptr;
        setLogSink([&](const QString &line) {
            m_log << line;
            loggedFrom = QThread::currentThreadId();
        });
        QCOMPARE(m_workspace.openFile(path), accepted);
        QTRY_COMPARE(m_log.size(), 1);
        QVERIFY2(m_log.first().startsWith(QStringLiteral("Could not open %1").arg(path)), qPrintable(m_log.first()));
        QCOMPARE(loggedFrom, eventLoopThread);
    }

    void noZombiesAreLeft()
    {
        const QString exe = m_home.filePath(QStringLiteral("tools/quick"));
        QVERIFY(Test::writeFile(exe, "#!/bin/sh\necho done >> '" + m_marker.toUtf8() + "'\n", true));
        const QString item = m_home.filePath(QStringLiteral("apps/quick.desktop"));
        QVERIFY(Test::writeFile(item, "[Desktop Entry]\nType=Application\nName=Quick\nExec=/bin/sh -c \"echo done >> " + m_marker.toUtf8() + "\"\n"));
        const QString doc = m_home.filePath(QStringLiteral("docs/z.txt"));
        QVERIFY(Test::writeFile(doc, "z"));
        for (int i = 0; i < 5; ++i)
            m_launcher->launchAllNow({exe, item, doc});
        QTRY_COMPARE(readFile(m_marker).count(QLatin1Char('\n')), 15);
        QTest::qWait(300);
        QTRY_COMPARE(zombieChildren(), 0);
    }

private:
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

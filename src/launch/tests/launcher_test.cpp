#include "FakeScriptRunner.h"
#include "FakeWorkspace.h"
#include "Launcher.h"
#include "Preferences.h"
#include "SettingsKeys.h"
#include "TestSupport.h"

#include <QTest>

using namespace Quillon;
using namespace Qt::StringLiterals;

using Mail = QPair<QString, QString>; // body, subject
Q_DECLARE_METATYPE(std::optional<Quillon::ScriptDescriptor>)

class LauncherTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_prefs.setValues({ { Keys::SendEmail, false }, { Keys::EmailScriptResults, false } });
        m_workspace = FakeWorkspace();
        m_scripts = FakeScriptRunner();
        m_mails.clear();
        m_log.clear();
        m_launcher = std::make_unique<Launcher>(m_prefs, m_workspace, m_scripts);
        connect(m_launcher.get(), &Launcher::mailWanted, this, [this](const Launch &, const QString &b, const QString &s) { m_mails << Mail(b, s); });
    }

    void scriptOrDocument_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("script");
        QTest::newRow("scpt") << u"/s/report.scpt"_s << true;
        QTest::newRow("applescript") << u"/s/a.applescript"_s << true;
        QTest::newRow("upper-case SCPT is a document") << u"/s/report.SCPT"_s << false;
        QTest::newRow("dot in a folder name only") << u"/s/x.scpt/run"_s << false;
        QTest::newRow("two extensions, last counts") << u"/s/a.scpt.txt"_s << false;
    }
    void scriptOrDocument()
    {
        QFETCH(QString, path);
        QFETCH(bool, script);
        m_launcher->launchItem(path);
        QCOMPARE(m_scripts.ran, script ? QStringList { path } : QStringList {});
        QCOMPARE(m_workspace.opened, script ? QStringList {} : QStringList { path });
    }

    void scriptResults_data()
    {
        QTest::addColumn<bool>("loaded");
        QTest::addColumn<std::optional<ScriptDescriptor>>("result");
        QTest::addColumn<bool>("mailResults");
        QTest::addColumn<QList<Mail>>("mails");
        const auto text = ScriptDescriptor::fromText(u"done"_s);
        const auto list = ScriptDescriptor::fromList({ ScriptDescriptor::fromText(u"a"_s), ScriptDescriptor::fromText(u"b"_s) });
        const ScriptDescriptor record { ScriptDescriptor::Type::Record, {}, {}, { { u"k"_s, text } } };
        const QString subject = u"Quillon Script Result"_s;
        QTest::newRow("text, mailing on") << true << std::optional(text) << true << QList<Mail> { { "done", subject } };
        QTest::newRow("text, mailing off") << true << std::optional(text) << false << QList<Mail> {};
        QTest::newRow("empty text is still text") << true << std::optional(ScriptDescriptor::fromText({})) << true << QList<Mail> { { "", subject } };
        QTest::newRow("list of two: never text") << true << std::optional(list) << true << QList<Mail> {};
        QTest::newRow("record has no text") << true << std::optional(record) << true << QList<Mail> {};
        QTest::newRow("failed while running") << true << std::optional<ScriptDescriptor>() << true << QList<Mail> {};
        QTest::newRow("could not load") << false << std::optional<ScriptDescriptor>() << true << QList<Mail> {};
    }
    void scriptResults()
    {
        QFETCH(bool, loaded);
        QFETCH(std::optional<ScriptDescriptor>, result);
        QFETCH(bool, mailResults);
        QFETCH(QList<Mail>, mails);
        const QString path = u"/s/job.scpt"_s;
        m_scripts.outcomes[path] = { loaded, result, {}, {}, {}, {} };
        // Launch notices are on, and must not matter for scripts.
        m_prefs.setValues({ { Keys::EmailScriptResults, mailResults }, { Keys::SendEmail, true } });
        m_launcher->launchItem(path);
        QCOMPARE(m_mails, mails);
        QVERIFY(m_workspace.opened.isEmpty());
        QVERIFY(m_log.isEmpty());
    }

    void scriptSettingIsReadFromTheFileAtEachRun()
    {
        const QString path = u"/s/job.scpt"_s;
        m_scripts.outcomes[path] = { true, ScriptDescriptor::fromText(u"x"_s), {}, {}, {}, {} };
        m_launcher->launchItem(path);
        QVERIFY(m_mails.isEmpty());
        // Another writer (the preferences window of another instance) turns it on.
        QSettings other(m_prefs.fileName(), QSettings::IniFormat);
        other.setValue(u"emailAppleScriptResults"_s, true);
        other.sync();
        m_launcher->launchItem(path);
        QCOMPARE(m_mails.size(), 1);
    }

    void launchNotice_data()
    {
        QTest::addColumn<bool>("notices");
        QTest::addColumn<bool>("opens");
        QTest::newRow("on, opened") << true << true;
        QTest::newRow("on, open failed: still announced") << true << false;
        QTest::newRow("off") << false << true;
    }
    void launchNotice()
    {
        QFETCH(bool, notices);
        QFETCH(bool, opens);
        m_prefs.setValue(Keys::SendEmail, notices);
        m_workspace.openSucceeds = opens;
        const QString path = u"/home/me/Report 1.txt"_s;
        m_launcher->launchItem(path);
        QCOMPARE(m_workspace.opened, QStringList { path });
        QCOMPARE(m_mails, (notices ? QList<Mail> { { path, u"Quillon launched path..."_s } } : QList<Mail> {}));
        QCOMPARE(m_log, notices ? QStringList {} : QStringList { u"Email notifications are off."_s });
    }

    void launchAllNowGoesTopToBottom()
    {
        const QStringList paths = { u"/a"_s, u"/b.scpt"_s, u"/c"_s };
        m_scripts.outcomes[u"/b.scpt"_s] = { true, ScriptDescriptor::fromText(u"r"_s), {}, {}, {}, {} };
        m_prefs.setValue(Keys::EmailScriptResults, true);
        m_prefs.setValue(Keys::SendEmail, true);
        m_launcher->launchAllNow(paths);
        QCOMPARE(m_workspace.opened, (QStringList { "/a", "/c" }));
        const QString notice = u"Quillon launched path..."_s;
        QCOMPARE(m_mails, (QList<Mail> { { "/a", notice }, { "r", u"Quillon Script Result"_s }, { "/c", notice } }));
        m_launcher->launchAllNow({});
        QCOMPARE(m_workspace.opened.size(), 2);
    }

    // Nothing overtakes a running script; quitting forgets what waited behind it.
    void itemsWaitBehindARunningScript()
    {
        m_scripts.hold = true;
        m_launcher->launchAllNow({ u"/a.scpt"_s, u"/doc"_s, u"/b.scpt"_s, u"/doc2"_s });
        m_launcher->launchItem(u"/due-meanwhile"_s);
        QCOMPARE(m_scripts.ran, QStringList { "/a.scpt" });
        QVERIFY(m_workspace.opened.isEmpty());
        m_scripts.finishRunning();
        QCOMPARE(m_workspace.opened, QStringList { "/doc" });
        QCOMPARE(m_scripts.ran, (QStringList { "/a.scpt", "/b.scpt" }));
        QCOMPARE(pathsOf(m_launcher->abandon()), (QStringList { "/doc2", "/due-meanwhile" }));
        QCOMPARE(m_scripts.stopped, QStringList { "/b.scpt" });
        m_scripts.finishRunning();
        m_scripts.hold = false;
        m_launcher->launchItem(u"/next"_s);
        QCOMPARE(m_workspace.opened, (QStringList { "/doc", "/next" }));
    }

    // A row fired again while its run still waits folds into it; other rows of the same file, and
    // runs the user asks for, never do.
    void firingsFoldPerRow_data()
    {
        QTest::addColumn<QList<quint64>>("rows"); // the row of each firing; the first runs at once
        QTest::addColumn<int>("runs");
        QTest::newRow("one repeating row, five firings") << QList<quint64> { 1, 1, 1, 1, 1 } << 2;
        QTest::newRow("three rows of one script") << QList<quint64> { 1, 2, 3 } << 3;
        QTest::newRow("two rows, each fired twice") << QList<quint64> { 1, 2, 1, 2 } << 3;
    }
    void firingsFoldPerRow()
    {
        QFETCH(QList<quint64>, rows);
        QFETCH(int, runs);
        m_scripts.hold = true;
        for (quint64 row : rows)
            m_launcher->launchItem(u"/slow.scpt"_s, Launcher::Origin::Schedule, row);
        m_launcher->launchAllNow({ u"/slow.scpt"_s });
        while (m_scripts.isRunning())
            m_scripts.finishRunning();
        QCOMPARE(m_scripts.ran.size(), runs + 1);
    }

    // Stop drops what the schedule queued, never what the user asked for; idle once all is done.
    void stopDropsOnlyScheduledRuns()
    {
        m_scripts.hold = true;
        m_launcher->launchItem(u"/slow.scpt"_s, Launcher::Origin::Schedule, 1);
        m_launcher->launchItem(u"/doc"_s, Launcher::Origin::Schedule, 2);
        m_launcher->launchAllNow({ u"/slow.scpt"_s });
        bool idle = false;
        m_launcher->whenIdle([&idle] { idle = true; });
        const QList<Launch> dropped = m_launcher->dropScheduled();
        QCOMPARE(pathsOf(dropped), QStringList { "/doc" });
        QCOMPARE(dropped.first().item, quint64(2)); // told of its own row
        m_scripts.finishRunning();
        QVERIFY(m_workspace.opened.isEmpty());
        QCOMPARE(m_scripts.ran.size(), 2);
        QVERIFY(!idle);
        m_scripts.finishRunning();
        QVERIFY(idle);
    }

    // A script runs to its end unless the user set a limit (a backup of two hours is not killed);
    // a document due behind it opens beside it after a bounded wait, late and saying why. Scripts
    // keep their turn.
    void documentsOpenBesideAScriptThatRunsOn()
    {
        m_scripts.hold = true;
        m_launcher->setScriptWait(std::chrono::milliseconds(200));
        QStringList late;
        connect(m_launcher.get(), &Launcher::opened, this, [&late](const Launch &launch) { late << launch.path + QLatin1String(": ") + launch.waitedFor; });
        m_launcher->launchAllNow({ u"/b/backup.scpt"_s, u"/doc"_s, u"/next.scpt"_s, u"/doc2"_s });
        QCOMPARE(m_scripts.limit, std::chrono::seconds(0));
        QVERIFY(m_workspace.opened.isEmpty());
        QTRY_COMPARE(m_workspace.opened, (QStringList { "/doc", "/doc2" }));
        QCOMPARE(late, (QStringList { "/doc: waited 0 s for backup.scpt, which still runs", "/doc2: waited 0 s for backup.scpt, which still runs" }));
        QCOMPARE(m_scripts.ran, QStringList { "/b/backup.scpt" });
        m_scripts.finishRunning();
        QCOMPARE(m_scripts.ran, (QStringList { "/b/backup.scpt", "/next.scpt" }));
    }

private:
    TestSettings m_settings; // first: it points the preferences at their folder
    Preferences m_prefs;
    FakeWorkspace m_workspace;
    FakeScriptRunner m_scripts;
    std::unique_ptr<Launcher> m_launcher;
    static QStringList pathsOf(const QList<Launch> &launches)
    {
        QStringList paths;
        for (const Launch &launch : launches)
            paths << launch.path;
        return paths;
    }

    QList<Mail> m_mails;
    Test::CapturedLog m_log;
};

QTEST_GUILESS_MAIN(LauncherTest)
#include "launcher_test.moc"

#include "MailTestSupport.h"
#include "TestSupport.h"

#include <QCryptographicHash>
#include <QSettings>
#include <QTest>

#include <csignal>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

using namespace Quillon;
using namespace Qt::StringLiterals;

// The real program as a session runs it: started twice (one Quillon, always), given a command line,
// and ended the ways Linux ends programs, each of which must save the list.
class ProgramTest : public QObject
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
        QTest::newRow("private runtime folder") << u"runtime"_s << u"runtime"_s << QByteArray("kwin-8c1e_4f:20") << withToken;
        QTest::newRow("runtime folder open to all") << u"shared"_s << u"config/Quillon"_s << QByteArray() << plain;
        QTest::newRow("runtime folder unset") << u""_s << u"config/Quillon"_s << QByteArray("two words") << plain;
    }
    void secondStartHandsOverAndLeavesTheSettingsAlone()
    {
        QFETCH(QString, runtime);
        QFETCH(QString, lockFolder);
        QFETCH(QByteArray, token);
        QFETCH(QByteArray, said);
        QTemporaryDir session;
        QDir().mkpath(session.filePath(u"shared"_s));
        QFile::setPermissions(session.filePath(u"shared"_s), QFileDevice::Permissions(0x7777));
        QProcess first;
        start(first, session, runtime, { { u"WAYLAND_DISPLAY"_s, u"wayland-1"_s } });
        const QString lock = session.filePath(lockFolder);
        QTRY_VERIFY_WITH_TIMEOUT(!QDir(lock).entryList({ u"quillon-*.socket"_s }, QDir::System).isEmpty(), 10'000);
        // The first start may still be writing its files on a busy machine: wait until they settle.
        const auto settings = [&] { return QDir(session.filePath(u"config/Quillon"_s)).entryList(QDir::Files); };
        QStringList settingsBefore;
        for (int i = 0; i < 20 && (i < 2 || settings() != settingsBefore); ++i) {
            settingsBefore = settings();
            QTest::qWait(300);
        }
        QProcess second;
        start(second, session, runtime, { { u"WAYLAND_DISPLAY"_s, u"wayland-2"_s }, { u"XDG_ACTIVATION_TOKEN"_s, QString::fromLatin1(token) } });
        QVERIFY(Test::endsCleanly(second));
        QCOMPARE(QDir(session.filePath(u"config/Quillon"_s)).entryList(QDir::Files), settingsBefore);
        QByteArray log;
        QTRY_VERIFY((log += first.readAllStandardError()).contains(said));
        QCOMPARE(log.contains("the instance lock is kept in"), lockFolder != runtime);
        QVERIFY(Test::endsCleanly(first, SIGTERM));
    }

    // One Quillon per settings file, however the second start reaches it: through a link to the
    // settings folder, with another private runtime folder, or with none.
    void oneInstancePerSettingsFile_data()
    {
        QTest::addColumn<QString>("config"); // the second start's XDG_CONFIG_HOME
        QTest::addColumn<QString>("runtime"); // and its XDG_RUNTIME_DIR; empty: unset
        QTest::newRow("settings through a link, another runtime folder") << u"link"_s << u"runtime2"_s;
        QTest::newRow("another private runtime folder") << u"config"_s << u"runtime2"_s;
        QTest::newRow("no runtime folder") << u"config"_s << u""_s;
    }
    void oneInstancePerSettingsFile()
    {
        QFETCH(QString, config);
        QFETCH(QString, runtime);
        QTemporaryDir session;
        QVERIFY(QDir().mkpath(session.filePath(u"config/Quillon"_s)) && QDir().mkpath(session.filePath(u"runtime2"_s)));
        QFile::setPermissions(session.filePath(u"runtime2"_s), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        QVERIFY(QFile::link(session.filePath(u"config"_s), session.filePath(u"link"_s)));
        QProcess first;
        start(first, session);
        // Up and running: its heartbeat comes once the list is read, after the signal handlers.
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(session.filePath(u"state/Quillon/running"_s)), 10'000);
        QProcess second;
        start(second, session, runtime, { { u"XDG_CONFIG_HOME"_s, session.filePath(config) } });
        QVERIFY(second.waitForFinished(15'000));
        QVERIFY2(second.readAllStandardError().contains("another Quillon runs on these settings"), "the second start says why it ends");
        QCOMPARE(second.exitCode(), 1);
        QVERIFY(Test::endsCleanly(first, SIGTERM));
    }

    void staleLockFromAKilledInstanceDoesNotBlock()
    {
        QTemporaryDir session;
        QProcess killed;
        start(killed, session);
        const auto locks = [&session] { return QDir(session.filePath(u"runtime"_s)).entryList({ u"quillon-*.lock"_s }); };
        QTRY_VERIFY_WITH_TIMEOUT(!locks().isEmpty(), 10'000);
        killed.kill();
        QVERIFY(killed.waitForFinished(5000));
        QVERIFY(!locks().isEmpty());
        QProcess next;
        start(next, session);
        QVERIFY(!next.waitForFinished(3000));
        QVERIFY(Test::endsCleanly(next, SIGTERM));
    }

    // A FIFO or a folder where the lock or the history belongs neither holds the start nor stops
    // the schedule: it is named in the log and left alone, and there is still one instance.
    void oddFilesDoNotHoldTheStart_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("fifo");
        QTest::addColumn<QByteArray>("said");
        const QString lock = u"runtime/quillon-KEY.lock"_s;
        QTest::newRow("lock is a FIFO") << lock << true << QByteArray("is a FIFO, not a lock file");
        QTest::newRow("lock is a folder") << lock << false << QByteArray("is a folder, not a lock file");
        QTest::newRow("history is a FIFO") << u"state/Quillon/history.sqlite"_s << true << QByteArray("(it is a FIFO)");
    }
    void oddFilesDoNotHoldTheStart()
    {
        QFETCH(QString, path);
        QFETCH(bool, fifo);
        QFETCH(QByteArray, said);
        QTemporaryDir session;
        const QString odd = session.filePath(QString(path).replace(QLatin1String("KEY"), lockKey(session)));
        QVERIFY(QDir().mkpath(fifo ? QFileInfo(odd).absolutePath() : odd));
        QFile::setPermissions(session.filePath(u"runtime"_s), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        if (fifo)
            QCOMPARE(::mkfifo(QFile::encodeName(odd).constData(), 0600), 0);
        QProcess first;
        start(first, session);
        QByteArray log;
        QTRY_VERIFY_WITH_TIMEOUT((log += first.readAllStandardError()).contains(said), 10'000);
        QProcess second;
        start(second, session);
        QVERIFY(Test::endsCleanly(second));
        QTRY_VERIFY((log += first.readAllStandardError()).contains("Another start asked for the window."));
        QVERIFY(Test::endsCleanly(first, SIGTERM));
        QCOMPARE(QFileInfo(odd).isDir(), !fifo);
    }

    // The command line follows convention and never touches the display or the settings.
    void commandLine_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("display");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("language");
        QTest::newRow("--version") << QStringList { "--version" } << false << 0 << u"quillon " QUILLON_VERSION "\n"_s << u"C"_s;
        QTest::newRow("--help") << QStringList { "--help" } << false << 0 << u"Usage: quillon [options]\nQuillon opens files"_s << u"C"_s;
        QTest::newRow("--help in German, Qt's own lines too")
            << QStringList { "--help" } << false << 0
            << u"Aufruf: quillon [Optionen]\nQuillon öffnet Dateien, Anwendungen und Skripte zu den Zeiten, die Sie wählen.\n\n"
               "Optionen:\n  -h, --help     Zeigt"_s
            << u"de_DE.UTF-8"_s;
        QTest::newRow("unknown option") << QStringList { "--frobnicate" } << true << 2 << u"quillon: Unknown option 'frobnicate'. (try --help)\n"_s << u"C"_s;
        QTest::newRow("stray argument") << QStringList { "file.txt" } << true << 2 << u"quillon: unexpected argument 'file.txt' (try --help)\n"_s << u"C"_s;
        QTest::newRow("no display") << QStringList {} << false << 1
                                    << u"quillon: no display to show the window on (neither DISPLAY nor WAYLAND_DISPLAY is set)\n"_s << u"C"_s;
    }
    void commandLine()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, display);
        QFETCH(int, exitCode);
        QFETCH(QString, output);
        QFETCH(QString, language);
        QTemporaryDir session;
        QProcessEnvironment env = Test::sessionEnvironment(session);
        env.insert(u"LC_ALL"_s, language);
        if (!display)
            env.remove(u"QT_QPA_PLATFORM"_s);
        QProcess p;
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(QUILLON_BINARY), arguments);
        QVERIFY(p.waitForFinished(10'000));
        QCOMPARE(p.exitCode(), exitCode);
        const QString printed = QString::fromUtf8(p.readAllStandardOutput() + p.readAllStandardError());
        QVERIFY2(printed.startsWith(output), qPrintable(printed));
        // Nothing written: no settings, no lock.
        QCOMPARE(QDir(session.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden), QStringList { u"runtime"_s });
        QVERIFY(QDir(session.filePath(u"runtime"_s)).isEmpty());
    }

    // Also a signal while the saved list is still being read: kept until the program can quit properly.
    void signalsSaveTheList_data()
    {
        QTest::addColumn<int>("signal");
        QTest::addColumn<bool>("duringStartUp");
        QTest::newRow("SIGTERM") << int(SIGTERM) << false;
        QTest::newRow("SIGINT") << int(SIGINT) << false;
        QTest::newRow("SIGHUP") << int(SIGHUP) << false;
        QTest::newRow("SIGTERM while the list is read") << int(SIGTERM) << true;
    }
    void signalsSaveTheList()
    {
        QFETCH(int, signal);
        QFETCH(bool, duringStartUp);
        QTemporaryDir home;
        const QString item = home.filePath(u"report.txt"_s);
        QVERIFY(Test::writeFile(item));
        const QString conf = home.filePath(u"config/Quillon/Quillon.conf"_s);
        QVERIFY(Test::writeFile(conf, "[General]\nItems=" + item.toUtf8() + ", " + item.toUtf8() + "\nTimersRunning=false\n"));
        const int watch = ::inotify_init1(IN_CLOEXEC);
        QVERIFY(watch >= 0 && ::inotify_add_watch(watch, QFile::encodeName(conf).constData(), IN_OPEN) >= 0);
        const auto closeWatch = qScopeGuard([watch] { ::close(watch); });

        QProcess app;
        start(app, home);
        pollfd opened { watch, POLLIN, 0 };
        QCOMPARE(::poll(&opened, 1, 10'000), 1);
        if (!duringStartUp)
            QTest::qWait(1500);
        QVERIFY(Test::endsCleanly(app, signal));

        QSettings saved(conf, QSettings::IniFormat);
        const QVariantList items = saved.value(u"Items"_s).toList();
        QCOMPARE(items.size(), 2);
        QVERIFY(items.first().toByteArray().startsWith("QUILLON-REF"));
        QCOMPARE(saved.value(u"Dates"_s).toList().size(), 2);
        // The user wrote this file; its mode is theirs to choose.
        QCOMPARE(Test::modeOf(conf), 0644u);
    }

    // Quit when done: a slow last script runs to its end and mails its result, accented text as UTF-8,
    // the item due meanwhile opens after it, and a refused message does not hold the quit.
    void quitWhenDoneFinishesWhatItStarted_data()
    {
        QTest::addColumn<bool>("refuse");
        QTest::newRow("accepted") << false;
        QTest::newRow("refused") << true;
    }
    void quitWhenDoneFinishesWhatItStarted()
    {
        QFETCH(bool, refuse);
        QTemporaryDir home;
        MailTest::Server server;
        QVERIFY(server.start(home, refuse ? QStringList { u"--refuse"_s } : QStringList {}));
        const QString script = home.filePath(u"slow.scpt"_s);
        QVERIFY(Test::writeFile(script,
            "#!/bin/sh\nsleep 2\nprintf 'Gr\xc3\xbc\xc3\x9f"
            "e aus K\xc3\xb6ln\\000!'\n"));
        const QString item = home.filePath(u"R\u00e9sum\u00e9 100%.txt"_s);
        QVERIFY(Test::writeFile(item));
        const QString conf = home.filePath(u"config/Quillon/Quillon.conf"_s);
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const QByteArray dates = now.addSecs(2).toString(Qt::ISODate).toUtf8() + ", " + now.addSecs(3).toString(Qt::ISODate).toUtf8();
        QVERIFY(Test::writeFile(conf,
            "[General]\nItems=" + script.toUtf8() + ", " + item.toUtf8() + "\nDates=" + dates
                + "\nTimersRunning=true\nquitWhenDone=true\nsendEmail=true\nemailAppleScriptResults=true\n"
                  "recipientEmail=ann@example.org\nserverAddress=127.0.0.1\nserverPort="
                + QByteArray::number(server.port) + "\n"));
        QProcess app;
        start(app, home);
        QVERIFY(Test::endsCleanly(app, 0, 40'000));
        const QString log = QString::fromUtf8(app.readAllStandardError());
        QVERIFY2(!log.contains(QLatin1String("ended before it finished")) && !log.contains(QLatin1String("not started"))
                && !log.contains(QLatin1String("did not finish in time")),
            qPrintable(log));
        if (refuse) {
            QVERIFY2(log.contains(QLatin1String("Message not sent")), qPrintable(log));
        } else {
            QTRY_VERIFY2(server.messages().size() == 2, qPrintable(log));
            // Two sessions at once: they may arrive in either order.
            QJsonObject result = server.messages().at(0), notice = server.messages().at(1);
            if (result.value(QLatin1String("subject")).toString() == QLatin1String("Quillon launched path..."))
                std::swap(result, notice);
            QCOMPARE(result.value(QLatin1String("charset")).toString(), u"utf-8"_s);
            // The NUL the script printed is kept visible, and nothing after it is lost.
            QCOMPARE(result.value(QLatin1String("body")).toString(), u"Gr\u00fc\u00dfe aus K\u00f6ln\ufffd!"_s);
            QCOMPARE(notice.value(QLatin1String("subject")).toString(), u"Quillon launched path..."_s);
            QCOMPARE(notice.value(QLatin1String("body")).toString(), item);
        }
        QSettings saved(conf, QSettings::IniFormat);
        QCOMPARE(saved.value(u"TimersRunning"_s).toBool(), false);
        QCOMPARE(saved.value(u"Items"_s).toList().size(), 2);
    }

private:
    // The lock's name: a digest of the settings file's path, as the program computes it.
    static QString lockKey(const QTemporaryDir &session)
    {
        const QByteArray settings = QFile::encodeName(session.filePath(u"config/Quillon/Quillon.conf"_s));
        return QString::fromLatin1(QCryptographicHash::hash(settings, QCryptographicHash::Sha256).toHex().left(16));
    }
    // runtime: the session's folder for XDG_RUNTIME_DIR, empty for none; an empty variable is left unset.
    static void start(QProcess &p, const QTemporaryDir &session, const QString &runtime = u"runtime"_s, const QMap<QString, QString> &variables = {})
    {
        QProcessEnvironment env = Test::sessionEnvironment(session);
        env.remove(u"XDG_RUNTIME_DIR"_s);
        if (!runtime.isEmpty())
            env.insert(u"XDG_RUNTIME_DIR"_s, session.filePath(runtime));
        for (const auto &[name, value] : variables.asKeyValueRange()) {
            if (!value.isEmpty())
                env.insert(name, value);
        }
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(QUILLON_BINARY), {});
        QVERIFY(p.waitForStarted());
    }
};

QTEST_GUILESS_MAIN(ProgramTest)
#include "program_test.moc"

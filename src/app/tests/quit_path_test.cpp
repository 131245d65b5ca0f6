#include "MailTestSupport.h"
#include "TestSupport.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>
#include <sys/stat.h>

using namespace Quillon;

// The real program, ended the ways Linux ends programs: each must save the list.
class QuitPathTest : public QObject
{
    Q_OBJECT
    // The real program with its settings, runtime and data folders in home.
    static void startQuillon(QProcess &app, const QTemporaryDir &home)
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral("config")));
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), home.filePath(QStringLiteral("runtime")));
        env.insert(QStringLiteral("XDG_DATA_HOME"), home.filePath(QStringLiteral("data"))); // no handlers: opening a document just fails
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        app.setProcessEnvironment(env);
        app.setProcessChannelMode(QProcess::ForwardedChannels);
        app.start(QStringLiteral(QUILLON_BINARY));
    }

private Q_SLOTS:
    void signalsSaveTheList_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM") << int(SIGTERM);
        QTest::newRow("SIGINT") << int(SIGINT);
        QTest::newRow("SIGHUP") << int(SIGHUP);
    }
    void signalsSaveTheList()
    {
        QFETCH(int, signal);
        QTemporaryDir home;
        const QString item = home.filePath(QStringLiteral("report.txt"));
        QFile(item).open(QIODevice::WriteOnly);
        const QString conf = home.filePath(QStringLiteral("config/Quillon/Quillon.conf"));
        QVERIFY(Test::writeFile(conf, "[General]\nItems=" + item.toUtf8() + ", " + item.toUtf8() + "\nTimersRunning=false\n"));

        QProcess app;
        startQuillon(app, home);
        QVERIFY(app.waitForStarted());
        QTest::qWait(1500);
        ::kill(pid_t(app.processId()), signal);
        QVERIFY(app.waitForFinished(10'000));
        QCOMPARE(app.exitStatus(), QProcess::NormalExit);
        QCOMPARE(app.exitCode(), 0);

        QSettings saved(conf, QSettings::IniFormat);
        const QVariantList items = saved.value(QStringLiteral("Items")).toList();
        QCOMPARE(items.size(), 2);
        QVERIFY(items.first().toByteArray().startsWith("QUILLON-REF"));
        QCOMPARE(saved.value(QStringLiteral("Dates")).toList().size(), 2);
        struct stat st{};
        QCOMPARE(::stat(QFile::encodeName(conf).constData(), &st), 0);
        // The user wrote this file; its mode is theirs to choose.
        QCOMPARE(st.st_mode & 0777, 0644u);
    }

    // A signal while the saved list is still being read is kept until the program can quit properly.
    void signalDuringStartUpSavesTheList()
    {
        QTemporaryDir home;
        const QString item = home.filePath(QStringLiteral("report.txt"));
        QFile(item).open(QIODevice::WriteOnly);
        const QString conf = home.filePath(QStringLiteral("config/Quillon/Quillon.conf"));
        QVERIFY(Test::writeFile(conf, "[General]\nItems=" + item.toUtf8() + "\n"));
        const int watch = ::inotify_init1(IN_CLOEXEC);
        QVERIFY(watch >= 0);
        QVERIFY(::inotify_add_watch(watch, QFile::encodeName(conf).constData(), IN_OPEN) >= 0);

        QProcess app;
        startQuillon(app, home);
        pollfd pfd{watch, POLLIN, 0};
        QCOMPARE(::poll(&pfd, 1, 10'000), 1);
        ::kill(pid_t(app.processId()), SIGTERM);
        ::close(watch);
        QVERIFY(app.waitForFinished(10'000));
        QCOMPARE(app.exitStatus(), QProcess::NormalExit);
        QCOMPARE(app.exitCode(), 0);
        QSettings saved(conf, QSettings::IniFormat);
        QCOMPARE(saved.value(QStringLiteral("Items")).toList().size(), 1);
    }

    // Quit when done: the last launch ends the program on its own, through the saving quit path,
    // and that launch's notice is still delivered.
    void lastNoticeIsDeliveredBeforeQuitting()
    {
        QTemporaryDir home;
        Quillon::MailTest::Server server;
        QVERIFY(server.start(home, {}));
        const QString item = home.filePath(QStringLiteral("notes.md"));
        QFile(item).open(QIODevice::WriteOnly);
        const QString conf = home.filePath(QStringLiteral("config/Quillon/Quillon.conf"));
        const QByteArray due = QDateTime::currentDateTimeUtc().addSecs(2).toString(Qt::ISODate).toUtf8();
        QVERIFY(Test::writeFile(conf, "[General]\nItems=" + item.toUtf8() + "\nDates=" + due + "\nTimersRunning=true\nquitWhenDone=true\nsendEmail=true\n"
                    "recipientEmail=ann@example.org\nserverAddress=127.0.0.1\nserverPort=" + QByteArray::number(server.port) + "\n"));
        QProcess app;
        startQuillon(app, home);
        QVERIFY(app.waitForFinished(30'000));
        QCOMPARE(app.exitCode(), 0);
        QTRY_COMPARE(server.messages().size(), 1);
        QCOMPARE(server.messages().first().value(QLatin1String("subject")).toString(), QStringLiteral("Quillon launched path..."));
        QCOMPARE(server.messages().first().value(QLatin1String("body")).toString(), item);
        QSettings saved(conf, QSettings::IniFormat);
        QCOMPARE(saved.value(QStringLiteral("TimersRunning")).toBool(), false);
        QCOMPARE(saved.value(QStringLiteral("Items")).toList().size(), 1);
    }
};

QTEST_GUILESS_MAIN(QuitPathTest)
#include "quit_path_test.moc"

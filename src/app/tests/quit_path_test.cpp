#include "MailTestSupport.h"
#include "TestSupport.h"

#include <QSettings>
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
    static void startQuillon(QProcess &app, const QTemporaryDir &home, QProcess::ProcessChannelMode channels = QProcess::ForwardedChannels)
    {
        app.setProcessEnvironment(Test::sessionEnvironment(home));
        app.setProcessChannelMode(channels);
        app.start(QStringLiteral(QUILLON_BINARY));
    }

private Q_SLOTS:
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
        const QString item = home.filePath(QStringLiteral("report.txt"));
        QVERIFY(Test::writeFile(item));
        const QString conf = home.filePath(QStringLiteral("config/Quillon/Quillon.conf"));
        QVERIFY(Test::writeFile(conf, "[General]\nItems=" + item.toUtf8() + ", " + item.toUtf8() + "\nTimersRunning=false\n"));
        const int watch = ::inotify_init1(IN_CLOEXEC);
        QVERIFY(watch >= 0 && ::inotify_add_watch(watch, QFile::encodeName(conf).constData(), IN_OPEN) >= 0);
        const auto closeWatch = qScopeGuard([watch] { ::close(watch); });

        QProcess app;
        startQuillon(app, home);
        pollfd opened{watch, POLLIN, 0};
        QCOMPARE(::poll(&opened, 1, 10'000), 1);
        if (!duringStartUp)
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
        Quillon::MailTest::Server server;
        QVERIFY(server.start(home, refuse ? QStringList{QStringLiteral("--refuse")} : QStringList{}));
        const QString script = home.filePath(QStringLiteral("slow.scpt"));
        QVERIFY(Test::writeFile(script, "#!/bin/sh\nsleep 2\nprintf 'Gr\xc3\xbc\xc3\x9f" "e aus K\xc3\xb6ln\\000!'\n"));
        const QString item = home.filePath(QStringLiteral("R\u00e9sum\u00e9 100%.txt"));
        QVERIFY(Test::writeFile(item));
        const QString conf = home.filePath(QStringLiteral("config/Quillon/Quillon.conf"));
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const QByteArray dates = now.addSecs(2).toString(Qt::ISODate).toUtf8() + ", " + now.addSecs(3).toString(Qt::ISODate).toUtf8();
        QVERIFY(Test::writeFile(conf, "[General]\nItems=" + script.toUtf8() + ", " + item.toUtf8() + "\nDates=" + dates
                    + "\nTimersRunning=true\nquitWhenDone=true\nsendEmail=true\nemailAppleScriptResults=true\n"
                    "recipientEmail=ann@example.org\nserverAddress=127.0.0.1\nserverPort=" + QByteArray::number(server.port) + "\n"));
        QProcess app;
        startQuillon(app, home, QProcess::ForwardedOutputChannel);
        QVERIFY(app.waitForFinished(40'000));
        QCOMPARE(app.exitCode(), 0);
        const QString log = QString::fromUtf8(app.readAllStandardError());
        QVERIFY2(!log.contains(QLatin1String("ended before it finished")) && !log.contains(QLatin1String("not started"))
                     && !log.contains(QLatin1String("did not finish in time")), qPrintable(log));
        if (refuse) {
            QVERIFY2(log.contains(QLatin1String("Message not sent")), qPrintable(log));
        } else {
            QTRY_VERIFY2(server.messages().size() == 2, qPrintable(log));
            // Two sessions at once: they may arrive in either order.
            QJsonObject result = server.messages().at(0), notice = server.messages().at(1);
            if (result.value(QLatin1String("subject")).toString() == QLatin1String("Quillon launched path..."))
                std::swap(result, notice);
            QCOMPARE(result.value(QLatin1String("charset")).toString(), QStringLiteral("utf-8"));
            // The NUL the script printed is kept visible, and nothing after it is lost.
            QCOMPARE(result.value(QLatin1String("body")).toString(), QStringLiteral("Gr\u00fc\u00dfe aus K\u00f6ln\ufffd!"));
            QCOMPARE(notice.value(QLatin1String("subject")).toString(), QStringLiteral("Quillon launched path..."));
            QCOMPARE(notice.value(QLatin1String("body")).toString(), item);
        }
        QSettings saved(conf, QSettings::IniFormat);
        QCOMPARE(saved.value(QStringLiteral("TimersRunning")).toBool(), false);
        QCOMPARE(saved.value(QStringLiteral("Items")).toList().size(), 2);
    }
};

QTEST_GUILESS_MAIN(QuitPathTest)
#include "quit_path_test.moc"

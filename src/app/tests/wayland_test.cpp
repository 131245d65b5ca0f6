#include "TestSupport.h"

#include <QStandardPaths>
#include <QTest>

#include <csignal>
#include <sys/stat.h>

using namespace Quillon;

// The real program as a native Wayland client of a headless weston, as on GNOME's default
// session: it starts and shows its window, fires an item, hands over to a second start, and
// saves on quit.
class WaylandTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("weston")).isEmpty())
            QSKIP("weston is not installed.");
        ::chmod(QFile::encodeName(m_session.path()).constData(), 0700);
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_session.path());
        m_weston.setProcessEnvironment(env);
        m_weston.setProcessChannelMode(QProcess::MergedChannels);
        m_weston.start(QStringLiteral("weston"), {QStringLiteral("--backend=headless-backend.so"), QStringLiteral("--socket=quillon-test"),
                                                   QStringLiteral("--idle-time=0")});
        if (m_weston.waitForStarted(10'000))
            (void)QTest::qWaitFor([this] { return QFile::exists(m_session.filePath(QStringLiteral("quillon-test"))) || m_weston.state() == QProcess::NotRunning; }, 10'000);
        if (m_weston.state() != QProcess::Running || !QFile::exists(m_session.filePath(QStringLiteral("quillon-test"))))
            QSKIP(qPrintable(QStringLiteral("weston could not start: ") + QString::fromUtf8(m_weston.readAll().right(500))));
    }
    void cleanupTestCase()
    {
        m_weston.terminate();
        m_weston.waitForFinished(5000);
    }

    void startsFiresHandsOverAndSaves()
    {
        const QString marker = m_session.filePath(QStringLiteral("fired"));
        const QString item = m_session.filePath(QStringLiteral("job"));
        QVERIFY(Test::writeFile(item, "#!/bin/sh\necho fired >> '" + marker.toUtf8() + "'\n", true));
        const QString conf = m_session.filePath(QStringLiteral("config/Quillon/Quillon.conf"));
        const QByteArray due = QDateTime::currentDateTimeUtc().addSecs(3).toString(Qt::ISODate).toUtf8();
        QVERIFY(Test::writeFile(conf, "[General]\nItems=" + item.toUtf8() + "\nDates=" + due + "\nTimersRunning=true\n"));

        QProcess first;
        start(first);
        QTRY_COMPARE_WITH_TIMEOUT(Test::readFile(marker), QStringLiteral("fired\n"), 15'000);
        QCOMPARE(first.state(), QProcess::Running);

        // The launcher's activation token goes to the first one, which asks to be activated with it
        // (this weston offers no activation, so that the raise itself is not seen here).
        QProcess second;
        start(second, "weston-launcher-token-1");
        QVERIFY(second.waitForFinished(15'000));
        QCOMPARE(second.exitCode(), 0);
        QByteArray log;
        QTRY_VERIFY_WITH_TIMEOUT((log += first.readAllStandardError()).contains("Another start asked for the window, with an activation token."), 10'000);
        // A native Wayland client, not a fallback: Qt says nothing of a missing plugin or display.
        QVERIFY2(!log.contains("qt.qpa") && !log.contains("Could not"), log.constData());

        ::kill(pid_t(first.processId()), SIGTERM);
        QVERIFY(first.waitForFinished(15'000));
        QCOMPARE(first.exitCode(), 0);
        QSettings saved(conf, QSettings::IniFormat);
        QVERIFY(saved.value(QStringLiteral("Items")).toList().value(0).toByteArray().startsWith("QUILLON-REF"));
    }

private:
    void start(QProcess &p, const QByteArray &activationToken = {})
    {
        QProcessEnvironment env = Test::sessionEnvironment(m_session);
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_session.path());
        env.insert(QStringLiteral("WAYLAND_DISPLAY"), QStringLiteral("quillon-test"));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland"));
        if (!activationToken.isEmpty())
            env.insert(QStringLiteral("XDG_ACTIVATION_TOKEN"), QString::fromLatin1(activationToken));
        // In the sanitizer build: Qt's Wayland plugin unloads client libraries at exit, and the
        // leak checker then reports their allocations against an unknown module.
        env.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(QUILLON_BINARY), {});
        QVERIFY(p.waitForStarted());
    }

    QTemporaryDir m_session;
    QProcess m_weston;
};

QTEST_GUILESS_MAIN(WaylandTest)
#include "wayland_test.moc"

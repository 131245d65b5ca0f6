#include "TestSupport.h"

#include <QTest>

#include <csignal>

using namespace Quillon;

// The real program as a native Wayland client of a headless weston (with_weston.sh), as on GNOME's default session.
class WaylandTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void startsFiresHandsOverAndQuits()
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

        // The token goes to the first start (this weston offers no activation, so the raise is not seen).
        QProcess second;
        start(second, "weston-launcher-token-1");
        QVERIFY(Test::endsCleanly(second));
        QByteArray log;
        QTRY_VERIFY_WITH_TIMEOUT((log += first.readAllStandardError()).contains("Another start asked for the window, with an activation token."), 10'000);
        // A native Wayland client, not a fallback: Qt says nothing of a missing plugin or display.
        QVERIFY2(!log.contains("qt.qpa") && !log.contains("Could not"), log.constData());

        QVERIFY(Test::endsCleanly(first, SIGTERM));
    }

private:
    void start(QProcess &p, const QByteArray &activationToken = {})
    {
        QProcessEnvironment env = Test::sessionEnvironment(m_session);
        for (const char *name : { "XDG_RUNTIME_DIR", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM" })
            env.insert(QString::fromLatin1(name), qEnvironmentVariable(name)); // the compositor's, from with_weston.sh
        if (!activationToken.isEmpty())
            env.insert(QStringLiteral("XDG_ACTIVATION_TOKEN"), QString::fromLatin1(activationToken));
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(QUILLON_BINARY), {});
        QVERIFY(p.waitForStarted());
    }

    QTemporaryDir m_session;
};

QTEST_GUILESS_MAIN(WaylandTest)
#include "wayland_test.moc"

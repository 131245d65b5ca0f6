#include "TestSupport.h"

#include <QTest>

#include <csignal>

using namespace Quillon;
using namespace Qt::StringLiterals;

// The real program as a native Wayland client of a headless weston (with_weston.sh), as on GNOME's
// default session. (Handing over to a running instance is the same as on X11: program_test.)
class WaylandTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void startsFiresAndQuits()
    {
        const QString marker = m_session.filePath(u"fired"_s);
        const QString item = m_session.filePath(u"job"_s);
        QVERIFY(Test::writeFile(item, "#!/bin/sh\necho fired >> '" + marker.toUtf8() + "'\n", true));
        const QString conf = m_session.filePath(u"config/Quillon/Quillon.conf"_s);
        const QByteArray due = QDateTime::currentDateTimeUtc().addSecs(3).toString(Qt::ISODate).toUtf8();
        QVERIFY(Test::writeFile(conf, "[General]\nItems=" + item.toUtf8() + "\nDates=" + due + "\nTimersRunning=true\n"));

        QProcess app;
        QProcessEnvironment env = Test::sessionEnvironment(m_session);
        for (const char *name : { "XDG_RUNTIME_DIR", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM" })
            env.insert(QString::fromLatin1(name), qEnvironmentVariable(name)); // the compositor's, from with_weston.sh
        app.setProcessEnvironment(env);
        app.start(QStringLiteral(QUILLON_BINARY), {});
        QTRY_COMPARE_WITH_TIMEOUT(Test::readFile(marker), u"fired\n"_s, 15'000);
        QCOMPARE(app.state(), QProcess::Running);
        QVERIFY(Test::endsCleanly(app, SIGTERM));
        // A native Wayland client, not a fallback: Qt says nothing of a missing plugin or display.
        const QByteArray log = app.readAllStandardError();
        QVERIFY2(!log.contains("qt.qpa") && !log.contains("Could not"), log.constData());
    }

private:
    QTemporaryDir m_session;
};

QTEST_GUILESS_MAIN(WaylandTest)
#include "wayland_test.moc"

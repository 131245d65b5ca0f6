#pragma once

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QProcess>
#include <QTest>

namespace Quillon::Test {

// python3-dbusmock serving one name on the session bus (the test's private one), logging each call
// it gets to log where one is named; ended with the object.
class DBusMock
{
public:
    bool start(const QStringList &arguments, const QString &name, const QString &log = {})
    {
        m_name = name;
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.setStandardOutputFile(QProcess::nullDevice());
        QStringList command { QStringLiteral("-m"), QStringLiteral("dbusmock") };
        if (!log.isEmpty())
            command << QStringLiteral("-l") << log;
        m_process.start(QStringLiteral("/usr/bin/python3"), command + arguments);
        QDBusConnectionInterface *bus = QDBusConnection::sessionBus().interface();
        return QTest::qWaitFor([&] { return bus->isServiceRegistered(name).value(); }, 10'000);
    }
    // A call to the mock's own interface on path: AddMethod, EmitSignal, GetCalls.
    QDBusMessage control(const QString &path, const QString &method, const QVariantList &arguments = {}) const
    {
        QDBusMessage call = QDBusMessage::createMethodCall(m_name, path, QStringLiteral("org.freedesktop.DBus.Mock"), method);
        call.setArguments(arguments);
        return QDBusConnection::sessionBus().call(call);
    }
    ~DBusMock()
    {
        m_process.terminate();
        m_process.waitForFinished(3000);
    }

private:
    QProcess m_process;
    QString m_name;
};

} // namespace Quillon::Test

#pragma once

#include "Preferences.h"
#include "SimpleSMTP.h"
#include "StepQueue.h"
#include "TestSupport.h"
#include "TlsTrust.h"

#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

// A real SMTP server (aiosmtpd) on loopback, and a self-signed certificate for it.
namespace Quillon::MailTest {

inline bool makeOneCertificate(const QTemporaryDir &dir, const QString &name, const QString &subject, const QString &altNames)
{
    return Test::run(QStringLiteral("openssl"),
        { QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"), QStringLiteral("rsa:2048"), QStringLiteral("-nodes"),
            QStringLiteral("-keyout"), dir.filePath(name + QStringLiteral("-key.pem")), QStringLiteral("-out"), dir.filePath(name + QStringLiteral(".pem")),
            QStringLiteral("-days"), QStringLiteral("2"), QStringLiteral("-subj"), subject, QStringLiteral("-addext"),
            QStringLiteral("subjectAltName=") + altNames });
}

// Trusted through SSL_CERT_FILE; "dnsonly" names 127.0.0.9 only as CN and DNS entry, which must not do for an address.
inline bool makeCertificate(const QTemporaryDir &dir)
{
    if (!makeOneCertificate(dir, QStringLiteral("cert"), QStringLiteral("/CN=127.0.0.1"), QStringLiteral("IP:127.0.0.1,IP:127.0.0.2,DNS:localhost"))
        || !makeOneCertificate(dir, QStringLiteral("dnsonly"), QStringLiteral("/CN=127.0.0.9"), QStringLiteral("DNS:127.0.0.9")))
        return false;
    QFile::rename(dir.filePath(QStringLiteral("cert-key.pem")), dir.filePath(QStringLiteral("key.pem")));
    const QString bundle = dir.filePath(QStringLiteral("trusted.pem"));
    if (!Test::writeFile(
            bundle, (Test::readFile(dir.filePath(QStringLiteral("cert.pem"))) + Test::readFile(dir.filePath(QStringLiteral("dnsonly.pem")))).toUtf8()))
        return false;
    qputenv("SSL_CERT_FILE", bundle.toUtf8());
    trustCertificatesFromEnvironment();
    return true;
}

class Server
{
public:
    // Empty when the server did not come up.
    bool start(const QTemporaryDir &certDir, QStringList arguments) { return start(certDir, {}, std::move(arguments)); }
    // onCpu: the processor to keep the server on (through taskset), for benchmarks.
    bool start(const QTemporaryDir &certDir, const QString &onCpu, QStringList arguments)
    {
        // First, so that a test's own --cert and --key (given later) win.
        arguments = QStringList {
            QStringLiteral("--cert"), certDir.filePath(QStringLiteral("cert.pem")), QStringLiteral("--key"), certDir.filePath(QStringLiteral("key.pem"))
        } + arguments;
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        const QStringList command = QStringList { QStringLiteral("/usr/bin/python3"), QStringLiteral(SMTP_SERVER_SCRIPT) } + arguments;
        if (onCpu.isEmpty())
            m_process.start(command.first(), command.mid(1));
        else
            m_process.start(QStringLiteral("taskset"), QStringList { QStringLiteral("-c"), onCpu } + command);
        QDeadlineTimer deadline(20'000);
        while (!deadline.hasExpired()) {
            if (!m_process.canReadLine() && !m_process.waitForReadyRead(int(deadline.remainingTime())))
                return false;
            while (m_process.canReadLine()) {
                const QByteArray line = m_process.readLine().trimmed();
                if (line.startsWith("PORT "))
                    port = line.mid(5).toInt();
                if (line == "READY")
                    return port > 0;
            }
        }
        return false;
    }
    ~Server()
    {
        m_process.closeWriteChannel();
        if (!m_process.waitForFinished(5000))
            m_process.kill();
        m_process.waitForFinished(1000);
    }
    // Every "MSG" line so far, parsed.
    QList<QJsonObject> messages()
    {
        while (m_process.canReadLine() || m_process.waitForReadyRead(0)) {
            const QByteArray line = m_process.readLine().trimmed();
            if (line.startsWith("MSG "))
                m_messages << QJsonDocument::fromJson(line.mid(4)).object();
            else if (line.startsWith("COUNT "))
                count = line.mid(6).toInt();
            if (!m_process.canReadLine())
                break;
        }
        return m_messages;
    }

    int port = 0;
    int count = 0;

private:
    QProcess m_process;
    QList<QJsonObject> m_messages;
};

// What a delivery needs of the controller, with the alerts kept for the test to read.
class Host : public MailHost
{
public:
    explicit Host(Preferences &preferences)
        : m_preferences(preferences)
    { }
    Preferences &mailPreferences() override { return m_preferences; }
    void doAlert(const QString &message, const QString &informative) override { alerts << qMakePair(message, informative); }
    StepQueue *mailSteps() override { return &steps; }
    SessionLimits mailLimits() const override { return limits; }
    MailPassword *mailPassword() override { return password; }
    QList<QPair<QString, QString>> alerts;
    MailPassword *password = nullptr; // none: the one in the settings
    SessionLimits limits;
    StepQueue steps;

private:
    Preferences &m_preferences;
};

} // namespace Quillon::MailTest

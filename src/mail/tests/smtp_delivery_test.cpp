#include "MailTestSupport.h"
#include "SettingsKeys.h"
#include "SmtpSession.h"
#include "TestSupport.h"

#include <QJsonArray>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <malloc.h>
#include <unistd.h>

using namespace Quillon;
using namespace Qt::StringLiterals;

namespace {
const QString Password = u"s3cr\u00e9t-pw"_s;
const QString Subject = u"Quillon launched path... \u2603 \u00fcber"_s;
const QString Body = u"/home/ann/\u65e5\u672c/r\u00e9sum\u00e9.txt\n.a line that starts with a dot\nZeile <3>"_s;
} // namespace

// Deliveries against real servers, and against broken ones.
class SmtpDeliveryTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY(MailTest::makeCertificate(m_certs)); }
    void init()
    {
        m_log.clear();
        m_settings.clear(m_prefs);
    }
    void cleanup() { QVERIFY(m_log.filter(Password).isEmpty()); }

    void deliversToARealServer_data()
    {
        QTest::addColumn<QStringList>("server");
        QTest::addColumn<QString>("host");
        QTest::addColumn<bool>("useSSL");
        QTest::addColumn<int>("mechanism");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QStringList>("log"); // after "Connecting..."; a line ending in * stands for any that begins with the rest
        QTest::addColumn<QString>("problem"); // what the user is told when nothing was sent
        const QStringList auth { u"--user"_s, u"ann"_s, u"--password"_s, Password };
        const auto row = [](const char *tag, const QStringList &server, const QString &host, bool useSSL, int mechanism, const QStringList &log,
                             const QString &problem = {},
                             const QString &password = Password) { QTest::newRow(tag) << server << host << useSSL << mechanism << password << log << problem; };
        const QString local = u"127.0.0.1"_s;
        const QString sent = u"Sent!"_s, closing = u"Closing the connection."_s, closed = u"Connection closed."_s;
        const QString mechanisms = u"Available authentication mechanisms: *"_s;
        const QString authDone = u"Authentication completed! Sending the message..."_s;
        row("STARTTLS + CRAM-MD5", QStringList { u"--tls"_s, u"starttls"_s } + auth, local, true, 3,
            { "Connected!", "SSL handshaking...", "SSL handshaking completed.", mechanisms, authDone, sent, closing, closed });
        row("implicit TLS on 465 + LOGIN", QStringList { u"--tls"_s, u"implicit"_s, u"--port"_s, u"465"_s } + auth, u"127.0.0.2"_s, true, 2,
            { "Connected!", "Starting SSL.", "SSL handshaking completed.", mechanisms, authDone, sent, closing, closed });
        row("no TLS + PLAIN", auth, local, false, 1, { "Connected!", mechanisms, authDone, sent, closing, closed });
        row("mechanism 0 with a user name set: no AUTH", auth, local, false, 0, { "Connected!", "Sending the message...", sent, closing, closed });
        // What the user is told names the setting to change: the password, or the kind of login.
        const QStringList refused { "Connected!", mechanisms, "Authentication failed! Closing the connection...", closed };
        row("wrong password", auth, local, false, 1, refused, u"the server refused the login"_s, u"wrong"_s);
        row("PLAIN, the server offers no login", { u"--no-auth"_s }, local, false, 1, refused,
            u"the server offers no login; choose None for Login in Preferences"_s);
        row("LOGIN, the server offers PLAIN only", auth + QStringList { u"--plain-only"_s }, local, false, 2, refused,
            u"the server does not offer the LOGIN login; it offers PLAIN"_s);
        row("STARTTLS wanted, not offered", {}, local, true, 0,
            { "Connected!", "SSL handshaking...", "The mail session ended early: the server does not offer STARTTLS, and nothing is sent in clear.", closed });
        row("certificate for another name", { u"--tls"_s, u"starttls"_s }, u"127.0.0.3"_s, true, 0,
            { "Connected!", "SSL handshaking...", "The mail session ended early: the server's certificate could not be verified*", closed });
        row("an address named by a DNS entry only",
            { u"--tls"_s, u"starttls"_s, u"--cert"_s, m_certs.filePath(u"dnsonly.pem"_s), u"--key"_s, m_certs.filePath(u"dnsonly-key.pem"_s) }, u"127.0.0.9"_s,
            true, 0,
            { "Connected!", "SSL handshaking...", "The mail session ended early: the server's certificate does not name the address 127.0.0.9*", closed });
        row("password missing: logged, then the session idles out", auth, local, false, 2,
            { "Connected!", mechanisms, "Error (NoPassword): The outgoing SMTP server 'Password:' preference value has not been specified.",
                "The mail session ended early: nothing happened for 1 s.", closed },
            {}, QString());
        row("refused message", { u"--refuse"_s }, local, false, 0,
            { "Connected!", "Sending the message...", "Message not sent. Server response: 550 Refused: no thanks", closing, closed });
    }
    void deliversToARealServer()
    {
        QFETCH(QStringList, server);
        QFETCH(QString, host);
        QFETCH(bool, useSSL);
        QFETCH(int, mechanism);
        QFETCH(QString, password);
        QFETCH(QStringList, log);
        QFETCH(QString, problem);
        const bool delivered = log.contains(u"Sent!"_s);
        if (server.contains(QLatin1String("465")) && ::geteuid() != 0)
            QSKIP("Binding port 465 needs root.");
        MailTest::Server peer;
        QVERIFY(peer.start(m_certs, server << u"--host"_s << host));
        m_prefs.setValues({ { Keys::RecipientEmail, u"ann@example.org"_s }, { Keys::ServerAddress, host }, { Keys::ServerPort, peer.port },
            { Keys::UseSSL, useSSL }, { Keys::SelectedAuthentication, mechanism }, { Keys::LoginUsername, u"ann"_s }, { Keys::LoginPassword, password } });
        MailTest::Host controller(m_prefs);
        if (password.isEmpty())
            controller.limits.reply = std::chrono::seconds(1);
        SimpleSMTP delivery;
        QSignalSpy finished(&delivery, &SimpleSMTP::finished);
        delivery.sendMail(controller, Body, Subject);
        QVERIFY(finished.isEmpty()); // returns at once
        // Every session ends by itself, a refused one at once (not at the server's timeout).
        QTRY_VERIFY_WITH_TIMEOUT(finished.count() == 1, 20'000);

        QStringList expected = QStringList { u"Connecting to the %1 server..."_s.arg(host) } + log;
        for (qsizetype i = 0; i < expected.size() && i < m_log.size(); ++i) {
            if (expected[i].endsWith(QLatin1Char('*')) && m_log[i].startsWith(expected[i].chopped(1)))
                expected[i] = m_log[i];
        }
        QCOMPARE(m_log, expected);
        if (mechanism > 0 && !server.contains(QLatin1String("--no-auth")))
            QVERIFY2(m_log.at(expected.indexOf(u"Connected!"_s) + (useSSL ? 3 : 1)).contains(QLatin1String("PLAIN")), qPrintable(m_log.join(QLatin1Char('|'))));
        if (!problem.isEmpty())
            QCOMPARE(delivery.problem(), problem);
        // A message the server refused is also told in an alert, as it was logged.
        const QStringList refusals = log.filter(u"Message not sent"_s);
        QCOMPARE(controller.alerts, (refusals.isEmpty() ? QList<QPair<QString, QString>> {} : QList { qMakePair(refusals.first(), QString()) }));

        QTRY_COMPARE(peer.messages().size(), delivered ? 1 : 0);
        if (!delivered)
            return;
        const QString ann = u"ann@example.org"_s;
        const QJsonObject sent { { "mail_from", ann }, { "rcpt_tos", QJsonArray { ann } }, { "from", ann }, { "to", ann }, { "subject", Subject },
            { "content_type", "text/plain" }, { "charset", "utf-8" }, { "transfer_encoding", "base64" }, { "body", Body }, { "authenticated", mechanism > 0 } };
        QVERIFY2(peer.messages().first() == sent, QJsonDocument(peer.messages().first()).toJson().constData());
    }

    void dataSectionIsDotStuffedWithCrlf_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<QByteArray>("data");
        QTest::newRow("leading dot doubled") << QByteArray(".hidden\n..two\n") << QByteArray("..hidden\r\n...two\r\n");
        QTest::newRow("dot inside a line kept") << QByteArray("a.b\r\n.\r\n") << QByteArray("a.b\r\n..\r\n");
        QTest::newRow("lone CR ends a line") << QByteArray("a\r.b") << QByteArray("a\r\n..b\r\n");
        QTest::newRow("last line ended") << QByteArray("x") << QByteArray("x\r\n");
    }
    void dataSectionIsDotStuffedWithCrlf()
    {
        QFETCH(QByteArray, message);
        QFETCH(QByteArray, data);
        QCOMPARE(smtpData(message), data);
    }

    // Unusable settings: an alert and a log line, and no session at all.
    void settingsThatCannotWork_data()
    {
        QTest::addColumn<QVariant>("server");
        QTest::addColumn<QVariant>("port");
        QTest::addColumn<QString>("error");
        const QString badPort = u"Error (BadPort): The outgoing SMTP server 'Port:' preference value is out of range."_s;
        QTest::newRow("port 0") << QVariant(u"127.0.0.1"_s) << QVariant(0) << badPort;
        QTest::newRow("port 65366") << QVariant(u"127.0.0.1"_s) << QVariant(65366) << badPort;
        QTest::newRow("port unset") << QVariant(u"127.0.0.1"_s) << QVariant() << badPort;
        QTest::newRow("no server") << QVariant() << QVariant(25)
                                   << u"Error (NoServer): The outgoing SMTP server 'Address:' preference value has not been specified."_s;
    }
    void settingsThatCannotWork()
    {
        QFETCH(QVariant, server);
        QFETCH(QVariant, port);
        QFETCH(QString, error);
        QTcpServer listener;
        QVERIFY(listener.listen(QHostAddress::LocalHost));
        m_prefs.setValue(Keys::ServerAddress, server);
        m_prefs.setValue(Keys::ServerPort, port);
        if (!server.isValid())
            m_prefs.setValue(Keys::ServerPort, listener.serverPort());
        MailTest::Host controller(m_prefs);
        SimpleSMTP delivery;
        QSignalSpy finished(&delivery, &SimpleSMTP::finished);
        delivery.sendMail(controller, Body, Subject);
        QCOMPARE(controller.alerts, (QList<QPair<QString, QString>> { { u"An error occurred when sending email."_s, error } }));
        QCOMPARE(m_log, QStringList { error });
        QTRY_COMPARE(finished.count(), 1);
        QVERIFY(!listener.waitForNewConnection(200));
    }

    // Each command gets the next scripted answer (the first is the greeting, an empty one closes);
    // a broken server ends its own session, once, and only that.
    void hostileServerGetsOnlyWhatItEarned_data()
    {
        QTest::addColumn<QString>("recipient");
        QTest::addColumn<bool>("useSSL");
        QTest::addColumn<QByteArrayList>("script");
        QTest::addColumn<QByteArrayList>("commands");
        QTest::addColumn<QString>("logged");
        const QString ann = u"ann@example.org"_s;
        const QByteArray hi = "220 hi\r\n", ok = "250 ok\r\n";
        const QString early = u"The mail session ended early"_s;
        QTest::newRow("a line longer than 64 KiB") << ann << false << QByteArrayList { "220 " + QByteArray(70'000, 'a') } << QByteArrayList {} << early;
        QTest::newRow("a reply of 1,001 lines") << ann << false << QByteArrayList { QByteArray("220-x\r\n").repeated(1001) + "220 x\r\n" } << QByteArrayList {}
                                                << early;
        QTest::newRow("garbage") << ann << false << QByteArrayList { "HELLO THERE\r\n" } << QByteArrayList {} << early;
        QTest::newRow("closed after the greeting") << ann << false << QByteArrayList { hi, {} } << QByteArrayList { "EHLO" } << early;
        QTest::newRow("closed at once") << ann << false << QByteArrayList { {} } << QByteArrayList {} << early;
        QTest::newRow("silence") << ann << false << QByteArrayList {} << QByteArrayList {} << early;
        QTest::newRow("bytes in clear after the answer to STARTTLS")
            << ann << true << QByteArrayList { hi, "250-x\r\n250 STARTTLS\r\n", "220 go ahead\r\n250-x\r\n250 AUTH INJECTEDMECH\r\n" }
            << QByteArrayList { "EHLO", "STARTTLS" } << u"in clear after agreeing to STARTTLS"_s;
        QTest::newRow("answers before the commands") << ann << false << QByteArrayList { hi + ok + "235 ok\r\n" + ok + ok } << QByteArrayList {}
                                                     << u"reply before it was asked"_s;
        QTest::newRow("334 to MAIL") << ann << false << QByteArrayList { hi, ok, "334 go on\r\n" } << QByteArrayList { "EHLO", "MAIL", "QUIT" }
                                     << u"Message not sent"_s;
        QTest::newRow("354 to RCPT") << ann << false << QByteArrayList { hi, ok, ok, "354 go on\r\n" } << QByteArrayList { "EHLO", "MAIL", "RCPT", "QUIT" }
                                     << u"Message not sent"_s;
        QTest::newRow("a line break pasted into the address") << u"ann@example.org\r\nRCPT TO:<victim@evil.example>"_s << false
                                                              << QByteArrayList { hi, ok, ok, ok } << QByteArrayList {} << u"Error (BadAddress)"_s;
        QTest::newRow("parameters pasted into the address")
            << u"ann@example.org> NOTIFY=SUCCESS"_s << false << QByteArrayList { hi, ok, ok, ok } << QByteArrayList {} << u"Error (BadAddress)"_s;
        QTest::newRow("non-ASCII address, no SMTPUTF8")
            << u"j\u00fcrgen@example.org"_s << false << QByteArrayList { hi, ok } << QByteArrayList { "EHLO" } << u"does not offer SMTPUTF8"_s;
        QTest::newRow("a reply that would forge log lines")
            << ann << false << QByteArrayList { hi, ok, "550 no\rForged line \x1b[31mred\xe2\x80\xae reversed\r\n" }
            << QByteArrayList { "EHLO", "MAIL", "QUIT" } << u"Forged line"_s;
    }
    void hostileServerGetsOnlyWhatItEarned()
    {
        QFETCH(QString, recipient);
        QFETCH(bool, useSSL);
        QFETCH(QByteArrayList, script);
        QFETCH(QByteArrayList, commands);
        QFETCH(QString, logged);
        QTcpServer listener;
        QVERIFY(listener.listen(QHostAddress::LocalHost));
        QByteArrayList received;
        connect(&listener, &QTcpServer::newConnection, &listener, [&] {
            QTcpSocket *peer = listener.nextPendingConnection();
            const auto answer = [&, peer](qsizetype n) {
                if (n < script.size())
                    script.at(n).isEmpty() ? peer->disconnectFromHost() : void(peer->write(script.at(n)));
            };
            answer(0);
            connect(peer, &QTcpSocket::readyRead, peer, [&, peer, answer] {
                while (peer->canReadLine()) {
                    received << peer->readLine().trimmed();
                    answer(received.size());
                }
            });
        });
        m_prefs.setValues({ { Keys::ServerAddress, u"127.0.0.1"_s }, { Keys::ServerPort, listener.serverPort() }, { Keys::RecipientEmail, recipient },
            { Keys::UseSSL, useSSL }, { Keys::SelectedAuthentication, 0 } });
        MailTest::Host controller(m_prefs);
        controller.limits = { std::chrono::milliseconds(2000), std::chrono::milliseconds(500) };
        SimpleSMTP delivery;
        QSignalSpy finished(&delivery, &SimpleSMTP::finished);
        delivery.sendMail(controller, Body, Subject);
        QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 10'000);
        QByteArrayList verbs;
        for (const QByteArray &command : std::as_const(received))
            verbs << command.split(' ').first().split(':').first();
        QCOMPARE(verbs, commands);
        const QString log = m_log.join(QLatin1Char('\n'));
        QVERIFY2(log.contains(logged), qPrintable(log));
        QVERIFY2(m_log.filter(u"The mail session ended early"_s).size() <= 1, qPrintable(log));
        if (logged.startsWith(QLatin1String("The mail session ended early"))) {
            QCOMPARE(m_log.last(), u"Connection closed."_s);
            QVERIFY(controller.alerts.isEmpty());
        }
        for (const QString &line : std::as_const(m_log)) {
            for (const QChar c : line)
                QVERIFY2(c >= QLatin1Char(' ') && c != QChar(0x202e), qPrintable(line));
        }
    }

    // A flood of unfinished reply is held once, within the 1 MiB a reply may take, and freed.
    void unfinishedReplyIsHeldOnce()
    {
        const QByteArray line = "250-" + QByteArray(1000, 'x') + "\r\n";
        // Large blocks are mapped apart from the heap: both count.
        const auto heap = [] {
            const struct mallinfo2 m = ::mallinfo2();
            return m.uordblks + m.hblkhd;
        };
        const size_t before = heap();
        {
            SmtpReplyParser parser;
            for (int i = 0; i < 999; ++i)
                parser.feed(line);
            QVERIFY(parser.error().isEmpty());
            QVERIFY(!parser.next());
            const size_t held = heap() - before;
            QVERIFY2(held < 1'250'000, qPrintable(QString::number(held)));
        }
        QVERIFY(heap() - before < size_t(64) * 1024);
    }

private:
    QTemporaryDir m_certs;
    TestSettings m_settings; // first: it points the preferences at their folder
    Preferences m_prefs;
    Test::CapturedLog m_log;
};

QTEST_GUILESS_MAIN(SmtpDeliveryTest)
#include "smtp_delivery_test.moc"

#include "MailPassword.h"
#include "MailTestSupport.h"
#include "SecretServiceStore.h"
#include "SettingsKeys.h"
#include "TestSupport.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTest>

using namespace Quillon;
using namespace Qt::StringLiterals;

namespace {
// A keyring whose every prompt the user dismisses.
class RefusingStore final : public SecretStore
{
public:
    int calls = 0;
    void read(const QString &, ReadDone done) override
    {
        answerLater([done] { done(Result::Unavailable, {}, u"dismissed"_s); });
    }
    void write(const QString &, const QString &, Done done) override
    {
        answerLater([done] { done(Result::Unavailable, u"dismissed"_s); });
    }
    void remove(const QString &, Done done) override
    {
        answerLater([done] { done(Result::Unavailable, u"dismissed"_s); });
    }

private:
    void answerLater(std::function<void()> answer)
    {
        ++calls;
        QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(answer), Qt::QueuedConnection);
    }
};

const QString Old = u"old-p\u00e4ssword"_s;
const QString New = u"new-p\u00e4ssword"_s;
} // namespace

// The mail password with a real GNOME Keyring, and with no Secret Service (QUILLON_NO_KEYRING).
class KeyringTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { m_store = std::make_unique<SecretServiceStore>(u"org.quillon.Quillon.test"_s); }
    void init()
    {
        // A login session of its own for each test: what one remembers must not reach the next.
        m_runtime = std::make_unique<QTemporaryDir>();
        qputenv("XDG_RUNTIME_DIR", m_runtime->path().toUtf8());
        m_settings.clear(m_prefs);
        m_log.clear();
    }
    void cleanup() { QVERIFY2(m_log.filter(Old).isEmpty() && m_log.filter(New).isEmpty(), qPrintable(m_log.join(QLatin1Char('\n')))); }

    // A Secret Service that takes the call and never answers (an unlock prompt left open): each
    // call is answered as without a keyring once its time is up, and the log says so once.
    void aKeyringThatNeverAnswersIsLeft()
    {
        if (!qEnvironmentVariableIsSet("QUILLON_SILENT_KEYRING"))
            QSKIP("Runs on a bus whose Secret Service never answers (with_silent_keyring.sh).");
        SecretServiceStore silent(u"org.quillon.Quillon.test"_s, std::chrono::milliseconds(500));
        QStringList answers;
        for (int i = 0; i < 2; ++i)
            silent.read(QString::fromLatin1(Keys::LoginPassword), [&answers](SecretStore::Result result, const QString &secret, const QString &error) {
                answers << u"%1 %2 %3"_s.arg(int(result)).arg(secret, error);
            });
        QTRY_COMPARE_WITH_TIMEOUT(answers.size(), 2, 5'000);
        QCOMPARE(answers.at(0), u"%1  the keyring did not answer in time"_s.arg(int(SecretStore::Result::Unavailable)));
        QCOMPARE(m_log.filter(u"did not answer within"_s).size(), 1);
    }

    // Into the keyring from the settings file; without a keyring the file keeps it and the log says why, once.
    void passwordMovesIntoTheKeyringOrStaysInTheFile()
    {
        m_settings.writeRaw("[General]\nloginPassword=" + Old.toUtf8() + "\n");
        m_prefs.synchronize();
        MailPassword password(m_prefs, m_store.get());
        password.migrate();
        QCOMPARE(read(password), Old);
        password.set(New);
        QTRY_COMPARE(read(password), New);
        m_prefs.flush();
        const QString inFile = m_settings.read(u"loginPassword"_s).toString();
        if (noKeyring()) {
            QCOMPARE(inFile, New);
            QCOMPARE(m_log.filter(u"keyring cannot be used"_s).size(), 1);
            return;
        }
        QTRY_VERIFY(m_settings.read(u"loginPassword"_s).isNull());
        QCOMPARE(m_log.filter(u"moved from the settings file"_s).size(), 1);
        // Really in the keyring: a store of its own reads it back.
        auto direct = std::make_shared<QString>();
        m_store->read(MailPassword::Key, [direct](SecretStore::Result, const QString &secret, const QString &) { *direct = secret; });
        QTRY_COMPARE(*direct, New);
        password.set(QString());
        QTRY_COMPARE(read(password), QString());
    }

    // A keyring the user said no to is asked once per login session, not at every start or mail.
    void aRefusedKeyringIsAskedOncePerSession_data()
    {
        QTest::addColumn<bool>("newLogin");
        QTest::addColumn<int>("askedAfterRestart");
        QTest::newRow("restarted in the same session") << false << 0;
        QTest::newRow("after the next login") << true << 1;
    }
    void aRefusedKeyringIsAskedOncePerSession()
    {
        QFETCH(bool, newLogin);
        QFETCH(int, askedAfterRestart);
        m_settings.writeRaw("[General]\nloginPassword=" + Old.toUtf8() + "\n");
        m_prefs.synchronize();
        RefusingStore store;
        {
            MailPassword first(m_prefs, &store);
            first.migrate();
            QCOMPARE(read(first), Old);
            QCOMPARE(store.calls, 1);
            // Every mail, and a new password, go on without asking.
            QCOMPARE(read(first), Old);
            first.set(New);
            QCOMPARE(read(first), New);
            QCOMPARE(store.calls, 1);
        }
        QTemporaryDir nextLogin;
        if (newLogin)
            qputenv("XDG_RUNTIME_DIR", nextLogin.path().toUtf8());
        MailPassword second(m_prefs, &store);
        second.migrate();
        QCOMPARE(read(second), New); // answered after the move was tried, if it was
        QCOMPARE(store.calls, 1 + askedAfterRestart);
        m_prefs.flush();
        QCOMPARE(m_settings.read(u"loginPassword"_s).toString(), New);
    }

    // Only an item stored under Quillon's schema is ours, or one an earlier version stored through
    // QtKeychain, which then moves under it. Another application's item is never read, even with
    // the same attributes.
    void onlyOurOwnItemIsRead_data()
    {
        QTest::addColumn<QString>("schema");
        QTest::addColumn<QStringList>("attributes");
        QTest::addColumn<bool>("ours");
        const QString key = MailPassword::Key, service = u"org.quillon.Quillon.test"_s;
        QTest::newRow("an earlier version's") << u"org.qt.keychain"_s << QStringList { "user", key, "server", service, "type", "plaintext" } << true;
        QTest::newRow("another's, with our attributes") << u"org.example.Mail"_s << QStringList { "service", service, "key", key } << false;
        QTest::newRow("another's, with the earlier attributes")
            << u"org.example.Mail"_s << QStringList { "user", key, "server", service, "type", "plaintext" } << false;
    }
    void onlyOurOwnItemIsRead()
    {
        QFETCH(QString, schema);
        QFETCH(QStringList, attributes);
        QFETCH(bool, ours);
        if (noKeyring())
            QSKIP("Needs a keyring.");
        const auto secretTool = [](const QStringList &arguments, const QByteArray &input = {}) {
            QProcess tool;
            tool.start(u"secret-tool"_s, arguments);
            tool.write(input);
            tool.closeWriteChannel();
            tool.waitForFinished();
            return tool.readAllStandardOutput();
        };
        const QStringList item = QStringList { u"xdg:schema"_s, schema } + attributes;
        secretTool(QStringList { u"store"_s, u"--label=test"_s } + item, Old.toUtf8());
        QCOMPARE(secretTool(QStringList { u"lookup"_s } + item), Old.toUtf8());

        auto answer = std::make_shared<std::optional<std::pair<SecretStore::Result, QString>>>();
        m_store->read(MailPassword::Key, [answer](SecretStore::Result result, const QString &secret, const QString &) { *answer = { result, secret }; });
        QTRY_VERIFY(answer->has_value());
        QCOMPARE(**answer, std::pair(ours ? SecretStore::Result::Ok : SecretStore::Result::NotFound, ours ? Old : QString()));
        // An earlier version's item is moved; another's is left where it is.
        QTRY_COMPARE(secretTool(QStringList { u"lookup"_s } + item), ours ? QByteArray() : Old.toUtf8());
        if (!ours)
            secretTool(QStringList { u"clear"_s } + item);
        auto again = std::make_shared<std::optional<QString>>();
        m_store->read(MailPassword::Key, [again](SecretStore::Result, const QString &secret, const QString &) { *again = secret; });
        QTRY_VERIFY(again->has_value());
        QCOMPARE(**again, ours ? Old : QString());
        auto removed = std::make_shared<bool>(false);
        m_store->remove(MailPassword::Key, [removed](SecretStore::Result, const QString &) { *removed = true; });
        QTRY_VERIFY(*removed);
    }

    // A delivery that needs the password waits for the keyring's answer and logs in with it.
    void deliveryLogsInWithTheKeyringsPassword()
    {
        QTemporaryDir certs;
        MailTest::Server server;
        QVERIFY(server.start(certs, { u"--user"_s, u"ann"_s, u"--password"_s, New }));
        MailPassword password(m_prefs, m_store.get());
        password.set(New);
        QTRY_COMPARE(read(password), New);
        m_prefs.setValues({ { Keys::RecipientEmail, u"ann@example.org"_s }, { Keys::ServerAddress, u"127.0.0.1"_s }, { Keys::ServerPort, server.port },
            { Keys::SelectedAuthentication, 1 }, { Keys::LoginUsername, u"ann"_s } });
        MailTest::Host host(m_prefs);
        host.password = &password;
        SimpleSMTP delivery;
        QSignalSpy finished(&delivery, &SimpleSMTP::finished);
        delivery.sendMail(host, u"body"_s, u"subject"_s);
        QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 20'000);
        QTRY_COMPARE(server.messages().size(), 1);
        QVERIFY(server.messages().first().value(QLatin1String("authenticated")).toBool());
    }

private:
    static bool noKeyring() { return qEnvironmentVariableIsSet("QUILLON_NO_KEYRING"); }
    // The answer of get(), which always comes from the event loop.
    QString read(MailPassword &password)
    {
        auto answer = std::make_shared<std::optional<QString>>();
        password.get(this, [answer](const QString &p) { *answer = p; });
        [&] { QTRY_VERIFY_WITH_TIMEOUT(answer->has_value(), 20'000); }();
        return answer->value_or(u"(no answer)"_s);
    }

    TestSettings m_settings; // first: it points the preferences at their folder
    Preferences m_prefs;
    std::unique_ptr<SecretServiceStore> m_store;
    std::unique_ptr<QTemporaryDir> m_runtime;
    Test::CapturedLog m_log;
};

QTEST_GUILESS_MAIN(KeyringTest)
#include "keyring_test.moc"

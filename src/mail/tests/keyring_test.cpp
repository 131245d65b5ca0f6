#include "KeychainSecretStore.h"
#include "MailPassword.h"
#include "MailTestSupport.h"
#include "SettingsKeys.h"
#include "TestSupport.h"

#include <QSignalSpy>
#include <QTest>

using namespace Quillon;

namespace {
const QString Old = QStringLiteral("old-p\u00e4ssword");
const QString New = QStringLiteral("new-p\u00e4ssword");
} // namespace

// The mail password with a real GNOME Keyring, and with no Secret Service (QUILLON_NO_KEYRING).
class KeyringTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        // One store for the whole run: QtKeychain's jobs must outlive the calls under way.
        m_store = std::make_unique<KeychainSecretStore>(QStringLiteral("org.quillon.Quillon.test"));
    }
    void init()
    {
        m_settings.clear(m_prefs);
        m_log.clear();
    }
    void cleanup() { QVERIFY2(m_log.filter(Old).isEmpty() && m_log.filter(New).isEmpty(), qPrintable(m_log.join(QLatin1Char('\n')))); }

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
        const QString inFile = m_settings.read(QStringLiteral("loginPassword")).toString();
        if (noKeyring()) {
            QCOMPARE(inFile, New);
            QCOMPARE(m_log.filter(QStringLiteral("keyring cannot be used")).size(), 1);
            return;
        }
        QTRY_VERIFY(m_settings.read(QStringLiteral("loginPassword")).isNull());
        QCOMPARE(m_log.filter(QStringLiteral("moved from the settings file")).size(), 1);
        // Really in the keyring: a store of its own reads it back.
        auto direct = std::make_shared<QString>();
        m_store->read(MailPassword::Key, [direct](SecretStore::Result, const QString &secret, const QString &) { *direct = secret; });
        QTRY_COMPARE(*direct, New);
        password.set(QString());
        QTRY_COMPARE(read(password), QString());
    }

    // A delivery that needs the password waits for the keyring's answer and logs in with it.
    void deliveryLogsInWithTheKeyringsPassword()
    {
        QTemporaryDir certs;
        MailTest::Server server;
        QVERIFY(server.start(certs, {QStringLiteral("--user"), QStringLiteral("ann"), QStringLiteral("--password"), New}));
        MailPassword password(m_prefs, m_store.get());
        password.set(New);
        QTRY_COMPARE(read(password), New);
        m_prefs.setValues({{Keys::RecipientEmail, QStringLiteral("ann@example.org")}, {Keys::ServerAddress, QStringLiteral("127.0.0.1")},
                            {Keys::ServerPort, server.port}, {Keys::SelectedAuthentication, 1}, {Keys::LoginUsername, QStringLiteral("ann")}});
        MailTest::Host host(m_prefs);
        host.password = &password;
        SimpleSMTP delivery;
        QSignalSpy finished(&delivery, &SimpleSMTP::finished);
        delivery.sendMail(host, QStringLiteral("body"), QStringLiteral("subject"));
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
        return answer->value_or(QStringLiteral("(no answer)"));
    }

    TestSettings m_settings; // first: it points the preferences at their folder
    Preferences m_prefs;
    std::unique_ptr<KeychainSecretStore> m_store;
    Test::CapturedLog m_log;
};

QTEST_GUILESS_MAIN(KeyringTest)
#include "keyring_test.moc"

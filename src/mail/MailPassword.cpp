#include "MailPassword.h"

#include "Log.h"
#include "Preferences.h"
#include "SecretStore.h"
#include "SettingsKeys.h"

#include <QPointer>

namespace Quillon {

const QString MailPassword::Key = QStringLiteral("SMTP password");

MailPassword::MailPassword(Preferences &preferences, SecretStore *store, QObject *parent)
    : QObject(parent)
    , m_preferences(preferences)
    , m_store(store)
{
}

QString MailPassword::passwordInFile() const
{
    m_preferences.synchronize();
    return m_preferences.stringValue(Keys::LoginPassword);
}

void MailPassword::removeFromFile()
{
    m_preferences.synchronize();
    if (m_preferences.contains(Keys::LoginPassword))
        m_preferences.remove(Keys::LoginPassword);
}

void MailPassword::keyringUnavailable(const QString &why)
{
    if (!std::exchange(m_saidUnavailable, true))
        systemLog(QStringLiteral("The desktop keyring cannot be used (%1); the mail password stays in the settings file.").arg(why));
}

void MailPassword::get(QObject *context, Done done)
{
    const QPointer<QObject> guard(context);
    auto answer = [guard, done = std::move(done)](const QString &password) {
        if (guard)
            done(password);
    };
    // A password in the file is the newest one: it is only written there when the keyring failed.
    const QString inFile = passwordInFile();
    if (!m_store || !inFile.isEmpty()) {
        if (m_store)
            migrate();
        QMetaObject::invokeMethod(this, [answer, inFile] { answer(inFile); }, Qt::QueuedConnection);
        return;
    }
    m_store->read(Key, [this, answer](SecretStore::Result result, const QString &secret, const QString &error) {
        if (result == SecretStore::Result::Unavailable)
            keyringUnavailable(error);
        answer(result == SecretStore::Result::Ok ? secret : QString());
    });
}

void MailPassword::set(const QString &password)
{
    if (!m_store) {
        m_preferences.setValue(Keys::LoginPassword, password);
        return;
    }
    const auto done = [this, password](SecretStore::Result result, const QString &error) {
        if (result == SecretStore::Result::Unavailable) {
            keyringUnavailable(error);
            m_preferences.setValue(Keys::LoginPassword, password);
            return;
        }
        removeFromFile();
    };
    if (password.isEmpty())
        m_store->remove(Key, done);
    else
        m_store->write(Key, password, done);
}

void MailPassword::migrate()
{
    const QString inFile = passwordInFile();
    if (!m_store || inFile.isEmpty())
        return;
    m_store->write(Key, inFile, [this, inFile](SecretStore::Result result, const QString &error) {
        if (result != SecretStore::Result::Ok) {
            keyringUnavailable(error);
            return;
        }
        // Only if nobody changed it meanwhile.
        if (passwordInFile() == inFile) {
            removeFromFile();
            systemLog(QStringLiteral("The mail password was moved from the settings file into the desktop keyring."));
        }
    });
}

} // namespace Quillon

#include "MailSettings.h"

#include "Preferences.h"
#include "SettingsKeys.h"

#include <QCoreApplication>
#include <QHash>

namespace Quillon {

QString localizedString(const char *message)
{
    static QHash<QByteArray, QString> cache;
    const QByteArray key(message);
    if (const auto it = cache.constFind(key); it != cache.constEnd())
        return it.value();
    QString text = QCoreApplication::translate("LocalizedStrings", message);
    cache.insert(key, text);
    return text;
}

bool MailSettings::sendEmail() const
{
    m_preferences.synchronize();
    return m_preferences.boolValue(Keys::SendEmail);
}

QString MailSettings::getRecipientEmail() const
{
    m_preferences.synchronize();
    return m_preferences.stringValue(Keys::RecipientEmail);
}

QString MailSettings::getRecipientName() const
{
    m_preferences.synchronize();
    return m_preferences.stringValue(Keys::RecipientName);
}

QString MailSettings::requiredString(QLatin1StringView key, const char *name, const char *reason) const
{
    m_preferences.synchronize();
    QString value = m_preferences.stringValue(key);
    if (value.isEmpty())
        throw MailSettingsError(QString::fromLatin1(name), localizedString(reason));
    return value;
}

QString MailSettings::getServer() const
{
    return requiredString(
        Keys::ServerAddress, "NoServer", QT_TRANSLATE_NOOP("LocalizedStrings", "The outgoing SMTP server 'Address:' preference value has not been specified."));
}

int MailSettings::getPort() const
{
    m_preferences.synchronize();
    const int port = m_preferences.intValue(Keys::ServerPort);
    if (port < 1 || port > HighestPort)
        throw MailSettingsError(QStringLiteral("BadPort"),
            localizedString(QT_TRANSLATE_NOOP("LocalizedStrings", "The outgoing SMTP server 'Port:' preference value is out of range.")));
    return port;
}

int MailSettings::getSelectedLoginMechanism() const
{
    m_preferences.synchronize();
    return m_preferences.intValue(Keys::SelectedAuthentication);
}

bool MailSettings::useSSL() const
{
    m_preferences.synchronize();
    return m_preferences.boolValue(Keys::UseSSL);
}

QString MailSettings::getUsername() const
{
    return requiredString(Keys::LoginUsername, "NoUsername",
        QT_TRANSLATE_NOOP("LocalizedStrings", "The outgoing SMTP server 'Username:' preference value has not been specified."));
}

namespace {
const char *const NoPasswordReason = QT_TRANSLATE_NOOP("LocalizedStrings", "The outgoing SMTP server 'Password:' preference value has not been specified.");
}

QString MailSettings::getPassword() const
{
    return requiredString(Keys::LoginPassword, "NoPassword", NoPasswordReason);
}

MailSettingsError MailSettings::noPassword()
{
    return MailSettingsError(QStringLiteral("NoPassword"), localizedString(NoPasswordReason));
}

} // namespace Quillon

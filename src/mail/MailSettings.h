#pragma once

#include <QString>

#include <exception>

namespace Quillon {

class Preferences;

// A mail setting that makes sending impossible: name is "NoServer", "BadPort", "NoUsername" or
// "NoPassword", reason the user's-language explanation.
class MailSettingsError final : public std::exception
{
public:
    MailSettingsError(QString name, QString reason)
        : m_name(std::move(name))
        , m_reason(std::move(reason))
    { }
    const QString &name() const { return m_name; }
    const QString &reason() const { return m_reason; }
    const char *what() const noexcept override { return "mail settings"; }

private:
    QString m_name;
    QString m_reason;
};

// Mail settings as they stand in the file at the moment of each call.
class MailSettings final
{
public:
    explicit MailSettings(Preferences &preferences)
        : m_preferences(preferences)
    { }

    bool sendEmail() const;
    QString getRecipientEmail() const;
    QString getRecipientName() const;
    QString getServer() const; // throws NoServer
    int getPort() const; // throws BadPort
    int getSelectedLoginMechanism() const;
    bool useSSL() const;
    QString getUsername() const; // throws NoUsername
    QString getPassword() const; // throws NoPassword
    static MailSettingsError noPassword();

    static constexpr int HighestPort = 65365;

private:
    QString requiredString(QLatin1StringView key, const char *name, const char *reason) const;
    Preferences &m_preferences;
};

// The translated form of a fixed English message; the English text when there is none.
QString localizedString(const char *message);

} // namespace Quillon

#pragma once

#include <QList>
#include <QObject>
#include <QString>

#include <functional>

namespace Quillon {

class Preferences;
class SecretStore;

// The mail password lives in the desktop's keyring. A password still in the settings file (an
// older Quillon, or a time when no keyring answered) moves there once the keyring confirms it;
// where no keyring answers, the settings file stays the store and the log says so once; and a
// keyring that failed is not asked again until the next login.
class MailPassword final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MailPassword)
public:
    // store may be null: the settings file is then the only store.
    MailPassword(Preferences &preferences, SecretStore *store, QObject *parent = nullptr);

    // done gets the password, empty when there is none; it is not called once context is gone.
    using Done = std::function<void(const QString &password)>;
    void get(QObject *context, Done done);
    // An empty password removes it.
    void set(const QString &password);
    // Moves a password found in the settings file into the keyring.
    void migrate();

    static const QString Key;

private:
    // One keyring call at a time, in the order asked: a move from the file and a new password
    // must not overtake each other.
    using Step = std::function<void(std::function<void()> next)>;
    void enqueue(Step step);
    void runNext();
    void keyringUnavailable(const QString &why);
    static QString refusalMarker();
    bool refusedThisSession() const;
    void rememberRefusal();
    QString passwordInFile() const;
    void removeFromFile();

    Preferences &m_preferences;
    SecretStore *m_store;
    bool m_saidUnavailable = false;
    bool m_refused = false; // the keyring failed a call: not asked again in this session
    bool m_migrating = false;
    bool m_busy = false;
    QList<Step> m_steps;
};

} // namespace Quillon

#include "MailPassword.h"

#include "Log.h"
#include "Preferences.h"
#include "SecretStore.h"
#include "SettingsKeys.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Quillon {

const QString MailPassword::Key = QStringLiteral("SMTP password");

MailPassword::MailPassword(Preferences &preferences, SecretStore *store, QObject *parent)
    : QObject(parent)
    , m_preferences(preferences)
    , m_store(store)
{ }

void MailPassword::enqueue(Step step)
{
    m_steps.append(std::move(step));
    if (!m_busy)
        runNext();
}

void MailPassword::runNext()
{
    if (m_steps.isEmpty()) {
        m_busy = false;
        return;
    }
    m_busy = true;
    const Step step = m_steps.takeFirst();
    step([this] { runNext(); });
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
    rememberRefusal();
    if (!std::exchange(m_saidUnavailable, true))
        systemLog(QStringLiteral("The desktop keyring cannot be used (%1); the mail password stays in the settings file.").arg(why));
}

// A keyring that could not take the password has usually asked the user (to unlock it, or to
// choose a password for a new one) and been told no. Asking again at every start or every mail
// would nag; the runtime folder lives as long as the login session, so the next login asks again.
QString MailPassword::refusalMarker()
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return runtime.isEmpty() ? QString() : runtime + QStringLiteral("/Quillon/keyring-refused");
}

bool MailPassword::refusedThisSession() const
{
    const QString marker = refusalMarker();
    return m_refused || (!marker.isEmpty() && QFile::exists(marker));
}

void MailPassword::rememberRefusal()
{
    m_refused = true;
    const QString marker = refusalMarker();
    if (marker.isEmpty())
        return;
    const QByteArray folder = QFile::encodeName(QFileInfo(marker).absolutePath());
    ::mkdir(folder.constData(), 0700);
    const int fd = ::open(QFile::encodeName(marker).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (fd >= 0)
        ::close(fd);
}

void MailPassword::get(QObject *context, Done done)
{
    const QPointer<QObject> guard(context);
    auto answer = [guard, done = std::move(done)](const QString &password) {
        if (guard)
            done(password);
    };
    if (!m_store || refusedThisSession()) {
        const QString inFile = passwordInFile();
        QMetaObject::invokeMethod(
            this, [answer, inFile] { answer(inFile); }, Qt::QueuedConnection);
        return;
    }
    migrate();
    enqueue([this, answer](std::function<void()> next) {
        // A password in the file is the newest one: it is only written there when the keyring failed.
        const QString inFile = passwordInFile();
        if (!inFile.isEmpty()) {
            QMetaObject::invokeMethod(
                this,
                [answer, inFile, next] {
                    answer(inFile);
                    next();
                },
                Qt::QueuedConnection);
            return;
        }
        m_store->read(Key, [this, answer, next](SecretStore::Result result, const QString &secret, const QString &error) {
            if (result == SecretStore::Result::Unavailable)
                keyringUnavailable(error);
            answer(result == SecretStore::Result::Ok ? secret : QString());
            next();
        });
    });
}

void MailPassword::set(const QString &password)
{
    if (!m_store) {
        m_preferences.setValue(Keys::LoginPassword, password);
        return;
    }
    if (refusedThisSession()) {
        keyringUnavailable(QStringLiteral("it failed earlier in this login session"));
        m_preferences.setValue(Keys::LoginPassword, password);
        return;
    }
    enqueue([this, password](std::function<void()> next) {
        const auto done = [this, password, next](SecretStore::Result result, const QString &error) {
            if (result == SecretStore::Result::Unavailable) {
                keyringUnavailable(error);
                m_preferences.setValue(Keys::LoginPassword, password);
            } else {
                removeFromFile();
            }
            next();
        };
        if (password.isEmpty())
            m_store->remove(Key, done);
        else
            m_store->write(Key, password, done);
    });
}

void MailPassword::migrate()
{
    if (!m_store || m_migrating || refusedThisSession() || passwordInFile().isEmpty())
        return;
    m_migrating = true;
    enqueue([this](std::function<void()> next) {
        const QString inFile = passwordInFile();
        if (inFile.isEmpty()) {
            m_migrating = false;
            next();
            return;
        }
        m_store->write(Key, inFile, [this, inFile, next](SecretStore::Result result, const QString &error) {
            m_migrating = false;
            if (result != SecretStore::Result::Ok) {
                keyringUnavailable(error);
            } else if (passwordInFile() == inFile) { // only if nobody changed it meanwhile
                removeFromFile();
                systemLog(QStringLiteral("The mail password was moved from the settings file into the desktop keyring."));
            }
            next();
        });
    });
}

} // namespace Quillon

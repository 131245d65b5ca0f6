#include "KeychainSecretStore.h"

#include "Log.h"

#include <QTimer>

#include <qt6keychain/keychain.h>

namespace Quillon {
namespace {
const QString Timeout = QStringLiteral("the keyring did not answer in time");

SecretStore::Result resultOf(const QKeychain::Job *job)
{
    switch (job->error()) {
    case QKeychain::NoError:
        return SecretStore::Result::Ok;
    case QKeychain::EntryNotFound:
        return SecretStore::Result::NotFound;
    default:
        return SecretStore::Result::Unavailable;
    }
}

template<typename JobType> JobType *makeJob(const QString &service, const QString &key, QObject *parent)
{
    auto *job = new JobType(service, parent);
    job->setAutoDelete(true);
    // Never QtKeychain's fallback into a plain settings file of its own: where no keyring
    // answers, our own settings file (private, read back after each write) is the store.
    job->setInsecureFallback(false);
    job->setKey(key);
    return job;
}
} // namespace

KeychainSecretStore::KeychainSecretStore(QString service, std::chrono::milliseconds timeout, QObject *parent)
    : QObject(parent)
    , m_service(std::move(service))
    , m_timeout(timeout)
{ }

void KeychainSecretStore::answerInTime(QKeychain::Job *job, std::function<void(bool inTime)> done)
{
    auto answered = std::make_shared<bool>(false);
    connect(job, &QKeychain::Job::finished, this, [answered, done] {
        if (!std::exchange(*answered, true))
            done(true);
    });
    QTimer::singleShot(m_timeout, this, [this, answered, done] {
        if (std::exchange(*answered, true))
            return;
        if (!std::exchange(m_saidSlow, true))
            systemLog(QStringLiteral("The keyring did not answer within %1 s (an unlock prompt left open?); Quillon carries on as without one.")
                          .arg(m_timeout.count() / 1000.0));
        done(false);
    });
}

void KeychainSecretStore::read(const QString &key, ReadDone done)
{
    auto *job = makeJob<QKeychain::ReadPasswordJob>(m_service, key, this);
    answerInTime(job, [job, done = std::move(done)](bool inTime) {
        const Result result = inTime ? resultOf(job) : Result::Unavailable;
        done(result, result == Result::Ok ? job->textData() : QString(), inTime ? job->errorString() : Timeout);
    });
    job->start();
}

void KeychainSecretStore::write(const QString &key, const QString &secret, Done done)
{
    auto *job = makeJob<QKeychain::WritePasswordJob>(m_service, key, this);
    job->setTextData(secret);
    answerInTime(
        job, [job, done = std::move(done)](bool inTime) { done(inTime ? resultOf(job) : Result::Unavailable, inTime ? job->errorString() : Timeout); });
    job->start();
}

void KeychainSecretStore::remove(const QString &key, Done done)
{
    auto *job = makeJob<QKeychain::DeletePasswordJob>(m_service, key, this);
    answerInTime(
        job, [job, done = std::move(done)](bool inTime) { done(inTime ? resultOf(job) : Result::Unavailable, inTime ? job->errorString() : Timeout); });
    job->start();
}

} // namespace Quillon

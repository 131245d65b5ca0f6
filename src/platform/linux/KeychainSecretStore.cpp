#include "KeychainSecretStore.h"

#include <qt6keychain/keychain.h>

namespace Quillon {
namespace {
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

KeychainSecretStore::KeychainSecretStore(QString service, QObject *parent)
    : QObject(parent)
    , m_service(std::move(service))
{ }

void KeychainSecretStore::read(const QString &key, ReadDone done)
{
    auto *job = makeJob<QKeychain::ReadPasswordJob>(m_service, key, this);
    connect(job, &QKeychain::Job::finished, this, [done = std::move(done)](QKeychain::Job *finished) {
        const auto *read = static_cast<QKeychain::ReadPasswordJob *>(finished);
        const Result result = resultOf(read);
        done(result, result == Result::Ok ? read->textData() : QString(), read->errorString());
    });
    job->start();
}

void KeychainSecretStore::write(const QString &key, const QString &secret, Done done)
{
    auto *job = makeJob<QKeychain::WritePasswordJob>(m_service, key, this);
    job->setTextData(secret);
    connect(job, &QKeychain::Job::finished, this, [done = std::move(done)](QKeychain::Job *finished) { done(resultOf(finished), finished->errorString()); });
    job->start();
}

void KeychainSecretStore::remove(const QString &key, Done done)
{
    auto *job = makeJob<QKeychain::DeletePasswordJob>(m_service, key, this);
    connect(job, &QKeychain::Job::finished, this, [done = std::move(done)](QKeychain::Job *finished) { done(resultOf(finished), finished->errorString()); });
    job->start();
}

} // namespace Quillon

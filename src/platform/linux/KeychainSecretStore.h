#pragma once

#include "SecretStore.h"

#include <QObject>

#include <chrono>
#include <functional>

namespace QKeychain {
class Job;
}

namespace Quillon {

// The Secret Service through QtKeychain, under the application's id. A keyring whose unlock
// prompt never completes would hold every mail for ever: a call it has not answered in time is
// answered as if there were no keyring, and the log says so once.
class KeychainSecretStore final : public QObject, public SecretStore
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(KeychainSecretStore)
public:
    explicit KeychainSecretStore(QString service, std::chrono::milliseconds timeout = std::chrono::seconds(30), QObject *parent = nullptr);

    void read(const QString &key, ReadDone done) override;
    void write(const QString &key, const QString &secret, Done done) override;
    void remove(const QString &key, Done done) override;

private:
    // done once: with the job's answer, or with Unavailable when it comes too late.
    void answerInTime(QKeychain::Job *job, std::function<void(bool inTime)> done);

    QString m_service;
    std::chrono::milliseconds m_timeout;
    bool m_saidSlow = false;
};

} // namespace Quillon

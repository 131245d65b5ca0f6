#pragma once

#include "SecretStore.h"

#include <QObject>

#include <chrono>
#include <functional>
#include <memory>

namespace Quillon {

// The Secret Service through libsecret, under a schema of our own: a lookup matches only items
// stored under it, never another application's item that happens to carry the same attributes.
// A keyring whose unlock prompt never completes would hold every mail for ever: a call it has
// not answered in time is answered as if there were no keyring, and the log says so once.
class SecretServiceStore final : public QObject, public SecretStore
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SecretServiceStore)
public:
    static constexpr const char *SchemaName = "org.quillon.Quillon.Secret";
    // Where earlier versions kept the secret (QtKeychain's items); moved to ours when first read.
    static constexpr const char *LegacySchemaName = "org.qt.keychain";

    explicit SecretServiceStore(QString service, std::chrono::milliseconds timeout = std::chrono::seconds(30), QObject *parent = nullptr);
    ~SecretServiceStore() override;

    void read(const QString &key, ReadDone done) override;
    void write(const QString &key, const QString &secret, Done done) override;
    void remove(const QString &key, Done done) override;

private:
    struct Call;
    // Answered once: with libsecret's result, or with none when its time is up; never once the
    // store is gone. Gives the user_data for libsecret's callback.
    void *watch(const std::shared_ptr<Call> &call);
    void readLegacy(const QString &key, ReadDone done);

    QString m_service;
    std::chrono::milliseconds m_timeout;
    bool m_saidSlow = false;
    QList<std::weak_ptr<Call>> m_calls;
};

} // namespace Quillon

#pragma once

#include "SecretStore.h"

#include <QObject>

namespace Quillon {

// The Secret Service through QtKeychain, under the application's id.
class KeychainSecretStore final : public QObject, public SecretStore
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(KeychainSecretStore)
public:
    explicit KeychainSecretStore(QString service, QObject *parent = nullptr);

    void read(const QString &key, ReadDone done) override;
    void write(const QString &key, const QString &secret, Done done) override;
    void remove(const QString &key, Done done) override;

private:
    QString m_service;
};

} // namespace Quillon

#pragma once

#include <QString>

#include <functional>

namespace Quillon {

// The desktop's keyring (the Secret Service: GNOME Keyring, KWallet, KeePassXC). Every call is
// asynchronous: the answer comes from the event loop, never before the call returns.
class SecretStore
{
public:
    enum class Result {
        Ok,
        NotFound, // the keyring answered, and holds nothing under that key
        Unavailable, // no keyring answered, or it refused (locked, no session bus)
    };
    // error: why, for the log, when the result is not Ok.
    using ReadDone = std::function<void(Result, const QString &secret, const QString &error)>;
    using Done = std::function<void(Result, const QString &error)>;

    virtual ~SecretStore() = default;
    virtual void read(const QString &key, ReadDone done) = 0;
    virtual void write(const QString &key, const QString &secret, Done done) = 0;
    virtual void remove(const QString &key, Done done) = 0;
};

} // namespace Quillon

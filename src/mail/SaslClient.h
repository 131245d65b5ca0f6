#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

struct Gsasl_session;

namespace Quillon {

// The client side of one SASL exchange (PLAIN, LOGIN, CRAM-MD5, ...), done by GNU SASL.
class SaslClient final
{
public:
    // None when the mechanism is unknown to the library.
    static std::unique_ptr<SaslClient> start(const QString &mechanism, const QString &username, const QString &password);
    ~SaslClient();
    SaslClient(const SaslClient &) = delete;
    SaslClient &operator=(const SaslClient &) = delete;

    // Whether the mechanism speaks first (sends an initial response with AUTH).
    bool clientFirst() const { return m_clientFirst; }
    // The base64 answer to a base64 challenge; none when the exchange failed.
    std::optional<QByteArray> step(const QByteArray &challenge);

private:
    explicit SaslClient(Gsasl_session *session, bool clientFirst);
    Gsasl_session *m_session;
    bool m_clientFirst;
};

} // namespace Quillon

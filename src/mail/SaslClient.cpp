#include "SaslClient.h"

#include <gsasl.h>

namespace Quillon {
namespace {
// One library context for the process, made on first use; everything runs on the main thread.
Gsasl *context()
{
    static Gsasl *ctx = [] {
        Gsasl *c = nullptr;
        return gsasl_init(&c) == GSASL_OK ? c : nullptr;
    }();
    return ctx;
}
} // namespace

std::unique_ptr<SaslClient> SaslClient::start(const QString &mechanism, const QString &username, const QString &password)
{
    Gsasl *ctx = context();
    const QByteArray name = mechanism.toLatin1();
    if (!ctx || !gsasl_client_support_p(ctx, name.constData()))
        return nullptr;
    Gsasl_session *session = nullptr;
    if (gsasl_client_start(ctx, name.constData(), &session) != GSASL_OK)
        return nullptr;
    gsasl_property_set(session, GSASL_AUTHID, username.toUtf8().constData());
    gsasl_property_set(session, GSASL_PASSWORD, password.toUtf8().constData());
    // PLAIN goes with the AUTH command; LOGIN and CRAM-MD5 wait for the server's prompt.
    return std::unique_ptr<SaslClient>(new SaslClient(session, name == "PLAIN"));
}

SaslClient::SaslClient(Gsasl_session *session, bool clientFirst)
    : m_session(session)
    , m_clientFirst(clientFirst)
{ }

SaslClient::~SaslClient()
{
    gsasl_finish(m_session);
}

std::optional<QByteArray> SaslClient::step(const QByteArray &challenge)
{
    char *output = nullptr;
    const int rc = gsasl_step64(m_session, challenge.constData(), &output);
    if (rc != GSASL_OK && rc != GSASL_NEEDS_MORE) {
        gsasl_free(output);
        return std::nullopt;
    }
    QByteArray answer(output ? output : "");
    gsasl_free(output);
    return answer;
}

} // namespace Quillon

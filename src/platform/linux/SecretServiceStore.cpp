#include "SecretServiceStore.h"

#include "Log.h"

#include <QTimer>

#include <libsecret/secret.h>

namespace Quillon {
namespace {
const QString Timeout = QStringLiteral("the keyring did not answer in time");

const SecretSchema *ownSchema()
{
    static const SecretSchema schema = { SecretServiceStore::SchemaName, SECRET_SCHEMA_NONE,
        { { "service", SECRET_SCHEMA_ATTRIBUTE_STRING }, { "key", SECRET_SCHEMA_ATTRIBUTE_STRING }, { nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING } }, 0, nullptr,
        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr };
    return &schema;
}

// Matched by name too, unlike QtKeychain's own lookups: only the items it stored for us.
const SecretSchema *legacySchema()
{
    static const SecretSchema schema = { SecretServiceStore::LegacySchemaName, SECRET_SCHEMA_NONE,
        { { "user", SECRET_SCHEMA_ATTRIBUTE_STRING }, { "server", SECRET_SCHEMA_ATTRIBUTE_STRING }, { "type", SECRET_SCHEMA_ATTRIBUTE_STRING },
            { nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING } },
        0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr };
    return &schema;
}

// libsecret's answer as ours: the error's text, freed.
SecretStore::Result takeError(GError *error, QString *why)
{
    if (!error)
        return SecretStore::Result::Ok;
    *why = QString::fromUtf8(error->message);
    g_error_free(error);
    return SecretStore::Result::Unavailable;
}

QString takeSecret(gchar *secret)
{
    QString text = QString::fromUtf8(secret);
    secret_password_free(secret);
    return text;
}
} // namespace

// Shared by libsecret's callback and the timer: whichever comes first answers.
struct SecretServiceStore::Call
{
    explicit Call(std::function<void(GAsyncResult *)> finish)
        : finish(std::move(finish))
    { }
    Q_DISABLE_COPY_MOVE(Call)
    ~Call() { g_object_unref(cancellable); }

    std::function<void(GAsyncResult *)> finish;
    GCancellable *cancellable = g_cancellable_new();
    bool answered = false;

    static void ready(GObject *, GAsyncResult *result, gpointer data)
    {
        const std::unique_ptr<std::shared_ptr<Call>> call(static_cast<std::shared_ptr<Call> *>(data));
        if (!std::exchange((*call)->answered, true))
            (*call)->finish(result);
    }
};

SecretServiceStore::SecretServiceStore(QString service, std::chrono::milliseconds timeout, QObject *parent)
    : QObject(parent)
    , m_service(std::move(service))
    , m_timeout(timeout)
{ }

SecretServiceStore::~SecretServiceStore()
{
    // libsecret still calls back, into calls that are over.
    for (const std::weak_ptr<Call> &weak : std::as_const(m_calls)) {
        if (const std::shared_ptr<Call> call = weak.lock()) {
            call->answered = true;
            g_cancellable_cancel(call->cancellable);
        }
    }
}

void *SecretServiceStore::watch(const std::shared_ptr<Call> &call)
{
    m_calls.removeIf([](const std::weak_ptr<Call> &weak) { return weak.expired(); });
    m_calls.append(call);
    QTimer::singleShot(m_timeout, this, [this, call] {
        if (std::exchange(call->answered, true))
            return;
        if (!std::exchange(m_saidSlow, true))
            systemLog(QStringLiteral("The keyring did not answer within %1 s (an unlock prompt left open?); Quillon carries on as without one.")
                          .arg(double(m_timeout.count()) / 1000.0));
        call->finish(nullptr);
        g_cancellable_cancel(call->cancellable);
    });
    return new std::shared_ptr<Call>(call);
}

void SecretServiceStore::read(const QString &key, ReadDone done)
{
    const auto call = std::make_shared<Call>([this, key, done](GAsyncResult *result) {
        if (!result) {
            done(Result::Unavailable, {}, Timeout);
            return;
        }
        GError *error = nullptr;
        gchar *secret = secret_password_lookup_finish(result, &error);
        QString why;
        if (takeError(error, &why) != Result::Ok)
            done(Result::Unavailable, {}, why);
        else if (secret)
            done(Result::Ok, takeSecret(secret), {});
        else
            readLegacy(key, done);
    });
    secret_password_lookup(
        ownSchema(), call->cancellable, &Call::ready, watch(call), "service", m_service.toUtf8().constData(), "key", key.toUtf8().constData(), nullptr);
}

void SecretServiceStore::readLegacy(const QString &key, ReadDone done)
{
    const auto call = std::make_shared<Call>([this, key, done](GAsyncResult *result) {
        GError *error = nullptr;
        gchar *secret = result ? secret_password_lookup_finish(result, &error) : nullptr;
        QString why;
        if (takeError(error, &why) != Result::Ok || !secret) {
            done(Result::NotFound, {}, why);
            return;
        }
        const QString text = takeSecret(secret);
        // Ours from now on: stored under our schema first, and only then taken from where it was.
        write(key, text, [this, key, text, done](Result stored, const QString &why) {
            if (stored != Result::Ok) {
                systemLog(QStringLiteral("The keyring item of an earlier version could not be moved (%1); it is used where it is.").arg(why));
            } else {
                const auto clear = std::make_shared<Call>([](GAsyncResult *result) {
                    if (result)
                        secret_password_clear_finish(result, nullptr);
                });
                secret_password_clear(legacySchema(), clear->cancellable, &Call::ready, watch(clear), "user", key.toUtf8().constData(), "server",
                    m_service.toUtf8().constData(), "type", "plaintext", nullptr);
                systemLog(QStringLiteral("The keyring item of an earlier version was moved under Quillon's own schema."));
            }
            done(Result::Ok, text, {});
        });
    });
    secret_password_lookup(legacySchema(), call->cancellable, &Call::ready, watch(call), "user", key.toUtf8().constData(), "server",
        m_service.toUtf8().constData(), "type", "plaintext", nullptr);
}

void SecretServiceStore::write(const QString &key, const QString &secret, Done done)
{
    const auto call = std::make_shared<Call>([done](GAsyncResult *result) {
        if (!result) {
            done(Result::Unavailable, Timeout);
            return;
        }
        GError *error = nullptr;
        secret_password_store_finish(result, &error);
        QString why;
        done(takeError(error, &why), why);
    });
    const QByteArray label = QStringLiteral("Quillon: %1").arg(key).toUtf8();
    secret_password_store(ownSchema(), SECRET_COLLECTION_DEFAULT, label.constData(), secret.toUtf8().constData(), call->cancellable, &Call::ready, watch(call),
        "service", m_service.toUtf8().constData(), "key", key.toUtf8().constData(), nullptr);
}

void SecretServiceStore::remove(const QString &key, Done done)
{
    const auto call = std::make_shared<Call>([done](GAsyncResult *result) {
        if (!result) {
            done(Result::Unavailable, Timeout);
            return;
        }
        GError *error = nullptr;
        const bool removed = secret_password_clear_finish(result, &error);
        QString why;
        const Result answer = takeError(error, &why);
        done(answer == Result::Ok && !removed ? Result::NotFound : answer, why);
    });
    secret_password_clear(
        ownSchema(), call->cancellable, &Call::ready, watch(call), "service", m_service.toUtf8().constData(), "key", key.toUtf8().constData(), nullptr);
}

} // namespace Quillon

#include "DesktopNotifications.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QVariantMap>

namespace Quillon {
namespace {
const QString Service = QStringLiteral("org.freedesktop.Notifications");
const QString Path = QStringLiteral("/org/freedesktop/Notifications");
const QString Interface = QStringLiteral("org.freedesktop.Notifications");
} // namespace

DesktopNotifications::DesktopNotifications(QDBusConnection bus, QObject *parent)
    : Notifications(parent)
    , m_bus(std::move(bus))
{
    if (!m_bus.isConnected())
        return;
    m_bus.connect(Service, Path, Interface, QStringLiteral("ActionInvoked"), this, SLOT(onActionInvoked(uint, QString)));
    // A server started after us, or another one taking over, may read markup where the last did not.
    auto *owner = new QDBusServiceWatcher(Service, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(owner, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] {
        m_ours.clear();
        askCapabilities();
    });
    askCapabilities();
}

void DesktopNotifications::askCapabilities()
{
    m_capabilities = Capabilities::Unknown;
    auto *watcher
        = new QDBusPendingCallWatcher(m_bus.asyncCall(QDBusMessage::createMethodCall(Service, Path, Interface, QStringLiteral("GetCapabilities"))), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QStringList> reply = *watcher;
        if (!reply.isValid())
            return; // no server yet: asked again when one comes
        m_actions = reply.value().contains(QLatin1String("actions"));
        m_markup = reply.value().contains(QLatin1String("body-markup"));
        m_capabilities = Capabilities::Known;
    });
}

QString DesktopNotifications::safeText(const QString &text, bool markup)
{
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        const bool control = (u < 0x20 && u != u'\n') || (u >= 0x7f && u < 0xa0);
        const bool direction = (u >= 0x202a && u <= 0x202e) || (u >= 0x2066 && u <= 0x2069) || u == 0x200e || u == 0x200f;
        if (!control && !direction)
            out += c;
    }
    return markup ? out.toHtmlEscaped() : out;
}

void DesktopNotifications::notify(uint replaces, const QString &summary, const QString &body, const QStringList &actions, std::function<void(uint)> done)
{
    if (!m_bus.isConnected()) {
        done(0);
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(Service, Path, Interface, QStringLiteral("Notify"));
    const QVariantMap hints { { QStringLiteral("desktop-entry"), QStringLiteral(QUILLON_APP_ID) } };
    // Until the server has said it shows plain text, a file name with "<" or "&" (or a hostile
    // server's reply in a mail problem) is escaped: never a live link or image. Actions go out
    // unless the server said it cannot show them; a server that cannot ignores them.
    const bool plainText = m_capabilities == Capabilities::Known && !m_markup;
    const bool noActions = m_capabilities == Capabilities::Known && !m_actions;
    call << QStringLiteral("Quillon") << replaces << QStringLiteral(QUILLON_APP_ID) << safeText(summary, false) << safeText(body, !plainText)
         << (noActions ? QStringList() : actions) << hints << qint32(-1);
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, done = std::move(done)] {
        const QDBusPendingReply<uint> reply = *watcher;
        if (reply.isValid()) {
            m_ours.removeAll(reply.value());
            m_ours.append(reply.value());
            if (m_ours.size() > 256)
                m_ours.removeFirst();
        }
        done(reply.isValid() ? reply.value() : 0);
        watcher->deleteLater();
    });
}

void DesktopNotifications::close(uint id)
{
    if (m_bus.isConnected() && id != 0)
        m_bus.asyncCall(QDBusMessage::createMethodCall(Service, Path, Interface, QStringLiteral("CloseNotification")) << id);
}

void DesktopNotifications::onActionInvoked(uint id, const QString &key)
{
    // The signal goes to every client of the server: another program's notification is not ours.
    if (m_ours.contains(id))
        Q_EMIT actionInvoked(id, key);
}

} // namespace Quillon

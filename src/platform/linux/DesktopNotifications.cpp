#include "DesktopNotifications.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QVariantMap>

namespace Quillon {
namespace {
const QString Service = QStringLiteral("org.freedesktop.Notifications");
const QString Path = QStringLiteral("/org/freedesktop/Notifications");
const QString Interface = QStringLiteral("org.freedesktop.Notifications");
} // namespace

DesktopNotifications::DesktopNotifications(QDBusConnection bus, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
{
    if (!m_bus.isConnected())
        return;
    m_bus.connect(Service, Path, Interface, QStringLiteral("ActionInvoked"), this, SLOT(onActionInvoked(uint, QString)));
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(QDBusMessage::createMethodCall(Service, Path, Interface, QStringLiteral("GetCapabilities"))), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<QStringList> reply = *watcher;
        m_actions = reply.isValid() && reply.value().contains(QLatin1String("actions"));
        m_markup = reply.isValid() && reply.value().contains(QLatin1String("body-markup"));
        watcher->deleteLater();
    });
}

void DesktopNotifications::notify(uint replaces, const QString &summary, const QString &body, const QStringList &actions, std::function<void(uint)> done)
{
    if (!m_bus.isConnected()) {
        done(0);
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(Service, Path, Interface, QStringLiteral("Notify"));
    const QVariantMap hints{{QStringLiteral("desktop-entry"), QStringLiteral(QUILLON_APP_ID)}};
    // Where bodies may carry markup, a file name with "<" or "&" must still show as it is.
    const QString plain = m_markup ? body.toHtmlEscaped() : body;
    call << QStringLiteral("Quillon") << replaces << QStringLiteral(QUILLON_APP_ID) << summary << plain
         << (m_actions ? actions : QStringList()) << hints << qint32(-1);
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, done = std::move(done)] {
        const QDBusPendingReply<uint> reply = *watcher;
        done(reply.isValid() ? reply.value() : 0);
        watcher->deleteLater();
    });
}

void DesktopNotifications::onActionInvoked(uint id, const QString &key)
{
    Q_EMIT actionInvoked(id, key);
}

} // namespace Quillon

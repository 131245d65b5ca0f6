#pragma once

#include "Notifications.h"

#include <QDBusConnection>

namespace Quillon {

// The freedesktop Notifications service on the session bus. What goes out is safe whatever the server is:
// bodies are escaped unless the server is known to show them as plain text, control and
// direction characters never leave, and only clicks on our own notifications are acted on.
class DesktopNotifications final : public Notifications
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DesktopNotifications)
public:
    explicit DesktopNotifications(QDBusConnection bus, QObject *parent = nullptr);

    void notify(uint replaces, const QString &summary, const QString &body, const QStringList &actions, std::function<void(uint)> done) override;
    void close(uint id) override;
    bool supportsActions() const override { return m_capabilities == Capabilities::Known && m_actions; }
    // A body as it may go to a server: without control and direction characters, and escaped
    // where the server may read markup.
    static QString safeText(const QString &text, bool markup);

private Q_SLOTS:
    void onActionInvoked(uint id, const QString &key);

private:
    // Asked at the start and again whenever another server takes the name.
    void askCapabilities();

    QDBusConnection m_bus;
    enum class Capabilities { Unknown, Known };
    Capabilities m_capabilities = Capabilities::Unknown;
    bool m_actions = false;
    bool m_markup = false;
    // The ids the server gave our notifications, newest last; another program's are not ours.
    QList<uint> m_ours;
};

} // namespace Quillon

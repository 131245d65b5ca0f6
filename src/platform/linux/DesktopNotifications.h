#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

#include <functional>

namespace Quillon {

// The freedesktop Notifications service on the session bus. Every call is asynchronous; without
// a service nothing is shown and nothing breaks.
class DesktopNotifications final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DesktopNotifications)
public:
    explicit DesktopNotifications(QDBusConnection bus, QObject *parent = nullptr);

    // Shows a notification, or updates the one with id replaces; done gets the server's id for
    // it (0 when there was no answer). actions: key, label, key, label, ... (dropped when the
    // server cannot show them).
    void notify(uint replaces, const QString &summary, const QString &body, const QStringList &actions, std::function<void(uint)> done);
    bool supportsActions() const { return m_actions; }

Q_SIGNALS:
    void actionInvoked(uint id, const QString &key);

private Q_SLOTS:
    void onActionInvoked(uint id, const QString &key);

private:
    QDBusConnection m_bus;
    bool m_actions = false;
    bool m_markup = false;
};

} // namespace Quillon

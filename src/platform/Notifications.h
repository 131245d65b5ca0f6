#pragma once

#include <QObject>
#include <QStringList>

#include <functional>

namespace Quillon {

// The desktop's notifications. Every call is asynchronous; without a service nothing is shown and
// nothing breaks.
class Notifications : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    // Shows a notification, or updates the one with id replaces; done gets the server's id for
    // it (0 when there was no answer). actions: key, label, key, label, ... (dropped when the
    // server cannot show them).
    virtual void notify(uint replaces, const QString &summary, const QString &body, const QStringList &actions, std::function<void(uint)> done) = 0;
    // Takes a notification of ours away.
    virtual void close(uint id) = 0;
    virtual bool supportsActions() const = 0;

Q_SIGNALS:
    // A click on an action of one of our own notifications.
    void actionInvoked(uint id, const QString &key);
};

} // namespace Quillon

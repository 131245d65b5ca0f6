#pragma once

#include <QDBusAbstractAdaptor>
#include <QVariantMap>

namespace Quillon {

// org.freedesktop.Application beside Quillon's own interface: the desktop entry is D-Bus
// activatable, so a launcher starts Quillon through the session bus (with the session's
// environment) and then asks it for its window.
// An adaptor on the scripting object, which has the path.
class DesktopActivation final : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    explicit DesktopActivation(QObject *exported)
        : QDBusAbstractAdaptor(exported)
    { }

public Q_SLOTS:
    void Activate(const QVariantMap &platformData);
    // Quillon opens nothing it is handed this way: files are added in its window or by a command.
    void Open(const QStringList &uris, const QVariantMap &platformData);
    void ActivateAction(const QString &name, const QVariantList &parameter, const QVariantMap &platformData);

Q_SIGNALS:
    // The window is wanted, with the token the launcher gave to raise it on Wayland.
    void windowRequested(const QByteArray &activationToken);
};

} // namespace Quillon

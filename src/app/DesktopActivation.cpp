#include "DesktopActivation.h"

namespace Quillon {
namespace {
QByteArray tokenOf(const QVariantMap &platformData)
{
    // Wayland's token, or X11's startup id, whichever the launcher gave.
    const QVariant token = platformData.value(QStringLiteral("activation-token"), platformData.value(QStringLiteral("desktop-startup-id")));
    return token.toString().toUtf8();
}
} // namespace

void DesktopActivation::Activate(const QVariantMap &platformData)
{
    Q_EMIT windowRequested(tokenOf(platformData));
}

void DesktopActivation::Open(const QStringList &, const QVariantMap &platformData)
{
    Q_EMIT windowRequested(tokenOf(platformData));
}

void DesktopActivation::ActivateAction(const QString &, const QVariantList &, const QVariantMap &platformData)
{
    Q_EMIT windowRequested(tokenOf(platformData));
}

} // namespace Quillon

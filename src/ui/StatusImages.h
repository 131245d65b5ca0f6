#pragma once

#include <QIcon>
#include <QString>

namespace Quillon {

// The status artwork by resource name: "Check.tiff" (opened) and "Pending.tiff" (waiting).
// Painted from vector shapes at whatever size and scale the screen asks for.
QIcon imageNamed(const QString &name);

} // namespace Quillon

#pragma once

class QCoreApplication;

namespace Quillon {
// Qt's own translations and ours, for the user's locale; English where there are none.
void installTranslations(QCoreApplication &app);
} // namespace Quillon

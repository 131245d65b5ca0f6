#include "Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace Quillon {

void installTranslations(QCoreApplication &app)
{
    const QLocale locale;
    auto *qt = new QTranslator(&app);
    if (qt->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(qt);
    auto *own = new QTranslator(&app);
    const QString appDir = QCoreApplication::applicationDirPath();
    // Beside the build, then where the package puts them.
    for (const QString &dir : {appDir + QStringLiteral("/../share/quillon/translations"), QStringLiteral(QUILLON_DATA_DIR "/translations")}) {
        if (own->load(locale, QStringLiteral("quillon"), QStringLiteral("_"), dir)) {
            QCoreApplication::installTranslator(own);
            return;
        }
    }
    delete own;
}

} // namespace Quillon

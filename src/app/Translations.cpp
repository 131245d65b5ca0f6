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
    const QStringList dirs { appDir + QStringLiteral("/../share/quillon/translations"), QStringLiteral(QUILLON_DATA_DIR "/translations") };
    for (const QString &dir : dirs) {
        if (own->load(locale, QStringLiteral("quillon"), QStringLiteral("_"), dir)) {
            QCoreApplication::installTranslator(own);
            return;
        }
    }
    // A language we have no catalogue for, or the C locale, reads the source's English: with
    // its plurals ("1 item", "2 items") from the English catalogue.
    for (const QString &dir : dirs) {
        if (own->load(QStringLiteral("quillon_en"), dir)) {
            QCoreApplication::installTranslator(own);
            return;
        }
    }
    delete own;
}

} // namespace Quillon

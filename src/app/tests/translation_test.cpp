#include "MailSettings.h"
#include "Preferences.h"
#include "PreferencesDialog.h"
#include "Texts.h"
#include "Translations.h"
#include "TestSupport.h"

#include <QApplication>
#include <QPushButton>
#include <QTest>

using namespace Quillon;

// Run with LANG=de_DE.UTF-8: the German catalogue is found beside the build and loaded.
class TranslationTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void germanIsLoadedForAGermanUser()
    {
        QCOMPARE(QLocale().language(), QLocale::German);
        installTranslations(*qApp);
        TestSettings settings;
        Preferences preferences;
        try {
            MailSettings(preferences).getPort();
            QFAIL("no port set, yet no error");
        } catch (const MailSettingsError &e) {
            QCOMPARE(e.reason(), QStringLiteral("Die Einstellung „Port:“ des Postausgangsservers (SMTP) liegt außerhalb des gültigen Bereichs."));
        }
        QCOMPARE(Texts::tr(Texts::Start), QStringLiteral("Starten"));
        PreferencesDialog dialog(preferences);
        QCOMPARE(dialog.findChild<QPushButton *>(QStringLiteral("testEmailButton"))->text(), QStringLiteral("Testnachricht senden"));
        // Log lines and mail subjects stay English.
        QCOMPARE(Texts::LaunchedSubject, QStringLiteral("Quillon launched path..."));
    }
};

QTEST_MAIN(TranslationTest)
#include "translation_test.moc"

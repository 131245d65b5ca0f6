#include "CommandLine.h"
#include "FakeClock.h"
#include "FakeWorkspace.h"
#include "MailSettings.h"
#include "MainWindow.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "Preferences.h"
#include "PreferencesDialog.h"
#include "Texts.h"
#include "Translations.h"
#include "TestSupport.h"

#include <QAbstractButton>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>

using namespace Quillon;

// Run with LANG=de_DE.UTF-8: the German catalogue is found beside the build and loaded.
class TranslationTest : public QObject
{
    Q_OBJECT
    // No Alt+letter of the menu bar and buttons, nor of the entries of one menu, is claimed twice,
    // and every menu entry has a key.
    static void acceleratorsAreUnique()
    {
        TestSettings settings;
        Preferences preferences;
        FakeClock clock;
        Schedule schedule(preferences, clock);
        ScheduleEditor editor(schedule, preferences);
        FakeWorkspace workspace;
        MainWindow window(editor, preferences, workspace);
        const auto unique = [](const QStringList &texts) {
            QHash<QChar, QString> claimed;
            for (const QString &text : texts) {
                const QString plain = QString(text).replace(QLatin1String("&&"), QLatin1String(""));
                const qsizetype amp = plain.indexOf(QLatin1Char('&'));
                if (amp < 0 || amp + 1 >= plain.size())
                    continue;
                const QChar key = plain.at(amp + 1).toLower();
                if (claimed.contains(key))
                    return QStringLiteral("Alt+%1: %2 and %3").arg(key, claimed.value(key), text);
                claimed.insert(key, text);
            }
            return claimed.size() >= 2 ? QString() : QStringLiteral("fewer than two keys among: ") + texts.join(QLatin1String(", "));
        };
        QStringList bar;
        for (const QAction *menu : window.menuBar()->actions()) {
            bar << menu->text();
            QStringList entries;
            for (const QAction *a : menu->menu()->actions()) {
                QVERIFY2(a->isSeparator() || a->text().contains(QLatin1Char('&')) || !a->shortcut().isEmpty(), qPrintable(a->text()));
                entries << a->text();
            }
            const QString clash = unique(entries);
            QVERIFY2(clash.isEmpty() || menu->menu()->actions().size() < 2, qPrintable(clash));
        }
        for (const QAbstractButton *button : window.findChildren<QAbstractButton *>())
            bar << button->text();
        const QString clash = unique(bar);
        QVERIFY2(clash.isEmpty(), qPrintable(clash));
    }

private Q_SLOTS:
    void englishAcceleratorsAreUnique() { acceleratorsAreUnique(); }

    void germanIsLoadedForAGermanUser()
    {
        QCOMPARE(QLocale().language(), QLocale::German);
        installTranslations(*qApp);
        acceleratorsAreUnique();
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
        // The command line's help, verbs and all.
        QVERIFY(CommandLine::help().startsWith(QStringLiteral("Befehle")));
    }
};

QTEST_MAIN(TranslationTest)
#include "translation_test.moc"

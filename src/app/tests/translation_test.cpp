#include "CommandLine.h"
#include "FakeClock.h"
#include "FakeWorkspace.h"
#include "MailTestSupport.h"
#include "MainWindow.h"
#include "Preferences.h"
#include "PreferencesDialog.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "TestSupport.h"
#include "Texts.h"
#include "Translations.h"

#include <QAbstractButton>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

using namespace Quillon;
using namespace Qt::StringLiterals;

// Run with LANG=de_DE.UTF-8: the German catalogue is found beside the build and loaded.
class TranslationTest : public QObject
{
    Q_OBJECT
    // The first clash among texts shown together, or what lacks a key.
    static QString clash(const QStringList &texts, bool everyOneHasAKey = true)
    {
        QHash<QChar, QString> claimed;
        for (const QString &text : texts) {
            const QString plain = QString(text).replace(QLatin1String("&&"), QLatin1String(""));
            const qsizetype amp = plain.indexOf(QLatin1Char('&'));
            if (amp < 0 || amp + 1 >= plain.size()) {
                if (everyOneHasAKey)
                    return u"no key: "_s + text;
                continue;
            }
            const QChar key = plain.at(amp + 1).toLower();
            if (claimed.contains(key))
                return u"Alt+%1: %2 and %3"_s.arg(key, claimed.value(key), text);
            claimed.insert(key, text);
        }
        return {};
    }

    // No Alt+letter is claimed twice among what is shown at once: the menu bar and the window's
    // buttons, the entries of one menu, one page of Preferences with its tabs. Everything has one.
    static void acceleratorsAreUnique()
    {
        TestSettings settings;
        Preferences preferences;
        FakeClock clock;
        Schedule schedule(preferences, clock);
        ScheduleEditor editor(schedule, preferences);
        FakeWorkspace workspace;
        MainWindow window(editor, preferences, workspace);
        QStringList bar;
        for (const QAction *menu : window.menuBar()->actions()) {
            bar << menu->text();
            QStringList entries;
            for (const QAction *a : menu->menu()->actions()) {
                if (!a->isSeparator())
                    entries << a->text();
            }
            QVERIFY2(clash(entries).isEmpty(), qPrintable(clash(entries)));
        }
        // A banner's Close is reached with Escape, not a letter.
        for (const QAbstractButton *button : window.findChildren<QAbstractButton *>())
            bar << button->text();
        QVERIFY2(clash(bar, false).isEmpty(), qPrintable(clash(bar, false)));

        PreferencesDialog dialog(preferences);
        auto *tabs = dialog.findChild<QTabWidget *>();
        QStringList tabTexts;
        for (int i = 0; i < tabs->count(); ++i)
            tabTexts << tabs->tabText(i);
        for (int i = 0; i < tabs->count(); ++i) {
            QStringList shown = tabTexts;
            for (const QLabel *label : tabs->widget(i)->findChildren<QLabel *>()) {
                if (label->buddy())
                    shown << label->text();
            }
            for (const QAbstractButton *button : tabs->widget(i)->findChildren<QAbstractButton *>())
                shown << button->text();
            QVERIFY2(clash(shown).isEmpty(), qPrintable(clash(shown)));
        }
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
        // The alert a mail without a server gets is German from its first word.
        MailTest::Host host(preferences);
        SimpleSMTP delivery;
        delivery.sendMail(host, u"body"_s, u"subject"_s);
        QCOMPARE(host.alerts.value(0).second, u"Fehler (NoServer): Die Einstellung „Adresse:“ des Postausgangsservers (SMTP) ist nicht angegeben."_s);
        QCOMPARE(Texts::tr(Texts::Start), u"Starten"_s);
        PreferencesDialog dialog(preferences);
        QCOMPARE(dialog.findChild<QPushButton *>(u"testEmailButton"_s)->text(), u"&Testnachricht senden"_s);
        // The command line's help, verbs and all.
        QVERIFY(CommandLine::help().startsWith(u"Befehle"_s));
    }
};

QTEST_MAIN(TranslationTest)
#include "translation_test.moc"

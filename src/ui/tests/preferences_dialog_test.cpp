#include "Autostart.h"
#include "FocusCheck.h"
#include "FocusRingStyle.h"
#include "Preferences.h"
#include "PreferencesDialog.h"
#include "SettingsKeys.h"
#include "TestSupport.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>

#undef signals
#include <gio/gdesktopappinfo.h>

using namespace Quillon;
using namespace Qt::StringLiterals;

// Each control writes its key at once, with the type the readers expect.
class PreferencesDialogTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new FocusRingStyle); }

    void focusIsVisibleOnEveryControl()
    {
        PreferencesDialog dialog(m_prefs);
        auto *pages = dialog.findChild<QTabWidget *>();
        for (int page = 0; page < pages->count(); ++page) {
            pages->setCurrentIndex(page);
            QCOMPARE(Test::controlsWithoutVisibleFocus(&dialog), QStringList());
        }
    }

    // A fresh user sees the defaults of absent keys, controls that cannot matter disabled; each
    // control writes the type readers expect, the repeat up to 2^32 seconds, the port up to mail's limit.
    void controlsWriteTypedValues()
    {
        PreferencesDialog dialog(m_prefs);
        QSignalSpy test(&dialog, &PreferencesDialog::testEmailRequested);
        QVERIFY(control<QCheckBox>(dialog, Keys::RememberItems)->isChecked());
        QVERIFY(!control<QCheckBox>(dialog, Keys::AddFolderFilesRecursively)->isEnabled());
        QCOMPARE(control<QComboBox>(dialog, Keys::SelectedAuthentication)->currentText(), u"None"_s);
        QLineEdit *password = control<QLineEdit>(dialog, Keys::LoginPassword);
        QCOMPARE(password->echoMode(), QLineEdit::Password);
        QVERIFY(!password->isEnabled() && !control<QLineEdit>(dialog, Keys::LoginUsername)->isEnabled());
        auto *unit = control<QComboBox>(dialog, Keys::TimeUnit);
        QVERIFY(!unit->isEnabled());
        control<QCheckBox>(dialog, Keys::RememberItems)->setChecked(false);
        control<QCheckBox>(dialog, Keys::AddFolderFiles)->setChecked(true);
        QVERIFY(control<QCheckBox>(dialog, Keys::AddFolderFilesRecursively)->isEnabled());
        auto *count = control<QSpinBox>(dialog, Keys::RepeatSeconds);
        count->setValue(2);
        QVERIFY(unit->isEnabled());
        unit->activated(2);
        auto *login = control<QComboBox>(dialog, Keys::SelectedAuthentication);
        login->setCurrentIndex(3);
        login->activated(3);
        QVERIFY(password->isEnabled());
        auto *port = control<QSpinBox>(dialog, Keys::ServerPort);
        port->setValue(587);
        auto *scriptLimit = control<QSpinBox>(dialog, Keys::ScriptTimeLimit);
        QCOMPARE(scriptLimit->specialValueText(), scriptLimit->text()); // Never, when the file says nothing
        scriptLimit->setValue(3);
        Q_EMIT scriptLimit->editingFinished();
        password->setText(u"s3cret"_s);
        Q_EMIT password->editingFinished();
        QTest::mouseClick(dialog.findChild<QPushButton *>(u"testEmailButton"_s), Qt::LeftButton);
        m_prefs.flush();

        QSettings file(m_prefs.fileName(), QSettings::IniFormat);
        QCOMPARE(file.value(u"rememberItems"_s).toString(), u"false"_s);
        QCOMPARE(file.value(u"addFolderFiles"_s).toString(), u"true"_s);
        QCOMPARE(file.value(u"repeatSeconds"_s).toInt(), 2);
        QCOMPARE(file.value(u"timeUnit"_s).toInt(), 2);
        QCOMPARE(file.value(u"selectedAuthentication"_s).toInt(), 3);
        QCOMPARE(file.value(u"serverPort"_s).toInt(), 587);
        QCOMPARE(file.value(u"scriptTimeLimitSeconds"_s).toInt(), 180);
        QCOMPARE(file.value(u"loginPassword"_s).toString(), u"s3cret"_s);
        QCOMPARE(test.count(), 1);
        QVERIFY(!m_prefs.rememberItems());

        count->setValue(100'000);
        unit->setCurrentIndex(3);
        unit->activated(3);
        QCOMPARE(count->value(), 49'710);
        port->setValue(65535);
        QCOMPARE(port->value(), 65365);
        QCOMPARE(m_prefs.intValue(Keys::RepeatSeconds), 49'710);
    }

    // An address that cannot go into an envelope is refused with its reason; a login without TLS warns.
    void recipientAndPasswordSayWhatTheyWillDo()
    {
        m_prefs.setValues({ { Keys::RecipientEmail, u"ann@example.org"_s }, { Keys::UseSSL, true }, { Keys::SelectedAuthentication, 0 } });
        PreferencesDialog dialog(m_prefs);
        QSignalSpy test(&dialog, &PreferencesDialog::testEmailRequested);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        dialog.findChild<QTabWidget *>()->setCurrentIndex(1);
        auto *recipient = control<QLineEdit>(dialog, Keys::RecipientEmail);
        auto *problem = dialog.findChild<QLabel *>(u"addressProblem"_s);
        recipient->setFocus();
        recipient->selectAll();
        QTest::keyClicks(recipient, u"ann@example.org> NOTIFY=SUCCESS"_s);
        QTest::keyClick(recipient, Qt::Key_Return);
        // Enter also closes the window (its Close button is the default): what matters is the label's own state.
        QVERIFY(!problem->isHidden());
        QVERIFY2(problem->text().contains(QLatin1String("angle bracket")), qPrintable(problem->text()));
        QCOMPARE(m_prefs.stringValue(Keys::RecipientEmail), u"ann@example.org"_s);
        recipient->setText(u" bob@example.org\r\n"_s);
        QTest::keyClick(recipient, Qt::Key_Return);
        QVERIFY(problem->isHidden());
        QCOMPARE(test.count(), 0); // Enter in a mail field sends no test mail
        QCOMPARE(m_prefs.stringValue(Keys::RecipientEmail), u"bob@example.org"_s);

        dialog.show();
        auto *inClear = dialog.findChild<QLabel *>(u"passwordInClear"_s);
        auto *login = control<QComboBox>(dialog, Keys::SelectedAuthentication);
        login->setCurrentIndex(1);
        login->activated(1);
        QVERIFY(!inClear->isVisible());
        QTest::mouseClick(control<QCheckBox>(dialog, Keys::UseSSL), Qt::LeftButton);
        QVERIFY(inClear->isVisible());
    }

    void startAtLoginWritesAndRemovesTheAutostartEntry()
    {
        PreferencesDialog dialog(m_prefs);
        auto *box = dialog.findChild<QCheckBox *>(u"autostart"_s);
        QVERIFY(!box->isChecked());
        box->setChecked(true);
        QFile entry(Autostart::entryPath());
        QVERIFY(entry.open(QIODevice::ReadOnly));
        const QByteArray text = entry.readAll();
        QVERIFY(text.contains("Exec=") && text.contains(" --autostart\n") && text.contains("Type=Application"));
        QVERIFY(entry.fileName().startsWith(QString::fromLocal8Bit(qgetenv("XDG_CONFIG_HOME")) + u"/autostart/"_s));
        box->setChecked(false);
        QVERIFY(!QFile::exists(Autostart::entryPath()));
    }

    // GLib, which reads the entry at login, gets the program back whatever its path holds.
    void autostartExecSurvivesOddPaths_data()
    {
        QTest::addColumn<QString>("program");
        QTest::newRow("space") << u"My Apps/quillon"_s;
        // No % here: GLib checks that the program exists before it expands %%, so it refuses any.
        QTest::newRow("quote, dollar, backslash") << u"a\"b$c\\d/quillon"_s;
    }
    void autostartExecSurvivesOddPaths()
    {
        QFETCH(QString, program);
        QTemporaryDir dir;
        program = dir.filePath(program);
        QVERIFY(Test::writeFile(program, "#!/bin/sh\n", true)); // GLib takes no entry whose program is missing
        const QByteArray entry = "[Desktop Entry]\nType=Application\nName=Q\nExec=" + Autostart::execLine(program) + "\n";
        GKeyFile *file = g_key_file_new();
        QVERIFY(g_key_file_load_from_data(file, entry.constData(), size_t(entry.size()), G_KEY_FILE_NONE, nullptr));
        GDesktopAppInfo *info = g_desktop_app_info_new_from_keyfile(file);
        g_key_file_unref(file);
        QVERIFY2(info, entry.constData());
        gchar *exec = g_desktop_app_info_get_string(info, "Exec");
        gchar **argv = nullptr;
        // As GLib starts it: the string unescaped, field codes expanded, then split as by a shell.
        QByteArray command(exec);
        command.replace("%%", "%");
        QVERIFY(g_shell_parse_argv(command.constData(), nullptr, &argv, nullptr));
        QCOMPARE(QString::fromUtf8(argv[0]), program);
        QCOMPARE(QString::fromUtf8(argv[1]), u"--autostart"_s);
        g_strfreev(argv);
        g_free(exec);
        g_object_unref(info);
    }

private:
    template<typename T> static T *control(QWidget &dialog, QLatin1StringView key)
    {
        T *w = dialog.findChild<T *>(QString(key));
        if (!w)
            qFatal("no control for %s", key.data());
        return w;
    }

    TestSettings m_settings; // first: it points the preferences at their folder
    Preferences m_prefs;
};

QTEST_MAIN(PreferencesDialogTest)
#include "preferences_dialog_test.moc"

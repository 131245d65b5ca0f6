#include "PreferencesDialog.h"

#include "Autostart.h"
#include "MailAddress.h"
#include "MailPassword.h"
#include "MailSettings.h"

#include "Preferences.h"
#include "SettingsKeys.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

namespace Quillon {
namespace {
QCheckBox *boolControl(Preferences &prefs, QLatin1StringView key, const QString &text, bool checked, QWidget *parent)
{
    auto *box = new QCheckBox(text, parent);
    box->setObjectName(QString(key));
    box->setChecked(checked);
    QObject::connect(box, &QCheckBox::toggled, parent, [&prefs, key](bool on) { prefs.setValue(key, on); });
    return box;
}

QLineEdit *textControl(Preferences &prefs, QLatin1StringView key, QWidget *parent)
{
    auto *edit = new QLineEdit(prefs.stringValue(key), parent);
    edit->setObjectName(QString(key));
    QObject::connect(edit, &QLineEdit::editingFinished, parent, [&prefs, key, edit] {
        if (prefs.stringValue(key) != edit->text() || !prefs.contains(key))
            prefs.setValue(key, edit->text());
    });
    return edit;
}

QComboBox *choiceControl(Preferences &prefs, QLatin1StringView key, const QStringList &choices, QWidget *parent)
{
    auto *combo = new QComboBox(parent);
    combo->setObjectName(QString(key));
    combo->addItems(choices);
    const int stored = prefs.intValue(key);
    combo->setCurrentIndex(stored >= 0 && stored < choices.size() ? stored : 0);
    QObject::connect(combo, &QComboBox::activated, parent, [&prefs, key](int index) { prefs.setValue(key, index); });
    return combo;
}
} // namespace

PreferencesDialog::PreferencesDialog(Preferences &preferences, QWidget *parent, MailPassword *password)
    : QDialog(parent)
    , m_preferences(preferences)
    , m_password(password)
{
    setObjectName(QStringLiteral("preferencesWindow"));
    setWindowTitle(tr("Quillon Preferences"));
    auto *tabs = new QTabWidget(this);
    tabs->addTab(buildGeneralPage(), tr("&General"));
    tabs->addTab(buildMailPage(), tr("&Mail"));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(tabs);
    layout->addWidget(buttons);
}

void PreferencesDialog::showTestOutcome(const QString &text)
{
    m_testOutcome->setText(text);
    // Read out where it appears: a screen reader user has no other way to learn it came.
    m_testOutcome->setAccessibleName(text);
    QAccessibleEvent named(m_testOutcome, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&named);
    QAccessibleEvent alert(m_testOutcome, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

QWidget *PreferencesDialog::buildGeneralPage()
{
    auto *page = new QWidget(this);
    auto *form = new QFormLayout(page);
    Preferences &p = m_preferences;
    form->addRow(boolControl(p, Keys::RememberItems, tr("&Remember the list between sessions"), p.rememberItems(), page));
    auto *folders = boolControl(p, Keys::AddFolderFiles, tr("A dropped &folder adds the files inside it"), p.addFolderFiles(), page);
    auto *recursive = boolControl(p, Keys::AddFolderFilesRecursively, tr("…and the files in its &subfolders"), p.addFolderFilesRecursively(), page);
    recursive->setEnabled(folders->isChecked());
    connect(folders, &QCheckBox::toggled, recursive, &QWidget::setEnabled);
    form->addRow(folders);
    form->addRow(recursive);

    auto *repeatRow = new QHBoxLayout;
    auto *count = new QSpinBox(page);
    count->setObjectName(QString(Keys::RepeatSeconds));
    count->setRange(0, 1'000'000);
    count->setSpecialValueText(tr("Never"));
    count->setValue(p.intValue(Keys::RepeatSeconds));
    count->setAccessibleName(tr("Repeat every"));
    connect(count, &QSpinBox::valueChanged, page, [this](int v) { m_preferences.setValue(Keys::RepeatSeconds, v); });
    repeatRow->addWidget(count);
    QComboBox *unit = choiceControl(p, Keys::TimeUnit, { tr("seconds"), tr("minutes"), tr("hours"), tr("days") }, page);
    unit->setAccessibleName(tr("Repeat unit"));
    // On Linux a combo box is announced by its value, with its label from a "labelled by"
    // relation or its description: this one has no label of its own.
    unit->setAccessibleDescription(tr("Repeat unit"));
    repeatRow->addWidget(unit);
    // The period is kept in 32 bits of seconds: 49,710 days at most.
    const auto limitCount = [count, unit] {
        static constexpr int MaxCount[] = { 1'000'000, 1'000'000, 1'000'000, 49'710 };
        count->setMaximum(MaxCount[qBound(0, unit->currentIndex(), 3)]);
        unit->setEnabled(count->value() != 0);
    };
    limitCount();
    connect(unit, &QComboBox::activated, page, limitCount);
    connect(count, &QSpinBox::valueChanged, page, limitCount);
    // Spelled out, not addRow(text, layout): a label for a layout is nobody's buddy, and a screen
    // reader would not tie it to the count.
    auto *repeatLabel = new QLabel(tr("Repeat &every:"), page);
    repeatLabel->setBuddy(count);
    form->addRow(repeatLabel, repeatRow);
    form->addRow(boolControl(p, Keys::QuitWhenDone, tr("&Quit after the last item has been opened"), p.boolValue(Keys::QuitWhenDone), page));
    auto *scriptLimit = new QSpinBox(page);
    scriptLimit->setObjectName(QString(Keys::ScriptTimeLimit));
    scriptLimit->setRange(0, 24 * 60);
    scriptLimit->setSuffix(tr(" min"));
    scriptLimit->setSpecialValueText(tr("Never"));
    scriptLimit->setValue(p.intValue(Keys::ScriptTimeLimit) / 60);
    connect(scriptLimit, &QSpinBox::editingFinished, page, [&p, scriptLimit] { p.setValue(Keys::ScriptTimeLimit, scriptLimit->value() * 60); });
    form->addRow(tr("End a scrip&t after:"), scriptLimit);
    // Off by default: items whose time passed unseen are recorded, not opened, unless asked.
    form->addRow(
        boolControl(p, Keys::OpenMissedItems, tr("&Open items missed while the computer was asleep or off"), p.boolValue(Keys::OpenMissedItems), page));
    form->addRow(boolControl(p, Keys::NotifyProblems, tr("&Notify me about problems"), p.boolValue(Keys::NotifyProblems), page));
    form->addRow(boolControl(p, Keys::NotifyEveryLaunch, tr("Notify me about every &launch"), p.boolValue(Keys::NotifyEveryLaunch), page));

    // Not a setting of the file: the session's autostart folder is the record.
    auto *login = new QCheckBox(tr("Start Quillon &when I log in"), page);
    login->setObjectName(QStringLiteral("autostart"));
    login->setChecked(Autostart::isEnabled());
    connect(login, &QCheckBox::toggled, page, [login](bool on) {
        if (!Autostart::setEnabled(on)) {
            const QSignalBlocker blocker(login);
            login->setChecked(Autostart::isEnabled());
        }
    });
    form->addRow(login);
    return page;
}

// Whatever cannot go into an envelope is refused here, with the reason next to the field; a line
// break or spaces around a pasted address are just trimmed.
QLineEdit *PreferencesDialog::recipientControl(QWidget *page)
{
    auto *edit = new QLineEdit(m_preferences.stringValue(Keys::RecipientEmail), page);
    edit->setObjectName(QString(Keys::RecipientEmail));
    m_addressProblem = new QLabel(page);
    m_addressProblem->setObjectName(QStringLiteral("addressProblem"));
    m_addressProblem->setWordWrap(true);
    m_addressProblem->hide();
    connect(edit, &QLineEdit::editingFinished, page, [this, edit] {
        const QString address = edit->text().trimmed();
        if (address != edit->text())
            edit->setText(address);
        const QString problem = addressProblem(address);
        m_addressProblem->setVisible(!problem.isEmpty());
        if (!problem.isEmpty()) {
            m_addressProblem->setText(tr("This address cannot be used for mail: %1. It was not saved.")
                                          .arg(QCoreApplication::translate("MailAddress", problem.toLatin1().constData())));
            return;
        }
        if (m_preferences.stringValue(Keys::RecipientEmail) != address || !m_preferences.contains(Keys::RecipientEmail))
            m_preferences.setValue(Keys::RecipientEmail, address);
    });
    return edit;
}

QWidget *PreferencesDialog::buildMailPage()
{
    auto *page = new QWidget(this);
    auto *form = new QFormLayout(page);
    Preferences &p = m_preferences;
    form->addRow(boolControl(p, Keys::SendEmail, tr("&Send a message for each opened item"), p.boolValue(Keys::SendEmail), page));
    form->addRow(boolControl(p, Keys::EmailScriptResults, tr("Send the &result of each script"), p.boolValue(Keys::EmailScriptResults), page));
    form->addRow(tr("Recipient &address:"), recipientControl(page));
    form->addRow(m_addressProblem);
    form->addRow(tr("Recipient &name:"), textControl(p, Keys::RecipientName, page));
    // Everything about the server in one group, apart from whom the mail is for.
    auto *group = new QGroupBox(tr("Outgoing server"), page);
    group->setObjectName(QStringLiteral("outgoingServer"));
    auto *server = new QFormLayout(group);
    server->addRow(tr("A&ddress:"), textControl(p, Keys::ServerAddress, group));
    auto *port = new QSpinBox(group);
    port->setObjectName(QString(Keys::ServerPort));
    // 0 is "not set"; the getter accepts 1 to 65365.
    port->setRange(0, MailSettings::HighestPort);
    port->setSpecialValueText(tr("Not set"));
    port->setValue(p.intValue(Keys::ServerPort));
    connect(port, &QSpinBox::valueChanged, page, [this](int v) { m_preferences.setValue(Keys::ServerPort, v); });
    server->addRow(tr("&Port:"), port);
    QCheckBox *secure = boolControl(p, Keys::UseSSL, tr("Use a secure &connection (TLS)"), p.boolValue(Keys::UseSSL), group);
    server->addRow(secure);
    QComboBox *login
        = choiceControl(p, Keys::SelectedAuthentication, { tr("None"), QStringLiteral("PLAIN"), QStringLiteral("LOGIN"), QStringLiteral("CRAM-MD5") }, group);
    // Named by its label, not announced by the value it shows.
    login->setAccessibleName(tr("Login"));
    server->addRow(tr("&Login:"), login);
    QLineEdit *username = textControl(p, Keys::LoginUsername, group);
    server->addRow(tr("&Username:"), username);
    QLineEdit *password = m_password ? new QLineEdit(group) : textControl(p, Keys::LoginPassword, group);
    password->setEchoMode(QLineEdit::Password);
    if (m_password) {
        password->setObjectName(QString(Keys::LoginPassword));
        // The keyring answers later; what the user typed meanwhile wins.
        m_password->get(password, [password](const QString &stored) {
            if (!password->isModified())
                password->setText(stored);
        });
        connect(password, &QLineEdit::editingFinished, page, [this, password] {
            if (password->isModified())
                m_password->set(password->text());
            password->setModified(false);
        });
    }
    server->addRow(tr("Pass&word:"), password);
    // A login without TLS sends the password as it is; it may be what the server wants, but the
    // user should know.
    // One line: a wrapped label in a form is given too little height and gets cut off.
    auto *inClear = new QLabel(tr("Without TLS the password is sent unencrypted."), group);
    inClear->setObjectName(QStringLiteral("passwordInClear"));
    server->addRow(inClear);
    // No login, nothing to fill in.
    const auto enableLogin = [login, username, password, secure, inClear] {
        username->setEnabled(login->currentIndex() != 0);
        password->setEnabled(login->currentIndex() != 0);
        inClear->setVisible(login->currentIndex() != 0 && !secure->isChecked());
    };
    enableLogin();
    connect(login, &QComboBox::activated, page, enableLogin);
    connect(secure, &QCheckBox::toggled, page, enableLogin);
    form->addRow(group);
    auto *test = new QPushButton(tr("Send &Test Message"), page);
    test->setObjectName(QStringLiteral("testEmailButton"));
    // Enter in a mail field must not send a mail.
    test->setAutoDefault(false);
    connect(test, &QPushButton::clicked, this, &PreferencesDialog::testEmailRequested);
    m_testOutcome = new QLabel(page);
    m_testOutcome->setObjectName(QStringLiteral("testOutcome"));
    m_testOutcome->setWordWrap(true);
    m_testOutcome->setTextInteractionFlags(Qt::TextSelectableByMouse);
    form->addRow(test);
    form->addRow(m_testOutcome);
    // A result for other settings would say something false about these.
    for (auto *edit : page->findChildren<QLineEdit *>())
        connect(edit, &QLineEdit::textEdited, m_testOutcome, &QLabel::clear);
    for (auto *spin : page->findChildren<QSpinBox *>())
        connect(spin, &QSpinBox::valueChanged, m_testOutcome, &QLabel::clear);
    for (auto *box : page->findChildren<QCheckBox *>())
        connect(box, &QCheckBox::toggled, m_testOutcome, &QLabel::clear);
    for (auto *combo : page->findChildren<QComboBox *>())
        connect(combo, &QComboBox::activated, m_testOutcome, &QLabel::clear);
    return page;
}

} // namespace Quillon

#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;

namespace Quillon {

class MailPassword;
class Preferences;

// Every user setting; each change is written at once, with the type the settings file expects.
class PreferencesDialog final : public QDialog
{
    Q_OBJECT
public:
    // password: where the mail password is kept; none: the settings file.
    explicit PreferencesDialog(Preferences &preferences, QWidget *parent = nullptr, MailPassword *password = nullptr);
    // What became of "Send Test Message", shown next to the button.
    void showTestOutcome(const QString &text);

Q_SIGNALS:
    void testEmailRequested();

private:
    QWidget *buildGeneralPage();
    QWidget *buildMailPage();
    QLineEdit *recipientControl(QWidget *page);
    Preferences &m_preferences;
    MailPassword *m_password;
    QLabel *m_addressProblem = nullptr;
    QLabel *m_testOutcome = nullptr;
};

} // namespace Quillon

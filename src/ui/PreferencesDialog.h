#pragma once

#include <QDialog>
#include <QHash>
#include <QTimer>
#include <QVariant>

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
    ~PreferencesDialog() override;
    // Writes the steps of a spin box not written yet.
    void writePending();
    // What became of "Send Test Message", shown next to the button.
    void showTestOutcome(const QString &text);

Q_SIGNALS:
    void testEmailRequested();

protected:
    void hideEvent(QHideEvent *event) override;

private:
    void writeSoon(QLatin1StringView key, const QVariant &value);
    QWidget *buildGeneralPage();
    QWidget *buildMailPage();
    QLineEdit *recipientControl(QWidget *page);
    Preferences &m_preferences;
    MailPassword *m_password;
    QLabel *m_addressProblem = nullptr;
    QLabel *m_testOutcome = nullptr;
    QTimer m_writeTimer;
    QHash<QString, QVariant> m_pending;
};

} // namespace Quillon

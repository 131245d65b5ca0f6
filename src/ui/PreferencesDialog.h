#pragma once

#include <QDialog>

namespace Quillon {

class Preferences;

// Every user setting; each change is written at once, with the type the settings file expects.
class PreferencesDialog final : public QDialog
{
    Q_OBJECT
public:
    explicit PreferencesDialog(Preferences &preferences, QWidget *parent = nullptr);

Q_SIGNALS:
    void testEmailRequested();

private:
    QWidget *buildGeneralPage();
    QWidget *buildMailPage();
    Preferences &m_preferences;
};

} // namespace Quillon

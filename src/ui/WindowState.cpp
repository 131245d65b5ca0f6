#include "WindowState.h"

#include "Preferences.h"
#include "SettingsKeys.h"

#include <QFileInfo>
#include <QHeaderView>
#include <QSettings>
#include <QWidget>

namespace Quillon {

void WindowState::save(const QWidget &window, const QHeaderView &header)
{
    m_preferences.makeFolder();
    QSettings state(m_preferences.windowStateFileName(), QSettings::IniFormat);
    state.setValue(Keys::WindowGeometry, window.saveGeometry());
    state.setValue(Keys::TableHeader, header.saveState());
}

bool WindowState::restore(QWidget &window, QHeaderView &header) const
{
    const QSettings state(m_preferences.windowStateFileName(), QSettings::IniFormat);
    header.restoreState(state.value(Keys::TableHeader).toByteArray());
    return window.restoreGeometry(state.value(Keys::WindowGeometry).toByteArray());
}

QString WindowState::chooserFolder() const
{
    const QString folder = QSettings(m_preferences.windowStateFileName(), QSettings::IniFormat).value(Keys::ChooserFolder).toString();
    return !folder.isEmpty() && QFileInfo(folder).isDir() ? folder : QString();
}

void WindowState::setChooserFolder(const QString &folder)
{
    m_preferences.makeFolder();
    QSettings(m_preferences.windowStateFileName(), QSettings::IniFormat).setValue(Keys::ChooserFolder, folder);
}

} // namespace Quillon

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

bool WindowState::restoreGeometry(QWidget &window) const
{
    return window.restoreGeometry(QSettings(m_preferences.windowStateFileName(false), QSettings::IniFormat).value(Keys::WindowGeometry).toByteArray());
}

QByteArray WindowState::headerState() const
{
    return QSettings(m_preferences.windowStateFileName(false), QSettings::IniFormat).value(Keys::TableHeader).toByteArray();
}

QString WindowState::chooserFolder() const
{
    const QString folder = QSettings(m_preferences.windowStateFileName(false), QSettings::IniFormat).value(Keys::ChooserFolder).toString();
    return !folder.isEmpty() && QFileInfo(folder).isDir() ? folder : QString();
}

void WindowState::setChooserFolder(const QString &folder)
{
    m_preferences.makeFolder();
    QSettings(m_preferences.windowStateFileName(), QSettings::IniFormat).setValue(Keys::ChooserFolder, folder);
}

qint64 WindowState::historySeen() const
{
    return QSettings(m_preferences.windowStateFileName(false), QSettings::IniFormat).value(Keys::HistorySeen).toLongLong();
}

void WindowState::setHistorySeen(qint64 id)
{
    m_preferences.makeFolder();
    QSettings(m_preferences.windowStateFileName(), QSettings::IniFormat).setValue(Keys::HistorySeen, id);
}

} // namespace Quillon

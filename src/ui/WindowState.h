#pragma once

#include <QString>

class QHeaderView;
class QWidget;

namespace Quillon {

class Preferences;

// The window's own state (size, place, columns, the chooser's folder), kept in a file of its own
// beside the settings: it is not part of the schedule.
class WindowState final
{
public:
    explicit WindowState(Preferences &preferences)
        : m_preferences(preferences)
    { }

    void save(const QWidget &window, const QHeaderView &header);
    // False when there was nothing to restore the window's geometry from.
    bool restoreGeometry(QWidget &window) const;
    QByteArray headerState() const;
    QString chooserFolder() const;
    void setChooserFolder(const QString &folder);
    // The last history record the user has seen.
    qint64 historySeen() const;
    void setHistorySeen(qint64 id);

private:
    Preferences &m_preferences;
};

} // namespace Quillon

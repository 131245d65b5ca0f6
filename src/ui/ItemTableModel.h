#pragma once

#include <functional>

#include <QAbstractTableModel>
#include <QHash>
#include <QIcon>
#include <QStringList>

namespace Quillon {

class Schedule;
class ScheduleEditor;
class Workspace;

// The schedule as a table. Every cell is computed from the schedule when asked; nothing is cached.
class ItemTableModel final : public QAbstractTableModel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ItemTableModel)
public:
    enum Column { IconColumn, NameColumn, FileColumn, LaunchTimeColumn, CheckColumn, RepeatColumn, ColumnCount };
    static const QStringList Identifiers;
    static inline const QString PrivateRowsType = QStringLiteral("MyPrivateTableViewDataType");

    // Every change a drop makes goes through the editor, like any other edit.
    ItemTableModel(ScheduleEditor &editor, Workspace &workspace, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    // A drop is an edit like any other: made through the editor, so that it can be undone.

    QVariant toolTip(int column, int row) const;
    // The value of one cell by column identifier: an icon, a string, or nothing.
    QVariant cellValue(const QString &identifier, int row) const;
    QVariant cellValue(Column column, int row) const;

    void setTableColumnName(const QString &title, const QString &identifier);
    // The countdown and status cells change with time; the rest only when the schedule changes.
    void refreshCountdown();
    void reloadAll();
    void rowChanged(int row);

    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    Qt::DropActions supportedDropActions() const override;
    Qt::DropActions supportedDragActions() const override;
    bool canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column, const QModelIndex &parent) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column, const QModelIndex &parent) override;

private:
    void connectSchedule();
    bool dropFiles(const QList<QUrl> &urls, int row);

    Schedule &m_schedule;
    Workspace &m_workspace;
    ScheduleEditor &m_editor;
    QIcon iconFor(const QString &path) const;
    struct CachedIcon
    {
        QIcon icon;
        qint64 changed = -1;
    };
    mutable QHash<QString, CachedIcon> m_icons;
    QStringList m_titles;
    // Rows that changed this event-loop turn; told to the views once, at the end of it.
    QList<int> m_changedRows;
};

} // namespace Quillon

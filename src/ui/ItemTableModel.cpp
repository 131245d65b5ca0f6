#include "ItemTableModel.h"

#include <QLocale>

#include "Countdown.h"
#include "FileName.h"
#include "MediumDateFormat.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "StatusImages.h"
#include "Texts.h"
#include "WallClock.h"
#include "Workspace.h"

#include <QApplication>
#include <QDataStream>
#include <QGuiApplication>
#include <QIODevice>
#include <QMimeData>
#include <QUrl>

#include <algorithm>
#include <sys/stat.h>

namespace Quillon {

const QStringList ItemTableModel::Identifiers = { QStringLiteral("Icon"), QStringLiteral("Name"), QStringLiteral("File"), QStringLiteral("Launch Time"),
    QStringLiteral("Check"), QStringLiteral("Repeat") };

ItemTableModel::ItemTableModel(ScheduleEditor &editor, Workspace &workspace, QObject *parent)
    : QAbstractTableModel(parent)
    , m_schedule(editor.schedule())
    , m_workspace(workspace)
    , m_editor(editor)
    , m_titles { QString(), tr("Name"), Texts::tr(Texts::LocationTitle), tr("Launch Time"), QString(), tr("Repeat") }
{
    connectSchedule();
}

void ItemTableModel::connectSchedule()
{
    connect(&m_schedule, &Schedule::rowsAboutToBeInserted, this, [this](int first, int last) { beginInsertRows({}, first, last); });
    connect(&m_schedule, &Schedule::rowsInserted, this, [this] { endInsertRows(); });
    connect(&m_schedule, &Schedule::rowsAboutToBeRemoved, this, [this](int first, int last) { beginRemoveRows({}, first, last); });
    connect(&m_schedule, &Schedule::rowsRemoved, this, [this] { endRemoveRows(); });
    connect(&m_schedule, &Schedule::rowAboutToBeMoved, this, [this](int from, int to) {
        // Qt names the row the moved one will stand before.
        beginMoveRows({}, from, from, {}, from < to ? to + 1 : to);
    });
    connect(&m_schedule, &Schedule::rowMoved, this, [this] { endMoveRows(); });
    connect(&m_schedule, &Schedule::aboutToReset, this, [this] { beginResetModel(); });
    connect(&m_schedule, &Schedule::reset, this, [this] { endResetModel(); });
    connect(&m_schedule, &Schedule::reloadTable, this, &ItemTableModel::reloadAll);
    connect(&m_schedule, &Schedule::rowChanged, this, &ItemTableModel::rowChanged);
}

void ItemTableModel::rowChanged(int row)
{
    if (m_changedRows.isEmpty()) {
        QMetaObject::invokeMethod(
            this,
            [this] {
                QList<int> rows = std::exchange(m_changedRows, {});
                std::sort(rows.begin(), rows.end());
                rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
                // One signal per run of neighbouring rows.
                for (qsizetype i = 0; i < rows.size();) {
                    qsizetype j = i;
                    while (j + 1 < rows.size() && rows.at(j + 1) == rows.at(j) + 1)
                        ++j;
                    if (rows.at(j) < rowCount())
                        Q_EMIT dataChanged(index(rows.at(i), 0), index(std::min(rows.at(j), rowCount() - 1), ColumnCount - 1));
                    i = j + 1;
                }
            },
            Qt::QueuedConnection);
    }
    m_changedRows.append(row);
}

int ItemTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_schedule.count();
}

int ItemTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ItemTableModel::cellValue(const QString &identifier, int row) const
{
    // The identifiers match exactly, case and all.
    const qsizetype column = Identifiers.indexOf(identifier);
    return column < 0 ? QVariant() : cellValue(Column(column), row);
}

// Asking the desktop for an icon reads the file's type and maybe a desktop entry: done once per
// path, and again only when the file changed (its status-change time moved, or it came or went).
QIcon ItemTableModel::iconFor(const QString &path) const
{
    struct stat st = {};
    const qint64 changed = ::stat(FileName::encode(path).constData(), &st) == 0 ? qint64(st.st_ctim.tv_sec) * 1'000'000'000 + st.st_ctim.tv_nsec : -1;
    if (const auto cached = m_icons.constFind(path); cached != m_icons.cend() && cached->changed == changed)
        return cached->icon;
    QIcon icon = m_workspace.iconForFile(path);
    m_icons.insert(path, { icon, changed });
    return icon;
}

QVariant ItemTableModel::cellValue(Column column, int row) const
{
    const QString &path = m_schedule.paths().at(row);
    switch (column) {
    case IconColumn: {
        // A file inside a bundle shows the bundle's icon (the outermost one).
        const qsizetype contents = path.indexOf(QLatin1String("/Contents/"), 0, Qt::CaseInsensitive);
        return iconFor(contents >= 0 ? path.left(contents) : path);
    }
    case LaunchTimeColumn:
        if (row >= m_schedule.dates().size())
            return {};
        return formatMediumDateTime(m_schedule.dates().at(row));
    case CheckColumn: {
        // The check says the time came; what followed shows too: a problem is never a green check.
        switch (m_schedule.outcomeAt(row).kind) {
        case Schedule::Outcome::Kind::Failed:
        case Schedule::Outcome::Kind::NotStarted:
            return imageNamed(QStringLiteral("Problem.tiff"));
        case Schedule::Outcome::Kind::Opened:
        case Schedule::Outcome::Kind::OpenedLate:
            return imageNamed(QStringLiteral("Check.tiff"));
        case Schedule::Outcome::Kind::None:
            break;
        }
        const TimerSlot &slot = m_schedule.timers().at(row);
        if (!slot)
            return {};
        if (!slot->isValid())
            return imageNamed(QStringLiteral("Check.tiff"));
        if (slot->fireMSecs() > m_schedule.clock().nowMSecs())
            return imageNamed(QStringLiteral("Pending.tiff"));
        return {};
    }
    case FileColumn: {
        if (!m_schedule.timersRunning())
            return FileName::display(path);
        const TimerSlot &slot = m_schedule.timers().at(row);
        if (!slot || !slot->isValid())
            return {};
        return countdownText(double(slot->fireMSecs() - m_schedule.clock().nowMSecs()) / 1000.0);
    }
    case NameColumn:
        return FileName::display(path.section(QLatin1Char('/'), -1));
    case RepeatColumn:
        return m_schedule.repeatAt(row).describe();
    case ColumnCount:
        break;
    }
    return {};
}

// The countdown gives the full launch time, and the status image says what it means.
QVariant ItemTableModel::toolTip(int column, int row) const
{
    const TimerSlot &slot = m_schedule.timers().at(row);
    if (column == FileColumn && m_schedule.timersRunning() && slot && slot->isValid()) {
        const qint64 left = slot->fireMSecs() - m_schedule.clock().nowMSecs();
        const QString when = formatMediumDateTime(slot->fireDate());
        const qint64 days = left / (qint64(86'400) * 1000);
        return days >= 1 ? tr("Opens %1 (in %n day(s))", nullptr, int(days)).arg(when) : tr("Opens %1").arg(when);
    }
    if (column == FileColumn || column == NameColumn)
        return FileName::display(m_schedule.paths().at(row));
    if (column == CheckColumn) {
        const Schedule::Outcome outcome = m_schedule.outcomeAt(row);
        switch (outcome.kind) {
        case Schedule::Outcome::Kind::Failed:
            return tr("Could not open: %1").arg(outcome.reason);
        case Schedule::Outcome::Kind::NotStarted:
            return tr("Not started: %1").arg(outcome.reason);
        case Schedule::Outcome::Kind::OpenedLate:
            return tr("Opened late (%1)").arg(outcome.reason);
        case Schedule::Outcome::Kind::Opened:
        case Schedule::Outcome::Kind::None:
            break;
        }
    }
    if (column == CheckColumn && slot) {
        if (!slot->isValid())
            return tr("Opened at %1").arg(QLocale().toString(slot->fireDate().time(), QStringLiteral("HH:mm:ss")));
        if (slot->fireMSecs() > m_schedule.clock().nowMSecs())
            return tr("Waiting");
    }
    return {};
}

QVariant ItemTableModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const auto column = Column(index.column());
    const bool image = column == IconColumn || column == CheckColumn;
    switch (role) {
    case Qt::DisplayRole:
        return image ? QVariant() : cellValue(column, index.row());
    case Qt::DecorationRole:
        return image ? cellValue(column, index.row()) : QVariant();
    case Qt::ToolTipRole:
        return toolTip(column, index.row());
    case Qt::AccessibleDescriptionRole:
        return column == CheckColumn ? toolTip(column, index.row()) : QVariant();
    case Qt::AccessibleTextRole:
        if (column == CheckColumn) {
            const QVariant v = cellValue(column, index.row());
            if (!v.isValid())
                return QString();
            switch (m_schedule.outcomeAt(index.row()).kind) {
            case Schedule::Outcome::Kind::Failed:
                return tr("Could not be opened");
            case Schedule::Outcome::Kind::NotStarted:
                return tr("Not started");
            case Schedule::Outcome::Kind::OpenedLate:
                return tr("Opened late");
            case Schedule::Outcome::Kind::Opened:
                return tr("Opened");
            case Schedule::Outcome::Kind::None:
                break;
            }
            const TimerSlot &slot = m_schedule.timers().at(index.row());
            return slot && !slot->isValid() ? tr("Opened") : tr("Waiting");
        }
        if (column == IconColumn)
            return m_schedule.paths().at(index.row()).section(QLatin1Char('/'), -1);
        return cellValue(column, index.row());
    default:
        return {};
    }
}

QVariant ItemTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= ColumnCount)
        return QAbstractTableModel::headerData(section, orientation, role);
    if (role == Qt::DisplayRole)
        return m_titles.at(section);
    if (role == Qt::AccessibleTextRole || role == Qt::ToolTipRole) {
        if (section == IconColumn)
            return tr("Icon");
        if (section == CheckColumn)
            return tr("Status");
        return m_titles.at(section);
    }
    return {};
}

Qt::ItemFlags ItemTableModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    // Drop-enabled so that the view offers a drop onto a row at all, and canDropMimeData refuses
    // it; otherwise the view quietly turns it into a drop above or below the row.
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
}

void ItemTableModel::setTableColumnName(const QString &title, const QString &identifier)
{
    const qsizetype column = Identifiers.indexOf(identifier);
    if (column < 0)
        return;
    m_titles[column] = title;
    Q_EMIT headerDataChanged(Qt::Horizontal, int(column), int(column));
}

void ItemTableModel::refreshCountdown()
{
    if (m_schedule.count() == 0)
        return;
    // One range per column: the view repaints only what it shows.
    Q_EMIT dataChanged(index(0, FileColumn), index(m_schedule.count() - 1, FileColumn), { Qt::DisplayRole });
    Q_EMIT dataChanged(index(0, CheckColumn), index(m_schedule.count() - 1, CheckColumn), { Qt::DecorationRole });
}

void ItemTableModel::reloadAll()
{
    if (m_schedule.count() == 0)
        return;
    Q_EMIT dataChanged(index(0, 0), index(m_schedule.count() - 1, ColumnCount - 1));
}

QStringList ItemTableModel::mimeTypes() const
{
    return { PrivateRowsType, QStringLiteral("text/uri-list") };
}

QMimeData *ItemTableModel::mimeData(const QModelIndexList &indexes) const
{
    // One index arrives per column of each dragged row.
    QList<int> rows;
    for (const QModelIndex &i : indexes)
        rows << i.row();
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    QByteArray payload;
    QDataStream out(&payload, QIODevice::WriteOnly);
    out << rows;
    auto *data = new QMimeData;
    data->setData(PrivateRowsType, payload);
    return data;
}

Qt::DropActions ItemTableModel::supportedDropActions() const
{
    return Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
}

Qt::DropActions ItemTableModel::supportedDragActions() const
{
    return Qt::MoveAction;
}

bool ItemTableModel::canDropMimeData(const QMimeData *, Qt::DropAction, int, int, const QModelIndex &parent) const
{
    // Items go between rows or after the last one, never onto a row.
    return !parent.isValid();
}

bool ItemTableModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column, const QModelIndex &parent)
{
    if (!data || !canDropMimeData(data, action, row, column, parent))
        return false;
    const int r = row < 0 || row > rowCount() ? rowCount() : row;
    if (data->hasFormat(PrivateRowsType)) {
        QList<int> rows;
        QDataStream in(data->data(PrivateRowsType));
        in >> rows;
        if (in.status() == QDataStream::Ok && !rows.isEmpty()) {
            // Only the first dragged row moves; a row dropped below itself lands just above the line.
            const int s = *std::min_element(rows.begin(), rows.end());
            m_editor.move(s, s < r ? r - 1 : r);
        }
        return true;
    }
    return dropFiles(data->urls(), r);
}

bool ItemTableModel::dropFiles(const QList<QUrl> &urls, int r)
{
    QStringList paths;
    for (const QUrl &url : urls) {
        if (url.isLocalFile())
            paths << FileName::fromUrl(url);
    }
    QGuiApplication::setOverrideCursor(Qt::BusyCursor);
    // The row is told by identity: rows may come and go above it while the folders are read.
    const quint64 above = r > 0 ? m_schedule.idAt(r - 1) : 0;
    m_editor.expandFoldersThen(paths, [this, above](QStringList handled) {
        // Each item goes in at the drop row, so the last one handled ends up on top.
        std::reverse(handled.begin(), handled.end());
        m_editor.drop(above == 0 ? 0 : m_schedule.rowOf(above) + 1, handled);
        QGuiApplication::restoreOverrideCursor();
    });
    return !paths.isEmpty();
}

} // namespace Quillon

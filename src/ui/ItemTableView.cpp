#include "ItemTableView.h"

#include "ItemTableModel.h"
#include "Schedule.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace Quillon {

namespace {
// The view draws one focus ring around the current row; a ring per cell would outline one cell.
class RowDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->state &= ~QStyle::State_HasFocus;
    }
};
} // namespace

ItemTableView::ItemTableView(ItemTableModel *model, Schedule &schedule, QWidget *parent)
    : QTableView(parent)
    , m_model(model)
    , m_schedule(schedule)
{
    setObjectName(QStringLiteral("fileTable"));
    setAccessibleName(tr("Scheduled items"));
    setModel(m_model);
    setItemDelegate(new RowDelegate(this));
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDragDropOverwriteMode(false);
    setDefaultDropAction(Qt::MoveAction);
    setShowGrid(false);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setTextElideMode(Qt::ElideMiddle);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    verticalHeader()->hide();
    // Fixed row heights let the view skip measuring rows it does not show.
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 10);
    setIconSize(QSize(20, 20));
    QHeaderView *header = horizontalHeader();
    header->setHighlightSections(false);
    header->setSectionResizeMode(ItemTableModel::IconColumn, QHeaderView::Fixed);
    header->setSectionResizeMode(ItemTableModel::CheckColumn, QHeaderView::Fixed);
    header->resizeSection(ItemTableModel::IconColumn, 30);
    header->resizeSection(ItemTableModel::CheckColumn, 30);
    // Name and the path or countdown share the spare width; the launch time takes what it needs.
    setResizeModes();
    // The header's menu shows or hides the Repeat column; the window keeps the header's state.
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header, &QWidget::customContextMenuRequested, this, [this, header](const QPoint &at) {
        auto *menu = new QMenu(this);
        menu->setObjectName(QStringLiteral("headerMenu"));
        menu->setAttribute(Qt::WA_DeleteOnClose);
        QAction *repeat = menu->addAction(m_model->headerData(ItemTableModel::RepeatColumn, Qt::Horizontal).toString());
        repeat->setObjectName(QStringLiteral("showRepeatColumn"));
        repeat->setCheckable(true);
        repeat->setChecked(!header->isSectionHidden(ItemTableModel::RepeatColumn));
        connect(repeat, &QAction::toggled, header, [header](bool shown) { header->setSectionHidden(ItemTableModel::RepeatColumn, !shown); });
        menu->popup(header->mapToGlobal(at));
    });
    connect(header, &QHeaderView::sectionResized, this, [this](int column) {
        if (column == ItemTableModel::LaunchTimeColumn && !m_fittingColumns)
            m_userSizedLaunchTime = true;
    });
    connect(m_model, &QAbstractItemModel::rowsInserted, this, &ItemTableView::fitColumnsSoon);
    connect(m_model, &QAbstractItemModel::modelReset, this, &ItemTableView::fitColumnsSoon);

    // An empty list says what to do with it; the hint lets drops through to the table.
    auto *hint = new QLabel(tr("Drop files here or choose Add…"), viewport());
    hint->setObjectName(QStringLiteral("emptyHint"));
    hint->setAlignment(Qt::AlignCenter);
    // Readable, yet plainly not an item: the text colour at 60 %. (A disabled label was too faint
    // to see, and the theme's placeholder colour is full black on some.)
    QPalette hintColours = hint->palette();
    QColor hintText = hintColours.color(QPalette::WindowText);
    hintText.setAlphaF(0.6f);
    hintColours.setColor(QPalette::WindowText, hintText);
    hintColours.setColor(QPalette::Text, hintText); // a label in a view's viewport paints in the view's text role
    hint->setPalette(hintColours);
    hint->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto *hintLayout = new QVBoxLayout(viewport());
    hintLayout->addWidget(hint);
    const auto showHint = [this, hint] { hint->setVisible(m_model->rowCount() == 0); };
    connect(m_model, &QAbstractItemModel::rowsInserted, hint, showHint);
    connect(m_model, &QAbstractItemModel::rowsRemoved, hint, showHint);
    connect(m_model, &QAbstractItemModel::modelReset, hint, showHint);
    showHint();

    // Tab leaves the table for the controls instead of walking its cells.
    setTabKeyNavigation(false);
    setContextMenuPolicy(Qt::CustomContextMenu);

    // An undo resets the model; the rows that are still there stay selected, wherever they went.
    connect(&m_schedule, &Schedule::aboutToRestore, this, [this] {
        m_keptSelection.clear();
        for (int row : selectedRows())
            m_keptSelection.append(m_schedule.idAt(row));
    });
    connect(&m_schedule, &Schedule::restored, this, [this] {
        QItemSelection selection;
        for (quint64 id : std::as_const(m_keptSelection)) {
            const int row = m_schedule.rowOf(id);
            if (row >= 0)
                selection.select(m_model->index(row, 0), m_model->index(row, m_model->columnCount() - 1));
        }
        selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
        m_keptSelection.clear();
    });
}

void ItemTableView::setResizeModes()
{
    QHeaderView *header = horizontalHeader();
    header->setSectionResizeMode(ItemTableModel::NameColumn, QHeaderView::Stretch);
    header->setSectionResizeMode(ItemTableModel::FileColumn, QHeaderView::Stretch);
    // The launch time is fitted when rows come (added or restored) and when the window is first
    // shown, not at every change: measuring the column at each launch of a burst froze the window.
    // A width the user gives it stays.
    header->setSectionResizeMode(ItemTableModel::LaunchTimeColumn, QHeaderView::Interactive);
    header->setSectionResizeMode(ItemTableModel::RepeatColumn, QHeaderView::ResizeToContents);
}

void ItemTableView::restoreHeader(const QByteArray &state)
{
    m_fittingColumns = true;
    horizontalHeader()->restoreState(state);
    m_fittingColumns = false;
    setResizeModes();
}

void ItemTableView::fitColumnsSoon()
{
    if (std::exchange(m_fitQueued, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_fitQueued = false;
            if (m_userSizedLaunchTime || m_schedule.count() == 0)
                return;
            m_fittingColumns = true;
            resizeColumnToContents(ItemTableModel::LaunchTimeColumn);
            m_fittingColumns = false;
        },
        Qt::QueuedConnection);
}

void ItemTableView::showEvent(QShowEvent *event)
{
    QTableView::showEvent(event);
    if (!std::exchange(m_shownOnce, true))
        fitColumnsSoon();
}

int ItemTableView::selectedRow() const
{
    const QModelIndex current = selectionModel()->currentIndex();
    if (current.isValid() && selectionModel()->isRowSelected(current.row(), {}))
        return current.row();
    const QList<int> rows = selectedRows();
    return rows.isEmpty() ? -1 : rows.last();
}

QList<int> ItemTableView::selectedRows() const
{
    QList<int> rows;
    for (const QModelIndex &index : selectionModel()->selectedRows())
        rows << index.row();
    std::sort(rows.begin(), rows.end());
    return rows;
}

void ItemTableView::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    const QModelIndex current = currentIndex();
    QStyleOptionFocusRect ring;
    ring.initFrom(this);
    if (!current.isValid() || !(ring.state & QStyle::State_HasFocus) || !(ring.state & QStyle::State_KeyboardFocusChange))
        return;
    ring.rect = QRect(-horizontalOffset(), rowViewportPosition(current.row()), horizontalHeader()->length(), rowHeight(current.row()));
    ring.backgroundColor = palette().color(selectionModel()->isRowSelected(current.row()) ? QPalette::Highlight : QPalette::Base);
    QPainter painter(viewport());
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &ring, &painter, this);
}

void ItemTableView::focusInEvent(QFocusEvent *event)
{
    QTableView::focusInEvent(event);
    viewport()->update();
}

void ItemTableView::focusOutEvent(QFocusEvent *event)
{
    QTableView::focusOutEvent(event);
    viewport()->update();
}

void ItemTableView::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QTableView::currentChanged(current, previous);
    if (current.row() != previous.row())
        viewport()->update();
}

} // namespace Quillon

#include "HistoryWindow.h"

#include "FileName.h"
#include "History.h"
#include "MediumDateFormat.h"
#include "Workspace.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QShortcut>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTableView>
#include <QVBoxLayout>

namespace Quillon {
namespace {
enum Field { Id, At, Path, Kind, Detail, Scheduled };
} // namespace

HistoryModel::HistoryModel(History &history, QObject *parent)
    : QSqlQueryModel(parent)
    , m_history(history)
{
    refresh();
}

void HistoryModel::setFilter(const QString &text, bool problemsOnly)
{
    m_text = text;
    m_problemsOnly = problemsOnly;
    refresh();
}

void HistoryModel::refresh()
{
    m_history.flush();
    if (!m_history.isOpen()) {
        clear();
        return;
    }
    QStringList where;
    // What happened is stored as a number: the kinds whose words hold the text are looked up here.
    QStringList kinds;
    for (int k = int(History::Kind::Opened); k <= int(History::Kind::LastKind); ++k) {
        if (!m_text.isEmpty() && History::kindText(History::Kind(k)).contains(m_text, Qt::CaseInsensitive))
            kinds << QString::number(k);
    }
    if (!m_text.isEmpty())
        // A path is kept as bytes, which LIKE does not match against text.
        where << QStringLiteral("(CAST(path AS TEXT) LIKE ? ESCAPE '\\' OR detail LIKE ? ESCAPE '\\'%1)")
                     .arg(kinds.isEmpty() ? QString() : QStringLiteral(" OR kind IN (%1)").arg(kinds.join(QLatin1Char(','))));
    if (m_problemsOnly)
        where << QStringLiteral("kind IN (%1)").arg(History::problemKinds());
    QSqlQuery query(QSqlDatabase::database(m_history.connectionName(), false));
    // Newest first by the row id, which the index already orders: no sort of the whole file.
    query.prepare(QStringLiteral("SELECT id, at, path, kind, detail, scheduled FROM events %1 ORDER BY id DESC")
                      .arg(where.isEmpty() ? QString() : QStringLiteral("WHERE ") + where.join(QStringLiteral(" AND "))));
    if (!m_text.isEmpty()) {
        QString pattern = m_text;
        pattern.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
            .replace(QLatin1Char('%'), QLatin1String("\\%"))
            .replace(QLatin1Char('_'), QLatin1String("\\_"));
        // Once for each "?": Qt counts a numbered placeholder used twice as two.
        const QString like = QLatin1Char('%') + pattern + QLatin1Char('%');
        query.addBindValue(like);
        query.addBindValue(like);
    }
    query.exec();
    setQuery(std::move(query));
}

QString HistoryModel::pathAt(int row) const
{
    // From the query itself: record() asks data() for every field, which answers for what is shown.
    return History::pathOf(QSqlQueryModel::data(createIndex(row, Path), Qt::DisplayRole));
}

int HistoryModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant HistoryModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    // The query's own columns, past the four shown.
    const auto field = [&](int f) { return QSqlQueryModel::data(createIndex(index.row(), f), Qt::DisplayRole); };
    const auto kind = History::Kind(field(Kind).toInt());
    if (role == Qt::ToolTipRole && index.column() == ItemColumn)
        return FileName::display(History::pathOf(field(Path)));
    // A long detail is cut by the column; the whole of it shows on hovering.
    if (role == Qt::ToolTipRole && index.column() == DetailColumn && !field(Detail).toString().isEmpty())
        return field(Detail);
    if (role == Qt::ForegroundRole && History::isProblem(kind) && index.column() == WhatColumn)
        return QColor(Qt::darkRed);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case WhenColumn:
        return formatMediumDateTime(QDateTime::fromMSecsSinceEpoch(field(At).toLongLong(), Qt::UTC));
    case DueColumn:
        // When it was due, beside when something happened: a missed item's row is written on waking.
        return field(Scheduled).isNull() ? QString() : formatMediumDateTime(QDateTime::fromMSecsSinceEpoch(field(Scheduled).toLongLong(), Qt::UTC));
    case ItemColumn: {
        const QString path = FileName::display(History::pathOf(field(Path)));
        return path.isEmpty() ? tr("(mail)") : path.section(QLatin1Char('/'), -1);
    }
    case WhatColumn:
        return History::kindText(kind);
    case DetailColumn:
        return field(Detail);
    }
    return {};
}

QVariant HistoryModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case WhenColumn:
        return tr("When");
    case DueColumn:
        return tr("Due");
    case ItemColumn:
        return tr("Item");
    case WhatColumn:
        return tr("What");
    case DetailColumn:
        return tr("Detail");
    }
    return {};
}

HistoryWindow::HistoryWindow(History &history, Workspace &workspace, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , m_history(history)
    , m_workspace(workspace)
    , m_model(new HistoryModel(history, this))
{
    setObjectName(QStringLiteral("historyWindow"));
    setWindowTitle(tr("History"));
    auto *layout = new QVBoxLayout(this);
    auto *filters = new QHBoxLayout;
    m_filter = new QLineEdit(this);
    m_filter->setObjectName(QStringLiteral("historyFilter"));
    m_filter->setPlaceholderText(tr("Filter by item, detail or what happened"));
    m_filter->setAccessibleName(tr("Filter"));
    m_filter->setClearButtonEnabled(true);
    m_kinds = new QComboBox(this);
    m_kinds->setObjectName(QStringLiteral("historyKinds"));
    m_kinds->setAccessibleName(tr("Show"));
    m_kinds->addItems({ tr("Everything"), tr("Problems only") });
    auto *kindsLabel = new QLabel(tr("&Show:"), this);
    kindsLabel->setBuddy(m_kinds);
    filters->addWidget(m_filter, 1);
    filters->addWidget(kindsLabel);
    filters->addWidget(m_kinds);
    layout->addLayout(filters);

    m_table = new QTableView(this);
    m_table->setObjectName(QStringLiteral("historyTable"));
    m_table->setAccessibleName(tr("History"));
    m_table->setModel(m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setShowGrid(false);
    m_table->setAlternatingRowColors(true);
    m_table->setWordWrap(false);
    m_table->setTabKeyNavigation(false);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 8);
    m_table->horizontalHeader()->setSectionResizeMode(HistoryModel::WhenColumn, QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(HistoryModel::DueColumn, QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(HistoryModel::ItemColumn, QHeaderView::Interactive);
    m_table->horizontalHeader()->setSectionResizeMode(HistoryModel::WhatColumn, QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->resizeSection(HistoryModel::ItemColumn, 160);
    m_table->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_table, &QWidget::customContextMenuRequested, this, &HistoryWindow::showRowMenu);
    layout->addWidget(m_table);

    const auto filter = [this] { m_model->setFilter(m_filter->text(), m_kinds->currentIndex() == 1); };
    connect(m_filter, &QLineEdit::textChanged, this, filter);
    connect(m_kinds, &QComboBox::currentIndexChanged, this, filter);
    auto *close = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(close, &QShortcut::activated, this, &QWidget::close);
    auto *copy = new QShortcut(QKeySequence::Copy, m_table);
    connect(copy, &QShortcut::activated, this, [this] { QApplication::clipboard()->setText(FileName::display(selectedPaths().join(QLatin1Char('\n')))); });
    resize(760, 420);
}

QStringList HistoryWindow::selectedPaths() const
{
    QStringList paths;
    for (const QModelIndex &index : m_table->selectionModel()->selectedRows()) {
        const QString path = m_model->pathAt(index.row());
        if (!path.isEmpty() && !paths.contains(path))
            paths << path;
    }
    return paths;
}

void HistoryWindow::showRowMenu(const QPoint &at)
{
    if (!m_table->indexAt(at).isValid())
        return;
    const QStringList paths = selectedPaths();
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setObjectName(QStringLiteral("historyRowMenu"));
    menu->addAction(tr("&Open Now"), this, [this, paths] { Q_EMIT openNowRequested(paths); })->setEnabled(!paths.isEmpty());
    menu->addAction(tr("Show in &File Manager"), this,
            [this, paths] {
                for (const QString &path : paths)
                    m_workspace.selectFile(path);
            })
        ->setEnabled(!paths.isEmpty());
    menu->addAction(tr("&Copy"), this, [paths] { QApplication::clipboard()->setText(FileName::display(paths.join(QLatin1Char('\n')))); })
        ->setEnabled(!paths.isEmpty());
    // Just beside the pointer: placed under it, the release of the right button that opened the
    // menu lands on Open Now and opens the file.
    menu->popup(m_table->viewport()->mapToGlobal(at) + QPoint(2, 2));
}

} // namespace Quillon

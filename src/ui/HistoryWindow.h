#pragma once

#include <QSqlQueryModel>
#include <QWidget>

class QComboBox;
class QLineEdit;
class QTableView;

namespace Quillon {

class History;
class Workspace;

// The history's records, newest first, read from the file a page at a time as the view scrolls.
class HistoryModel final : public QSqlQueryModel
{
    Q_OBJECT
public:
    enum Column { WhenColumn, DueColumn, ItemColumn, WhatColumn, DetailColumn, ColumnCount };
    explicit HistoryModel(History &history, QObject *parent = nullptr);

    // Records whose item, detail or what happened ("missed", "failed") contain text; only
    // problems when problemsOnly.
    void setFilter(const QString &text, bool problemsOnly);
    void refresh();
    QString pathAt(int row) const;

    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    int columnCount(const QModelIndex &parent = {}) const override;

private:
    History &m_history;
    QString m_text;
    bool m_problemsOnly = false;
};

// Schedule ▸ History: what ran, failed or was missed while nobody watched.
class HistoryWindow final : public QWidget
{
    Q_OBJECT
public:
    HistoryWindow(History &history, Workspace &workspace, QWidget *parent = nullptr);
    HistoryModel *model() const { return m_model; }
    QTableView *table() const { return m_table; }

Q_SIGNALS:
    void openNowRequested(const QStringList &paths);

private:
    void showRowMenu(const QPoint &at);
    QStringList selectedPaths() const;

    History &m_history;
    Workspace &m_workspace;
    HistoryModel *m_model = nullptr;
    QTableView *m_table = nullptr;
    QLineEdit *m_filter = nullptr;
    QComboBox *m_kinds = nullptr;
};

} // namespace Quillon

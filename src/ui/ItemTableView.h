#pragma once

#include <QTableView>

namespace Quillon {

class ItemTableModel;
class Schedule;

// The list's table: rows selected whole, drops between rows, an empty-list hint, a launch time
// column fitted to its text until the user sizes it, a selection that survives an undo, and keyboard
// focus shown around the whole current row.
class ItemTableView final : public QTableView
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ItemTableView)
public:
    ItemTableView(ItemTableModel *model, Schedule &schedule, QWidget *parent = nullptr);

    // Sorted top to bottom.
    QList<int> selectedRows() const;
    // The row selected last, as the table reports it; -1 for none.
    int selectedRow() const;
    // Column widths and order as the user left them; how the columns share the width stays ours.
    void restoreHeader(const QByteArray &state);

protected:
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;

private:
    // Fits the launch time column to its text on the next turn, unless the user sized it.
    void fitColumnsSoon();
    void setResizeModes();

    ItemTableModel *m_model;
    Schedule &m_schedule;
    QList<quint64> m_keptSelection;
    bool m_fitQueued = false;
    bool m_fittingColumns = false;
    bool m_userSizedLaunchTime = false;
    bool m_shownOnce = false;
};

} // namespace Quillon

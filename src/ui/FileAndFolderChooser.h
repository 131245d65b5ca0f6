#pragma once

#include <QFileDialog>

class QAbstractItemView;

namespace Quillon {

// Qt's file dialog chooses files or folders, never both at once; this one takes any mix.
class FileAndFolderChooser final : public QFileDialog
{
    Q_OBJECT
public:
    explicit FileAndFolderChooser(QWidget *parent = nullptr);
    QStringList chosenPaths() const { return m_chosen; }

public Q_SLOTS:
    void accept() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void keepChooseLabel();

    QStringList m_chosen;
    QAbstractItemView *m_popup = nullptr;
};

} // namespace Quillon

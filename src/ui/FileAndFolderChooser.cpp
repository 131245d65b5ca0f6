#include "FileAndFolderChooser.h"

#include <QAbstractItemView>
#include <QFileSystemModel>
#include <QListView>
#include <QTreeView>

namespace Quillon {

FileAndFolderChooser::FileAndFolderChooser(QWidget *parent)
    : QFileDialog(parent, tr("Choose Files and Folders"))
{
    setOption(QFileDialog::DontUseNativeDialog);
    setFileMode(QFileDialog::ExistingFiles);
    setLabelText(QFileDialog::Accept, tr("Choose"));
    setWindowModality(Qt::WindowModal);
}

void FileAndFolderChooser::accept()
{
    auto *fsModel = findChild<QFileSystemModel *>();
    QAbstractItemView *view = viewMode() == QFileDialog::Detail ? static_cast<QAbstractItemView *>(findChild<QTreeView *>(QStringLiteral("treeView")))
                                                                : static_cast<QAbstractItemView *>(findChild<QListView *>(QStringLiteral("listView")));
    QStringList chosen;
    if (fsModel && view && view->selectionModel()) {
        QModelIndexList rows = view->selectionModel()->selectedRows();
        std::sort(rows.begin(), rows.end(), [](const QModelIndex &a, const QModelIndex &b) { return a.row() < b.row(); });
        for (const QModelIndex &index : std::as_const(rows))
            chosen << fsModel->filePath(index);
    }
    if (chosen.isEmpty()) {
        // Nothing highlighted: a name typed by hand, as the stock dialog takes it.
        QFileDialog::accept();
        m_chosen = selectedFiles();
        return;
    }
    m_chosen = chosen;
    QDialog::accept();
}

} // namespace Quillon

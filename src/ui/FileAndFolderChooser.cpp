#include "FileAndFolderChooser.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileSystemModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTreeView>

namespace Quillon {

FileAndFolderChooser::FileAndFolderChooser(QWidget *parent)
    : QFileDialog(parent, tr("Choose Files and Folders"))
{
    setOption(QFileDialog::DontUseNativeDialog);
    setFileMode(QFileDialog::ExistingFiles);
    setLabelText(QFileDialog::Accept, tr("Choose"));
    setWindowModality(Qt::WindowModal);
    // Enter on a typed folder goes into it, as in a file manager; it does not add it.
    if (auto *name = findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))) {
        name->installEventFilter(this);
        // With its pop-up showing, the completer takes Enter and hands it to the line edit past
        // any filter there: the pop-up is watched too, and ahead of the completer.
        if (QCompleter *completer = name->completer()) {
            m_popup = completer->popup();
            m_popup->installEventFilter(this);
        }
        connect(name, &QLineEdit::textChanged, this, &FileAndFolderChooser::keepChooseLabel, Qt::QueuedConnection);
    }
    // The stock dialog calls its button "Open" while a folder is highlighted; here it always
    // chooses what is highlighted, folders included.
    connect(this, &QFileDialog::currentChanged, this, &FileAndFolderChooser::keepChooseLabel, Qt::QueuedConnection);
    connect(this, &QFileDialog::directoryEntered, this, &FileAndFolderChooser::keepChooseLabel, Qt::QueuedConnection);
}

void FileAndFolderChooser::keepChooseLabel()
{
    if (auto *box = findChild<QDialogButtonBox *>(QStringLiteral("buttonBox"))) {
        if (QPushButton *choose = box->button(QDialogButtonBox::Open))
            choose->setText(tr("Choose"));
    }
}

bool FileAndFolderChooser::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        auto *name = findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        const bool fromPopup = m_popup && watched == m_popup;
        if (name && (watched == name || fromPopup) && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
            // The entry highlighted in the pop-up, else what was typed.
            QString typed = name->text();
            if (fromPopup && m_popup->currentIndex().isValid())
                typed = name->completer()->pathFromIndex(m_popup->currentIndex());
            if (!typed.isEmpty() && !QDir::isAbsolutePath(typed))
                typed = directory().filePath(typed);
            if (!typed.isEmpty() && QFileInfo(typed).isDir()) {
                if (fromPopup)
                    m_popup->hide();
                setDirectory(typed);
                name->clear();
                QMetaObject::invokeMethod(this, &FileAndFolderChooser::keepChooseLabel, Qt::QueuedConnection);
                return true;
            }
        }
    }
    return QFileDialog::eventFilter(watched, event);
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
    // Past QFileDialog's own accept, which would go into a highlighted folder instead of taking it.
    QDialog::accept(); // NOLINT(bugprone-parent-virtual-call)
}

} // namespace Quillon

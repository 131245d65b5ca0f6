#include "MainWindow.h"

#include "RepeatEditor.h"

#include "ButtonRow.h"
#include "DateWindow.h"
#include "FileAndFolderChooser.h"
#include "ItemTableModel.h"
#include "ItemTableView.h"
#include "LaunchAllConfirmation.h"
#include "Preferences.h"
#include "RepeatEditor.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "SettingsKeys.h"
#include "Texts.h"
#include "WindowState.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDateTimeEdit>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeySequence>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QSaveFile>
#include <QScreen>
#include <QSignalBlocker>
#include <QStatusBar>
#include <QTableView>
#include <QUndoStack>
#include <QVBoxLayout>

namespace Quillon {

MainWindow::MainWindow(ScheduleEditor &editor, Preferences &preferences, Workspace &workspace, QWidget *parent)
    : QMainWindow(parent)
    , m_editor(editor)
    , m_schedule(editor.schedule())
    , m_preferences(preferences)
{
    setObjectName(QStringLiteral("fileListWindow"));
    setWindowTitle(QStringLiteral("Quillon"));
    m_model = new ItemTableModel(editor, workspace, this);
    m_dateWindow = new DateWindow([this] { return m_schedule.now(); }, this);
    connect(m_dateWindow->repeatEditor(), &RepeatEditor::applied, this, [this](const Repeat &rule, const MissedPolicy &missed) {
        const QList<int> rows = selectedRows();
        const QString problem = rows.isEmpty() ? tr("select the items first") : m_editor.setRepeat(rows, rule, missed);
        if (!problem.isEmpty())
            m_dateWindow->repeatEditor()->showProblem(problem);
        m_model->reloadAll();
    });
    connect(m_dateWindow, &DateWindow::nowRequested, this, [this] {
        if (!m_datePicker)
            return;
        const QDateTime now = m_schedule.now();
        m_datePicker->setDateTime(now.addMSecs(-now.time().msec()));
    });
    buildTable();
    buildControls();
    buildMenus();
    showRunningState(false);
    restoreWindowState();
    // Telling without an alert: the schedule may stop on its own after a date change, a wake or
    // the last launch.
    statusBar()->setObjectName(QStringLiteral("statusBar"));
    connect(&m_schedule, &Schedule::stoppedByItself, this, [this](const QString &text) { statusBar()->showMessage(text); });
    connect(&m_schedule, &Schedule::runningStateChanged, this, [this](bool running) {
        if (running)
            statusBar()->clearMessage();
    });
    m_problems = new QPushButton(statusBar());
    m_problems->setObjectName(QStringLiteral("problemsButton"));
    m_problems->setFlat(true);
    m_problems->setToolTip(tr("Open the history."));
    m_problems->hide();
    connect(m_problems, &QPushButton::clicked, this, [this] { Q_EMIT historyRequested(); });
    statusBar()->addPermanentWidget(m_problems);
    setUnseenProblems(0);
}

MainWindow::~MainWindow() = default;

// Launch All Now opens every item, runs every script and sends every notice at once, with no way
// back: more than one item is asked about first, unless the user said not to.
void MainWindow::launchAllClicked()
{
    const int count = m_schedule.count();
    confirmLaunchAll(this, m_preferences, count, [this, count] {
        Q_EMIT launchAllNowRequested();
        statusBar()->showMessage(tr("Launch All Now opened %n item(s).", nullptr, count));
    });
}

QWidget *MainWindow::calendarClockWindow() const
{
    return m_dateWindow;
}

void MainWindow::buildTable()
{
    m_fileTable = new ItemTableView(m_model, m_schedule, this);
    connect(m_fileTable, &QWidget::customContextMenuRequested, this, &MainWindow::showRowMenu);
    connect(m_fileTable->selectionModel(), &QItemSelectionModel::selectionChanged, this, &MainWindow::tableViewSelectionDidChange);
    connect(m_fileTable, &QTableView::doubleClicked, this, [this] { Q_EMIT doubleClicked(); });
}

void MainWindow::buildControls()
{
    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->addWidget(m_fileTable);
    m_buttonRow = new ButtonRow(central);
    m_buttonRow->setObjectName(QStringLiteral("buttonRow"));
    const auto button = [&](const QString &text, const QString &name, const QString &tip, auto slot) {
        QPushButton *b = m_buttonRow->addButton(text, name, tip);
        connect(b, &QPushButton::clicked, this, slot);
        return b;
    };
    button(tr("&Add…"), QStringLiteral("browseButton"), tr("Add files and folders to the schedule."), &MainWindow::browseButtonClicked);
    m_clearButton = button(tr("&Clear"), QStringLiteral("clearButton"), tr("Remove the selected items, or every item when none is selected."),
        &MainWindow::clearListButtonClicked);
    m_buttonRow->addSpacing(12);
    QPushButton *selectAll = button(tr("Select All"), QStringLiteral("selectAllButton"), tr("Select every item."), &MainWindow::selectAllButtonClicked);
    QPushButton *deselectAll = button(tr("Deselect All"), QStringLiteral("deselectAllButton"), tr("Select no item."), &MainWindow::deselectAllButtonClicked);
    QPushButton *invert
        = button(tr("Invert Selection"), QStringLiteral("invertSelectionButton"), tr("Not available."), &MainWindow::invertSelectionsButtonClicked);
    m_buttonRow->addStretch();
    QPushButton *launchAll
        = button(tr("&Launch All Now"), QStringLiteral("launchAllNowButton"), tr("Open every item now, top to bottom."), &MainWindow::launchAllClicked);
    QPushButton *dateTime
        = button(tr("&Date && Time…"), QStringLiteral("dateTimeButton"), tr("Set the launch date of the selected items."), &MainWindow::dateTimeClicked);
    m_progress = new QProgressBar(m_buttonRow);
    m_progress->setObjectName(QStringLiteral("progress"));
    m_progress->setAccessibleName(tr("Schedule running"));
    m_progress->setTextVisible(false);
    m_progress->setMaximumWidth(80);
    m_progress->setMaximumHeight(m_fileTable->fontMetrics().height());
    // Hidden while stopped, where an idle bar looks like an empty text field; its place is kept.
    QSizePolicy keepPlace = m_progress->sizePolicy();
    keepPlace.setRetainSizeWhenHidden(true);
    m_progress->setSizePolicy(keepPlace);
    m_progress->hide();
    m_buttonRow->addWidget(m_progress);
    m_stopStartButton
        = button(Texts::tr(Texts::Start), QStringLiteral("stopStartButton"), Texts::tr(Texts::StartToolTip), [this] { Q_EMIT startStopRequested(); });
    m_stopStartButton->setDefault(true);
    layout->addWidget(m_buttonRow);
    setCentralWidget(central);
    m_buttonRow->setOptional({ invert, deselectAll, selectAll, launchAll, dateTime });
}

void MainWindow::buildMenus()
{
    QMenu *file = menuBar()->addMenu(tr("&File"));
    QAction *add = file->addAction(tr("&Add Files and Folders…"), this, &MainWindow::browseButtonClicked);
    add->setShortcut(QKeySequence::Open);
    file->addAction(tr("&Launch All Now"), this, &MainWindow::launchAllClicked);
    file->addSeparator();
    file->addAction(tr("&Import Calendar…"), this, [this] { chooseCalendar(QFileDialog::AcceptOpen); })->setObjectName(QStringLiteral("importAction"));
    file->addAction(tr("&Export Calendar…"), this, [this] { chooseCalendar(QFileDialog::AcceptSave); })->setObjectName(QStringLiteral("exportAction"));
    file->addSeparator();
    QAction *quit = file->addAction(tr("&Quit"), this, [this] { Q_EMIT quitRequested(); });
    quit->setShortcut(QKeySequence::Quit);
    // From Preferences, History or Date & Time too, as elsewhere on the desktop.
    quit->setShortcutContext(Qt::ApplicationShortcut);
    quit->setMenuRole(QAction::QuitRole);

    QMenu *edit = menuBar()->addMenu(tr("&Edit"));
    QAction *undo = m_editor.undoStack()->createUndoAction(this, tr("&Undo"));
    undo->setObjectName(QStringLiteral("undoAction"));
    undo->setShortcut(QKeySequence::Undo);
    QAction *redo = m_editor.undoStack()->createRedoAction(this, tr("&Redo"));
    redo->setObjectName(QStringLiteral("redoAction"));
    // Both keys, each once: where the theme's Redo already is Ctrl+Shift+Z (GNOME, KDE), listing
    // it twice makes the shortcut ambiguous and neither key works.
    QList<QKeySequence> redoKeys { QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y) };
    for (const QKeySequence &key : QKeySequence::keyBindings(QKeySequence::Redo)) {
        if (!redoKeys.contains(key))
            redoKeys << key;
    }
    redo->setShortcuts(redoKeys);
    edit->addAction(undo);
    edit->addAction(redo);
    edit->addSeparator();
    m_removeAction = edit->addAction(tr("Re&move Selected Items"), this, &MainWindow::removeSelectedRows);
    m_removeAction->setShortcut(QKeySequence::Delete);
    QAction *up = edit->addAction(tr("Mo&ve Up"), this, [this] { moveSelectedRow(-1); });
    up->setObjectName(QStringLiteral("moveUpAction"));
    up->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Up));
    QAction *down = edit->addAction(tr("Move Do&wn"), this, [this] { moveSelectedRow(+1); });
    down->setObjectName(QStringLiteral("moveDownAction"));
    down->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Down));
    m_clearAction = edit->addAction(tr("&Clear List"), this, &MainWindow::clearListButtonClicked);
    edit->addSeparator();
    QAction *all = edit->addAction(tr("Select &All"), this, &MainWindow::selectAllButtonClicked);
    all->setShortcut(QKeySequence::SelectAll);
    QAction *none = edit->addAction(tr("&Deselect All"), this, &MainWindow::deselectAllButtonClicked);
    none->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_A));
    edit->addAction(tr("&Invert Selection"), this, &MainWindow::invertSelectionsButtonClicked);
    edit->addSeparator();
    QAction *prefs = edit->addAction(tr("&Preferences…"), this, [this] { Q_EMIT preferencesRequested(); });
    prefs->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
    prefs->setMenuRole(QAction::PreferencesRole);

    QMenu *schedule = menuBar()->addMenu(tr("&Schedule"));
    m_startStopAction = schedule->addAction(tr("&Start"), this, [this] { Q_EMIT startStopRequested(); });
    m_startStopAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    QAction *date = schedule->addAction(tr("&Date and Time…"), this, &MainWindow::dateTimeClicked);
    date->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_D));
    QAction *history = schedule->addAction(tr("&History"), this, [this] { Q_EMIT historyRequested(); });
    history->setObjectName(QStringLiteral("historyAction"));
    history->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_H));

    QMenu *help = menuBar()->addMenu(tr("&Help"));
    QAction *helpAction = help->addAction(tr("Quillon &Help"), this, [this] { Q_EMIT helpRequested(); });
    helpAction->setShortcut(QKeySequence::HelpContents);
    help->addAction(tr("&About Quillon"), this, [this] { Q_EMIT aboutRequested(); })->setMenuRole(QAction::AboutRole);
}

void MainWindow::chooseCalendar(QFileDialog::AcceptMode mode)
{
    // Shown and answered by a signal, never a nested event loop: the schedule fires meanwhile.
    auto *dialog = new QFileDialog(this, mode == QFileDialog::AcceptSave ? tr("Export Calendar") : tr("Import Calendar"));
    dialog->setObjectName(QStringLiteral("calendarChooser"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(mode);
    dialog->setNameFilters({ tr("iCalendar files (*.ics)"), tr("All files (*)") });
    dialog->setDefaultSuffix(QStringLiteral("ics"));
    dialog->setDirectory(QDir::homePath());
    if (mode == QFileDialog::AcceptSave)
        dialog->selectFile(QStringLiteral("Quillon.ics"));
    connect(dialog, &QFileDialog::fileSelected, this, [this, mode](const QString &path) {
        if (mode == QFileDialog::AcceptSave) {
            QSaveFile file(path);
            const bool written = file.open(QIODevice::WriteOnly) && file.write(m_editor.exportCalendar()) >= 0 && file.commit();
            statusBar()->showMessage(written ? tr("Exported to %1.").arg(path) : tr("Could not export to %1: %2").arg(path, file.errorString()));
            return;
        }
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            statusBar()->showMessage(tr("Could not read %1: %2").arg(path, file.errorString()));
            return;
        }
        QStringList problems;
        const int added = m_editor.importCalendar(file.readAll(), problems);
        QString text = tr("%n item(s) imported.", nullptr, added);
        if (!problems.isEmpty())
            text += QLatin1Char(' ') + tr("Not used: %1").arg(problems.join(QStringLiteral("; ")));
        statusBar()->showMessage(text);
    });
    dialog->open();
}

void MainWindow::setTableColumnName(const QString &title, const QString &identifier)
{
    m_model->setTableColumnName(title, identifier);
}

void MainWindow::showRunningState(bool running)
{
    m_progress->setVisible(running);
    if (running) {
        m_progress->setRange(0, 0);
        setTableColumnName(Texts::tr(Texts::TimeToLaunchTitle), QStringLiteral("File"));
        m_stopStartButton->setText(Texts::tr(Texts::Stop));
        m_stopStartButton->setToolTip(Texts::tr(Texts::StopToolTip));
        m_stopStartButton->setAccessibleName(Texts::tr(Texts::Stop));
    } else {
        m_progress->setRange(0, 1);
        m_progress->setValue(0);
        setTableColumnName(Texts::tr(Texts::LocationTitle), QStringLiteral("File"));
        m_stopStartButton->setText(Texts::tr(Texts::Start));
        m_stopStartButton->setToolTip(Texts::tr(Texts::StartToolTip));
        m_stopStartButton->setAccessibleName(Texts::tr(Texts::Start));
    }
    m_startStopAction->setText(running ? tr("&Stop") : tr("&Start"));
    m_clearButton->setEnabled(!running);
    m_clearAction->setEnabled(!running);
    m_removeAction->setEnabled(!running);
}

int MainWindow::selectedRow() const
{
    return m_fileTable->selectedRow();
}

QList<int> MainWindow::selectedRows() const
{
    return m_fileTable->selectedRows();
}

void MainWindow::setupDatePickerControl()
{
    QDateTime value = QDateTime::currentDateTime();
    // Whole seconds: an item set to 07:00:00 must open then, not at a hidden 07:00:00.8.
    value = value.addMSecs(-value.time().msec());
    if (m_datePicker) {
        if (m_datePicker->dateTime().isValid())
            value = m_datePicker->dateTime();
        delete m_datePicker;
    }
    m_datePicker = m_dateWindow->makePicker(value);
    connect(m_datePicker, &QDateTimeEdit::dateTimeChanged, this, &MainWindow::datePickerAction);
}

void MainWindow::datePickerAction()
{
    const QList<int> rows = selectedRows();
    if (rows.isEmpty() || !m_datePicker)
        return;
    const QDateTime picked = m_datePicker->dateTime();
    m_editor.setDate(rows, picked.addMSecs(-picked.time().msec()));
    m_model->reloadAll();
}

void MainWindow::dateTimeClicked()
{
    setupDatePickerControl();
    m_dateWindow->show();
    m_dateWindow->raise();
    m_dateWindow->activateWindow();
}

void MainWindow::useClockAndCalendarClicked()
{
    setupDatePickerControl();
}

void MainWindow::browseButtonClicked()
{
    if (m_chooser)
        return;
    m_chooser = new FileAndFolderChooser(this);
    m_chooser->setObjectName(QStringLiteral("chooser"));
    m_chooser->setAttribute(Qt::WA_DeleteOnClose);
    // It opens where it was last used.
    if (const QString last = WindowState(m_preferences).chooserFolder(); !last.isEmpty())
        m_chooser->setDirectory(last);
    connect(m_chooser, &QDialog::accepted, this, [this] {
        WindowState(m_preferences).setChooserFolder(m_chooser->directory().absolutePath());
        addChosenPaths(m_chooser->chosenPaths());
    });
    m_chooser->open();
}

void MainWindow::addChosenPaths(const QStringList &paths)
{
    m_editor.add(paths);
}

void MainWindow::clearListButtonClicked()
{
    // No confirmation, as ever: undo is what makes a one-click clear safe.
    m_editor.clear(selectedRows());
}

// The move a drag makes, one row at a time, and the selection follows the row.
void MainWindow::moveSelectedRow(int by)
{
    const int row = selectedRow();
    const int to = row + by;
    if (row < 0 || to < 0 || to >= m_schedule.count())
        return;
    m_editor.move(row, to);
    // Not selectRow(): with Ctrl held it would toggle the row out of the selection.
    const QModelIndex index = m_model->index(to, ItemTableModel::NameColumn);
    m_fileTable->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void MainWindow::showRowMenu(const QPoint &at)
{
    if (!m_fileTable->indexAt(at).isValid())
        return;
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setObjectName(QStringLiteral("rowMenu"));
    menu->addAction(tr("&Open Now"), this,
            [this] {
                QStringList paths;
                for (int row : selectedRows())
                    paths << m_schedule.paths().at(row);
                Q_EMIT openNowRequested(paths);
            })
        ->setObjectName(QStringLiteral("openNowAction"));
    menu->addAction(tr("Show in &File Manager"), this, [this] { Q_EMIT doubleClicked(); });
    menu->addAction(tr("&Date && Time…"), this, &MainWindow::dateTimeClicked);
    menu->addSeparator();
    QAction *remove = menu->addAction(tr("&Remove"), this, &MainWindow::removeSelectedRows);
    remove->setEnabled(m_removeAction->isEnabled());
    // popup(), never exec(): no nested event loop while the schedule runs.
    menu->popup(m_fileTable->viewport()->mapToGlobal(at));
}

void MainWindow::removeSelectedRows()
{
    const QList<int> rows = selectedRows();
    if (!rows.isEmpty())
        m_editor.remove(rows);
}

void MainWindow::selectAllButtonClicked()
{
    m_fileTable->selectAll();
}

void MainWindow::deselectAllButtonClicked()
{
    m_fileTable->clearSelection();
}

void MainWindow::invertSelectionsButtonClicked()
{
    QApplication::beep();
}

void MainWindow::tableViewSelectionDidChange()
{
    m_dateWindow->setSelectionCount(int(m_fileTable->selectionModel()->selectedRows().size()));
    if (!m_datePicker)
        return;
    const int row = selectedRow();
    if (row < 0) {
        m_datePicker->setEnabled(false);
        return;
    }
    m_datePicker->setEnabled(true);
    if (row < m_schedule.dates().size()) {
        // Showing a row's date is not picking one.
        const QSignalBlocker quiet(m_datePicker);
        m_datePicker->setDateTime(m_schedule.dates().at(row).toLocalTime());
        m_dateWindow->repeatEditor()->setStart(m_datePicker->dateTime());
    }
    m_dateWindow->repeatEditor()->showRepeat(m_schedule.repeatAt(row));
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    saveWindowState();
    if (m_closeHides) {
        event->accept();
        return;
    }
    event->ignore();
    showMinimized();
}

void MainWindow::setUnseenProblems(int count)
{
    m_problems->setText(tr("%n problem(s) since you last looked", nullptr, count));
    m_problems->setAccessibleName(m_problems->text());
    m_problems->setVisible(count > 0);
}

void MainWindow::saveWindowState()
{
    WindowState(m_preferences).save(*this, *m_fileTable->horizontalHeader());
}

void MainWindow::restoreWindowState()
{
    const WindowState state(m_preferences);
    m_fileTable->restoreHeader(state.headerState());
    if (!state.restoreGeometry(*this))
        resize(860, 480);
    // Saved on a larger screen or at another scale (860 px at 150 % is wider than 1280): never
    // larger than the screen it comes back on.
    if (const QScreen *on = screen())
        resize(size().boundedTo(on->availableGeometry().size()));
}

} // namespace Quillon

#pragma once

#include <QFileDialog>
#include <QMainWindow>
#include <QPointer>

class QAction;
class QDateTimeEdit;
class QProgressBar;
class QPushButton;
class QTableView;

namespace Quillon {

class ButtonRow;
class DateWindow;
class FileAndFolderChooser;
class ItemTableModel;
class ItemTableView;
class Preferences;
class Schedule;
class ScheduleEditor;
class Workspace;

// The list window: the schedule table and the controls that fill it, order it and run it.
class MainWindow final : public QMainWindow
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MainWindow)
public:
    MainWindow(ScheduleEditor &editor, Preferences &preferences, Workspace &workspace, QWidget *parent = nullptr);
    ~MainWindow() override;

    ItemTableView *fileTable() const { return m_fileTable; }
    ItemTableModel *model() const { return m_model; }
    QDateTimeEdit *datePicker() const { return m_datePicker; }
    QWidget *calendarClockWindow() const;
    QPushButton *stopStartButton() const { return m_stopStartButton; }
    QPushButton *clearButton() const { return m_clearButton; }

    void setTableColumnName(const QString &title, const QString &identifier);
    void showRunningState(bool running);
    int selectedRow() const;
    QList<int> selectedRows() const;

    void setupDatePickerControl();
    void datePickerAction();
    void dateTimeClicked();
    void useClockAndCalendarClicked();

    void browseButtonClicked();
    void launchAllClicked();
    void addChosenPaths(const QStringList &paths);
    void clearListButtonClicked();
    void removeSelectedRows();
    void moveSelectedRow(int by);
    void showRowMenu(const QPoint &at);
    void selectAllButtonClicked();
    void deselectAllButtonClicked();
    void invertSelectionsButtonClicked();
    void tableViewSelectionDidChange();

    // When the desktop has no tray to bring the window back from, closing only minimises it.
    void setCloseHides(bool hides) { m_closeHides = hides; }
    void saveWindowState();
    // "2 problems since you last looked" in the status bar; none hides it.
    void setUnseenProblems(int count);
    QPushButton *problemsButton() const { return m_problems; }

Q_SIGNALS:
    void launchAllNowRequested();
    void startStopRequested();
    void preferencesRequested();
    void helpRequested();
    void historyRequested();
    void aboutRequested();
    void quitRequested();
    void doubleClicked();
    // Open these now, top to bottom, as their time had come.
    void openNowRequested(const QStringList &paths);

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void buildTable();
    void buildControls();
    void buildMenus();
    void chooseCalendar(QFileDialog::AcceptMode mode);
    void restoreWindowState();

    ScheduleEditor &m_editor;
    Schedule &m_schedule;
    Preferences &m_preferences;
    ItemTableModel *m_model = nullptr;
    ItemTableView *m_fileTable = nullptr;
    QPushButton *m_stopStartButton = nullptr;
    QPushButton *m_clearButton = nullptr;
    QProgressBar *m_progress = nullptr;
    QPushButton *m_problems = nullptr;
    ButtonRow *m_buttonRow = nullptr;
    QAction *m_startStopAction = nullptr;
    QAction *m_clearAction = nullptr;
    QAction *m_removeAction = nullptr;
    DateWindow *m_dateWindow = nullptr;
    QDateTimeEdit *m_datePicker = nullptr;
    QPointer<FileAndFolderChooser> m_chooser;
    bool m_closeHides = true;
};

} // namespace Quillon

#pragma once

#include <QDateTimeEdit>
#include <QDialog>
#include <QPointer>

#include <functional>

class QCalendarWidget;
class QLabel;
class QPushButton;

namespace Quillon {

// The picker's editor: a text field with a stepper. A separator typed right after a section
// filled up (and the field moved on by itself) is taken as that move, so that "13:45:10" and
// "01.12.2026" land where they are typed instead of skipping a field.
class LaunchDateEdit final : public QDateTimeEdit
{
    Q_OBJECT
public:
    using QDateTimeEdit::QDateTimeEdit;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool m_movedOn = false;
};

// The floating window that holds the date picker; it stays above the list window only, and says
// how many items a change will touch. A calendar to pick a day from, Now, how the items repeat,
// and Close.
// A dialog, not a plain widget, so that a screen reader announces it as a window.
class DateWindow final : public QDialog
{
    Q_OBJECT
public:
    // now: the schedule's present, for the next times a rule gives.
    explicit DateWindow(std::function<QDateTime()> now, QWidget *parent = nullptr);
    class RepeatEditor *repeatEditor() const { return m_repeat; }
    QWidget *datePickerPlaceHolder() const { return m_placeholder; }
    // A new picker in the placeholder, showing value.
    QDateTimeEdit *makePicker(const QDateTime &value);
    void setSelectionCount(int count);
    QWidget *calendarPopup() const { return m_popup; }

Q_SIGNALS:
    // Now: the owner knows what time it is.
    void nowRequested();

private:
    void showCalendar();

    QWidget *m_placeholder = nullptr;
    QLabel *m_label = nullptr;
    QPushButton *m_calendarButton = nullptr;
    QWidget *m_popup = nullptr;
    QCalendarWidget *m_calendar = nullptr;
    QPointer<QDateTimeEdit> m_picker;
    class RepeatEditor *m_repeat = nullptr;
};

} // namespace Quillon

#include "DateWindow.h"

#include "RepeatEditor.h"

#include <QCalendarWidget>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace Quillon {

void LaunchDateEdit::keyPressEvent(QKeyEvent *event)
{
    const QString text = event->text();
    const bool separator = text.size() == 1 && !text.at(0).isLetterOrNumber() && !text.at(0).isSpace() && event->modifiers() == Qt::NoModifier;
    if (separator && std::exchange(m_movedOn, false)) {
        event->accept();
        return;
    }
    const Section before = currentSection();
    QDateTimeEdit::keyPressEvent(event);
    m_movedOn = text.size() == 1 && text.at(0).isDigit() && currentSection() != before;
}

DateWindow::DateWindow(std::function<QDateTime()> clock, QWidget *parent)
    : QDialog(parent, Qt::Tool) // a tool window of its parent: above the list window, not above every other application
{
    setObjectName(QStringLiteral("calendarClockWindow"));
    setWindowTitle(tr("Date & Time"));
    setAccessibleName(tr("Date & Time"));
    auto *layout = new QVBoxLayout(this);
    m_label = new QLabel(this);
    m_label->setObjectName(QStringLiteral("selectionLabel"));
    layout->addWidget(m_label);
    setSelectionCount(0);
    auto *close = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(close, &QShortcut::activated, this, &QWidget::close);

    auto *pickerRow = new QHBoxLayout;
    m_placeholder = new QWidget(this);
    m_placeholder->setObjectName(QStringLiteral("datePickerPlaceHolder"));
    auto *pickerLayout = new QHBoxLayout(m_placeholder);
    pickerLayout->setContentsMargins(1, 0, 0, 0);
    pickerRow->addWidget(m_placeholder, 1);
    m_calendarButton = new QPushButton(tr("Calenda&r…"), this);
    m_calendarButton->setObjectName(QStringLiteral("calendarButton"));
    m_calendarButton->setAccessibleName(tr("Calendar"));
    connect(m_calendarButton, &QPushButton::clicked, this, &DateWindow::showCalendar);
    pickerRow->addWidget(m_calendarButton);
    auto *now = new QPushButton(tr("&Now"), this);
    now->setObjectName(QStringLiteral("nowButton"));
    now->setAccessibleName(tr("Now"));
    now->setToolTip(tr("Set the date and time to this moment."));
    connect(now, &QPushButton::clicked, this, &DateWindow::nowRequested);
    pickerRow->addWidget(now);
    layout->addLayout(pickerRow);
    m_label->setBuddy(m_placeholder);
    m_repeat = new RepeatEditor(std::move(clock), this);
    layout->addWidget(m_repeat);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    auto *closeButton = new QPushButton(tr("Close"), this);
    closeButton->setAccessibleName(tr("Close"));
    closeButton->setObjectName(QStringLiteral("closeButton"));
    connect(closeButton, &QPushButton::clicked, this, &QWidget::close);
    buttons->addWidget(closeButton);
    layout->addLayout(buttons);
    // Only as tall as what it holds.
    layout->setSizeConstraint(QLayout::SetFixedSize);

    // A pop-up of its own, shown and hidden, never a nested event loop.
    m_popup = new QWidget(this, Qt::Popup);
    m_popup->setObjectName(QStringLiteral("calendarPopup"));
    auto *popupLayout = new QVBoxLayout(m_popup);
    popupLayout->setContentsMargins(0, 0, 0, 0);
    m_calendar = new QCalendarWidget(m_popup);
    m_calendar->setObjectName(QStringLiteral("calendar"));
    m_calendar->setAccessibleName(tr("Launch date"));
    popupLayout->addWidget(m_calendar);
    const auto pick = [this](QDate date) {
        m_popup->hide();
        if (!m_picker || !date.isValid())
            return;
        // The day changes; the time of day stays.
        m_picker->setDate(date);
        m_picker->setFocus();
    };
    connect(m_calendar, &QCalendarWidget::clicked, this, pick);
    connect(m_calendar, &QCalendarWidget::activated, this, pick);
}

void DateWindow::showCalendar()
{
    if (m_picker) {
        m_calendar->setLocale(m_picker->locale());
        m_calendar->setSelectedDate(m_picker->date());
    }
    m_popup->adjustSize();
    m_popup->move(m_calendarButton->mapToGlobal(QPoint(0, m_calendarButton->height())));
    m_popup->show();
    m_calendar->setFocus();
}

QDateTimeEdit *DateWindow::makePicker(const QDateTime &value)
{
    auto *picker = new LaunchDateEdit(m_placeholder);
    m_picker = picker;
    picker->setObjectName(QStringLiteral("datePicker"));
    picker->setAccessibleName(tr("Launch date and time"));
    picker->setCalendarPopup(false);
    // Date, time to the second and zone, written as the user's locale writes them (as the table
    // does), with the whole year.
    const QLocale locale;
    picker->setLocale(locale);
    QString dateFormat = locale.dateFormat(QLocale::ShortFormat);
    if (!dateFormat.contains(QLatin1String("yyyy")))
        dateFormat.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    QString timeFormat = locale.timeFormat(QLocale::LongFormat);
    if (!timeFormat.contains(QLatin1Char('t')))
        timeFormat += QLatin1String(" t");
    picker->setDisplayFormat(dateFormat + QLatin1String("  ") + timeFormat);
    picker->setTimeSpec(Qt::LocalTime);
    picker->setDateTime(value);
    m_repeat->setStart(value);
    connect(picker, &QDateTimeEdit::dateTimeChanged, m_repeat, &RepeatEditor::setStart);
    m_placeholder->layout()->addWidget(picker);
    return picker;
}

void DateWindow::setSelectionCount(int count)
{
    if (count == 0)
        m_label->setText(tr("No item is selected: a date set here changes nothing."));
    else if (count == 1)
        m_label->setText(tr("Launch date and time of the selected item:"));
    else
        m_label->setText(tr("Launch date and time of %n selected item(s):", nullptr, count));
}

} // namespace Quillon

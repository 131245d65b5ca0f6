#include "DateWindow.h"

#include "ClockView.h"

#include <QDateTimeEdit>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QShortcut>
#include <QVBoxLayout>

namespace Quillon {

DateWindow::DateWindow(QWidget *parent)
    : QWidget(parent, Qt::Tool) // a tool window of its parent: above the list window, not above every other application
{
    setObjectName(QStringLiteral("calendarClockWindow"));
    setWindowTitle(tr("Date & Time"));
    auto *layout = new QVBoxLayout(this);
    m_label = new QLabel(this);
    m_label->setObjectName(QStringLiteral("selectionLabel"));
    layout->addWidget(m_label);
    setSelectionCount(0);
    auto *close = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(close, &QShortcut::activated, this, &QWidget::close);
    m_placeholder = new QWidget(this);
    m_placeholder->setObjectName(QStringLiteral("datePickerPlaceHolder"));
    auto *pickerLayout = new QHBoxLayout(m_placeholder);
    pickerLayout->setContentsMargins(1, 0, 0, 0);
    layout->addWidget(m_placeholder);
    layout->addWidget(new ClockView(this));
    m_label->setBuddy(m_placeholder);
}

QDateTimeEdit *DateWindow::makePicker(const QDateTime &value)
{
    auto *picker = new QDateTimeEdit(m_placeholder);
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
        m_label->setText(tr("Launch date and time of %1 selected items:").arg(count));
}

} // namespace Quillon

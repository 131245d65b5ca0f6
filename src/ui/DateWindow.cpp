#include "DateWindow.h"

#include "ClockView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace Quillon {

DateWindow::DateWindow(QWidget *parent)
    : QWidget(parent, Qt::Tool | Qt::WindowStaysOnTopHint)
{
    setObjectName(QStringLiteral("calendarClockWindow"));
    setWindowTitle(tr("Date & Time"));
    auto *layout = new QVBoxLayout(this);
    auto *label = new QLabel(tr("Launch date and time of the selected items:"), this);
    layout->addWidget(label);
    m_placeholder = new QWidget(this);
    m_placeholder->setObjectName(QStringLiteral("datePickerPlaceHolder"));
    auto *pickerLayout = new QHBoxLayout(m_placeholder);
    pickerLayout->setContentsMargins(1, 0, 0, 0);
    layout->addWidget(m_placeholder);
    layout->addWidget(new ClockView(this));
    label->setBuddy(m_placeholder);
}

} // namespace Quillon

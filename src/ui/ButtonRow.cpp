#include "ButtonRow.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace Quillon {

ButtonRow::ButtonRow(QWidget *parent)
    : QWidget(parent)
    , m_layout(new QHBoxLayout(this))
{
    m_layout->setContentsMargins(0, 0, 0, 0);
}

QPushButton *ButtonRow::addButton(const QString &text, const QString &objectName, const QString &toolTip)
{
    auto *button = new QPushButton(text, this);
    button->setObjectName(objectName);
    button->setToolTip(toolTip);
    button->setAccessibleName(spokenText(text));
    m_layout->addWidget(button);
    return button;
}

void ButtonRow::addSpacing(int size)
{
    m_layout->addSpacing(size);
}

void ButtonRow::addStretch()
{
    m_layout->addStretch(1);
}

void ButtonRow::addWidget(QWidget *widget)
{
    m_layout->addWidget(widget);
}

void ButtonRow::setOptional(const QList<QWidget *> &buttons)
{
    m_optional = buttons;
    fit();
}

QString ButtonRow::spokenText(const QString &text)
{
    QString spoken;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('&') && i + 1 < text.size())
            ++i;
        spoken += text.at(i);
    }
    return spoken.remove(QStringLiteral("…")).trimmed();
}

void ButtonRow::fit()
{
    // The layout itself says what the row needs: first with the optional buttons gone, then with
    // each added back, the most useful first, while they fit.
    for (QWidget *w : std::as_const(m_optional))
        w->hide();
    m_layout->invalidate();
    setMinimumWidth(m_layout->minimumSize().width());
    for (auto it = m_optional.crbegin(); it != m_optional.crend(); ++it) {
        (*it)->show();
        m_layout->invalidate();
        if (m_layout->minimumSize().width() > width()) {
            (*it)->hide();
            break;
        }
    }
}

void ButtonRow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    fit();
}

} // namespace Quillon

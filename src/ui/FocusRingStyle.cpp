#include "FocusRingStyle.h"

#include <QPainter>
#include <QStyleOption>

namespace Quillon {

namespace {
// A pointer click on a button gives it focus too; the ring is for the keyboard, as elsewhere on
// the desktop. A field being typed in always shows it.
bool ringFor(const QStyleOption *option, bool typedIn)
{
    if (!(option->state & QStyle::State_HasFocus) || !(option->state & QStyle::State_Enabled))
        return false;
    return typedIn || (option->state & QStyle::State_KeyboardFocusChange);
}
} // namespace

void FocusRingStyle::drawRing(QPainter *painter, const QRect &rect, const QPalette &palette, const QColor &background)
{
    // On a selected row the highlight colour would vanish: a ring in the selection's text colour,
    // inside the band.
    const QColor highlight = palette.color(QPalette::Active, QPalette::Highlight);
    const bool onHighlight = background == highlight;
    const qreal inset = onHighlight ? 2 : 1;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(onHighlight ? palette.color(QPalette::Active, QPalette::HighlightedText) : highlight, 2));
    painter->drawRoundedRect(QRectF(rect).adjusted(inset, inset, -inset, -inset), 3, 3);
    painter->restore();
}

void FocusRingStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    if (element == PE_FrameFocusRect) {
        const auto *focus = qstyleoption_cast<const QStyleOptionFocusRect *>(option);
        drawRing(painter, option->rect, option->palette, focus ? focus->backgroundColor : QColor());
        return;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_FrameLineEdit && ringFor(option, true))
        drawRing(painter, option->rect, option->palette);
}

void FocusRingStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    QProxyStyle::drawControl(element, option, painter, widget);
    if (element == CE_PushButton && ringFor(option, false))
        drawRing(painter, option->rect, option->palette);
}

void FocusRingStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_SpinBox || control == CC_ComboBox) {
        const auto *frame = qstyleoption_cast<const QStyleOptionComboBox *>(option);
        if (ringFor(option, control == CC_SpinBox || (frame && frame->editable)))
            drawRing(painter, option->rect, option->palette);
    }
}

QRect FocusRingStyle::subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const
{
    // Around the whole cell, not only its text.
    if (element == SE_ItemViewItemFocusRect)
        return option->rect;
    return QProxyStyle::subElementRect(element, option, widget);
}

} // namespace Quillon

#pragma once

#include <QProxyStyle>

namespace Quillon {

// Keyboard focus drawn as a ring in the highlight colour, two pixels wide, on every control. The
// default style shows focus on a button exactly as it shows the default button, and in a list as a
// faint outline around one cell's text: neither can be seen at a glance.
class FocusRingStyle final : public QProxyStyle
{
    Q_OBJECT
public:
    FocusRingStyle() = default;

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter, const QWidget *widget = nullptr) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget = nullptr) const override;
    QRect subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget = nullptr) const override;

    // Around rect, inside it.
    static void drawRing(QPainter *painter, const QRect &rect, const QPalette &palette, const QColor &background = {});
};

} // namespace Quillon

#pragma once

#include <QWidget>

namespace Quillon {

// An empty, transparent view that draws nothing; it reserves room in the date window.
class ClockView final : public QWidget
{
    Q_OBJECT
public:
    explicit ClockView(QWidget *parent = nullptr)
        : QWidget(parent)
    { }
};

} // namespace Quillon

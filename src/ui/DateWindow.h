#pragma once

#include <QWidget>

namespace Quillon {

// The floating window that holds the date picker; it stays above the list window.
class DateWindow final : public QWidget
{
    Q_OBJECT
public:
    explicit DateWindow(QWidget *parent = nullptr);
    QWidget *datePickerPlaceHolder() const { return m_placeholder; }

private:
    QWidget *m_placeholder = nullptr;
};

} // namespace Quillon

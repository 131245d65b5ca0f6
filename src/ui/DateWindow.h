#pragma once

#include <QWidget>

class QLabel;

namespace Quillon {

// The floating window that holds the date picker; it stays above the list window only, and says
// how many items a change will touch.
class DateWindow final : public QWidget
{
    Q_OBJECT
public:
    explicit DateWindow(QWidget *parent = nullptr);
    QWidget *datePickerPlaceHolder() const { return m_placeholder; }
    void setSelectionCount(int count);

private:
    QWidget *m_placeholder = nullptr;
    QLabel *m_label = nullptr;
};

} // namespace Quillon

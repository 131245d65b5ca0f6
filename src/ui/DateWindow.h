#pragma once

#include <QWidget>

class QDateTime;
class QDateTimeEdit;
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
    // A new picker in the placeholder, showing value.
    QDateTimeEdit *makePicker(const QDateTime &value);
    void setSelectionCount(int count);

private:
    QWidget *m_placeholder = nullptr;
    QLabel *m_label = nullptr;
};

} // namespace Quillon

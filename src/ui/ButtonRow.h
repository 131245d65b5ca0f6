#pragma once

#include <QWidget>

class QHBoxLayout;
class QPushButton;

namespace Quillon {

// A row of push buttons that may be narrower than all of them: the optional ones that do not
// fit are hidden (each is in the menus too), so that the window works in a narrow space.
class ButtonRow final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ButtonRow)
public:
    explicit ButtonRow(QWidget *parent = nullptr);

    // The button's accessible name is its text as a screen reader should say it.
    QPushButton *addButton(const QString &text, const QString &objectName, const QString &toolTip);
    void addSpacing(int size);
    void addStretch();
    void addWidget(QWidget *widget);
    // The first in the list is the first to go when the row is narrow.
    void setOptional(const QList<QWidget *> &buttons);
    void fit();

    // What a screen reader should say for a label: no accelerator marks ("&&" is a real "&"), no ellipsis.
    static QString spokenText(const QString &text);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QHBoxLayout *m_layout = nullptr;
    QList<QWidget *> m_optional;
};

} // namespace Quillon

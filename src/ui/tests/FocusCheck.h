#pragma once

#include <QAbstractItemView>
#include <QApplication>
#include <QImage>
#include <QTabBar>
#include <QTest>
#include <QWidget>

namespace Quillon::Test {

namespace detail {
// Whether going from without to with draws something that frames the control: the change must
// span most of it and be dense enough along its edges to read as a ring, not a tint or a corner.
inline bool framesIt(const QImage &with, const QImage &without, QSize expected)
{
    const QImage a = with.convertToFormat(QImage::Format_RGB32);
    const QImage b = without.convertToFormat(QImage::Format_RGB32);
    qsizetype changed = 0;
    QRect box;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (a.pixel(x, y) != b.pixel(x, y)) {
                ++changed;
                box |= QRect(x, y, 1, 1);
            }
    expected *= with.devicePixelRatio();
    return box.width() >= expected.width() * 6 / 10 && box.height() >= expected.height() * 6 / 10 && changed >= 3 * (box.width() + box.height()) / 2;
}

inline QSize focusedPart(QWidget *w)
{
    // A list shows it on the current row, a tab bar on the tab, a stretched check box around what it draws.
    if (auto *view = qobject_cast<QAbstractItemView *>(w))
        return { view->viewport()->width(), view->visualRect(view->currentIndex()).height() };
    if (auto *tabs = qobject_cast<QTabBar *>(w))
        return tabs->tabRect(tabs->currentIndex()).size();
    return w->sizeHint().boundedTo(w->size());
}
} // namespace detail

// Tabs through the window with real keys and names the controls whose focus cannot be seen.
inline QStringList controlsWithoutVisibleFocus(QWidget *window)
{
    window->show();
    window->activateWindow();
    if (!QTest::qWaitForWindowActive(window))
        return { QStringLiteral("(window never became active)") };
    QStringList unseen;
    QList<QWidget *> visited;
    QWidget *previous = nullptr;
    QImage previousFocused;
    QRect previousArea;
    for (int step = 0; step < 80; ++step) {
        QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : window, Qt::Key_Tab);
        QWidget *current = QApplication::focusWidget();
        if (previous && !detail::framesIt(previousFocused, window->grab(previousArea).toImage(), detail::focusedPart(previous)))
            unseen << (previous->objectName().isEmpty() ? QString::fromLatin1(previous->metaObject()->className()) : previous->objectName());
        if (!current || visited.contains(current))
            break;
        visited << current;
        previous = current;
        previousArea = QRect(current->mapTo(window, QPoint()), current->size()).adjusted(-3, -3, 3, 3) & window->rect();
        previousFocused = window->grab(previousArea).toImage();
    }
    return unseen;
}

} // namespace Quillon::Test

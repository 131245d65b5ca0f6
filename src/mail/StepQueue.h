#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <deque>
#include <functional>

namespace Quillon {

// Setting up TLS costs most of a millisecond (OpenSSL builds a context per socket), and when many
// sessions reach that step together the event loop would do them all in one go. Such steps wait
// here and run one per event-loop turn, so that the window and the timers get turns in between.
// The sessions of one sender share one queue.
class StepQueue final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(StepQueue)
public:
    explicit StepQueue(QObject *parent = nullptr);
    // The step is dropped if context is gone by its turn.
    void add(QObject *context, std::function<void()> step);

private:
    std::deque<std::pair<QPointer<QObject>, std::function<void()>>> m_steps;
    QTimer m_timer;
};

} // namespace Quillon

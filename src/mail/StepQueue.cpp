#include "StepQueue.h"

namespace Quillon {

StepQueue::StepQueue(QObject *parent)
    : QObject(parent)
{
    m_timer.setInterval(0);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        while (!m_steps.empty()) {
            auto [context, step] = std::move(m_steps.front());
            m_steps.pop_front();
            if (context) {
                step();
                break;
            }
        }
        if (!m_steps.empty())
            m_timer.start();
    });
}

void StepQueue::add(QObject *context, std::function<void()> step)
{
    m_steps.push_back({ QPointer<QObject>(context), std::move(step) });
    if (!m_timer.isActive())
        m_timer.start();
}

} // namespace Quillon

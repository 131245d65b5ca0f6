#pragma once

#include <QDateTime>
#include <QString>

#include <memory>

namespace Quillon {

class TimerQueue;

// A one-shot timer for one item: it carries the item's path and fires once at its date,
// unless invalidated first. After firing it stays in its slot, no longer valid.
class ItemTimer final
{
    Q_DISABLE_COPY_MOVE(ItemTimer)
public:
    ItemTimer(TimerQueue *queue, QString path, qint64 fireMSecs)
        : m_queue(queue)
        , m_path(std::move(path))
        , m_fireMSecs(fireMSecs)
    { }

    // A slot dropped while its timer was armed (a row removed, the schedule restarted) cancels it.
    ~ItemTimer() { invalidate(); }

    const QString &path() const { return m_path; }
    qint64 fireMSecs() const { return m_fireMSecs; }
    QDateTime fireDate() const { return QDateTime::fromMSecsSinceEpoch(m_fireMSecs); }
    bool isValid() const { return m_valid; }
    void invalidate();

private:
    TimerQueue *m_queue;
    QString m_path;
    qint64 m_fireMSecs;
    bool m_valid = true;
};

// A slot of the schedule: a timer, or nothing (the placeholder).
using TimerSlot = std::shared_ptr<ItemTimer>;

} // namespace Quillon

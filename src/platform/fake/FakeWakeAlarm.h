#pragma once

#include "WakeAlarm.h"

#include <QList>

namespace Quillon {

// A way of waking that answers as the test says; with hold set, requests wait for acknowledge().
class FakeWakeAlarm final : public WakeAlarm
{
    Q_OBJECT
public:
    explicit FakeWakeAlarm(bool available = true, QObject *parent = nullptr)
        : WakeAlarm(parent)
        , m_available(available)
    { }
    QString name() const override { return QStringLiteral("test alarm"); }
    void probe() override { Q_EMIT probed(m_available, m_available ? QString() : QStringLiteral("not here")); }
    void request(qint64 epochSecs) override
    {
        requests << epochSecs;
        if (!hold)
            Q_EMIT requestDone(true, {});
    }
    void acknowledge() { Q_EMIT requestDone(true, {}); }

    QList<qint64> requests;
    bool hold = false;

private:
    bool m_available;
};

} // namespace Quillon

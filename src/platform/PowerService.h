#pragma once

#include <QDateTime>
#include <QObject>

#include <functional>

namespace Quillon {

// System sleep notifications and wake requests.
class PowerService : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    ~PowerService() override = default;

    // Start listening; false when the service is not reachable (the program runs on without it).
    virtual bool registerForNotifications() = 0;
    // Ask for the machine to be woken lead seconds before date; false when it cannot be arranged.
    virtual bool schedulePowerWake(const QDateTime &date, quint32 leadSeconds) = 0;
    // Before the program ends: let go of what it holds (a helper process), then call done.
    virtual void release(std::function<void()> done) { done(); }

Q_SIGNALS:
    void willSleep();
    void didWake();
};

// Used where no power service is available: never sleeps, never wakes.
class NullPowerService final : public PowerService
{
    Q_OBJECT
public:
    using PowerService::PowerService;
    bool registerForNotifications() override { return false; }
    bool schedulePowerWake(const QDateTime &, quint32) override { return false; }
};

} // namespace Quillon

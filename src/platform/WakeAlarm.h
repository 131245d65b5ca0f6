#pragma once

#include <QObject>
#include <QString>

#include <functional>

namespace Quillon {

// One way of having the machine woken at an absolute time. Everything is asynchronous: a hung
// daemon must never hold up the event loop.
class WakeAlarm : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    ~WakeAlarm() override = default;

    virtual QString name() const = 0;
    // Find out whether this way works here; answers with probed().
    virtual void probe() = 0;
    // Wake at epochSecs; answers with requestDone() once the kernel or the daemon has it.
    virtual void request(qint64 epochSecs) = 0;
    // Before the program ends; done once nothing is left running.
    virtual void release(std::function<void()> done) { done(); }

Q_SIGNALS:
    void probed(bool available, const QString &reason);
    void requestDone(bool ok, const QString &error);
};

} // namespace Quillon

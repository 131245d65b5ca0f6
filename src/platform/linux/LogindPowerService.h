#pragma once

#include "PowerService.h"

#include <QDBusUnixFileDescriptor>

namespace Quillon {

// Sleep and wake notices from logind. A delay inhibitor holds a suspend back until willSleep()
// has been handled; dropping it is the acknowledgement.
class LogindPowerService final : public PowerService
{
    Q_OBJECT
public:
    using PowerService::PowerService;
    bool registerForNotifications() override;
    bool schedulePowerWake(const QDateTime &date, quint32 leadSeconds) override;

private Q_SLOTS:
    void prepareForSleep(bool start);

private:
    void takeInhibitor();
    QDBusUnixFileDescriptor m_inhibitor;
};

} // namespace Quillon

#pragma once

#include "PowerService.h"

#include <QList>

namespace Quillon {

class FakePowerService final : public PowerService
{
    Q_OBJECT
public:
    using PowerService::PowerService;
    bool registerForNotifications() override { return registered = true; }
    bool schedulePowerWake(const QDateTime &date, quint32 lead) override
    {
        if (!sleepEnabled)
            return false;
        wakes << date.addSecs(-qint64(lead));
        return true;
    }

    bool registered = false;
    bool sleepEnabled = true;
    QList<QDateTime> wakes;
};

} // namespace Quillon

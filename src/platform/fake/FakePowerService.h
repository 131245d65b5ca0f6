#pragma once

#include "PowerService.h"

#include <QList>

namespace Quillon {

class FakePowerService final : public PowerService
{
    Q_OBJECT
public:
    using PowerService::PowerService;
    bool registerForNotifications() override { return true; }
    bool schedulePowerWake(const QDateTime &date, quint32 lead) override
    {
        wakes << date.addSecs(-qint64(lead));
        return true;
    }

    QList<QDateTime> wakes;
};

} // namespace Quillon

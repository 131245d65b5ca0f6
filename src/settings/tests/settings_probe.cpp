// Starts and quits as the application does, adding one item; run as another user, since root ignores modes.
#include "FakeClock.h"
#include "Preferences.h"
#include "Schedule.h"
#include "ScheduleEditor.h"

#include <QCoreApplication>

using namespace Quillon;

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    Preferences preferences;
    FakeClock clock;
    Schedule schedule(preferences, clock);
    if (preferences.rememberItems())
        schedule.restoreItems();
    if (argc > 1)
        ScheduleEditor(schedule, preferences).add({ QString::fromLocal8Bit(argv[1]) });
    schedule.saveItems();
    return 0;
}

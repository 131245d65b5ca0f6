// Starts and quits the way the application does with the saved list, adding one item: the
// settings-file tests run it as another user, since root reads and writes files of any mode.
#include "FakeClock.h"
#include "Preferences.h"
#include "Schedule.h"

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
        schedule.appendPaths({QString::fromLocal8Bit(argv[1])});
    schedule.saveItems();
    return 0;
}

// Editing a long list as scripts and users do, with the window's table attached: the memory that
// 12,000 single adds keep (undo included), and the time to remove every other row of 100,000.
#include "BenchUtil.h"
#include "FakeClock.h"
#include "FakePowerService.h"
#include "FakeScriptRunner.h"
#include "FakeWorkspace.h"
#include "QuillonController.h"
#include "SettingsKeys.h"

#include <QApplication>
#include <QFile>
#include <QUndoStack>

#include <unistd.h>

using namespace Quillon;

namespace {
double residentMB()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    statm.open(QIODevice::ReadOnly);
    return double(statm.readAll().split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE)) / 1e6;
}
} // namespace

int main(int argc, char *argv[])
{
    QTemporaryDir home;
    useHome(home);
    QApplication app(argc, argv);
    FakeClock clock(QDateTime::currentMSecsSinceEpoch());
    FakePowerService power;
    FakeWorkspace workspace;
    FakeScriptRunner scripts;
    QuillonController controller(Platform { clock, power, workspace, scripts });
    controller.preferences().setValue(Keys::RememberItems, false);
    controller.awakeFromNib();
    ScheduleEditor &editor = controller.editor();
    const QDateTime inAnHour = QDateTime::currentDateTime().addSecs(3600);

    const double before = residentMB();
    for (int i = 0; i < 12'000; ++i)
        editor.add({ QStringLiteral("/bench/documents/item %1.txt").arg(i) }, inAnHour);
    QApplication::processEvents();
    const double added = residentMB();
    editor.clear();
    QApplication::processEvents();
    std::printf("12,000 single adds: %.0f MB resident before, %.0f MB after (+%.0f MB; target under 300 MB), %.0f MB after Clear\n", before, added,
        added - before, residentMB());

    QStringList paths;
    for (int i = 0; i < 100'000; ++i)
        paths << QStringLiteral("/bench/documents/item %1.txt").arg(i);
    editor.add(paths, inAnHour);
    QList<int> everyOther;
    for (int i = 0; i < 100'000; i += 2)
        everyOther << i;
    qint64 t0 = monotonicNs();
    editor.remove(everyOther);
    QApplication::processEvents();
    std::printf("Removing every other row of 100,000: %.0f ms (target under 1,000 ms)\n", double(monotonicNs() - t0) / 1e6);
    t0 = monotonicNs();
    editor.undoStack()->undo();
    QApplication::processEvents();
    std::printf("Undoing it: %.0f ms, %d rows back\n", double(monotonicNs() - t0) / 1e6, controller.schedule().count());
    return 0;
}

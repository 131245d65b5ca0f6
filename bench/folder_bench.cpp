// A folder of many files dropped on the list, with the window's table attached: how long the
// event loop is held up at most while it is listed and added, and how long it all takes.
#include "BenchUtil.h"
#include "FakeClock.h"
#include "FakePowerService.h"
#include "FakeScriptRunner.h"
#include "FakeWorkspace.h"
#include "QuillonController.h"
#include "SettingsKeys.h"

#include <QApplication>
#include <QTimer>

#include <fcntl.h>
#include <unistd.h>

using namespace Quillon;

int main(int argc, char *argv[])
{
    QTemporaryDir home;
    useHome(home);
    QApplication app(argc, argv);
    const int files = argc > 1 ? std::atoi(argv[1]) : 200'000;
    const QString folder = home.filePath(QStringLiteral("many"));
    QDir().mkpath(folder);
    for (int i = 0; i < files; ++i)
        ::close(::open(QFile::encodeName(QStringLiteral("%1/file %2.txt").arg(folder).arg(i)).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));

    FakeClock clock(QDateTime::currentMSecsSinceEpoch());
    FakePowerService power;
    FakeWorkspace workspace;
    FakeScriptRunner scripts;
    QuillonController controller(Platform { clock, power, workspace, scripts });
    controller.preferences().setValues({ { Keys::RememberItems, false }, { Keys::AddFolderFiles, true } });
    controller.awakeFromNib();
    ScheduleEditor &editor = controller.editor();

    LoopBlockMeter meter;
    meter.start();
    const qint64 t0 = monotonicNs();
    qint64 added = 0;
    editor.expandFoldersThen({ folder }, [&editor, &added](const QStringList &paths) {
        editor.add(paths);
        added = monotonicNs();
        // A turn of the loop after the add, so that the meter sees what the add held up.
        QTimer::singleShot(20, QCoreApplication::quit);
    });
    QApplication::exec();
    meter.stop();
    std::printf("A folder of %d files dropped: %d rows in %.0f ms; the event loop held up at most %.0f ms\n", files, editor.schedule().count(),
        double(added - t0) / 1e6, meter.longestMs());
    return 0;
}

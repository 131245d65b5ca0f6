// The list window at scale: dropping a 100,000-file tree, refreshing 10,000 running countdowns,
// and starting up with 10,000 remembered items.
#include "BenchUtil.h"
#include "DesktopWorkspace.h"
#include "ItemTableModel.h"
#include "MainWindow.h"
#include "PowerService.h"
#include "QuillonController.h"
#include "SettingsKeys.h"
#include "ShebangScriptRunner.h"
#include "TimerFdClock.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QSettings>
#include <QTemporaryDir>
#include <QUrl>

#include <fcntl.h>
#include <unistd.h>

using namespace Quillon;

namespace {
void makeTree(const QString &root, int folders, int filesEach)
{
    for (int d = 0; d < folders; ++d) {
        const QByteArray dir = QFile::encodeName(root + QStringLiteral("/d%1/sub").arg(d));
        QDir().mkpath(QString::fromUtf8(dir));
        for (int f = 0; f < filesEach; ++f) {
            const QByteArray file = dir + "/f" + QByteArray::number(f);
            ::close(::open(file.constData(), O_CREAT | O_WRONLY, 0644));
        }
    }
}

struct App
{
    TimerFdClock clock;
    NullPowerService power;
    DesktopWorkspace workspace;
    ShebangScriptRunner scripts;
};
} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QTemporaryDir home;
    useHome(home);

    {
        // Drop: 100 folders of 1,000 files, both folder settings on.
        const QString tree = home.filePath(QStringLiteral("tree"));
        makeTree(tree, 100, 1000);
        App platform;
        QuillonController controller(Platform { platform.clock, platform.power, platform.workspace, platform.scripts });
        controller.preferences().setValues({ { Keys::AddFolderFiles, true }, { Keys::AddFolderFilesRecursively, true }, { Keys::RememberItems, false } });
        controller.awakeFromNib();
        controller.applicationWillFinishLaunching();
        QApplication::processEvents();
        QMimeData data;
        data.setUrls({ QUrl::fromLocalFile(tree) });
        const qint64 t0 = monotonicNs();
        controller.fileListWindow()->model()->dropMimeData(&data, Qt::CopyAction, 0, 0, {});
        QApplication::processEvents();
        std::printf("drop of a 100000-file tree: %.0f ms (%d rows)\n", (monotonicNs() - t0) / 1e6, controller.schedule().count());
    }
    {
        // Refresh: 10,000 running items, window shown.
        App platform;
        QuillonController controller(Platform { platform.clock, platform.power, platform.workspace, platform.scripts });
        controller.awakeFromNib();
        controller.applicationWillFinishLaunching();
        QStringList paths;
        for (int i = 0; i < 10'000; ++i)
            paths << QStringLiteral("/bench/item %1.txt").arg(i);
        QList<QDateTime> dates;
        for (int i = 0; i < 10'000; ++i)
            dates << QDateTime::currentDateTime().addSecs(3600 + i);
        controller.editor().add(paths, dates);
        controller.schedule().startTimers(true);
        QApplication::processEvents();
        QList<qint64> cpu;
        for (int i = 0; i < 50; ++i) {
            const qint64 c0 = cpuNs();
            controller.handleUpdateDisplayTimer();
            QApplication::processEvents();
            cpu << cpuNs() - c0;
        }
        printSpread("display refresh CPU time, 10000 running items", cpu);
    }
    {
        // Start-up with 10,000 remembered items, saved as running.
        const QString files = home.filePath(QStringLiteral("remembered"));
        QDir().mkpath(files);
        QVariantList items, dates;
        for (int i = 0; i < 10'000; ++i) {
            const QByteArray path = QFile::encodeName(files + QStringLiteral("/item%1.txt").arg(i));
            ::close(::open(path.constData(), O_CREAT | O_WRONLY, 0644));
            items << path;
            dates << QDateTime::currentDateTime().addSecs(3600 + i);
        }
        {
            QSettings settings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Quillon"), QStringLiteral("Quillon"));
            settings.clear();
            settings.setValue(QString(Keys::Items), items);
            settings.setValue(QString(Keys::Dates), dates);
            settings.setValue(QString(Keys::TimersRunning), true);
        }
        App platform;
        const qint64 t0 = monotonicNs();
        QuillonController controller(Platform { platform.clock, platform.power, platform.workspace, platform.scripts });
        controller.awakeFromNib();
        controller.applicationWillFinishLaunching();
        QApplication::processEvents();
        std::printf(
            "start-up to a shown, armed window with 10000 items: %.0f ms (%d armed)\n", (monotonicNs() - t0) / 1e6, controller.schedule().timersRemaining());
    }
    return 0;
}

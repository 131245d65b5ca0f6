// Opens documents through the real desktop services, in batches, and prints how much the resident
// memory grew: every opening must leave nothing behind. Takes the count as its argument
// (default 100,000); the handler is /bin/true, so the processes cost little.
#include "BenchUtil.h"
#include "DesktopWorkspace.h"
#include "Log.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <unistd.h>

using namespace Quillon;

namespace {
void write(const QString &path, const QByteArray &text)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    f.open(QIODevice::WriteOnly);
    f.write(text);
}

double residentMB()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    statm.open(QIODevice::ReadOnly);
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return double(fields.value(1).toLongLong() * ::sysconf(_SC_PAGESIZE)) / 1e6;
}
} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const int count = argc > 1 ? QByteArray(argv[1]).toInt() : 100'000;
    QTemporaryDir home;
    qputenv("XDG_DATA_HOME", home.filePath(QStringLiteral("data")).toUtf8());
    qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toUtf8());
    qputenv("XDG_DATA_DIRS", "/usr/share");
    write(home.filePath(QStringLiteral("data/applications/bench-handler.desktop")),
        "[Desktop Entry]\nType=Application\nName=Bench\nMimeType=text/plain;\nExec=/bin/true %f\n");
    write(home.filePath(QStringLiteral("config/mimeapps.list")), "[Default Applications]\ntext/plain=bench-handler.desktop\n");
    // Half with a name that says the type, half without: those are sniffed and opened by URI.
    const QStringList documents { home.filePath(QStringLiteral("docs/notes.txt")), home.filePath(QStringLiteral("docs/notes")) };
    for (const QString &document : documents)
        write(document, "plain text\n");

    setLogSink([](const QString &) {});
    DesktopWorkspace desktop;
    const auto settle = [&desktop] {
        while (desktop.isBusy() || desktop.unreapedChildren() > 0) {
            QCoreApplication::processEvents();
            QThread::msleep(1);
        }
        QCoreApplication::processEvents();
    };
    constexpr int Batch = 500;
    double warm = 0;
    for (int done = 0; done < count; done += Batch) {
        for (int i = 0; i < Batch; ++i)
            desktop.openFile(documents.at(i % 2));
        settle();
        if (done == 0)
            warm = residentMB();
    }
    const double end = residentMB();
    std::printf("resident memory after %d document openings: %.1f MB, %.1f MB more than after the first %d (target <= 5 MB)\n", count, end, end - warm, Batch);
    return 0;
}

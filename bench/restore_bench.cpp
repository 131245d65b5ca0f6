// Start-up with saved items whose files are gone: 500 missing among 10,000, in a home of 200,000
// files. Prints how long resolving the saved list takes with and without the missing ones.
#include "BenchUtil.h"
#include "FileReference.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

using namespace Quillon;

namespace {
constexpr int HomeFiles = 200'000;
constexpr int Items = 10'000;
constexpr int Missing = 500;

void touch(const QByteArray &path)
{
    const int fd = ::open(path.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
    if (fd >= 0)
        ::close(fd);
}

qint64 timeResolve(const QList<QByteArray> &refs, int *found)
{
    const qint64 start = monotonicNs();
    const auto paths = FileReference::resolveAll(refs);
    const qint64 took = monotonicNs() - start;
    *found = int(std::count_if(paths.begin(), paths.end(), [](const auto &p) { return p.has_value(); }));
    return took;
}
} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    const QByteArray root = QFile::encodeName(home.path());
    // The home: 200 folders of 1,000 files, the items' folder among them.
    for (int d = 0; d < HomeFiles / 1000; ++d) {
        const QByteArray dir = root + "/folder" + QByteArray::number(d);
        QDir().mkpath(QFile::decodeName(dir));
        for (int f = 0; f < 1000; ++f)
            touch(dir + "/file" + QByteArray::number(f));
    }
    QList<QByteArray> refs;
    for (int i = 0; i < Items; ++i) {
        const QByteArray path = root + "/folder" + QByteArray::number(i % 200) + "/file" + QByteArray::number(i / 200);
        refs << FileReference::make(QFile::decodeName(path));
    }
    QList<QByteArray> present;
    for (int i = 0; i < Items; ++i) {
        if (i % (Items / Missing) == 0)
            ::unlink((root + "/folder" + QByteArray::number(i % 200) + "/file" + QByteArray::number(i / 200)).constData());
        else
            present << refs.at(i);
    }

    int found = 0;
    timeResolve(present, &found); // warm the caches alike for both runs
    QList<qint64> without, with;
    for (int run = 0; run < 5; ++run) {
        without << timeResolve(present, &found);
        with << timeResolve(refs, &found);
    }
    std::sort(without.begin(), without.end());
    std::sort(with.begin(), with.end());
    std::printf("restore, %d items all present: median %.1f ms\n", int(present.size()), without.at(2) / 1e6);
    std::printf("restore, %d items with %d missing: median %.1f ms (%d found)\n", Items, Missing, with.at(2) / 1e6, found);
    std::printf("added by the missing items: %.1f ms (target under 300 ms)\n", (with.at(2) - without.at(2)) / 1e6);
    return 0;
}

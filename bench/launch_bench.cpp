// Opens 200 documents and 200 executables with Launch All Now and reports how long each item
// kept the event loop from running, then how long the loop went without a turn while the
// programs were being started.
#include "BenchUtil.h"
#include "DesktopWorkspace.h"
#include "Launcher.h"
#include "Log.h"
#include "Preferences.h"
#include "ShebangScriptRunner.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

using namespace Quillon;

namespace {
void write(const QString &path, const QByteArray &text, bool exe = false)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    f.open(QIODevice::WriteOnly);
    f.write(text);
    f.close();
    if (exe)
        f.setPermissions(f.permissions() | QFile::ExeOwner);
}

// Launch All Now holds the event loop for all items, so an item's share is the time from the
// start of its opening to the start of the next one: the opening plus the launcher's own work.
class TimingWorkspace final : public Workspace
{
public:
    explicit TimingWorkspace(Workspace &real)
        : m_real(real)
    { }
    bool openFile(const QString &path, OpenDone done) override
    {
        lap();
        return m_real.openFile(path, std::move(done));
    }
    void lap()
    {
        const qint64 now = monotonicNs();
        if (m_last)
            blocked << now - m_last;
        m_last = now;
    }
    void reset()
    {
        blocked.clear();
        m_last = 0;
    }
    void selectFile(const QString &path) override { m_real.selectFile(path); }
    QIcon iconForFile(const QString &path) override { return m_real.iconForFile(path); }
    bool openUrl(const QUrl &url) override { return m_real.openUrl(url); }
    QList<qint64> blocked;

private:
    Workspace &m_real;
    qint64 m_last = 0;
};

// The longest wait between turns of the event loop over forMs.
double longestGapMs(qint64 forMs)
{
    LoopBlockMeter meter;
    meter.start();
    QEventLoop wait;
    QTimer::singleShot(forMs, &wait, &QEventLoop::quit);
    wait.exec();
    return meter.longestMs();
}
} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir home;
    qputenv("XDG_DATA_HOME", home.filePath(QStringLiteral("data")).toUtf8());
    qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toUtf8());
    write(home.filePath(QStringLiteral("data/applications/bench-handler.desktop")),
        "[Desktop Entry]\nType=Application\nName=Bench\nMimeType=text/plain;\nExec=/bin/true %f\n");
    write(home.filePath(QStringLiteral("config/mimeapps.list")), "[Default Applications]\ntext/plain=bench-handler.desktop\n");
    QStringList documents, programs;
    for (int i = 0; i < 200; ++i) {
        documents << home.filePath(QStringLiteral("docs/%1.txt").arg(i));
        write(documents.last(), "x");
        programs << home.filePath(QStringLiteral("bin/%1").arg(i));
        write(programs.last(), "#!/bin/sh\nexit 0\n", true);
    }

    setLogSink([](const QString &) {});
    Preferences prefs;
    DesktopWorkspace desktop;
    TimingWorkspace workspace(desktop);
    ShebangScriptRunner scripts;
    Launcher launcher(prefs, workspace, scripts);
    QList<qint64> perItem;
    for (const QStringList *set : { &documents, &programs }) {
        const bool docs = set == &documents;
        workspace.reset();
        launcher.launchAllNow(*set);
        workspace.lap();
        printSpread(docs ? "documents, event loop blocked per item" : "executables, event loop blocked per item", workspace.blocked);
        // The programs start and are reaped while the loop keeps turning.
        std::printf("%s, longest wait for an event-loop turn while they start: %.3f ms\n", docs ? "documents" : "executables", longestGapMs(1500));
    }
    return 0;
}

// Opens 200 documents and 200 executables with Launch All Now and reports how long each opening
// kept the event loop from running.
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

// Times each launch call: the event loop cannot run while one is in progress.
class TimingWorkspace final : public Workspace
{
public:
    explicit TimingWorkspace(Workspace &real)
        : m_real(real)
    {
    }
    bool openFile(const QString &path) override
    {
        const qint64 t0 = monotonicNs();
        const bool ok = m_real.openFile(path);
        blocked << monotonicNs() - t0;
        return ok;
    }
    void selectFile(const QString &path) override { m_real.selectFile(path); }
    QIcon iconForFile(const QString &path) override { return m_real.iconForFile(path); }
    bool openUrl(const QUrl &url) override { return m_real.openUrl(url); }
    QList<qint64> blocked;

private:
    Workspace &m_real;
};
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
    Launcher launcher(prefs, workspace, scripts, [](const QString &, const QString &) {});
    QList<qint64> perItem;
    for (const QStringList *set : {&documents, &programs}) {
        workspace.blocked.clear();
        launcher.launchAllNow(*set);
        printSpread(set == &documents ? "documents, event loop blocked per item" : "executables, event loop blocked per item", workspace.blocked);
        // Let the children finish and be reaped before the next round.
        QEventLoop wait;
        QTimer::singleShot(1500, &wait, &QEventLoop::quit);
        wait.exec();
    }
    return 0;
}

#pragma once

#include "Workspace.h"

#include <QMimeDatabase>
#include <QObject>
#include <QThreadPool>

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include <sys/types.h>

namespace Quillon {

// Reaps the programs we start, on a thread of its own, so that a busy event loop neither
// leaves zombies behind nor runs the process out of descriptors. The thread sleeps until a child
// ends or a new one is handed to it.
class ChildReaper final
{
    Q_DISABLE_COPY_MOVE(ChildReaper)
public:
    ChildReaper();
    ~ChildReaper();
    void add(pid_t pid);
    int pending() const;

private:
    struct Child
    {
        pid_t pid;
        int fd; // its pidfd; -1 where the kernel has none
    };
    void run();
    void wake();

    mutable std::mutex m_mutex;
    std::vector<Child> m_children;
    bool m_stopping = false;
    int m_wakeFd;
    std::thread m_thread;
};

// Opens files the way a Linux file manager does on a double click.
//
// Starting a process waits until the child has been scheduled and has exec'd, which takes
// milliseconds when many children start at once on a busy machine. So the event loop only
// checks that there is something to open and queues it; one opener thread resolves the handler
// and spawns, in the order the openings were asked for.
class DesktopWorkspace final : public Workspace
{
public:
    DesktopWorkspace();
    ~DesktopWorkspace() override;
    bool openFile(const QString &path, OpenDone done = {}) override;
    void selectFile(const QString &path) override;
    QIcon iconForFile(const QString &path) override;
    bool openUrl(const QUrl &url) override;

    void finishOpenings(std::chrono::milliseconds limit, std::function<void(int dropped)> done) override;
    bool whileNoProgramStarts(const std::function<void()> &use) override;

    // Whether an opening is queued or under way.
    bool isBusy() const { return m_pending > 0; }
    int unreapedChildren() const { return m_reaper.pending(); }

private:
    // The job returns an error text, empty when the program was started.
    // item: the path whose outcome is reported (none for the file manager and links).
    // job answers why it failed, empty when it did not.
    void inBackground(std::function<QString()> job, const QString &what, OpenedAs as = OpenedAs::Document, OpenDone done = {});

    QMimeDatabase m_mimes;
    ChildReaper m_reaper;
    // Openings asked for and not over yet; while dropping, those that come to their turn are
    // counted instead of run.
    std::atomic<int> m_pending = 0;
    std::atomic<bool> m_dropping = false;
    std::atomic<int> m_dropped = 0;
    // Held by the opener thread while it starts a program.
    std::mutex m_starting;
    // Failures found on the opener thread are logged from the event loop through this.
    QObject m_logContext;
    QThreadPool m_opener;
};

} // namespace Quillon

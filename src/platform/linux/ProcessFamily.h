#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QTimer>

#include <functional>

#include <sys/types.h>

namespace Quillon {

// What a script started, found again whatever process group it moved to. Every process a script
// starts inherits a mark in its environment (unless it clears it on purpose), and Quillon is a
// child subreaper, so what loses its parent comes back to Quillon instead of to init.
namespace ProcessFamily {

inline constexpr char MarkName[] = "QUILLON_SCRIPT_RUN";

// Makes this process the reaper of its orphaned descendants; false where the kernel refuses.
bool becomeSubreaper();
// Which marks (the value after MarkName=) to look for.
using MarkFilter = std::function<bool(const QByteArray &value)>;
// The processes of our own session whose environment holds a mark the filter takes. One that
// started a session of its own is a daemon on purpose: not listed.
QList<pid_t> marked(const MarkFilter &filter);
// Sends the signal to each of them; how many there were.
int signalMarked(const MarkFilter &filter, int signal);
// Reaps the children of ours that have ended and that nobody here waits for: QProcess, GLib and
// our own reaper each hold a pidfd for their children, an orphan handed to us has none.
int reapOrphans();

} // namespace ProcessFamily

// Reaps orphans every second from the event loop, so that none lingers as a zombie.
class OrphanReaper final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrphanReaper)
public:
    explicit OrphanReaper(QObject *parent = nullptr);

private:
    QTimer m_timer;
};

} // namespace Quillon

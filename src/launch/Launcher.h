#pragma once

#include "Launch.h"
#include "ScriptRunner.h"
#include "Workspace.h"

#include <QObject>

#include <QQueue>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <chrono>

#include <functional>

namespace Quillon {

class Preferences;

// Opens one item as the desktop would, or runs it when it is a script, and asks for the mail the
// settings want. What becomes of each launch is told as it happens, with the launch itself.
class Launcher final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Launcher)
public:
    Launcher(Preferences &preferences, Workspace &workspace, ScriptRunner &scripts, QObject *parent = nullptr);

    using Origin = Launch::Origin;
    // Opens the item now, or, while a script runs, once the script and the items before it are
    // done. A row the schedule fires again before its earlier run started is not queued twice;
    // other rows of the same file each get their run.
    void launch(Launch launch);
    // The same for a path alone: item is the row it belongs to (0 for none).
    void launchItem(const QString &path, Origin origin = Origin::Schedule, quint64 item = 0);
    // What the user asked to open now (Open Now, from the window, the History or a notification).
    void openNow(const QStringList &paths);
    // Every item, top row first, now; dates and timers stay as they are.
    void launchAllNow(QStringList paths);
    // A double click shows the row's file in the file manager; it never opens it.
    void doubleAction(int selectedRow, const QStringList &paths);

    // How a script's run ended: detail says what it gave or why it failed.
    enum class ScriptEnd { Finished, Failed, EndedByQuit };
    // How long an item waits behind a running script before it opens beside it.
    void setScriptWait(std::chrono::milliseconds wait) { m_scriptWait = wait; }

    // Exactly "applescript" or "scpt", case and all.
    static bool isScriptPath(const QString &path);

    // At quit: ends a running script (stopped is called once it is gone) and forgets the launches
    // waiting behind it; those that waited.
    QList<Launch> abandon(std::function<void()> stopped = [] {});
    // The schedule was stopped: what its timers queued and has not started yet is dropped; those
    // that were.
    QList<Launch> dropScheduled();
    bool isIdle() const { return !m_scriptRunning && m_waiting.isEmpty(); }
    // Called once, as soon as no script runs and nothing waits (at once when that is so now).
    void whenIdle(std::function<void()> idle);

Q_SIGNALS:
    void opened(const Quillon::Launch &launch, Quillon::Workspace::OpenedAs as);
    void failed(const Quillon::Launch &launch, Quillon::Workspace::OpenFailure why, const QString &detail);
    void scriptEnded(const Quillon::Launch &launch, Quillon::Launcher::ScriptEnd end, const QString &detail);
    // A launch notice or a script's result is to be mailed; launch is what it is about.
    void mailWanted(const Quillon::Launch &launch, const QString &body, const QString &subject);

private:
    void drain();
    void open(const Launch &launch);
    // The items that waited long enough behind a script that still runs open now.
    void openThoseThatWaited();
    void armWaitTimer();
    void scriptFinished(const Launch &launch, const ScriptRunner::Outcome &outcome);

    Preferences &m_preferences;
    Workspace &m_workspace;
    ScriptRunner &m_scripts;
    struct Pending
    {
        Launch launch;
        std::chrono::steady_clock::time_point queued;
    };
    quint64 m_nextSerial = 1;
    QQueue<Pending> m_waiting;
    std::function<void()> m_whenIdle;
    bool m_scriptRunning = false;
    Launch m_runningScript;
    std::chrono::milliseconds m_scriptWait { std::chrono::minutes(1) };
    QTimer m_waitTimer;
    bool m_draining = false;
};

} // namespace Quillon

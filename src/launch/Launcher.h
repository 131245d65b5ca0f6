#pragma once

#include "ScriptRunner.h"

#include <QQueue>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <chrono>

#include <functional>

namespace Quillon {

class Preferences;
class Workspace;

// Opens one item as the desktop would, or runs it when it is a script, and mails what the
// settings ask for.
class Launcher final
{
    Q_DISABLE_COPY_MOVE(Launcher)
public:
    using SendMail = std::function<void(const QString &body, const QString &subject)>;

    Launcher(Preferences &preferences, Workspace &workspace, ScriptRunner &scripts, SendMail sendMail);

    // Who asked: a timer's firing, or the user (Launch All Now, Open Now).
    enum class Origin { Schedule, User };
    // Opens the item now, or, while a script runs, once the script and the items before it are done.
    // item: the row it belongs to (0 for none). A row the schedule fires again before its earlier
    // run started is not queued twice; other rows of the same file each get their run.
    void launchItem(const QString &path, Origin origin = Origin::Schedule, quint64 item = 0);
    // Every item, top row first, now; dates and timers stay as they are.
    void launchAllNow(const QStringList &paths);
    // A double click shows the row's file in the file manager; it never opens it.
    void doubleAction(int selectedRow, const QStringList &paths);

    // How a script's run ended, for the history: detail says what it gave or why it failed.
    enum class ScriptEnd { Finished, Failed, EndedByQuit };
    using ScriptReport = std::function<void(const QString &path, ScriptEnd end, const QString &detail)>;
    void setScriptReport(ScriptReport report) { m_report = std::move(report); }
    // An item that waited behind a running script for longer than the wait limit opens beside it,
    // late; reason says for what it waited ("waited 60 s for backup.sh, which still runs").
    using LateReport = std::function<void(const QString &path, const QString &reason)>;
    void setLateReport(LateReport report) { m_lateReport = std::move(report); }
    // How long an item waits behind a running script before it opens beside it.
    void setScriptWait(std::chrono::milliseconds wait) { m_scriptWait = wait; }

    // Exactly "applescript" or "scpt", case and all.
    static bool isScriptPath(const QString &path);

    // At quit: ends a running script (stopped is called once it is gone) and forgets the launches
    // waiting behind it; the paths that waited.
    QStringList abandon(std::function<void()> stopped = [] {});
    // The schedule was stopped: what its timers queued and has not started yet is dropped; the
    // paths that were.
    QStringList dropScheduled();
    bool isIdle() const { return !m_scriptRunning && m_waiting.isEmpty(); }
    // Called once, as soon as no script runs and nothing waits (at once when that is so now).
    void whenIdle(std::function<void()> idle);

private:
    void drain();
    void open(const QString &path);
    // The items that waited long enough behind a script that still runs open now.
    void openThoseThatWaited();
    void armWaitTimer();
    void scriptFinished(const QString &path, const ScriptRunner::Outcome &outcome);

    Preferences &m_preferences;
    Workspace &m_workspace;
    ScriptRunner &m_scripts;
    SendMail m_sendMail;
    struct Pending
    {
        QString path;
        Origin origin;
        quint64 item;
        std::chrono::steady_clock::time_point queued;
    };
    QQueue<Pending> m_waiting;
    std::function<void()> m_whenIdle;
    bool m_scriptRunning = false;
    QString m_runningScript;
    ScriptReport m_report;
    LateReport m_lateReport;
    std::chrono::milliseconds m_scriptWait { std::chrono::minutes(1) };
    QTimer m_waitTimer;
    bool m_draining = false;
};

} // namespace Quillon

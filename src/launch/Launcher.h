#pragma once

#include "ScriptRunner.h"

#include <QQueue>
#include <QString>
#include <QStringList>

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
    // A script the schedule fires again before its earlier run started is not queued twice.
    void launchItem(const QString &path, Origin origin = Origin::Schedule);
    // Every item, top row first, now; dates and timers stay as they are.
    void launchAllNow(const QStringList &paths);
    // A double click shows the row's file in the file manager; it never opens it.
    void doubleAction(int selectedRow, const QStringList &paths);

    // How a script's run ended, for the history: detail says what it gave or why it failed.
    enum class ScriptEnd { Finished, Failed, EndedByQuit };
    using ScriptReport = std::function<void(const QString &path, ScriptEnd end, const QString &detail)>;
    void setScriptReport(ScriptReport report) { m_report = std::move(report); }

    // Exactly "applescript" or "scpt", case and all.
    static bool isScriptPath(const QString &path);

    // At quit: ends a running script (stopped is called once it is gone) and forgets the launches
    // waiting behind it; the paths that waited.
    QStringList abandon(std::function<void()> stopped = [] {});
    // The schedule was stopped: what its timers queued and has not started yet is dropped.
    void dropScheduled();
    bool isIdle() const { return !m_scriptRunning && m_waiting.isEmpty(); }
    // Called once, as soon as no script runs and nothing waits (at once when that is so now).
    void whenIdle(std::function<void()> idle);

private:
    void drain();
    void scriptFinished(const QString &path, const ScriptRunner::Outcome &outcome);

    Preferences &m_preferences;
    Workspace &m_workspace;
    ScriptRunner &m_scripts;
    SendMail m_sendMail;
    struct Pending
    {
        QString path;
        Origin origin;
    };
    QQueue<Pending> m_waiting;
    std::function<void()> m_whenIdle;
    bool m_scriptRunning = false;
    QString m_runningScript;
    ScriptReport m_report;
    bool m_draining = false;
};

} // namespace Quillon

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

    // Opens the item now, or, while a script runs, once the script and the items before it are done.
    void launchItem(const QString &path);
    // Every item, top row first, now; dates and timers stay as they are.
    void launchAllNow(const QStringList &paths);
    // A double click shows the row's file in the file manager; it never opens it.
    void doubleAction(int selectedRow, const QStringList &paths);

    // Exactly "applescript" or "scpt", case and all.
    static bool isScriptPath(const QString &path);

    // At quit: ends a running script and forgets the launches waiting behind it; how many waited.
    int abandon();

private:
    void drain();
    void scriptFinished(const ScriptRunner::Outcome &outcome);

    Preferences &m_preferences;
    Workspace &m_workspace;
    ScriptRunner &m_scripts;
    SendMail m_sendMail;
    QQueue<QString> m_waiting;
    bool m_scriptRunning = false;
    bool m_draining = false;
};

} // namespace Quillon

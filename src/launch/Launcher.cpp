#include "Launcher.h"

#include "Log.h"
#include "MailSettings.h"
#include "Preferences.h"
#include "ScriptRunner.h"
#include "SettingsKeys.h"
#include "Texts.h"
#include "Workspace.h"

namespace Quillon {

Launcher::Launcher(Preferences &preferences, Workspace &workspace, ScriptRunner &scripts, SendMail sendMail)
    : m_preferences(preferences)
    , m_workspace(workspace)
    , m_scripts(scripts)
    , m_sendMail(std::move(sendMail))
{
}

bool Launcher::isScriptPath(const QString &path)
{
    const QString name = path.section(QLatin1Char('/'), -1);
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    if (dot < 0)
        return false;
    const QStringView extension = QStringView(name).mid(dot + 1);
    return extension == QLatin1String("applescript") || extension == QLatin1String("scpt");
}

void Launcher::launchItem(const QString &path, Origin origin)
{
    // A repeating script that runs longer than its period would otherwise pile up a run per
    // period without end; its firings collapse into the one run that already waits.
    if (origin == Origin::Schedule && isScriptPath(path)) {
        for (const Pending &pending : std::as_const(m_waiting)) {
            if (pending.origin == Origin::Schedule && pending.path == path)
                return;
        }
    }
    m_waiting.enqueue({path, origin});
    drain();
}

void Launcher::dropScheduled()
{
    m_waiting.removeIf([](const Pending &pending) { return pending.origin == Origin::Schedule; });
    drain();
}

void Launcher::whenIdle(std::function<void()> idle)
{
    m_whenIdle = std::move(idle);
    drain();
}

// One script at a time, and nothing overtakes it: what falls due meanwhile opens after it, in order.
void Launcher::drain()
{
    if (m_draining)
        return;
    m_draining = true;
    while (!m_scriptRunning && !m_waiting.isEmpty()) {
        const QString path = m_waiting.dequeue().path;
        if (isScriptPath(path)) {
            m_scriptRunning = true;
            m_runningScript = path;
            m_preferences.synchronize();
            m_scripts.setTimeLimit(std::chrono::seconds(m_preferences.contains(Keys::ScriptTimeLimit) ? qMax(0, m_preferences.intValue(Keys::ScriptTimeLimit)) : 600));
            m_scripts.start(path, [this, path](const ScriptRunner::Outcome &outcome) {
                m_scriptRunning = false;
                scriptFinished(path, outcome);
                drain();
            });
            continue;
        }
        m_workspace.openFile(path);
        if (MailSettings(m_preferences).sendEmail())
            m_sendMail(path, Texts::LaunchedSubject);
        else
            systemLog(Texts::EmailOff);
    }
    m_draining = false;
    if (isIdle() && m_whenIdle)
        std::exchange(m_whenIdle, {})();
}

void Launcher::scriptFinished(const QString &path, const ScriptRunner::Outcome &outcome)
{
    if (m_report) {
        const QString ran = QStringLiteral("ran %1 s").arg(double(outcome.ran.count()) / 1000.0, 0, 'f', 1);
        if (!outcome.loaded)
            m_report(path, ScriptEnd::Failed, QStringLiteral("it could not be read, or names no interpreter"));
        else if (!outcome.result)
            m_report(path, ScriptEnd::Failed, outcome.problem + QStringLiteral(", ") + ran);
        else
            m_report(path, ScriptEnd::Finished, ran + QStringLiteral(": ") + outcome.result->stringValue().value_or(QString()).left(200).simplified());
    }
    if (!outcome.loaded || !outcome.result)
        return;
    const ScriptDescriptor &result = *outcome.result;

    std::optional<QString> text;
    if (result.type != ScriptDescriptor::Type::List) {
        text = result.stringValue();
    } else if (result.numberOfItems() > 0) {
        // Position 0 never names an item (they count from 1), so a list never yields text.
        if (const auto first = result.descriptorAtIndex(0))
            text = first->stringValue();
    }

    m_preferences.synchronize();
    if (text && m_preferences.boolValue(Keys::EmailScriptResults))
        m_sendMail(*text, Texts::ScriptResultSubject);
}

void Launcher::launchAllNow(const QStringList &paths)
{
    const QStringList snapshot = paths;
    for (const QString &path : snapshot)
        launchItem(path, Origin::User);
}

QStringList Launcher::abandon(std::function<void()> stopped)
{
    if (m_scriptRunning && m_report)
        m_report(m_runningScript, ScriptEnd::EndedByQuit, {});
    if (m_scriptRunning)
        m_scripts.stop(std::move(stopped));
    else
        stopped();
    m_scriptRunning = false;
    QStringList waiting;
    for (const Pending &pending : std::as_const(m_waiting))
        waiting << pending.path;
    m_waiting.clear();
    m_whenIdle = {};
    return waiting;
}

void Launcher::doubleAction(int selectedRow, const QStringList &paths)
{
    if (selectedRow < 0 || selectedRow >= paths.size())
        return;
    const QString path = paths.at(selectedRow);
    if (!path.isEmpty())
        m_workspace.selectFile(path);
}

} // namespace Quillon

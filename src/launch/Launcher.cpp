#include "Launcher.h"

#include "FileTrust.h"

#include "Log.h"
#include "MailSettings.h"
#include "Preferences.h"
#include "ScriptRunner.h"
#include "SettingsKeys.h"
#include "Texts.h"
#include "Workspace.h"

#include <QPointer>

namespace Quillon {

Launcher::Launcher(Preferences &preferences, Workspace &workspace, ScriptRunner &scripts, QObject *parent)
    : QObject(parent)
    , m_preferences(preferences)
    , m_workspace(workspace)
    , m_scripts(scripts)
{
    qRegisterMetaType<Launch>();
    m_waitTimer.setSingleShot(true);
    connect(&m_waitTimer, &QTimer::timeout, this, &Launcher::openThoseThatWaited);
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

namespace {
// Why it failed, with what it said: "exit status 3, ran 0.0 s; output: …; errors: …".
QString failureDetail(const ScriptRunner::Outcome &outcome, const QString &ran)
{
    QString detail = outcome.problem + QStringLiteral(", ") + ran;
    if (!outcome.firstOutput.isEmpty())
        detail += QStringLiteral("; output: ") + outcome.firstOutput;
    if (!outcome.firstErrors.isEmpty())
        detail += QStringLiteral("; errors: ") + outcome.firstErrors;
    return detail;
}
} // namespace

void Launcher::launchItem(const QString &path, Origin origin, quint64 item)
{
    Launch launch;
    launch.path = path;
    launch.origin = origin;
    launch.item = item;
    this->launch(std::move(launch));
}

void Launcher::openNow(const QStringList &paths)
{
    for (const QString &path : paths)
        launchItem(path, Origin::User);
}

void Launcher::launch(Launch launch)
{
    // A repeating item that comes round again while its last run still waits (behind a script
    // that runs longer than the period) would pile up a run per period without end: its firings
    // collapse into the one that waits. Only a row's own: the same file on two rows runs twice.
    if (launch.origin == Origin::Schedule && launch.item != 0) {
        for (const Pending &pending : std::as_const(m_waiting)) {
            if (pending.launch.origin == Origin::Schedule && pending.launch.item == launch.item)
                return;
        }
    }
    launch.serial = m_nextSerial++;
    m_waiting.enqueue({ std::move(launch), std::chrono::steady_clock::now() });
    drain();
}

void Launcher::armWaitTimer()
{
    if (!m_scriptRunning || m_waitTimer.isActive())
        return;
    for (const Pending &pending : std::as_const(m_waiting)) {
        if (isScriptPath(pending.launch.path))
            continue;
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(pending.queued + m_scriptWait - std::chrono::steady_clock::now());
        m_waitTimer.start(std::max(left, std::chrono::milliseconds(0)));
        return;
    }
}

// Scripts keep their turn, one at a time; a document or program does not wait for ever behind a
// script that still runs (a backup of two hours): it opens beside it, and the record says why late.
void Launcher::openThoseThatWaited()
{
    if (!m_scriptRunning)
        return;
    const auto now = std::chrono::steady_clock::now();
    const QString script = m_runningScript.path.section(QLatin1Char('/'), -1);
    QList<Pending> ready;
    m_waiting.removeIf([&](const Pending &pending) {
        if (isScriptPath(pending.launch.path) || now - pending.queued < m_scriptWait)
            return false;
        ready << pending;
        return true;
    });
    for (Pending &pending : ready) {
        const auto waited = std::chrono::duration_cast<std::chrono::seconds>(now - pending.queued);
        pending.launch.waitedFor = QStringLiteral("waited %1 s for %2, which still runs").arg(waited.count()).arg(script);
        systemLog(QStringLiteral("%1 opens now: it %2.").arg(pending.launch.path, pending.launch.waitedFor));
        open(pending.launch);
    }
    armWaitTimer();
}

QList<Launch> Launcher::dropScheduled()
{
    QList<Launch> dropped;
    m_waiting.removeIf([&dropped](const Pending &pending) {
        if (pending.launch.origin == Origin::Schedule)
            dropped << pending.launch;
        return pending.launch.origin == Origin::Schedule;
    });
    drain();
    return dropped;
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
        const Launch launch = m_waiting.dequeue().launch;
        const QString &path = launch.path;
        if (isScriptPath(path)) {
            if (const QString why = FileTrust::whyNotRun(path, FileTrust::Kind::Script); !why.isEmpty()) {
                Q_EMIT scriptEnded(launch, ScriptEnd::Failed, why);
                continue;
            }
            m_scriptRunning = true;
            m_runningScript = launch;
            m_preferences.synchronize();
            // None unless the user sets one: a script runs to its end, as long as it takes.
            m_scripts.setTimeLimit(std::chrono::seconds(qMax(0, m_preferences.intValue(Keys::ScriptTimeLimit))));
            m_scripts.start(path, [this, launch](const ScriptRunner::Outcome &outcome) {
                m_scriptRunning = false;
                scriptFinished(launch, outcome);
                drain();
            });
            continue;
        }
        open(launch);
    }
    m_draining = false;
    armWaitTimer();
    if (isIdle() && m_whenIdle)
        std::exchange(m_whenIdle, {})();
}

void Launcher::open(const Launch &launch)
{
    m_workspace.openFile(launch.path, [self = QPointer(this), launch](const Workspace::Opening &opening) {
        if (!self)
            return;
        if (opening.failure == Workspace::OpenFailure::None)
            Q_EMIT self->opened(launch, opening.as);
        else
            Q_EMIT self->failed(launch, opening.failure, opening.detail);
    });
    if (MailSettings(m_preferences).sendEmail())
        Q_EMIT mailWanted(launch, launch.path, Texts::LaunchedSubject);
    else
        systemLog(Texts::EmailOff);
}

void Launcher::scriptFinished(const Launch &launch, const ScriptRunner::Outcome &outcome)
{
    const QString ran = QStringLiteral("ran %1 s").arg(double(outcome.ran.count()) / 1000.0, 0, 'f', 1);
    if (!outcome.loaded)
        Q_EMIT scriptEnded(launch, ScriptEnd::Failed, QStringLiteral("it could not be read, or names no interpreter"));
    else if (!outcome.result)
        Q_EMIT scriptEnded(launch, ScriptEnd::Failed, failureDetail(outcome, ran));
    else
        Q_EMIT scriptEnded(launch, ScriptEnd::Finished, ran + QStringLiteral(": ") + outcome.result->stringValue().value_or(QString()).left(200).simplified());
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
        Q_EMIT mailWanted(launch, *text, Texts::ScriptResultSubject);
}

// By value: launching may change the list the caller's reference names.
void Launcher::launchAllNow(QStringList paths)
{
    for (const QString &path : std::as_const(paths))
        launchItem(path, Origin::User);
}

QList<Launch> Launcher::abandon(std::function<void()> stopped)
{
    if (m_scriptRunning)
        Q_EMIT scriptEnded(m_runningScript, ScriptEnd::EndedByQuit, {});
    // Always asked: what finished scripts left running in the session is ended too.
    m_scripts.stop(std::move(stopped));
    m_scriptRunning = false;
    m_waitTimer.stop();
    QList<Launch> waiting;
    for (const Pending &pending : std::as_const(m_waiting))
        waiting << pending.launch;
    m_waiting.clear();
    m_whenIdle = {};
    return waiting;
}

void Launcher::doubleAction(int selectedRow, const QStringList &paths)
{
    if (selectedRow < 0 || selectedRow >= paths.size())
        return;
    const QString &path = paths.at(selectedRow);
    if (!path.isEmpty())
        m_workspace.selectFile(path);
}

} // namespace Quillon

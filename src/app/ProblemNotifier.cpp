#include "ProblemNotifier.h"

#include "Notifications.h"
#include "Preferences.h"
#include "SettingsKeys.h"
#include "WallClock.h"

namespace Quillon {
namespace {
constexpr qint64 ReplaceWithinMSecs = 60'000;
const QString ShowHistory = QStringLiteral("show-history");
const QString OpenMissed = QStringLiteral("open-missed");
} // namespace

ProblemNotifier::ProblemNotifier(Notifications &notifications, Preferences &preferences, WallClock &clock, QObject *parent)
    : QObject(parent)
    , m_notifications(notifications)
    , m_preferences(preferences)
    , m_clock(clock)
{
    connect(&notifications, &Notifications::actionInvoked, this, [this](uint id, const QString &key) {
        if (key == ShowHistory || key == QLatin1String("default")) {
            Q_EMIT historyRequested();
            return;
        }
        const Shown missed = m_shown.value(Group::Missed);
        if (key == OpenMissed && id == missed.id && id != 0)
            Q_EMIT openNowRequested(missed.items);
    });
}

std::optional<ProblemNotifier::Group> ProblemNotifier::groupOf(History::Kind kind)
{
    switch (kind) {
    case History::Kind::OpenFailed:
        return Group::OpenFailed;
    case History::Kind::Missed:
    case History::Kind::MissedWhileOff:
        return Group::Missed;
    case History::Kind::ScriptFailed:
        return Group::ScriptFailed;
    case History::Kind::MailRefused:
    case History::Kind::MailFailed:
        return Group::Mail;
    case History::Kind::OpenedLate:
        return Group::Late;
    case History::Kind::Opened:
    case History::Kind::ScriptFinished:
        return Group::Launch;
    // At quit: the session is going away, the history keeps them.
    case History::Kind::ScriptEndedByQuit:
    case History::Kind::NotStarted:
    case History::Kind::DidNotQuit:
    case History::Kind::DatesMoved:
    case History::Kind::MailSent:
        return std::nullopt;
    }
    return std::nullopt;
}

void ProblemNotifier::notice(const History::Record &record)
{
    const std::optional<Group> group = groupOf(record.kind);
    if (!group)
        return;
    if (*group == Group::Late)
        caughtUp(record.path);
    const bool problems = m_preferences.boolValue(Keys::NotifyProblems);
    if (*group == Group::Launch ? !m_preferences.boolValue(Keys::NotifyEveryLaunch) : !problems)
        return;
    Shown &shown = m_shown[*group];
    const qint64 now = m_clock.nowMSecs();
    if (shown.items.isEmpty() || now - shown.lastMSecs > ReplaceWithinMSecs) {
        shown.items.clear();
        shown.id = 0;
        ++shown.generation;
    }
    shown.lastMSecs = now;
    if (!record.path.isEmpty() && !shown.items.contains(record.path))
        shown.items << record.path;
    shown.reason = record.detail;
    shown.kind = record.kind;
    shown.reasons.insert(record.path, record.detail);
    show(*group);
}

void ProblemNotifier::caughtUp(const QString &path)
{
    Shown &missed = m_shown[Group::Missed];
    if (!missed.items.removeOne(path))
        return;
    if (!missed.items.isEmpty()) {
        show(Group::Missed);
        return;
    }
    // Nothing is left to open: the notice and its Open Now go; the late one says what happened.
    // A notice still on its way is closed when the server's answer gives its id.
    if (missed.waiting)
        m_withdrawnMissed = missed.generation;
    else
        m_notifications.close(missed.id);
    const int generation = missed.generation + 1;
    missed = Shown {};
    missed.generation = generation;
}

void ProblemNotifier::show(Group group)
{
    Shown &shown = m_shown[group];
    // One call at a time per notification: until the server gave its id, a second would show a
    // second notification instead of updating the first.
    if (shown.waiting) {
        shown.again = true;
        return;
    }
    shown.waiting = true;
    const int n = int(std::max<qsizetype>(shown.items.size(), 1));
    QStringList names;
    for (const QString &path : shown.items.mid(0, 5))
        names << path.section(QLatin1Char('/'), -1);
    if (shown.items.size() > 5)
        names << tr("and %1 more").arg(shown.items.size() - 5);
    QString summary;
    QString body = names.join(QLatin1Char('\n'));
    QStringList actions;
    switch (group) {
    case Group::OpenFailed:
        summary = tr("%n item(s) could not be opened", nullptr, n);
        if (n == 1)
            body += QLatin1String(": ") + shown.reason;
        break;
    case Group::Missed:
        if (shown.kind == History::Kind::MissedWhileOff)
            summary = tr("%n item(s) missed while Quillon was not running", nullptr, n);
        else
            summary = tr("%n item(s) missed while the computer slept", nullptr, n);
        actions << OpenMissed << tr("Open Now");
        break;
    case Group::ScriptFailed: {
        summary = tr("%n script(s) failed", nullptr, n);
        // Each with its own reason: three failures are three stories.
        QStringList lines;
        for (const QString &path : shown.items.mid(0, 5))
            lines << path.section(QLatin1Char('/'), -1) + QLatin1String(": ") + shown.reasons.value(path, shown.reason);
        if (shown.items.size() > 5)
            lines << tr("and %1 more").arg(shown.items.size() - 5);
        body = lines.join(QLatin1Char('\n'));
        break;
    }
    case Group::Late:
        summary = tr("%n missed item(s) opened late", nullptr, n);
        break;
    case Group::Mail:
        summary = tr("Mail could not be sent");
        body = shown.reason;
        break;
    case Group::Launch:
        summary = tr("Quillon opened %n item(s)", nullptr, n);
        break;
    }
    actions << ShowHistory << tr("Show History");
    m_notifications.notify(shown.id, summary, body, actions, [this, group, generation = shown.generation](uint id) {
        Shown &now = m_shown[group];
        now.waiting = false;
        // An answer for a notification that has since been left behind names no current one; one
        // withdrawn meanwhile (its missed items all caught up) goes as soon as it has an id.
        if (id != 0 && generation == now.generation)
            now.id = id;
        else if (id != 0 && group == Group::Missed && generation == m_withdrawnMissed)
            m_notifications.close(id);
        if (std::exchange(now.again, false))
            show(group);
    });
}

} // namespace Quillon

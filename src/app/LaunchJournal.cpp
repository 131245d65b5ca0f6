#include "LaunchJournal.h"

#include "History.h"
#include "MailDispatcher.h"
#include "Preferences.h"
#include "Schedule.h"
#include "SettingsKeys.h"
#include "WallClock.h"

namespace Quillon {

LaunchJournal::LaunchJournal(
    Schedule &schedule, Launcher &launcher, History &history, MailDispatcher &mail, Preferences &preferences, WallClock &clock, QObject *parent)
    : QObject(parent)
    , m_schedule(schedule)
    , m_history(history)
    , m_mail(mail)
    , m_preferences(preferences)
    , m_clock(clock)
{
    const auto fire = [&launcher](const QString &path, const QDateTime &date, quint64 item, bool caughtUp) {
        Launch launch;
        launch.path = path;
        launch.item = item;
        launch.due = date;
        launch.origin = Launch::Origin::Schedule;
        launch.caughtUp = caughtUp;
        launcher.launch(std::move(launch));
    };
    connect(&schedule, &Schedule::launched, this, [fire](const QString &path, const QDateTime &date, quint64 item) { fire(path, date, item, false); });
    connect(&schedule, &Schedule::caughtUp, this, [fire](const QString &path, const QDateTime &date, quint64 item) { fire(path, date, item, true); });
    connect(&schedule, &Schedule::missed, this, [this](const QString &path, const QDateTime &date, Schedule::MissedWhile when, bool skipped) {
        const bool asleep = when == Schedule::MissedWhile::Asleep;
        QString why = asleep ? QStringLiteral("the computer was asleep") : QStringLiteral("Quillon was not running");
        if (skipped)
            why += QStringLiteral(", skipped by its policy");
        m_history.record(asleep ? History::Kind::Missed : History::Kind::MissedWhileOff, path, date, why);
    });
    connect(&launcher, &Launcher::opened, this, &LaunchJournal::opened);
    connect(&launcher, &Launcher::failed, this, [this](const Launch &launch, Workspace::OpenFailure, const QString &detail) { failed(launch, detail); });
    connect(&launcher, &Launcher::scriptEnded, this, &LaunchJournal::scriptEnded);
    connect(&launcher, &Launcher::mailWanted, this,
        [this](const Launch &launch, const QString &body, const QString &subject) { sendMail(body, subject, launch.path); });
}

// The row the launch came from learns what became of it; what the user opened belongs to none.
void LaunchJournal::tellRow(const Launch &launch, int kind, const QString &reason)
{
    if (launch.item != 0)
        m_schedule.setOutcome(launch.item, { Schedule::Outcome::Kind(kind), reason });
}

void LaunchJournal::opened(const Launch &launch, Workspace::OpenedAs as)
{
    const QString how = Workspace::text(as);
    QString late = launch.waitedFor;
    if (late.isEmpty() && launch.caughtUp)
        late = History::latenessText(launch.due.secsTo(m_clock.now()));
    if (late.isEmpty()) {
        m_history.record(History::Kind::Opened, launch.path, launch.due, how);
        tellRow(launch, int(Schedule::Outcome::Kind::Opened), {});
        return;
    }
    m_history.record(History::Kind::OpenedLate, launch.path, launch.due, QStringLiteral("%1, %2").arg(how, late));
    tellRow(launch, int(Schedule::Outcome::Kind::OpenedLate), late);
}

void LaunchJournal::failed(const Launch &launch, const QString &detail)
{
    m_history.record(History::Kind::OpenFailed, launch.path, launch.due, detail);
    tellRow(launch, int(Schedule::Outcome::Kind::Failed), detail);
}

void LaunchJournal::scriptEnded(const Launch &launch, Launcher::ScriptEnd end, const QString &detail)
{
    static constexpr History::Kind kinds[] = { History::Kind::ScriptFinished, History::Kind::ScriptFailed, History::Kind::ScriptEndedByQuit };
    m_history.record(kinds[int(end)], launch.path, launch.due, detail);
    if (end != Launcher::ScriptEnd::EndedByQuit)
        tellRow(launch, int(end == Launcher::ScriptEnd::Finished ? Schedule::Outcome::Kind::Opened : Schedule::Outcome::Kind::Failed), detail);
}

void LaunchJournal::notStarted(const QList<Launch> &launches, const QString &why)
{
    for (const Launch &launch : launches) {
        m_history.record(History::Kind::NotStarted, launch.path, launch.due, why);
        tellRow(launch, int(Schedule::Outcome::Kind::NotStarted), why);
    }
}

// An item whose moment had passed before Quillon stopped running (opened then, added with a past
// date, dropped by Stop) is not missed, whatever the history holds.
void LaunchJournal::missedWhileOff(bool wasRunning, const std::optional<QDateTime> &runningUntil)
{
    if (!wasRunning || !runningUntil)
        return;
    const QDateTime now = m_clock.now();
    QList<int> missed;
    for (int row = 0; row < m_schedule.count() && row < m_schedule.dates().size(); ++row) {
        const QDateTime date = m_schedule.dates().at(row);
        if (date > *runningUntil && date <= now)
            missed << row;
    }
    if (!missed.isEmpty())
        m_schedule.settleMissed(missed, Schedule::MissedWhile::NotRunning);
}

SimpleSMTP *LaunchJournal::sendMail(const QString &body, const QString &subject, const QString &path)
{
    SimpleSMTP *delivery = m_mail.send(body, subject);
    connect(delivery, &SimpleSMTP::finished, this, [this, delivery, path, subject] {
        const History::Kind kind = delivery->wasSent() ? History::Kind::MailSent
            : delivery->wasRefused()                   ? History::Kind::MailRefused
                                                       : History::Kind::MailFailed;
        m_history.record(kind, path, {}, delivery->wasSent() ? subject : delivery->problem());
    });
    return delivery;
}

} // namespace Quillon

#pragma once

#include "Launch.h"
#include "Launcher.h"

#include <QDateTime>
#include <QObject>

#include <optional>

namespace Quillon {

class History;
class MailDispatcher;
class Preferences;
class Schedule;
class SimpleSMTP;
class WallClock;

// What became of every launch, from the typed reports of the schedule, the launcher and the mail:
// one record each in the history (which feeds the notifications and the History window) and the
// row's outcome in the table, always for the row and moment the launch carries.
class LaunchJournal final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LaunchJournal)
public:
    LaunchJournal(
        Schedule &schedule, Launcher &launcher, History &history, MailDispatcher &mail, Preferences &preferences, WallClock &clock, QObject *parent = nullptr);

    // Launches that were queued and will not run; why, for the record and the row.
    void notStarted(const QList<Launch> &launches, const QString &why);
    // A schedule saved as running whose items' moments came after it was last seen running:
    // nobody was there to open them. Recorded, and caught up when the preferences say so.
    void missedWhileOff(bool wasRunning, const std::optional<QDateTime> &runningUntil);
    // Mail about a launch (launch.path names it) or about nothing (the test message): the
    // delivery is recorded when it is over. The pointer is for watching it.
    SimpleSMTP *sendMail(const QString &body, const QString &subject, const QString &path = {});

private:
    void opened(const Launch &launch, Workspace::OpenedAs as);
    void failed(const Launch &launch, const QString &detail);
    void scriptEnded(const Launch &launch, Launcher::ScriptEnd end, const QString &detail);
    void tellRow(const Launch &launch, int kind, const QString &reason);

    Schedule &m_schedule;
    History &m_history;
    MailDispatcher &m_mail;
    Preferences &m_preferences;
    WallClock &m_clock;
};

} // namespace Quillon

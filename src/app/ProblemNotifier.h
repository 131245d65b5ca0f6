#pragma once

#include "History.h"

#include <QHash>
#include <QObject>

namespace Quillon {

class Notifications;
class Preferences;
class WallClock;

// Turns what the history records into desktop notifications: one per kind of problem (and, when
// asked for, per launch), grouped, and updated in place rather than piled up when the next one
// of its kind comes within a minute.
class ProblemNotifier final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ProblemNotifier)
public:
    ProblemNotifier(Notifications &notifications, Preferences &preferences, WallClock &clock, QObject *parent = nullptr);
    void notice(const History::Record &record);

Q_SIGNALS:
    void historyRequested();
    void openNowRequested(const QStringList &paths);

private:
    enum class Group { OpenFailed, Missed, Late, ScriptFailed, Mail, Launch };
    struct Shown
    {
        uint id = 0;
        qint64 lastMSecs = 0;
        QStringList items;
        QString reason;
        History::Kind kind = History::Kind::Opened; // of the last one told
        QHash<QString, QString> reasons; // each item's own, where they differ (failed scripts)
        int generation = 0;
        bool waiting = false;
        bool again = false;
    };
    static std::optional<Group> groupOf(History::Kind kind);
    void show(Group group);
    // A missed item that catch-up is opening is no longer missed: without it, the missed notice
    // offers Open Now only for the rest, and gives way to the late one when none is left.
    void caughtUp(const QString &path);

    Notifications &m_notifications;
    Preferences &m_preferences;
    WallClock &m_clock;
    QHash<Group, Shown> m_shown;
    int m_withdrawnMissed = -1;
};

} // namespace Quillon

#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QString>

namespace Quillon {

// One launch, from its firing (or the user's asking) to what became of it. Every report about it
// carries it whole, so that what happened is told of the right row and moment, whatever else
// shares its path.
struct Launch
{
    enum class Origin { Schedule, User };
    quint64 serial = 0; // unique in this run
    QString path;
    quint64 item = 0; // the row's identity; 0 for none (what the user opened)
    QDateTime due; // the moment it was due; none for what the user opened
    Origin origin = Origin::User;
    bool caughtUp = false; // its time passed unseen, and it opens late
    QString waitedFor; // why it opened late behind a script that still ran
};

} // namespace Quillon

Q_DECLARE_METATYPE(Quillon::Launch)

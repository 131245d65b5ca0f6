#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

namespace Quillon {

// When the schedule last ran, kept in the state folder: the one fact that tells which items were
// missed while Quillon was not running. An item was missed only if its moment came after the
// schedule was last seen running (so it was armed, and nobody opened it). The history records
// what happened; it is not asked what was due.
class Heartbeat final
{
public:
    struct Last
    {
        // The last moment Quillon was seen with the schedule running; none when it was stopped.
        std::optional<QDateTime> runningUntil;
        // False when the process ended without its quit (killed, a crash, a power cut).
        bool quitNormally = true;
        // When the list was last saved: what changed after it was lost, if the quit never came.
        QDateTime savedAt;
    };

    explicit Heartbeat(QString fileName);

    // What the file says; a missing file (the first start of a version that keeps it) reads as the
    // settings file's last save with the schedule running until then, as the list last saved says.
    Last read(const QString &settingsFile) const;
    // Quillon runs: a kill from now on is told at the next start.
    void begin(const QDateTime &now, bool running);
    // Said again while the schedule runs (at each change and firing, and now and then).
    void beat(const QDateTime &now, bool running);
    // The list was saved at the quit.
    void quit(const QDateTime &now, bool running);

private:
    void write(const std::optional<QDateTime> &runningUntil, bool quitNormally);

    QString m_fileName;
    QDateTime m_savedAt;
};

} // namespace Quillon

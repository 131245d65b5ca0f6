#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariant>

#include <QSqlError>

#include <atomic>
#include <memory>
#include <optional>

class QTimer;

namespace Quillon {

class WallClock;

// What Quillon did, for the user who was not watching: every launch, failure, missed item and
// mail, kept in an SQLite file of its own. The schedule never depends on it: a file that another
// program holds, or on a full disk, is written when it can be (the records wait in memory); only
// a file SQLite itself calls damaged is set aside; without any file Quillon goes on.
class History final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(History)
public:
    // Stored as numbers: never renumber.
    enum class Kind {
        Opened = 1,
        OpenFailed = 2,
        ScriptFinished = 3,
        ScriptFailed = 4,
        ScriptEndedByQuit = 5,
        Missed = 6,
        OpenedLate = 7,
        MailSent = 8,
        MailRefused = 9,
        MailFailed = 10,
        NotStarted = 11,
        DidNotQuit = 12,
        DatesMoved = 13,
        MissedWhileOff = 14, // Missed is while the computer slept
        LastKind = MissedWhileOff
    };
    struct Record
    {
        QDateTime at;
        QString path;
        QDateTime scheduled; // none for what the user started
        Kind kind = Kind::Opened;
        QString detail;
    };
    static constexpr int KeepDays = 90;
    static constexpr int KeepRecords = 100'000;
    // Records kept in memory while the file cannot be written; the oldest go beyond this.
    static constexpr int MaxWaiting = 10'000;
    // The write-ahead log is cut back to this after a checkpoint.
    static constexpr qint64 WalLimit = qint64(64) * 1024 * 1024;

    // $XDG_STATE_HOME/Quillon/history.sqlite (~/.local/state/...).
    static QString defaultFileName();
    static bool isProblem(Kind kind);
    static QString kindText(Kind kind);
    // How late, in the unit that fits: "35 s late", "12 min late", "5 h late", "4 days late".
    static QString latenessText(qint64 seconds);
    // The kinds that are problems, for a query: "2,4,6,9,10".
    static QString problemKinds();
    // A path as the file stores it (its bytes), and back; older rows hold UTF-8 text.
    static QVariant pathValue(const QString &path);
    static QString pathOf(const QVariant &stored);

    History(QString fileName, WallClock &clock, QObject *parent = nullptr);
    ~History() override;

    // Kept in memory and written at the end of this event-loop turn, all in one transaction.
    void record(Kind kind, const QString &path, const QDateTime &scheduled = {}, const QString &detail = {});
    // Writes what waits now (before a query, at quit).
    void flush();

    bool isOpen() const { return !m_connection.isEmpty(); }
    QString fileName() const { return m_fileName; }
    // The Qt SQL connection, for views on the same thread.
    QString connectionName() const { return m_connection; }
    // Whether anything is on record for the item at that time (opened, failed, ran, missed).
    bool handled(const QString &path, const QDateTime &scheduled);
    qint64 lastId();
    int problemsAfter(qint64 id);

    // Records that wait in memory to be written.
    qint64 waiting() const { return m_pending.size(); }

Q_SIGNALS:
    // As soon as it is recorded, before it is written.
    void recorded(const Quillon::History::Record &record);
    // The file could not be written (why: in words), or can be again (why empty).
    void writingChanged(const QString &why);

private:
    enum class Opening { Opened, Damaged, Later, Never };
    Opening open();
    // Opens, sets a damaged file aside, or tries again later; what it found is said once.
    void start();
    // The failing statement's error, or none.
    std::optional<QSqlError> prepare();
    void setAside(const QString &why);
    void close();
    // Trims and checkpoints on a thread of its own, in slices that let the event loop's writes in.
    void maintainSoon(bool trim);
    // A write failed for a passing reason (busy, full): said once, tried again in a second.
    void cannotWriteNow(const QString &why);
    static bool isDamage(int sqliteCode);

    QString m_fileName;
    WallClock &m_clock;
    QString m_connection;
    QList<Record> m_pending;
    bool m_flushQueued = false;
    bool m_never = false; // no file can be kept here (not a regular file, nowhere to create one)
    QString m_problem; // why the file cannot be written now, as said once
    int m_dropped = 0;
    QTimer *m_retry = nullptr;
    int m_sinceTrim = 0;
    int m_sinceCheckpoint = 0;
    std::shared_ptr<std::atomic<bool>> m_maintaining = std::make_shared<std::atomic<bool>>(false);
};

} // namespace Quillon

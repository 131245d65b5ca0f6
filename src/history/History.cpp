#include "History.h"

#include "FileTrust.h"

#include "FileName.h"
#include "Log.h"
#include "WallClock.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QThreadPool>
#include <QTimer>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Quillon {
namespace {
int connectionCount = 0;

// SQLite's primary result codes for a file that is not (or no longer) a usable database.
constexpr int SqliteCorrupt = 11, SqliteNotADatabase = 26;

int primaryCode(const QSqlError &error)
{
    return error.nativeErrorCode().toInt() & 0xff;
}
} // namespace

QString History::defaultFileName()
{
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    if (state.isEmpty() || QDir::isRelativePath(state))
        state = QDir::homePath() + QStringLiteral("/.local/state");
    // Another user's history (or heartbeat) planted in a shared folder would be read as ours: such
    // a folder is passed over for the session's private runtime folder, and the log says so.
    for (const QString &folder : { state, state + QStringLiteral("/Quillon") }) {
        if (const QString why = FileTrust::whyNotOwnFolder(folder); !why.isEmpty()) {
            const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + QStringLiteral("/Quillon");
            systemLog(
                QStringLiteral("The state folder %1 is not yours alone (%2): the history is kept in %3 until the session ends.").arg(folder, why, runtime));
            return runtime + QStringLiteral("/history.sqlite");
        }
    }
    return state + QStringLiteral("/Quillon/history.sqlite");
}

bool History::isProblem(Kind kind)
{
    switch (kind) {
    case Kind::OpenFailed:
    case Kind::ScriptFailed:
    case Kind::Missed:
    case Kind::MissedWhileOff:
    case Kind::MailRefused:
    case Kind::MailFailed:
    case Kind::NotStarted:
    case Kind::DidNotQuit:
    case Kind::DatesMoved:
        return true;
    case Kind::Opened:
    case Kind::ScriptFinished:
    case Kind::ScriptEndedByQuit:
    case Kind::OpenedLate:
    case Kind::MailSent:
        return false;
    }
    return false;
}

QString History::problemKinds()
{
    QStringList kinds;
    for (int k = int(Kind::Opened); k <= int(Kind::LastKind); ++k) {
        if (isProblem(Kind(k)))
            kinds << QString::number(k);
    }
    return kinds.join(QLatin1Char(','));
}

QString History::latenessText(qint64 seconds)
{
    if (seconds < 120)
        return tr("%n s late", nullptr, int(qMax<qint64>(seconds, 0)));
    if (seconds < qint64(120) * 60)
        return tr("%n min late", nullptr, int(seconds / 60));
    if (seconds < qint64(48) * 3600)
        return tr("%n h late", nullptr, int(seconds / 3600));
    return tr("%n days late", nullptr, int(seconds / 86400));
}

QString History::kindText(Kind kind)
{
    switch (kind) {
    case Kind::Opened:
        return tr("Opened");
    case Kind::OpenFailed:
        return tr("Could not be opened");
    case Kind::ScriptFinished:
        return tr("Script finished");
    case Kind::ScriptFailed:
        return tr("Script failed");
    case Kind::ScriptEndedByQuit:
        return tr("Script ended by quitting");
    case Kind::Missed:
    case Kind::MissedWhileOff:
        return tr("Missed");
    case Kind::OpenedLate:
        return tr("Opened late");
    case Kind::MailSent:
        return tr("Mail sent");
    case Kind::MailRefused:
        return tr("Mail refused");
    case Kind::MailFailed:
        return tr("Mail failed");
    case Kind::NotStarted:
        return tr("Not started");
    case Kind::DidNotQuit:
        return tr("Did not quit normally");
    case Kind::DatesMoved:
        return tr("Dates may have moved");
    }
    return {};
}

History::History(QString fileName, WallClock &clock, QObject *parent)
    : QObject(parent)
    , m_fileName(std::move(fileName))
    , m_clock(clock)
    , m_retry(new QTimer(this))
{
    m_retry->setSingleShot(true);
    m_retry->setInterval(1000);
    connect(m_retry, &QTimer::timeout, this, [this] {
        if (m_connection.isEmpty())
            start();
        else
            flush();
    });
    start();
}

History::~History()
{
    flush();
    close();
}

void History::start()
{
    Opening opening = open();
    if (opening == Opening::Damaged) {
        setAside(QStringLiteral("SQLite found it damaged"));
        opening = open();
    }
    switch (opening) {
    case Opening::Opened:
        maintainSoon(true);
        flush();
        return;
    case Opening::Later:
    case Opening::Damaged:
        m_retry->start();
        return;
    case Opening::Never:
        m_never = true;
        m_pending.clear();
        return;
    }
}

History::Opening History::open()
{
    const QFileInfo file(m_fileName);
    if (!QDir().mkpath(file.absolutePath())) {
        systemLog(QStringLiteral("The history cannot be kept in %1; Quillon goes on without it.").arg(m_fileName));
        return Opening::Never;
    }
    // Private from the first byte: the folder and the file are ours alone, whatever the umask.
    QFile::setPermissions(file.absolutePath(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    // Only a regular file: a FIFO would hold the open (and every start) for ever, and nothing else
    // there is a database. Non-blocking, so that even a FIFO answers at once.
    const QByteArray name = QFile::encodeName(m_fileName);
    const int fd = ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    struct stat st = {};
    const bool regular = fd >= 0 && ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
    const int error = errno;
    if (fd >= 0)
        ::close(fd);
    if (!regular) {
        struct stat found = {};
        const QString what = ::lstat(name.constData(), &found) != 0 ? QString::fromLocal8Bit(std::strerror(error))
            : S_ISFIFO(found.st_mode)                               ? QStringLiteral("it is a FIFO")
            : S_ISDIR(found.st_mode)                                ? QStringLiteral("it is a folder")
            : S_ISLNK(found.st_mode)                                ? QStringLiteral("it is a symbolic link")
            : S_ISSOCK(found.st_mode)                               ? QStringLiteral("it is a socket")
                                                                    : QStringLiteral("it is not a regular file");
        systemLog(QStringLiteral("The history cannot be kept in %1 (%2); Quillon goes on without it and leaves it as it is.").arg(m_fileName, what));
        return Opening::Never;
    }

    m_connection = QStringLiteral("quillon-history-%1").arg(++connectionCount);
    bool opened = false;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
        db.setDatabaseName(m_fileName);
        // Another writer holds its lock for a moment (a checkpoint, a second connection): waited
        // out briefly; a longer hold is tried again from the event loop, never waited on.
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=50"));
        opened = db.open();
    }
    const std::optional<QSqlError> failed = opened ? prepare() : QSqlDatabase::database(m_connection, false).lastError();
    if (!failed)
        return Opening::Opened;
    close();
    if (isDamage(primaryCode(*failed)))
        return Opening::Damaged;
    cannotWriteNow(failed->text());
    return Opening::Later;
}

std::optional<QSqlError> History::prepare()
{
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    // Checkpoints (copying the log into the file, with an fsync) take milliseconds; they run on
    // a thread of their own (maintainSoon), never inside a write of the event loop's.
    for (const QString &statement : { QStringLiteral("PRAGMA journal_mode=WAL"), QStringLiteral("PRAGMA synchronous=NORMAL"),
             QStringLiteral("PRAGMA wal_autocheckpoint=0"), QStringLiteral("PRAGMA journal_size_limit=%1").arg(WalLimit),
             QStringLiteral("CREATE TABLE IF NOT EXISTS events (id INTEGER PRIMARY KEY, at INTEGER NOT NULL, path TEXT NOT NULL,"
                            " scheduled INTEGER, kind INTEGER NOT NULL, detail TEXT NOT NULL DEFAULT '')"),
             QStringLiteral("CREATE INDEX IF NOT EXISTS events_at ON events (at)"),
             QStringLiteral("CREATE INDEX IF NOT EXISTS events_item ON events (path, scheduled)"),
             QStringLiteral("SELECT COUNT(*) FROM events WHERE id = (SELECT MAX(id) FROM events)") }) {
        if (!q.exec(statement))
            return q.lastError();
    }
    // WAL is what lets a reader look while we write; a file that will not take it is not ours to use.
    if (q.exec(QStringLiteral("PRAGMA journal_mode")) && q.next() && q.value(0).toString() == QLatin1String("wal"))
        return std::nullopt;
    return q.lastError();
}

void History::close()
{
    if (m_connection.isEmpty())
        return;
    QSqlDatabase::database(m_connection, false).close();
    QSqlDatabase::removeDatabase(m_connection);
    m_connection.clear();
}

void History::setAside(const QString &why)
{
    close();
    // With its log: what the log holds belongs to the file, and a new file must not pick it up.
    const QString aside = m_fileName + QStringLiteral(".damaged-") + m_clock.now().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QFile::rename(m_fileName, aside);
    if (QFile::exists(m_fileName + QStringLiteral("-wal")))
        QFile::rename(m_fileName + QStringLiteral("-wal"), aside + QStringLiteral("-wal"));
    QFile::remove(m_fileName + QStringLiteral("-shm"));
    systemLog(QStringLiteral("The history file %1 was set aside as %2 (%3); a new one is started.").arg(m_fileName, aside, why));
}

bool History::isDamage(int code)
{
    // Busy and locked are another connection at work, a full disk or an I/O error a passing
    // state: only what SQLite calls corrupt or not a database is damage.
    return code == SqliteCorrupt || code == SqliteNotADatabase;
}

void History::cannotWriteNow(const QString &why)
{
    if (m_problem.isEmpty()) {
        systemLog(QStringLiteral("The history file %1 cannot be written now (%2); records wait and are written when it can be.").arg(m_fileName, why));
        Q_EMIT writingChanged(why);
    }
    m_problem = why;
    m_retry->start();
}

void History::record(Kind kind, const QString &path, const QDateTime &scheduled, const QString &detail)
{
    Record record { m_clock.now(), path, scheduled, kind, detail };
    Q_EMIT recorded(record);
    if (m_never)
        return;
    if (m_pending.size() >= MaxWaiting) {
        if (m_dropped++ == 0)
            systemLog(QStringLiteral("More than %1 history records wait to be written; the oldest are dropped.").arg(MaxWaiting));
        m_pending.removeFirst();
    }
    m_pending.append(std::move(record));
    if (!std::exchange(m_flushQueued, true))
        QTimer::singleShot(0, this, &History::flush);
}

void History::flush()
{
    m_flushQueued = false;
    if (m_pending.isEmpty() || m_connection.isEmpty())
        return;
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    QSqlQuery insert(db);
    bool ok = db.transaction() && insert.prepare(QStringLiteral("INSERT INTO events (at, path, scheduled, kind, detail) VALUES (?, ?, ?, ?, ?)"));
    for (qsizetype i = 0; ok && i < m_pending.size(); ++i) {
        const Record &r = m_pending.at(i);
        insert.addBindValue(r.at.toMSecsSinceEpoch());
        insert.addBindValue(pathValue(r.path));
        insert.addBindValue(r.scheduled.isValid() ? QVariant(r.scheduled.toMSecsSinceEpoch()) : QVariant(QMetaType(QMetaType::LongLong)));
        insert.addBindValue(int(r.kind));
        insert.addBindValue(r.detail.isNull() ? QStringLiteral("") : r.detail);
        ok = insert.exec();
    }
    ok = ok && db.commit();
    if (ok) {
        const qsizetype written = std::exchange(m_pending, {}).size();
        if (!m_problem.isEmpty()) {
            systemLog(QStringLiteral("The history file %1 can be written again.").arg(m_fileName));
            m_problem.clear();
            m_dropped = 0;
            Q_EMIT writingChanged({});
        }
        // Often and small: a hundred rows at a time cost a fraction of a millisecond.
        m_sinceTrim += int(written);
        m_sinceCheckpoint += int(written);
        if (m_sinceTrim >= 100 || m_sinceCheckpoint >= 500)
            maintainSoon(m_sinceTrim >= 100);
        return;
    }
    const QSqlError error = insert.lastError().isValid() ? insert.lastError() : db.lastError();
    db.rollback();
    // The records stay where they are, in order, for the next try.
    if (isDamage(primaryCode(error))) {
        setAside(error.text());
        start();
        return;
    }
    cannotWriteNow(error.text());
}

void History::maintainSoon(bool trim)
{
    if (trim)
        m_sinceTrim = 0;
    m_sinceCheckpoint = 0;
    if (m_connection.isEmpty() || m_maintaining->exchange(true))
        return;
    const qint64 before = m_clock.now().addDays(-KeepDays).toMSecsSinceEpoch();
    QThreadPool::globalInstance()->start([busy = m_maintaining, file = m_fileName, name = m_connection + QStringLiteral("-maintenance"), before, trim] {
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            db.setDatabaseName(file);
            db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=1000"));
            if (db.open()) {
                QSqlQuery q(db);
                q.exec(QStringLiteral("PRAGMA journal_size_limit=%1").arg(WalLimit));
                // A slice a transaction: the event loop's writes get in between, and a million
                // old records go without holding anything for seconds.
                const auto deleteInSlices = [&q](const QString &which, qint64 bound) {
                    do {
                        q.prepare(QStringLiteral("DELETE FROM events WHERE id IN (SELECT id FROM events WHERE %1 LIMIT 2000)").arg(which));
                        q.addBindValue(bound);
                    } while (q.exec() && q.numRowsAffected() > 0);
                };
                if (trim) {
                    deleteInSlices(QStringLiteral("at < ?"), before);
                    if (q.exec(QStringLiteral("SELECT IFNULL(MAX(id), 0) FROM events")) && q.next())
                        deleteInSlices(QStringLiteral("id <= ?"), q.value(0).toLongLong() - KeepRecords);
                }
                // A passive checkpoint never finishes while writes keep coming, so the log would
                // only grow: once it is large, one that waits for a pause and cuts it back.
                const bool large = QFileInfo(file + QStringLiteral("-wal")).size() > WalLimit / 4;
                q.exec(large ? QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)") : QStringLiteral("PRAGMA wal_checkpoint(PASSIVE)"));
            }
        }
        QSqlDatabase::removeDatabase(name);
        *busy = false;
    });
}

QVariant History::pathValue(const QString &path)
{
    // As the bytes of the name: SQLite would turn a name that is not UTF-8 into another name. A
    // null array binds as NULL; "no item" is an empty path.
    const QByteArray bytes = FileName::encode(path);
    return bytes.isNull() ? QByteArray("") : bytes;
}

QString History::pathOf(const QVariant &stored)
{
    return FileName::decode(stored.toByteArray());
}

bool History::handled(const QString &path, const QDateTime &scheduled)
{
    flush();
    if (m_connection.isEmpty())
        return false;
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    // Rows written before paths were kept as bytes hold them as UTF-8 text.
    q.prepare(QStringLiteral("SELECT 1 FROM events WHERE path IN (?, CAST(? AS TEXT)) AND scheduled = ? LIMIT 1"));
    const QVariant stored = pathValue(path);
    q.addBindValue(stored);
    q.addBindValue(stored);
    q.addBindValue(scheduled.toMSecsSinceEpoch());
    return q.exec() && q.next();
}

qint64 History::lastId()
{
    flush();
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    return !m_connection.isEmpty() && q.exec(QStringLiteral("SELECT IFNULL(MAX(id), 0) FROM events")) && q.next() ? q.value(0).toLongLong() : 0;
}

int History::problemsAfter(qint64 id)
{
    flush();
    if (m_connection.isEmpty())
        return 0;
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    q.prepare(QStringLiteral("SELECT COUNT(*) FROM events WHERE id > ? AND kind IN (%1)").arg(problemKinds()));
    q.addBindValue(id);
    return q.exec() && q.next() ? q.value(0).toInt() : 0;
}

} // namespace Quillon

#include "History.h"

#include "FileName.h"
#include "Log.h"
#include "WallClock.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QThreadPool>
#include <QTimer>

#include <fcntl.h>
#include <unistd.h>

namespace Quillon {
namespace {
int connectionCount = 0;

// SQLite's primary result codes for a file that is not (or no longer) a usable database.
constexpr int SqliteBusy = 5, SqliteLocked = 6, SqliteCorrupt = 11, SqliteNotADatabase = 26;

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
    return state + QStringLiteral("/Quillon/history.sqlite");
}

bool History::isProblem(Kind kind)
{
    switch (kind) {
    case Kind::OpenFailed:
    case Kind::ScriptFailed:
    case Kind::Missed:
    case Kind::MailRefused:
    case Kind::MailFailed:
    case Kind::NotStarted:
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
    for (int k = int(Kind::Opened); k <= int(Kind::NotStarted); ++k) {
        if (isProblem(Kind(k)))
            kinds << QString::number(k);
    }
    return kinds.join(QLatin1Char(','));
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
    }
    return {};
}

History::History(QString fileName, WallClock &clock, QObject *parent)
    : QObject(parent)
    , m_fileName(std::move(fileName))
    , m_clock(clock)
{
    if (!open()) {
        setAside(QStringLiteral("it could not be opened"));
        if (!open())
            systemLog(QStringLiteral("The history cannot be kept in %1; Quillon goes on without it.").arg(m_fileName));
    }
}

History::~History()
{
    flush();
    close();
}

bool History::open()
{
    const QFileInfo file(m_fileName);
    if (!QDir().mkpath(file.absolutePath()))
        return false;
    // Private from the first byte: the folder and the file are ours alone, whatever the umask.
    QFile::setPermissions(file.absolutePath(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    const QByteArray name = QFile::encodeName(m_fileName);
    const int fd = ::open(name.constData(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0)
        return false;
    ::close(fd);

    m_connection = QStringLiteral("quillon-history-%1").arg(++connectionCount);
    bool opened = false;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
        db.setDatabaseName(m_fileName);
        // Never wait on a lock: the event loop is not to be held up by another process.
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=0"));
        opened = db.open();
    }
    if (!opened || !prepare()) {
        close();
        return false;
    }
    trim();
    return true;
}

bool History::prepare()
{
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    // Checkpoints (copying the log into the file, with an fsync) take milliseconds; they run on
    // a thread of their own (checkpointSoon), never inside a write of the event loop's.
    for (const char *statement : {"PRAGMA journal_mode=WAL", "PRAGMA synchronous=NORMAL", "PRAGMA wal_autocheckpoint=0",
                                  "CREATE TABLE IF NOT EXISTS events (id INTEGER PRIMARY KEY, at INTEGER NOT NULL, path TEXT NOT NULL,"
                                  " scheduled INTEGER, kind INTEGER NOT NULL, detail TEXT NOT NULL DEFAULT '')",
                                  "CREATE INDEX IF NOT EXISTS events_at ON events (at)",
                                  "CREATE INDEX IF NOT EXISTS events_item ON events (path, scheduled)",
                                  "SELECT COUNT(*) FROM events WHERE id = (SELECT MAX(id) FROM events)"}) {
        if (!q.exec(QString::fromLatin1(statement))) {
            systemLog(QStringLiteral("The history file %1 cannot be used: %2").arg(m_fileName, q.lastError().text()));
            return false;
        }
    }
    // WAL is what lets a reader look while we write; a file that will not take it is not ours to use.
    return q.exec(QStringLiteral("PRAGMA journal_mode")) && q.next() && q.value(0).toString() == QLatin1String("wal");
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
    const QString aside = m_fileName + QStringLiteral(".damaged-") + m_clock.now().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QFile::rename(m_fileName, aside);
    QFile::remove(m_fileName + QStringLiteral("-wal"));
    QFile::remove(m_fileName + QStringLiteral("-shm"));
    systemLog(QStringLiteral("The history file %1 was set aside as %2 (%3); a new one is started.").arg(m_fileName, aside, why));
}

bool History::isDamage(int code) const
{
    return code == SqliteCorrupt || code == SqliteNotADatabase || code == SqliteBusy || code == SqliteLocked;
}

void History::record(Kind kind, const QString &path, const QDateTime &scheduled, const QString &detail)
{
    Record record{m_clock.now(), path, scheduled, kind, detail};
    Q_EMIT recorded(record);
    if (m_connection.isEmpty())
        return;
    m_pending.append(std::move(record));
    if (!std::exchange(m_flushQueued, true))
        QTimer::singleShot(0, this, &History::flush);
}

void History::flush()
{
    m_flushQueued = false;
    if (m_pending.isEmpty() || m_connection.isEmpty())
        return;
    const QList<Record> batch = std::exchange(m_pending, {});
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    QSqlQuery insert(db);
    bool ok = db.transaction() && insert.prepare(QStringLiteral("INSERT INTO events (at, path, scheduled, kind, detail) VALUES (?, ?, ?, ?, ?)"));
    for (qsizetype i = 0; ok && i < batch.size(); ++i) {
        const Record &r = batch.at(i);
        insert.addBindValue(r.at.toMSecsSinceEpoch());
        insert.addBindValue(pathValue(r.path));
        insert.addBindValue(r.scheduled.isValid() ? QVariant(r.scheduled.toMSecsSinceEpoch()) : QVariant(QMetaType(QMetaType::LongLong)));
        insert.addBindValue(int(r.kind));
        insert.addBindValue(r.detail.isNull() ? QStringLiteral("") : r.detail);
        ok = insert.exec();
    }
    ok = ok && db.commit();
    if (ok) {
        m_sinceTrim += int(batch.size());
        // Often and small: a hundred rows at a time cost a fraction of a millisecond.
        if (m_sinceTrim >= 100)
            QTimer::singleShot(0, this, &History::trim);
        if ((m_sinceCheckpoint += int(batch.size())) >= 500)
            checkpointSoon();
        return;
    }
    const QSqlError error = insert.lastError().isValid() ? insert.lastError() : db.lastError();
    db.rollback();
    if (isDamage(primaryCode(error))) {
        setAside(error.text());
        if (open())
            m_pending = batch + m_pending;
        return;
    }
    systemLog(QStringLiteral("%1 history records could not be written: %2").arg(batch.size()).arg(error.text()));
}

void History::trim()
{
    m_sinceTrim = 0;
    if (m_connection.isEmpty())
        return;
    // Two deletes that each follow an index (by time, by row id); one with OR would read every row.
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    q.prepare(QStringLiteral("DELETE FROM events WHERE at < ?"));
    q.addBindValue(m_clock.now().addDays(-KeepDays).toMSecsSinceEpoch());
    q.exec();
    if (q.exec(QStringLiteral("SELECT IFNULL(MAX(id), 0) FROM events")) && q.next()) {
        const qint64 below = q.value(0).toLongLong() - KeepRecords;
        q.prepare(QStringLiteral("DELETE FROM events WHERE id <= ?"));
        q.addBindValue(below);
        q.exec();
    }
}

void History::checkpointSoon()
{
    m_sinceCheckpoint = 0;
    if (m_checkpointing->exchange(true))
        return;
    // A connection of its own on a pool thread; PASSIVE never waits for, nor blocks, our writes.
    QThreadPool::globalInstance()->start([busy = m_checkpointing, file = m_fileName] {
        const QString name = QStringLiteral("quillon-history-checkpoint");
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            db.setDatabaseName(file);
            db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=0"));
            if (db.open())
                QSqlQuery(db).exec(QStringLiteral("PRAGMA wal_checkpoint(PASSIVE)"));
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

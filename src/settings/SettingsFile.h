#pragma once

#include <QHash>
#include <QSettings>
#include <QTimer>
#include <QVariant>

#include <optional>

namespace Quillon {

// $XDG_CONFIG_HOME/Quillon/Quillon.conf as a durable file: private from its first byte, written
// whole or not at all (a backup, then a read-back), never waiting for ever on a lock or a FIFO,
// and never writing over a file it could not read whole before a copy of it is kept.
class SettingsFile final
{
    Q_DISABLE_COPY_MOVE(SettingsFile)
public:
    SettingsFile();
    ~SettingsFile();

    // What was set here reads back at once, before it is written.
    QVariant value(QAnyStringView key) const;
    bool contains(QAnyStringView key) const;
    // Changes made together go to disk in one write (one lock, one read-back) a moment later, or at
    // flush(), readable by the user alone: the file holds the mail password.
    void setValue(QAnyStringView key, const QVariant &value);
    void setValues(const QList<std::pair<QAnyStringView, QVariant>> &values);
    void remove(QAnyStringView key);
    // Writes what is waiting now; the destructor does too.
    void flush();
    // Re-read the file, so that a change made by another window or process is seen.
    void synchronize();
    QString fileName() const { return m_settings.fileName(); }

    // The window's own state lives beside the settings, in a file of its own.
    // forWriting: made first (private), as the settings file is; a read leaves the folder as it is.
    QString windowStateFileName(bool forWriting = true) const;
    // Our folder, created private when it does not exist yet.
    void makeFolder() const;

    // A FIFO, folder or device where a settings file (or its lock) should be is moved aside as
    // "<name>.unreadable-<time>", with a log line; false when nothing had to be done.
    static bool setAsideIfNotRegular(const QString &path);
    // False for what QSettings parses but cannot write back the same: a date whose time-zone byte
    // is damaged comes back as a date in no time zone, which is written as an unreadable one.
    static bool isReadable(const QVariant &value);

private:
    static bool setAsideOddFiles();
    static QString refusalOfFolder();
    // Waits a bounded time for the lock QSettings takes; false (and logged) when another process
    // holds it, so that nothing is left pending for QSettings to wait on for ever.
    bool lockIsFree() const;
    void inspectExistingFile();
    bool keepProblemFileAside();
    bool readsBackAsWritten() const;
    void writeOut();

    // The file as last read, to know when another writer changed it.
    struct FileStamp
    {
        quint64 inode = 0;
        qint64 size = -1;
        qint64 mtimeNSecs = 0;
        bool operator==(const FileStamp &) const = default;
    };
    FileStamp currentStamp() const;

    // Why the settings folder is not used: another user owns it, or others can write in it (a
    // shared folder as XDG_CONFIG_HOME). Then the settings live in memory only, as defaults.
    QString m_refusal = refusalOfFolder();
    // Before m_settings: QSettings would block for ever opening a FIFO put in the file's place.
    bool m_oddFilesSetAside = m_refusal.isEmpty() && setAsideOddFiles();
    mutable QSettings m_settings;
    FileStamp m_readStamp;
    // Why the file found at start could not be read whole; empty when it could.
    QString m_fileProblem;
    bool m_problemFileKept = false;
    QStringList m_unreadableKeys;
    // Kept apart from QSettings until they are written: what QSettings holds pending it writes on
    // its own when destroyed, waiting for ever on a lock another process holds.
    QHash<QString, std::optional<QVariant>> m_pending; // nullopt: removed
    QTimer m_writeSoon;
};

} // namespace Quillon

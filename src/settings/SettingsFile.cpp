#include "SettingsFile.h"

#include "FileTrust.h"

#include "Log.h"
#include "SettingsKeys.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTimeZone>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace Quillon {
namespace {

QString errnoText()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

// An empty list, an absent key and QSettings' "@Invalid()" all mean "nothing": QSettings writes an
// empty list as the last and reads it back as an invalid value.
bool meansNothing(const QVariant &v)
{
    if (!v.isValid())
        return true;
    const bool list = v.typeId() == QMetaType::QVariantList || v.typeId() == QMetaType::QStringList;
    return list && v.toList().isEmpty();
}

// QSettings hands back what it was given (a bool, an int) but parses the file into text; the
// same value may therefore come back with another type.
bool sameValue(const QVariant &a, const QVariant &b)
{
    if (meansNothing(a) || meansNothing(b))
        return meansNothing(a) && meansNothing(b);
    const bool aList = a.typeId() == QMetaType::QVariantList || a.typeId() == QMetaType::QStringList;
    const bool bList = b.typeId() == QMetaType::QVariantList || b.typeId() == QMetaType::QStringList;
    if (aList || bList) {
        if (!aList || !bList)
            return false;
        const QVariantList x = a.toList(), y = b.toList();
        if (x.size() != y.size())
            return false;
        for (qsizetype i = 0; i < x.size(); ++i) {
            if (!sameValue(x.at(i), y.at(i)))
                return false;
        }
        return true;
    }
    if (a.typeId() == b.typeId())
        return a == b;
    return a.toString() == b.toString();
}

// Qt's INI reader silently swallows what follows some bad lines (an unterminated quote takes
// the rest of the file). Counting the lines that look like keys tells when that happened.
qsizetype keyLinesIn(const QByteArray &ini)
{
    static const QRegularExpression keyLine(QStringLiteral("^\\s*[^\\s\\[;#=][^=]*="));
    qsizetype n = 0;
    for (const QByteArray &line : ini.split('\n')) {
        if (keyLine.match(QString::fromUtf8(line)).hasMatch())
            ++n;
    }
    return n;
}

} // namespace

bool SettingsFile::setAsideIfNotRegular(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat st = {};
    if (::lstat(name.constData(), &st) != 0 || S_ISREG(st.st_mode))
        return false;
    // A link is followed: its target is what QSettings would open.
    if (S_ISLNK(st.st_mode) && (::stat(name.constData(), &st) != 0 || S_ISREG(st.st_mode)))
        return false;
    const QString kind = S_ISFIFO(st.st_mode) ? QStringLiteral("a FIFO")
        : S_ISDIR(st.st_mode)                 ? QStringLiteral("a folder")
        : S_ISSOCK(st.st_mode)                ? QStringLiteral("a socket")
                                              : QStringLiteral("a device");
    const QString aside = path + QStringLiteral(".unreadable-") + QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    if (::rename(name.constData(), QFile::encodeName(aside).constData()) == 0)
        systemLog(QStringLiteral("%1 is %2, not a file; it was set aside as %3.").arg(path, kind, aside));
    else
        systemLog(QStringLiteral("%1 is %2, not a file, and could not be set aside: %3.").arg(path, kind, errnoText()));
    return true;
}

bool SettingsFile::setAsideOddFiles()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/Quillon/");
    bool any = false;
    for (const char *name : { "Quillon.conf", "Quillon.conf.lock", "window.conf" })
        any = setAsideIfNotRegular(folder + QLatin1String(name)) || any;
    return any;
}

bool SettingsFile::lockIsFree() const
{
    const QString lockName = m_settings.fileName() + QStringLiteral(".lock");
    setAsideIfNotRegular(lockName);
    QLockFile probe(lockName);
    probe.setStaleLockTime(0); // a lock whose process is gone is stale whatever its age
    if (probe.tryLock(3000))
        return true;
    if (probe.error() != QLockFile::LockFailedError)
        return true; // no lock can be made (a read-only folder): the write reports that itself
    qint64 pid = 0;
    probe.getLockInfo(&pid, nullptr, nullptr);
    systemLog(QStringLiteral("Could not write the settings file %1: process %2 holds its lock; nothing was changed.").arg(m_settings.fileName()).arg(pid));
    return false;
}

QString SettingsFile::refusalOfFolder()
{
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    for (const QString &folder : { config, config + QStringLiteral("/Quillon") }) {
        QString why = FileTrust::whyNotOwnFolder(folder);
        if (why.isEmpty())
            continue;
        systemLog(QStringLiteral("The settings folder %1 is not yours alone (%2): Quillon neither reads nor writes settings there, and starts with "
                                 "its defaults. Give it to yourself alone (chmod go-w) or set XDG_CONFIG_HOME to a folder of your own.")
                      .arg(folder, why));
        return why;
    }
    return {};
}

SettingsFile::SettingsFile()
    // With a refused folder, a store with no file: what is set lives until the process ends.
    : m_settings(
        m_refusal.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/Quillon/Quillon.conf") : QString(),
        QSettings::IniFormat)
{
    // One file only: a Quillon.conf beside the folder or under /etc/xdg must not act as defaults.
    m_settings.setFallbacksEnabled(false);
    inspectExistingFile();
    m_writeSoon.setSingleShot(true);
    m_writeSoon.setInterval(std::chrono::milliseconds(300));
    QObject::connect(&m_writeSoon, &QTimer::timeout, [this] { flush(); });
}

void SettingsFile::inspectExistingFile()
{
    QFile file(m_settings.fileName());
    // A link that leads nowhere yet is no file either: the first save creates what it names.
    if (!QFileInfo::exists(file.fileName()))
        return;
    if (!file.open(QIODevice::ReadOnly)) {
        m_fileProblem = file.errorString();
    } else if (m_settings.status() == QSettings::FormatError || keyLinesIn(file.readAll()) > m_settings.allKeys().size()) {
        m_fileProblem = QStringLiteral("it is malformed; what could be read was kept");
    }
    for (const QString &key : m_settings.allKeys()) {
        if (!isReadable(m_settings.value(key)))
            m_unreadableKeys << key;
    }
    if (m_fileProblem.isEmpty() && !m_unreadableKeys.isEmpty())
        m_fileProblem = QStringLiteral("values under %1 cannot be read; they are left out").arg(m_unreadableKeys.join(QStringLiteral(", ")));
    if (!m_fileProblem.isEmpty())
        systemLog(QStringLiteral("Could not read the settings file %1: %2").arg(file.fileName(), m_fileProblem));
}

SettingsFile::~SettingsFile()
{
    flush();
}

QVariant SettingsFile::value(QAnyStringView key) const
{
    if (const auto pending = m_pending.constFind(key.toString()); pending != m_pending.cend())
        return pending->value_or(QVariant());
    return m_settings.value(key);
}

bool SettingsFile::contains(QAnyStringView key) const
{
    if (const auto pending = m_pending.constFind(key.toString()); pending != m_pending.cend())
        return pending->has_value();
    return m_settings.contains(key);
}

void SettingsFile::setValue(QAnyStringView key, const QVariant &value)
{
    setValues({ { key, value } });
}

void SettingsFile::setValues(const QList<std::pair<QAnyStringView, QVariant>> &values)
{
    for (const auto &[key, value] : values)
        m_pending.insert(key.toString(), value);
    // Not restarted by each change: a steady stream of them is still written every moment.
    if (!m_writeSoon.isActive())
        m_writeSoon.start();
}

void SettingsFile::remove(QAnyStringView key)
{
    m_pending.insert(key.toString(), std::nullopt);
    if (!m_writeSoon.isActive())
        m_writeSoon.start();
}

void SettingsFile::flush()
{
    m_writeSoon.stop();
    if (m_pending.isEmpty())
        return;
    const auto apply = [this] {
        for (auto change = m_pending.cbegin(); change != m_pending.cend(); ++change) {
            if (change->has_value())
                m_settings.setValue(change.key(), **change);
            else
                m_settings.remove(change.key());
        }
        m_pending.clear();
    };
    if (!m_refusal.isEmpty()) {
        apply();
        return;
    }
    // Nothing may even be pending in QSettings for a file that cannot be kept.
    if (!keepProblemFileAside() || !lockIsFree()) {
        m_pending.clear();
        return;
    }
    apply();
    writeOut();
}

SettingsFile::FileStamp SettingsFile::currentStamp() const
{
    struct stat st = {};
    if (::stat(QFile::encodeName(m_settings.fileName()).constData(), &st) != 0)
        return {};
    return { quint64(st.st_ino), qint64(st.st_size), qint64(st.st_mtim.tv_sec) * 1'000'000'000 + st.st_mtim.tv_nsec };
}

void SettingsFile::synchronize()
{
    // Ours first, as each change was once written at once: a change made since by another
    // writer then wins, as it would have.
    flush();
    // QSettings parses the whole file again on every sync; the mail getters ask for it at each
    // call, so a long saved list would be parsed many times per mail. Only a changed file is read.
    const FileStamp stamp = currentStamp();
    if (stamp == m_readStamp && stamp.size >= 0)
        return;
    // Re-reading also writes what is pending; only writeOut may write.
    if (m_fileProblem.isEmpty() || m_problemFileKept)
        m_settings.sync();
    m_readStamp = stamp;
}

void SettingsFile::makeFolder() const
{
    if (!m_refusal.isEmpty())
        return;
    const QString dir = QFileInfo(m_settings.fileName()).absolutePath();
    if (QFileInfo::exists(dir))
        return;
    QDir().mkpath(QFileInfo(dir).absolutePath());
    ::mkdir(QFile::encodeName(dir).constData(), 0700);
}

QString SettingsFile::windowStateFileName(bool forWriting) const
{
    if (!m_refusal.isEmpty())
        return {};
    QString name = QFileInfo(m_settings.fileName()).absolutePath() + QStringLiteral("/window.conf");
    if (!forWriting)
        return name;
    setAsideIfNotRegular(name);
    // As for the settings: QSaveFile would make a new file with the umask's mode.
    const int fd = ::open(QFile::encodeName(name).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd >= 0)
        ::close(fd);
    return name;
}

// A file that could not be read whole is never written over before a copy of it is kept.
bool SettingsFile::keepProblemFileAside()
{
    if (m_fileProblem.isEmpty() || m_problemFileKept)
        return true;
    const QString original = m_settings.fileName();
    const QString copy = original + QStringLiteral(".unreadable-") + QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    // The copy is the file's bytes but for the mail password, which must not outlive its move to
    // the keyring in a file nobody looks at. A file that cannot be read cannot be copied so: it is
    // left as it is, and nothing is written over it.
    QFile in(original);
    if (!in.open(QIODevice::ReadOnly)) {
        systemLog(
            QStringLiteral("Could not keep a copy of the settings file %1 (%2); nothing is saved, so it is not written over.").arg(original, in.errorString()));
        return false;
    }
    QList<QByteArray> lines = in.readAll().split('\n');
    const qsizetype all = lines.size();
    lines.removeIf([](const QByteArray &line) {
        const QByteArray key = line.trimmed();
        return key.startsWith(QByteArrayView(Keys::LoginPassword)) && key.mid(Keys::LoginPassword.size()).trimmed().startsWith('=');
    });
    const QByteArray kept = lines.join('\n');
    const int fd = ::open(QFile::encodeName(copy).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    const bool written = fd >= 0 && ::write(fd, kept.constData(), size_t(kept.size())) == kept.size() && ::fsync(fd) == 0;
    if (fd >= 0)
        ::close(fd);
    if (!written) {
        ::unlink(QFile::encodeName(copy).constData());
        systemLog(
            QStringLiteral("Could not keep a copy of the settings file %1 (%2); nothing is saved, so it is not written over.").arg(original, errnoText()));
        return false;
    }
    systemLog(QStringLiteral("The settings file %1 could not be read whole; it was kept as %2%3.")
                  .arg(original, copy, lines.size() < all ? QStringLiteral(", without the mail password") : QString()));
    // QSettings writes into a fresh file only what is set again after it parsed the old one, so
    // every key of ours that could be read is set again. Anything else parsed out of a damaged
    // file is most likely its damage (100 MB of junk reads as 100,000 keys): the copy keeps it.
    QList<std::pair<QString, QVariant>> readable;
    QStringList unknown;
    for (const QString &key : m_settings.allKeys()) {
        if (Keys::isKnown(key))
            readable.append({ key, m_settings.value(key) });
        else
            unknown << key;
    }
    // Gone from memory too, whatever QSettings would merge back from what it parsed.
    for (const QString &key : std::as_const(unknown))
        m_settings.remove(key);
    // The copy holds it now; a fresh file gets our own private mode instead of the odd one it had.
    ::unlink(QFile::encodeName(original).constData());
    for (const auto &[key, value] : std::as_const(readable)) {
        if (!m_unreadableKeys.contains(key)) {
            m_settings.setValue(key, value);
        } else if (value.typeId() == QMetaType::QVariantList) {
            // A list keeps its length (the saved dates stay beside their items); what cannot be
            // read becomes nothing, which the list's reader takes as "now".
            QVariantList list = value.toList();
            for (QVariant &element : list) {
                if (!isReadable(element))
                    element = QString();
            }
            m_settings.setValue(key, list);
        }
    }
    m_problemFileKept = true;
    return true;
}

bool SettingsFile::readsBackAsWritten() const
{
    // Parsed from an anonymous in-memory file: QSettings shares one in-memory copy per file name,
    // so asking it again would answer from memory, and a copy on disk would spread the password.
    QFile file(m_settings.fileName());
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.readAll();
    const int memory = ::memfd_create("quillon-read-back", MFD_CLOEXEC);
    if (memory < 0)
        return false;
    auto closeMemory = qScopeGuard([memory] { ::close(memory); });
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t n = ::write(memory, bytes.constData() + done, size_t(bytes.size() - done));
        if (n <= 0)
            return false;
        done += n;
    }
    // The descriptor's number comes back on the next call, and QSettings answers a file of the same
    // name, size and time from its cache without parsing it: "5" saved over "6" would read back as
    // the old value. Each read-back gets a time of its own.
    static qint64 readBacks = 0;
    const struct timespec stamp[2] = { { 0, UTIME_OMIT }, { time_t(++readBacks), 0 } };
    if (::futimens(memory, stamp) != 0)
        return false;
    QSettings onDisk(QStringLiteral("/proc/self/fd/%1").arg(memory), QSettings::IniFormat);
    if (onDisk.status() != QSettings::NoError)
        return false;
    const auto meaningfulKeys = [](const QSettings &settings) {
        QStringList keys;
        for (const QString &key : settings.allKeys()) {
            if (!meansNothing(settings.value(key)))
                keys << key;
        }
        keys.sort();
        return keys;
    };
    const QStringList keys = meaningfulKeys(m_settings);
    if (meaningfulKeys(onDisk) != keys)
        return false;
    for (const QString &key : keys) {
        if (!sameValue(m_settings.value(key), onDisk.value(key)))
            return false;
    }
    return true;
}

void SettingsFile::writeOut()
{
    // Through a link, the file written (by QSaveFile) is the link's target: that is the file the
    // backup and the read-back must be about, and what the log names.
    const QString linkTarget = QFileInfo(m_settings.fileName()).isSymLink() ? QFileInfo(m_settings.fileName()).canonicalFilePath() : QString();
    const QString fileName = linkTarget.isEmpty() ? m_settings.fileName() : linkTarget;
    const QByteArray file = QFile::encodeName(fileName);
    const QByteArray dir = QFile::encodeName(QFileInfo(fileName).absolutePath());

    // Our own folder is made private before anything goes into it; then the file inside cannot be
    // reached by others whatever its mode. Never the umask: it is the whole process's, and programs
    // started meanwhile would inherit it. A folder or file we did not create keeps its mode.
    makeFolder();
    struct stat before = {};
    const bool fileExisted = ::stat(file.constData(), &before) == 0;

    // QSettings replaces the file by renaming a new one over it; a hard link keeps the old one
    // for as long as the new one is not known to be whole.
    const QByteArray backup = file + ".bak";
    ::unlink(backup.constData());
    const bool haveBackup = fileExisted && ::link(file.constData(), backup.constData()) == 0;
    // QSaveFile gives a new file the umask's mode (0644) until it is renamed into place, and an
    // existing file's mode from the start: an empty file of our own, private from its first
    // instant, is what it then copies.
    if (!fileExisted) {
        const int fd = ::open(file.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (fd >= 0)
            ::close(fd);
    }

    m_settings.sync();
    // The status mixes up reading and writing (an unreadable file reports an error even when the
    // new one was written), and on a nearly full disk a truncated file is committed with no error
    // at all: reading the file back is what tells.
    if (readsBackAsWritten()) {
        ::unlink(backup.constData());
        m_readStamp = currentStamp();
        return;
    }
    struct stat after = {};
    const bool replaced = ::stat(file.constData(), &after) == 0 && (!fileExisted || after.st_ino != before.st_ino);
    QString outcome = QStringLiteral("the file was left as it was.");
    if (replaced && haveBackup && ::rename(backup.constData(), file.constData()) == 0)
        outcome = QStringLiteral("the previous file was put back.");
    else if (replaced && !fileExisted && ::unlink(file.constData()) == 0)
        outcome = QStringLiteral("the incomplete file was removed.");
    else if (replaced)
        outcome = QStringLiteral("the previous file could not be put back.");
    ::unlink(backup.constData());
    // QSettings says only "access error"; what the folder and the disk look like says which.
    struct statvfs disk = {};
    const bool full = ::statvfs(dir.constData(), &disk) == 0 && quint64(disk.f_bavail) * disk.f_frsize < quint64(64) * 1024;
    const bool writable = ::access(dir.constData(), W_OK) == 0 && (!fileExisted || ::access(file.constData(), W_OK) == 0);
    QString why = QStringLiteral("it did not read back as written (is the disk full?)");
    if (!replaced)
        why = full ? QStringLiteral("the disk is full") : !writable ? QStringLiteral("permission denied") : QStringLiteral("it could not be written");
    if (!linkTarget.isEmpty())
        why += QStringLiteral(" (written through the link %1)").arg(m_settings.fileName());
    systemLog(QStringLiteral("Could not write the settings file %1: %2; %3").arg(fileName, why, outcome));
}

bool SettingsFile::isReadable(const QVariant &value)
{
    if (value.typeId() == QMetaType::QDateTime) {
        const QDateTime date = value.toDateTime();
        return date.isValid() && (date.timeSpec() != Qt::TimeZone || date.timeZone().isValid());
    }
    if (value.typeId() == QMetaType::QVariantList) {
        const QVariantList list = value.toList();
        return std::all_of(list.begin(), list.end(), [](const QVariant &element) { return isReadable(element); });
    }
    return true;
}

} // namespace Quillon

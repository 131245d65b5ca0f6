#include "FileReference.h"

#include "FileName.h"

#include <QDataStream>
#include <QDir>
#include <QHash>
#include <QIODevice>
#include <QSet>

#include <algorithm>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

// Linux has no alias records, and opening by file handle needs privilege. So a reference records
// the path and the file's identity and finds a renamed or moved file again by it, the way desktop
// indexers do. The identity is the file handle the filesystem gives (on ext4 the inode and its
// generation, which changes when a freed inode is given to a new file), compared, never opened;
// where there is none, the birth time. Name, size and times are not identity.

namespace Quillon::FileReference {
namespace {

const QByteArray Magic = QByteArrayLiteral("QUILLON-REF\x02");
// What references written before file handles begin with; still read.
const QByteArray MagicWithoutHandle = QByteArrayLiteral("QUILLON-REF\x01");
constexpr qsizetype MaxPathBytes = 1023;
// How many directory entries one restore may look at, for all missing files together.
constexpr int SearchBudget = 200'000;

struct Identity
{
    quint64 dev = 0;
    quint64 ino = 0;
    qint64 birthSec = 0;
    quint32 birthNSec = 0;
    bool hasBirth = false;
    qint64 size = 0;
    qint64 mtimeSec = 0;
    // The handle's type and bytes; empty where the filesystem gives none.
    QByteArray handle;
    quint32 uid = 0; // not saved: only asked of a file found again
};

QByteArray handleOf(const QByteArray &path)
{
    alignas(file_handle) unsigned char storage[sizeof(file_handle) + MAX_HANDLE_SZ] = {};
    auto *handle = reinterpret_cast<file_handle *>(storage);
    handle->handle_bytes = MAX_HANDLE_SZ;
    int mountId = 0; // changes across boots: not part of the identity
    if (::name_to_handle_at(AT_FDCWD, path.constData(), handle, &mountId, 0) != 0)
        return {};
    QByteArray out;
    QDataStream stream(&out, QIODevice::WriteOnly);
    stream << qint32(handle->handle_type) << QByteArray(reinterpret_cast<const char *>(storage + sizeof(file_handle)), int(handle->handle_bytes));
    return out;
}

std::optional<Identity> identityOf(const QByteArray &path)
{
    struct statx stx
    {
    };
    if (statx(AT_FDCWD, path.constData(), AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &stx) != 0)
        return std::nullopt;
    Identity id;
    id.dev = makedev(stx.stx_dev_major, stx.stx_dev_minor);
    id.ino = stx.stx_ino;
    id.hasBirth = (stx.stx_mask & STATX_BTIME) != 0;
    if (id.hasBirth) {
        id.birthSec = stx.stx_btime.tv_sec;
        id.birthNSec = stx.stx_btime.tv_nsec;
    }
    id.size = qint64(stx.stx_size);
    id.mtimeSec = stx.stx_mtime.tv_sec;
    id.uid = stx.stx_uid;
    id.handle = handleOf(path);
    return id;
}

QByteArray parentOf(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    if (slash <= 0)
        return QByteArrayLiteral("/");
    return path.left(slash);
}

// A file found again by its inode alone would be whatever file got that inode next, another
// user's included. Only a file that is provably the same one is taken; in doubt, the item is
// reported missing as a deleted one would be.
bool sameFile(const Identity &saved, const Identity &found, const QByteArray &foundPath)
{
    if (saved.dev != found.dev || saved.ino != found.ino)
        return false;
    if (found.uid != ::geteuid())
        return false;
    // Another user could put a file there, or swap it, between now and the launch.
    struct stat folder = {};
    if (::stat(parentOf(foundPath).constData(), &folder) != 0 || (folder.st_mode & S_IWOTH) || (folder.st_uid != ::geteuid() && folder.st_uid != 0))
        return false;
    if (!saved.handle.isEmpty() && !found.handle.isEmpty())
        return saved.handle == found.handle;
    // No handle (a filesystem without them, or a reference from before they were kept): only a
    // birth time tells a freed inode given to a new file from the file that had it.
    return saved.hasBirth && found.hasBirth && saved.birthSec == found.birthSec && saved.birthNSec == found.birthNSec;
}

struct Decoded
{
    QByteArray path;
    Identity identity;
    bool plain = false;
};

std::optional<Decoded> decode(const QByteArray &reference)
{
    const bool withHandle = reference.startsWith(Magic);
    if (!withHandle && !reference.startsWith(MagicWithoutHandle)) {
        // A plain absolute path, as a hand-written list or another tool would store it.
        if (!reference.startsWith('/') || reference.contains('\0') || reference.size() > MaxPathBytes)
            return std::nullopt;
        return Decoded { reference, {}, true };
    }
    QDataStream stream(reference.mid(Magic.size()));
    stream.setVersion(QDataStream::Qt_6_0);
    Decoded d;
    Identity &saved = d.identity;
    stream >> d.path >> saved.dev >> saved.ino >> saved.hasBirth >> saved.birthSec >> saved.birthNSec >> saved.size >> saved.mtimeSec;
    if (withHandle)
        stream >> saved.handle;
    if (stream.status() != QDataStream::Ok || !d.path.startsWith('/'))
        return std::nullopt;
    return d;
}

// Looks for every missing file in one walk: each folder is listed once whatever the number of
// files sought, the whole walk shares one budget, and only the devices that held them are entered.
class InodeSearch
{
public:
    void want(qsizetype index, const QByteArray &oldPath, const Identity &identity)
    {
        m_wanted.insert(identity.ino, { index, identity });
        m_devices.insert(identity.dev);
        ++m_missing;
        for (QByteArray dir = parentOf(oldPath); dir != "/"; dir = parentOf(dir))
            m_roots.append(dir);
    }

    // Near folders first: a file is most often moved close to where it was.
    QHash<qsizetype, QByteArray> run()
    {
        std::stable_sort(m_roots.begin(), m_roots.end(), [](const QByteArray &a, const QByteArray &b) { return a.count('/') > b.count('/'); });
        m_roots.append(QFile::encodeName(QDir::homePath()));
        for (const QByteArray &root : std::as_const(m_roots)) {
            if (m_found.size() == m_missing || m_budget <= 0)
                break;
            searchBelow(root);
        }
        return m_found;
    }

private:
    struct Wanted
    {
        qsizetype index;
        Identity identity;
    };

    void searchBelow(const QByteArray &root)
    {
        QList<QByteArray> queue { root };
        while (!queue.isEmpty() && m_budget > 0 && m_found.size() < m_missing) {
            const QByteArray dir = queue.takeFirst();
            if (m_searched.contains(dir))
                continue;
            m_searched.insert(dir);
            DIR *d = opendir(dir.constData());
            if (!d)
                continue;
            struct stat dirStat = {};
            if (fstat(dirfd(d), &dirStat) != 0 || !m_devices.contains(quint64(dirStat.st_dev))) {
                closedir(d);
                continue;
            }
            while (dirent *e = readdir(d)) {
                if (--m_budget <= 0)
                    break;
                const char *name = e->d_name;
                if (name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0)))
                    continue;
                const QByteArray child = (dir == "/" ? dir : dir + '/') + name;
                if (m_wanted.contains(e->d_ino))
                    match(child, e->d_ino);
                bool isDir = e->d_type == DT_DIR;
                if (e->d_type == DT_UNKNOWN) {
                    struct stat st = {};
                    isDir = lstat(child.constData(), &st) == 0 && S_ISDIR(st.st_mode);
                }
                if (isDir)
                    queue.append(child);
            }
            closedir(d);
        }
    }

    void match(const QByteArray &child, quint64 ino)
    {
        const auto found = identityOf(child);
        if (!found)
            return;
        for (auto it = m_wanted.find(ino); it != m_wanted.end() && it.key() == ino; ++it) {
            if (!m_found.contains(it->index) && sameFile(it->identity, *found, child))
                m_found.insert(it->index, child);
        }
    }

    QMultiHash<quint64, Wanted> m_wanted;
    QSet<quint64> m_devices;
    QList<QByteArray> m_roots;
    QSet<QByteArray> m_searched;
    QHash<qsizetype, QByteArray> m_found;
    qsizetype m_missing = 0;
    qint64 m_budget = SearchBudget;
};

} // namespace

QByteArray make(const QString &path)
{
    const QByteArray bytes = FileName::encode(path);
    if (bytes.isEmpty() || bytes.size() > MaxPathBytes || !bytes.startsWith('/'))
        return {};
    const auto id = identityOf(bytes);
    if (!id)
        return {};
    QByteArray out;
    QDataStream stream(&out, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_0);
    stream.writeRawData(Magic.constData(), int(Magic.size()));
    stream << bytes << id->dev << id->ino << id->hasBirth << id->birthSec << id->birthNSec << id->size << id->mtimeSec << id->handle;
    return out;
}

std::optional<QString> resolve(const QByteArray &reference)
{
    return resolveAll({ reference }).constFirst();
}

QList<std::optional<QString>> resolveAll(const QList<QByteArray> &references)
{
    QList<std::optional<QString>> out(references.size());
    InodeSearch search;
    for (qsizetype i = 0; i < references.size(); ++i) {
        const auto d = decode(references.at(i));
        if (!d)
            continue;
        // Still there, or replaced in place by an editor's atomic save: the path is the answer.
        if (identityOf(d->path))
            out[i] = FileName::decode(d->path);
        else if (!d->plain)
            search.want(i, d->path, d->identity);
    }
    const QHash<qsizetype, QByteArray> moved = search.run();
    for (auto it = moved.begin(); it != moved.end(); ++it)
        out[it.key()] = FileName::decode(it.value());
    return out;
}

} // namespace Quillon::FileReference

#include "FileReference.h"

#include <QDataStream>
#include <QDir>
#include <QIODevice>
#include <QSet>
#include <QStringDecoder>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

// Linux has no alias records, and opening by file handle needs privilege. So a reference records
// the path and the file's identity (device, inode, birth time against inode reuse) and finds a
// renamed or moved file again by that identity, the way desktop indexers do.

namespace Quillon::FileReference {
namespace {

const QByteArray Magic = QByteArrayLiteral("QUILLON-REF\x01");
constexpr qsizetype MaxPathBytes = 1023;
// How many directory entries one resolve may look at before it gives up.
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
};

std::optional<Identity> identityOf(const QByteArray &path)
{
    struct statx stx{};
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
    return id;
}

bool sameFile(const Identity &saved, const Identity &found)
{
    if (saved.dev != found.dev || saved.ino != found.ino)
        return false;
    if (saved.hasBirth && found.hasBirth)
        return saved.birthSec == found.birthSec && saved.birthNSec == found.birthNSec;
    return true;
}

std::optional<QString> validUtf8(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

QByteArray parentOf(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    if (slash <= 0)
        return QByteArrayLiteral("/");
    return path.left(slash);
}

class InodeSearch
{
public:
    explicit InodeSearch(const Identity &wanted)
        : m_wanted(wanted)
    {
    }

    // Breadth first below root, on the wanted file's device only, skipping subtrees already searched.
    std::optional<QByteArray> searchBelow(const QByteArray &root)
    {
        QList<QByteArray> queue{root};
        while (!queue.isEmpty() && m_budget > 0) {
            const QByteArray dir = queue.takeFirst();
            if (m_searched.contains(dir))
                continue;
            m_searched.insert(dir);
            DIR *d = opendir(dir.constData());
            if (!d)
                continue;
            while (dirent *e = readdir(d)) {
                if (--m_budget <= 0)
                    break;
                const char *name = e->d_name;
                if (name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0)))
                    continue;
                const QByteArray child = (dir == "/" ? dir : dir + '/') + name;
                if (e->d_ino == m_wanted.ino) {
                    if (auto found = identityOf(child); found && sameFile(m_wanted, *found)) {
                        closedir(d);
                        return child;
                    }
                }
                bool isDir = e->d_type == DT_DIR;
                if (e->d_type == DT_UNKNOWN) {
                    struct stat st{};
                    isDir = lstat(child.constData(), &st) == 0 && S_ISDIR(st.st_mode);
                }
                if (isDir)
                    queue.append(child);
            }
            closedir(d);
        }
        return std::nullopt;
    }

private:
    Identity m_wanted;
    QSet<QByteArray> m_searched;
    int m_budget = SearchBudget;
};

std::optional<QByteArray> findMoved(const QByteArray &oldPath, const Identity &wanted)
{
    InodeSearch search(wanted);
    QList<QByteArray> roots;
    for (QByteArray dir = parentOf(oldPath); dir != "/"; dir = parentOf(dir)) {
        struct stat st{};
        // A folder that is gone, or another filesystem, cannot hold the file under the same inode.
        if (lstat(dir.constData(), &st) == 0 && S_ISDIR(st.st_mode) && quint64(st.st_dev) == wanted.dev)
            roots.append(dir);
    }
    roots.append(QFile::encodeName(QDir::homePath()));
    for (const QByteArray &root : std::as_const(roots)) {
        if (auto found = search.searchBelow(root))
            return found;
    }
    return std::nullopt;
}

} // namespace

QByteArray make(const QString &path)
{
    const QByteArray bytes = path.toUtf8();
    if (bytes.isEmpty() || bytes.size() > MaxPathBytes || !bytes.startsWith('/'))
        return {};
    const auto id = identityOf(bytes);
    if (!id)
        return {};
    QByteArray out;
    QDataStream stream(&out, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_6_0);
    stream.writeRawData(Magic.constData(), int(Magic.size()));
    stream << bytes << id->dev << id->ino << id->hasBirth << id->birthSec << id->birthNSec << id->size << id->mtimeSec;
    return out;
}

std::optional<QString> resolve(const QByteArray &reference)
{
    if (!reference.startsWith(Magic)) {
        // A plain absolute path, as a hand-written list or another tool would store it.
        if (!reference.startsWith('/') || reference.contains('\0') || reference.size() > MaxPathBytes)
            return std::nullopt;
        if (!identityOf(reference))
            return std::nullopt;
        return validUtf8(reference);
    }

    QDataStream stream(reference.mid(Magic.size()));
    stream.setVersion(QDataStream::Qt_6_0);
    QByteArray path;
    Identity saved;
    stream >> path >> saved.dev >> saved.ino >> saved.hasBirth >> saved.birthSec >> saved.birthNSec >> saved.size >> saved.mtimeSec;
    if (stream.status() != QDataStream::Ok || !path.startsWith('/'))
        return std::nullopt;

    // Still there, or replaced in place by an editor's atomic save: the path is the answer.
    if (identityOf(path))
        return validUtf8(path);
    if (auto moved = findMoved(path, saved))
        return validUtf8(*moved);
    return std::nullopt;
}

} // namespace Quillon::FileReference

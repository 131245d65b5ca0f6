#include "FolderExpansion.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace Quillon {

bool FolderExpansion::isPackage(const QString &path)
{
    if (path.endsWith(QLatin1String(".app")))
        return true;
    const QFileInfo appRun(path + QLatin1String("/AppRun"));
    return appRun.isFile() && appRun.isExecutable();
}

bool FolderExpansion::isPlainFolder(const QString &path)
{
    const QFileInfo info(path);
    return info.isDir() && !info.isSymLink() && !isPackage(path);
}

bool FolderExpansion::isDroppedFolder(const QString &path)
{
    return QFileInfo(path).isDir() && !isPackage(path);
}

const QSet<QString> &FolderExpansion::hiddenNamesIn(const QString &folder)
{
    auto it = m_hiddenFiles.find(folder);
    if (it != m_hiddenFiles.end())
        return it.value();
    QSet<QString> names;
    QFile hidden(folder + QLatin1String("/.hidden"));
    if (hidden.open(QIODevice::ReadOnly)) {
        const auto lines = hidden.readAll().split('\n');
        for (const QByteArray &line : lines) {
            if (!line.isEmpty())
                names.insert(QString::fromUtf8(line));
        }
    }
    return m_hiddenFiles.insert(folder, names).value();
}

bool FolderExpansion::isInvisible(const QString &path)
{
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    const QString name = path.mid(slash + 1);
    if (name.startsWith(QLatin1Char('.')))
        return true;
    return slash > 0 && hiddenNamesIn(path.left(slash)).contains(name);
}

QStringList FolderExpansion::expand(const QString &folder, bool recursive)
{
    QStringList added;
    const QDir::Filters filters = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    // The walk is not pruned: hidden folders and packages are entered too, only entries are judged.
    QDirIterator it(folder, filters, recursive ? QDirIterator::Subdirectories : QDirIterator::NoIteratorFlags);
    while (it.hasNext()) {
        const QString path = it.next();
        if (isPlainFolder(path) || isInvisible(path))
            continue;
        added << path;
    }
    return added;
}

QStringList FolderExpansion::expandDropped(const QStringList &paths, bool folderFiles, bool recursive)
{
    QStringList out;
    for (QString path : paths) {
        if (path.isEmpty())
            continue;
        if (path.size() > 1 && path.endsWith(QLatin1Char('/')))
            path.chop(1);
        if (folderFiles && isDroppedFolder(path))
            out << expand(path, recursive);
        else
            out << path;
    }
    return out;
}

} // namespace Quillon

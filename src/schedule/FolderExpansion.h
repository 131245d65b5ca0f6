#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

namespace Quillon {

// How a dropped folder turns into items, with the file manager's idea of packages and hidden files.
class FolderExpansion final
{
public:
    // A folder the user browses into: not a package. Packages (an ".app" folder, or an AppDir
    // holding an executable AppRun) are shown as one file.
    static bool isPlainFolder(const QString &path);
    static bool isPackage(const QString &path);
    // A folder dropped or chosen by the user: a link to a folder is that folder, as opening the
    // path would make it. Only the walk inside does not follow links.
    static bool isDroppedFolder(const QString &path);
    // A name starting with a dot, or listed in its folder's ".hidden" file.
    bool isInvisible(const QString &path);

    // What a drop of this folder adds, in the order the folder gives its entries.
    QStringList expand(const QString &folder, bool recursive);
    // What a drop of these paths adds: each folder its files when folderFiles is set, in order.
    QStringList expandDropped(const QStringList &paths, bool folderFiles, bool recursive);

private:
    const QSet<QString> &hiddenNamesIn(const QString &folder);
    QHash<QString, QSet<QString>> m_hiddenFiles;
};

} // namespace Quillon

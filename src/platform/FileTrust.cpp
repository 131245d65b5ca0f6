#include "FileTrust.h"

#include "FileName.h"

#include <QStandardPaths>

#include <climits>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace Quillon::FileTrust {
namespace {
bool ownedByUs(const struct stat &st)
{
    return st.st_uid == ::getuid() || st.st_uid == 0;
}

bool inApplicationsFolder(const QString &path)
{
    for (const QString &folder : QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation)) {
        if (path.startsWith(folder + QLatin1Char('/')))
            return true;
    }
    return false;
}
} // namespace

QString whyNotRun(const QString &path, Kind kind)
{
    // The file a link leads to is the one that runs, in the folder it lies in.
    // A file that is not there is for the opener to report.
    char real[PATH_MAX];
    if (!::realpath(FileName::encode(path).constData(), real))
        return {};
    const QByteArray file(real);
    const QByteArray folder = file.left(std::max<qsizetype>(1, file.lastIndexOf('/')));
    struct stat st
    {
    }, dir {};
    if (::stat(file.constData(), &st) != 0 || ::stat(folder.constData(), &dir) != 0)
        return QStringLiteral("it could not be looked at");
    if (!ownedByUs(st))
        return QStringLiteral("it belongs to another user; only your own files are run");
    if (st.st_mode & (S_IWGRP | S_IWOTH))
        return QStringLiteral("others can change it; only files no one else can write are run");
    if (!ownedByUs(dir) || ((dir.st_mode & (S_IWGRP | S_IWOTH)) && !(dir.st_mode & S_ISVTX)))
        return QStringLiteral("others can change its folder; only files in your own folders are run");
    if (kind == Kind::DesktopEntry && !(st.st_mode & S_IXUSR) && !inApplicationsFolder(FileName::decode(file)))
        return QStringLiteral("a desktop entry outside the application folders runs only when it is marked executable");
    return {};
}

QString whyNotOwnFolder(const QString &folder)
{
    struct stat st = {};
    if (::stat(FileName::encode(folder).constData(), &st) != 0)
        return {};
    if (st.st_uid != ::geteuid())
        return QStringLiteral("another user owns it");
    if (st.st_mode & (S_IWGRP | S_IWOTH))
        return QStringLiteral("others can write in it");
    return {};
}

} // namespace Quillon::FileTrust

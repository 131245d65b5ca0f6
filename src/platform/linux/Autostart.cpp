#include "Autostart.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>

namespace Quillon::Autostart {

QString entryPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/autostart/" QUILLON_APP_ID ".desktop");
}

bool isEnabled()
{
    return QFile::exists(entryPath());
}

QByteArray execLine(const QString &program)
{
    QByteArray arg = QFile::encodeName(program);
    static const QByteArray reserved = " \t\n\"'\\><~|&;$*?#()`";
    if (std::any_of(arg.begin(), arg.end(), [](char c) { return reserved.contains(c); })) {
        QByteArray quoted = "\"";
        for (const char c : std::as_const(arg)) {
            if (c == '"' || c == '`' || c == '$' || c == '\\')
                quoted += '\\';
            quoted += c;
        }
        arg = quoted + '"';
    }
    // The value is a string of the entry as well: its own escapes come on top; % starts a field code.
    arg.replace("\\", "\\\\");
    arg.replace("%", "%%");
    return arg + " --autostart";
}

bool setEnabled(bool enabled)
{
    const QString path = entryPath();
    if (!enabled)
        return !QFile::exists(path) || QFile::remove(path);
    // The installed program by name; one run from elsewhere (a build folder) by its full path.
    const QString program = QCoreApplication::applicationFilePath();
    const QString exec = program.startsWith(QLatin1String("/usr/")) ? QStringLiteral("quillon") : program;
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write("[Desktop Entry]\nType=Application\nName=Quillon\nComment=Open files, applications and scripts at the times you choose\n"
               "Exec="
        + execLine(exec) + "\nIcon=" QUILLON_APP_ID "\nTerminal=false\nX-GNOME-Autostart-enabled=true\n");
    return file.commit();
}

} // namespace Quillon::Autostart

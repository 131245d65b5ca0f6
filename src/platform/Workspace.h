#pragma once

#include <QIcon>
#include <QString>
#include <QUrl>

#include <chrono>

namespace Quillon {

// What the desktop does with files: open them, show them in the file manager, give their icons.
class Workspace
{
public:
    virtual ~Workspace() = default;
    // Open as a double click in the file manager would, without waiting for the program to
    // start. False when there is nothing to open; a program that fails to start is logged.
    virtual bool openFile(const QString &path) = 0;
    // Show the file selected in the file manager.
    virtual void selectFile(const QString &path) = 0;
    virtual QIcon iconForFile(const QString &path) = 0;
    virtual bool openUrl(const QUrl &url) = 0;
    // At quit: let the openings already asked for start, for at most limit; returns how many
    // were dropped.
    virtual int finishOpenings(std::chrono::milliseconds limit)
    {
        Q_UNUSED(limit);
        return 0;
    }
};

} // namespace Quillon

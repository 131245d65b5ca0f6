#pragma once

#include <QIcon>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>

namespace Quillon {

// What the desktop does with files: open them, show them in the file manager, give their icons.
class Workspace
{
public:
    virtual ~Workspace() = default;
    // What an opening turned out to be, and how it ended.
    enum class OpenedAs { Document, Program, Application, Folder };
    // NotTrusted: a desktop entry that is not the user's own is not run.
    enum class OpenFailure { None, Vanished, CannotOpen, NotTrusted };
    struct Opening
    {
        OpenedAs as = OpenedAs::Document;
        OpenFailure failure = OpenFailure::None;
        QString detail; // why it failed, in the words of the desktop's services
    };
    // Told from the event loop, once, for this opening alone.
    using OpenDone = std::function<void(const Opening &)>;
    static QString text(OpenedAs as)
    {
        static const char *const names[] = { "document", "program", "application", "folder" };
        return QString::fromLatin1(names[int(as)]);
    }
    // Open as a double click in the file manager would, without waiting for the program to
    // start. False when there is nothing to open; done is told how the opening ended.
    virtual bool openFile(const QString &path, OpenDone done = {}) = 0;
    // Show the file selected in the file manager.
    virtual void selectFile(const QString &path) = 0;
    virtual QIcon iconForFile(const QString &path) = 0;
    virtual bool openUrl(const QUrl &url) = 0;
    // At quit: lets the openings already asked for start, for at most limit, then drops those not
    // begun; done gets how many were dropped, from the event loop, once none is under way.
    virtual void finishOpenings(std::chrono::milliseconds limit, std::function<void(int dropped)> done)
    {
        Q_UNUSED(limit);
        done(0);
    }
    // Runs use now, on this thread, unless an opening is starting a program on another thread:
    // then nothing runs and the answer is false. For changing the environment those programs
    // would inherit, which is never safe while one starts.
    virtual bool whileNoProgramStarts(const std::function<void()> &use)
    {
        use();
        return true;
    }
};

} // namespace Quillon

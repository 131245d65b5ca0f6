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
    // How each opening ended, told from the event loop: how it was opened ("document",
    // "program", "application", "folder"), and why it failed (empty when it did not).
    using Outcome = std::function<void(const QString &path, const QString &how, const QString &failure)>;
    void setOutcomeHandler(Outcome handler) { m_outcome = std::move(handler); }
    // Open as a double click in the file manager would, without waiting for the program to
    // start. False when there is nothing to open; a program that fails to start is logged.
    virtual bool openFile(const QString &path) = 0;
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

protected:
    void reportOutcome(const QString &path, const QString &how, const QString &failure) const
    {
        if (m_outcome)
            m_outcome(path, how, failure);
    }

private:
    Outcome m_outcome;
};

} // namespace Quillon

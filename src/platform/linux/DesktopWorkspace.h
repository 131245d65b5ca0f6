#pragma once

#include "Workspace.h"

#include <QMimeDatabase>
#include <QObject>
#include <QThreadPool>

#include <functional>

namespace Quillon {

// Opens files the way a Linux file manager does on a double click.
//
// Starting a process waits until the child has been scheduled and has exec'd, which takes
// milliseconds when many children start at once on a busy machine. So the event loop only
// checks that there is something to open and queues it; one opener thread resolves the handler
// and spawns, in the order the openings were asked for.
class DesktopWorkspace final : public Workspace
{
public:
    DesktopWorkspace();
    ~DesktopWorkspace() override;
    bool openFile(const QString &path) override;
    void selectFile(const QString &path) override;
    QIcon iconForFile(const QString &path) override;
    bool openUrl(const QUrl &url) override;

    // Waits until every queued opening has been started; for tests and benchmarks.
    void waitForOpenings();

private:
    // The job returns an error text, empty when the program was started.
    void inBackground(std::function<QString()> job);

    QMimeDatabase m_mimes;
    // Failures found on the opener thread are logged from the event loop through this.
    QObject m_logContext;
    QThreadPool m_opener;
};

} // namespace Quillon

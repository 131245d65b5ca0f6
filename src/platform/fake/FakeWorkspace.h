#pragma once

#include "Workspace.h"

#include <QStringList>

namespace Quillon {

class FakeWorkspace final : public Workspace
{
public:
    bool openFile(const QString &path, OpenDone done = {}) override
    {
        opened << path;
        if (done)
            done(openSucceeds ? Opening {} : Opening { OpenedAs::Document, OpenFailure::CannotOpen, QStringLiteral("it could not be opened") });
        return openSucceeds;
    }
    void selectFile(const QString &path) override { selected << path; }
    QIcon iconForFile(const QString &path) override
    {
        iconPaths << path;
        return {};
    }
    bool openUrl(const QUrl &) override { return true; }

    bool whileNoProgramStarts(const std::function<void()> &use) override
    {
        if (programStarting)
            return false;
        use();
        return true;
    }

    bool openSucceeds = true;
    bool programStarting = false;
    QStringList opened;
    QStringList selected;
    QStringList iconPaths;
};

} // namespace Quillon

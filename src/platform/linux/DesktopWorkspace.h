#pragma once

#include "Workspace.h"

#include <QMimeDatabase>

namespace Quillon {

// Opens files the way a Linux file manager does on a double click.
class DesktopWorkspace final : public Workspace
{
public:
    DesktopWorkspace() = default;
    bool openFile(const QString &path) override;
    void selectFile(const QString &path) override;
    QIcon iconForFile(const QString &path) override;
    bool openUrl(const QUrl &url) override;

private:
    QMimeDatabase m_mimes;
};

} // namespace Quillon

#include "Launcher.h"

#include "Log.h"
#include "MailSettings.h"
#include "Preferences.h"
#include "ScriptRunner.h"
#include "SettingsKeys.h"
#include "Texts.h"
#include "Workspace.h"

namespace Quillon {

Launcher::Launcher(Preferences &preferences, Workspace &workspace, ScriptRunner &scripts, SendMail sendMail)
    : m_preferences(preferences)
    , m_workspace(workspace)
    , m_scripts(scripts)
    , m_sendMail(std::move(sendMail))
{
}

bool Launcher::isScriptPath(const QString &path)
{
    const QString name = path.section(QLatin1Char('/'), -1);
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    if (dot < 0)
        return false;
    const QStringView extension = QStringView(name).mid(dot + 1);
    return extension == QLatin1String("applescript") || extension == QLatin1String("scpt");
}

void Launcher::launchItem(const QString &path)
{
    if (isScriptPath(path)) {
        runScript(path);
        return;
    }
    m_workspace.openFile(path);
    if (MailSettings(m_preferences).sendEmail())
        m_sendMail(path, Texts::LaunchedSubject);
    else
        systemLog(Texts::EmailOff);
}

bool Launcher::runScript(const QString &path)
{
    const ScriptRunner::Outcome outcome = m_scripts.run(path);
    if (!outcome.loaded || !outcome.result)
        return false;
    const ScriptDescriptor &result = *outcome.result;

    std::optional<QString> text;
    if (result.type != ScriptDescriptor::Type::List) {
        text = result.stringValue();
    } else if (result.numberOfItems() > 0) {
        // Position 0 never names an item (they count from 1), so a list never yields text.
        if (const auto first = result.descriptorAtIndex(0))
            text = first->stringValue();
    }

    m_preferences.synchronize();
    if (text && m_preferences.boolValue(Keys::EmailScriptResults))
        m_sendMail(*text, Texts::ScriptResultSubject);
    return true;
}

void Launcher::launchAllNow(const QStringList &paths)
{
    const QStringList snapshot = paths;
    for (const QString &path : snapshot)
        launchItem(path);
}

void Launcher::doubleAction(int selectedRow, const QStringList &paths)
{
    if (selectedRow < 0 || selectedRow >= paths.size())
        return;
    const QString path = paths.at(selectedRow);
    if (!path.isEmpty())
        m_workspace.selectFile(path);
}

} // namespace Quillon

#pragma once

#include <QAnyStringView>
#include <QLatin1StringView>
#include <QStringView>

// Every key of the settings file, in one place.
namespace Quillon::Keys {
inline constexpr QLatin1StringView Items("Items");
inline constexpr QLatin1StringView Dates("Dates");
inline constexpr QLatin1StringView TimersRunning("TimersRunning");
// Each saved item's own rule and missed policy (iCalendar lines), or an empty text.
inline constexpr QLatin1StringView Repeats("Repeats");
inline constexpr QLatin1StringView RememberItems("rememberItems");
inline constexpr QLatin1StringView AddFolderFiles("addFolderFiles");
inline constexpr QLatin1StringView AddFolderFilesRecursively("addFolderFilesRecursively");
inline constexpr QLatin1StringView RepeatSeconds("repeatSeconds");
inline constexpr QLatin1StringView TimeUnit("timeUnit");
inline constexpr QLatin1StringView QuitWhenDone("quitWhenDone");
// Whether Launch All Now asks first when it would open more than one item; absent: it asks.
inline constexpr QLatin1StringView ConfirmLaunchAll("confirmLaunchAll");
// Seconds a script may run before it is ended; absent or 0: no limit.
inline constexpr QLatin1StringView ScriptTimeLimit("scriptTimeLimitSeconds");
// Not the schedule's own: what happened is kept apart, and these say what to do about it.
inline constexpr QLatin1StringView OpenMissedItems("openMissedItems");
inline constexpr QLatin1StringView NotifyProblems("notifyProblems");
inline constexpr QLatin1StringView NotifyEveryLaunch("notifyEveryLaunch");
inline constexpr QLatin1StringView SendEmail("sendEmail");
inline constexpr QLatin1StringView EmailScriptResults("emailAppleScriptResults");
inline constexpr QLatin1StringView RecipientEmail("recipientEmail");
inline constexpr QLatin1StringView RecipientName("recipientName");
inline constexpr QLatin1StringView ServerAddress("serverAddress");
inline constexpr QLatin1StringView ServerPort("serverPort");
inline constexpr QLatin1StringView SelectedAuthentication("selectedAuthentication");
inline constexpr QLatin1StringView UseSSL("useSSL");
inline constexpr QLatin1StringView LoginUsername("loginUsername");
inline constexpr QLatin1StringView LoginPassword("loginPassword");
// The window's own state, not part of the schedule.
inline constexpr QLatin1StringView WindowGeometry("window/geometry");
inline constexpr QLatin1StringView TableHeader("window/tableHeader");
inline constexpr QLatin1StringView ChooserFolder("window/chooserFolder");
inline constexpr QLatin1StringView HistorySeen("history/seenUpTo");

// Whether a key is one of ours: a file that could not be read whole is saved anew with these only.
inline bool isKnown(QStringView key)
{
    for (QLatin1StringView known : { Items, Dates, TimersRunning, Repeats, RememberItems, AddFolderFiles, AddFolderFilesRecursively, RepeatSeconds, TimeUnit,
             QuitWhenDone, ConfirmLaunchAll, ScriptTimeLimit, OpenMissedItems, NotifyProblems, NotifyEveryLaunch, SendEmail, EmailScriptResults, RecipientEmail,
             RecipientName, ServerAddress, ServerPort, SelectedAuthentication, UseSSL, LoginUsername, LoginPassword, WindowGeometry, TableHeader, ChooserFolder,
             HistorySeen }) {
        if (key == known)
            return true;
    }
    return false;
}
// What a boolean key reads as while the file does not hold it: one place for each default.
inline bool defaultBool(QAnyStringView key)
{
    return key == RememberItems || key == NotifyProblems || key == ConfirmLaunchAll;
}
} // namespace Quillon::Keys

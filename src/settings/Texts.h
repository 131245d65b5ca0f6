#pragma once

#include <QCoreApplication>
#include <QString>

// Every text the user sees from the schedule, in one place for translators. Log lines and mail
// subjects stay English, whatever the user's language.
namespace Quillon::Texts {
// The translated form of one of the marked texts below.
inline QString tr(const char *text)
{
    return QCoreApplication::translate("Texts", text);
}

inline constexpr const char *NoItemsScheduled = QT_TRANSLATE_NOOP("Texts", "No items were scheduled to run.");
inline constexpr const char *NoItemsScheduledInfo = QT_TRANSLATE_NOOP("Texts", "Make sure that at least one item has a scheduled run time in the future.");
inline constexpr const char *Start = QT_TRANSLATE_NOOP("Texts", "Start");
inline constexpr const char *Stop = QT_TRANSLATE_NOOP("Texts", "Stop");
inline constexpr const char *StartToolTip = QT_TRANSLATE_NOOP("Texts", "Run the schedule.");
inline constexpr const char *StopToolTip = QT_TRANSLATE_NOOP("Texts", "Cancel the schedule.");
inline constexpr const char *StoppedNoFuture = QT_TRANSLATE_NOOP("Texts", "No item has a launch time in the future; the schedule stopped.");
inline constexpr const char *StoppedLastOpened = QT_TRANSLATE_NOOP("Texts", "The last item was opened; the schedule stopped.");
inline constexpr const char *LocationTitle = QT_TRANSLATE_NOOP("Texts", "Location");
inline constexpr const char *TimeToLaunchTitle = QT_TRANSLATE_NOOP("Texts", "Time to Launch");
inline const QString EmailOff = QStringLiteral("Email notifications are off.");
inline const QString LaunchedSubject = QStringLiteral("Quillon launched path...");
inline const QString ScriptResultSubject = QStringLiteral("Quillon Script Result");
inline const QString TestSubject = QStringLiteral("Test message from Quillon");
inline const QString TestBody = QStringLiteral("If you are reading this the test passed!");
} // namespace Quillon::Texts

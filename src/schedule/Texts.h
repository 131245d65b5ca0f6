#pragma once

#include <QString>

// Every text the user sees from the schedule, in one place for translators.
namespace Quillon::Texts {
inline const QString NoItemsScheduled = QStringLiteral("No items were scheduled to run.");
inline const QString NoItemsScheduledInfo = QStringLiteral("Make sure that at least one item has a scheduled run time in the future.");
inline const QString Start = QStringLiteral("Start");
inline const QString Stop = QStringLiteral("Stop");
inline const QString StartToolTip = QStringLiteral("Run the schedule.");
inline const QString StopToolTip = QStringLiteral("Cancel the schedule.");
inline const QString LocationTitle = QStringLiteral("Location");
inline const QString TimeToLaunchTitle = QStringLiteral("Time to Launch");
inline const QString EmailOff = QStringLiteral("Email notifications are off.");
inline const QString LaunchedSubject = QStringLiteral("Quillon launched path...");
inline const QString ScriptResultSubject = QStringLiteral("Quillon Script Result");
inline const QString TestSubject = QStringLiteral("Test message from Quillon");
inline const QString TestBody = QStringLiteral("If you are reading this the test passed!");
} // namespace Quillon::Texts

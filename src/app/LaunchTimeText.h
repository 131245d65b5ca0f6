#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

namespace Quillon {

// A launch time as a person types it on the command line, read against now (local time):
// "2026-12-01 07:00[:30]", ISO 8601 with an offset ("2026-12-01T07:00:00+01:00", "...Z"),
// "+10m", "+2h", "+30s", "+1d" from now, "07:00" (its next coming), "today 07:00", "tomorrow 07:00".
// Whole seconds; nothing when the text is none of these. A local time that the clocks skip (the
// hour of a spring-forward day) is the first moment after the gap; note then says so.
std::optional<QDateTime> parseLaunchTime(const QString &text, const QDateTime &now, QString *note = nullptr);

} // namespace Quillon

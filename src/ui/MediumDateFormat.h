#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace Quillon {

// The locale's medium date and medium time ("Mar 1, 2026, 8:30:05 AM"); QLocale has no medium style.
QString formatMediumDateTime(const QDateTime &dateTime, const QLocale &locale = QLocale());
// After a change of time zone: the next dates are formatted in the new one.
void forgetMediumDateFormats();

} // namespace Quillon

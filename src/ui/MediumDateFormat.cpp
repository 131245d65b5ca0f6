#include "MediumDateFormat.h"

#include <QHash>

#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <memory>

namespace Quillon {

namespace {
// Building an ICU formatter costs far more than formatting; one per locale is kept, until the
// time zone changes (a formatter keeps the zone it was made in).
QHash<QString, std::shared_ptr<icu::DateFormat>> formatters;
} // namespace

void forgetMediumDateFormats()
{
    formatters.clear();
}

QString formatMediumDateTime(const QDateTime &dateTime, const QLocale &locale)
{
    if (!dateTime.isValid())
        return {};
    const QString name = locale.name();
    auto &format = formatters[name];
    if (!format) {
        format.reset(icu::DateFormat::createDateTimeInstance(icu::DateFormat::kMedium, icu::DateFormat::kMedium, icu::Locale(name.toLatin1().constData())));
        if (!format)
            return locale.toString(dateTime, QLocale::ShortFormat);
    }
    icu::UnicodeString out;
    format->format(UDate(dateTime.toMSecsSinceEpoch()), out);
    return QString(reinterpret_cast<const QChar *>(out.getBuffer()), out.length());
}

} // namespace Quillon

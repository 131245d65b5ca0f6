#include "MediumDateFormat.h"

#include <QHash>

#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <memory>

namespace Quillon {

QString formatMediumDateTime(const QDateTime &dateTime, const QLocale &locale)
{
    if (!dateTime.isValid())
        return {};
    // Building an ICU formatter costs far more than formatting; one per locale is kept.
    static QHash<QString, std::shared_ptr<icu::DateFormat>> formatters;
    const QString name = locale.name();
    auto &format = formatters[name];
    if (!format) {
        format.reset(icu::DateFormat::createDateTimeInstance(icu::DateFormat::kMedium, icu::DateFormat::kMedium,
                                                             icu::Locale(name.toLatin1().constData())));
        if (!format)
            return locale.toString(dateTime, QLocale::ShortFormat);
    }
    icu::UnicodeString out;
    format->format(UDate(dateTime.toMSecsSinceEpoch()), out);
    return QString(reinterpret_cast<const QChar *>(out.getBuffer()), out.length());
}

} // namespace Quillon

#include "LaunchTimeText.h"

#include <QRegularExpression>

namespace Quillon {
namespace {
std::optional<QTime> timeOfDay(const QString &text)
{
    for (const char *format : {"H:mm", "H:mm:ss"}) {
        const QTime time = QTime::fromString(text, QLatin1String(format));
        if (time.isValid())
            return time;
    }
    return std::nullopt;
}
} // namespace

std::optional<QDateTime> parseLaunchTime(const QString &input, const QDateTime &now)
{
    const QString text = input.simplified();
    const QDateTime whole = now.addMSecs(-now.time().msec());

    static const QRegularExpression relative(QStringLiteral("^\\+(\\d{1,9})\\s*([smhd])$"));
    if (const QRegularExpressionMatch m = relative.match(text); m.hasMatch()) {
        static const QHash<QString, qint64> unit{{QStringLiteral("s"), 1}, {QStringLiteral("m"), 60}, {QStringLiteral("h"), 3600}, {QStringLiteral("d"), 86400}};
        return whole.addSecs(m.captured(1).toLongLong() * unit.value(m.captured(2)));
    }

    const QStringList words = text.split(QLatin1Char(' '));
    if (words.size() == 2 && (words.first() == QLatin1String("today") || words.first() == QLatin1String("tomorrow"))) {
        const std::optional<QTime> time = timeOfDay(words.last());
        if (!time)
            return std::nullopt;
        return QDateTime(now.date().addDays(words.first() == QLatin1String("tomorrow") ? 1 : 0), *time, Qt::LocalTime);
    }
    if (words.size() == 1) {
        if (const std::optional<QTime> time = timeOfDay(text)) {
            QDateTime at(now.date(), *time, Qt::LocalTime);
            return at > now ? at : QDateTime(now.date().addDays(1), *time, Qt::LocalTime);
        }
    }

    for (const char *format : {"yyyy-MM-dd H:mm", "yyyy-MM-dd H:mm:ss"}) {
        const QDateTime local = QDateTime::fromString(text, QLatin1String(format));
        if (local.isValid())
            return local;
    }
    // ISO 8601 needs its zone: "2026-12-01T07:00" alone is taken as local time, like the above.
    const QDateTime iso = QDateTime::fromString(text, Qt::ISODate);
    if (iso.isValid())
        return iso.addMSecs(-iso.time().msec());
    return std::nullopt;
}

} // namespace Quillon

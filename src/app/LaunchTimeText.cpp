#include "LaunchTimeText.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QTimeZone>

namespace Quillon {
namespace {
std::optional<QTime> timeOfDay(const QString &text)
{
    for (const char *format : { "H:mm", "H:mm:ss" }) {
        const QTime time = QTime::fromString(text, QLatin1String(format));
        if (time.isValid())
            return time;
    }
    return std::nullopt;
}

// A local date and time as a moment. One the clocks skip is the first moment after the gap
// (02:30 on the spring-forward day is 03:00), whichever way it was typed; Qt alone would move it
// on by the gap's length (03:30) or find no such time at all.
QDateTime localMoment(QDate date, QTime time, QString *note)
{
    QDateTime at(date, time, Qt::LocalTime);
    if (at.isValid() && at.date() == date && at.time() == time)
        return at;
    // The change of that day: where the wall clock jumps over the time asked for.
    const QTimeZone::OffsetData transition = QTimeZone::systemTimeZone().nextTransition(date.startOfDay());
    if (!transition.atUtc.isValid())
        return at;
    at = transition.atUtc.toLocalTime();
    if (note)
        *note = QCoreApplication::translate("Quillon::CommandLine", "%1 %2 does not exist here (the clocks go forward); %3 is used.")
                    .arg(date.toString(Qt::ISODate), time.toString(QStringLiteral("HH:mm")), at.time().toString(QStringLiteral("HH:mm")));
    return at;
}
} // namespace

std::optional<QDateTime> parseLaunchTime(const QString &input, const QDateTime &now, QString *note)
{
    const QString text = input.simplified();
    const QDateTime whole = now.addMSecs(-now.time().msec());

    static const QRegularExpression relative(QStringLiteral("^\\+(\\d{1,9})\\s*([smhd])$"));
    if (const QRegularExpressionMatch m = relative.match(text); m.hasMatch()) {
        static const QHash<QString, qint64> unit { { QStringLiteral("s"), 1 }, { QStringLiteral("m"), 60 }, { QStringLiteral("h"), 3600 },
            { QStringLiteral("d"), 86400 } };
        return whole.addSecs(m.captured(1).toLongLong() * unit.value(m.captured(2)));
    }

    const QStringList words = text.split(QLatin1Char(' '));
    if (words.size() == 2 && (words.first() == QLatin1String("today") || words.first() == QLatin1String("tomorrow"))) {
        const std::optional<QTime> time = timeOfDay(words.last());
        if (!time)
            return std::nullopt;
        return localMoment(now.date().addDays(words.first() == QLatin1String("tomorrow") ? 1 : 0), *time, note);
    }
    if (words.size() == 1) {
        if (const std::optional<QTime> time = timeOfDay(text)) {
            const QDateTime at = localMoment(now.date(), *time, nullptr);
            return at > now ? localMoment(now.date(), *time, note) : localMoment(now.date().addDays(1), *time, note);
        }
    }

    if (words.size() == 2) {
        const QDate date = QDate::fromString(words.first(), Qt::ISODate);
        const std::optional<QTime> time = timeOfDay(words.last());
        if (date.isValid() && time)
            return localMoment(date, *time, note);
    }
    // ISO 8601 needs its zone: "2026-12-01T07:00" alone is taken as local time, like the above.
    const QDateTime iso = QDateTime::fromString(text, Qt::ISODate);
    if (iso.isValid())
        return iso.addMSecs(-iso.time().msec());
    return std::nullopt;
}

} // namespace Quillon

#include "Repeat.h"

#include <QCoreApplication>
#include <QLocale>
#include <QRegularExpression>
#include <QScopeGuard>

#include <libical/ical.h>

#include <memory>

namespace Quillon {
namespace {
// A rule whose times are filtered away (an hour never in step with its interval) must end.
constexpr int MaxSteps = 1'000'000;
constexpr qint64 DayMSecs = 86'400'000;

icaltimetype toIcal(const QDateTime &wall)
{
    icaltimetype t = icaltime_null_time();
    t.year = wall.date().year();
    t.month = wall.date().month();
    t.day = wall.date().day();
    t.hour = wall.time().hour();
    t.minute = wall.time().minute();
    t.second = wall.time().second();
    t.is_date = 0;
    return t;
}

QDateTime fromIcal(const icaltimetype &t)
{
    return QDateTime(QDate(t.year, t.month, t.day), QTime(t.hour, t.minute, t.second), Qt::UTC);
}

// The digits a clock in this zone shows at that instant, held in UTC.
QDateTime wallOf(const QDateTime &instant, const QTimeZone &zone)
{
    const QDateTime local = instant.toTimeZone(zone);
    return QDateTime(local.date(), QTime(local.time().hour(), local.time().minute(), local.time().second()), Qt::UTC);
}

const QHash<QString, QString> &friendlyRules()
{
    static const QHash<QString, QString> rules {
        { QStringLiteral("daily"), QStringLiteral("FREQ=DAILY") },
        { QStringLiteral("weekdays"), QStringLiteral("FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR") },
        { QStringLiteral("weekends"), QStringLiteral("FREQ=WEEKLY;BYDAY=SA,SU") },
        { QStringLiteral("weekly"), QStringLiteral("FREQ=WEEKLY") },
        { QStringLiteral("monthly"), QStringLiteral("FREQ=MONTHLY") },
        { QStringLiteral("last-day"), QStringLiteral("FREQ=MONTHLY;BYMONTHDAY=-1") },
        { QStringLiteral("yearly"), QStringLiteral("FREQ=YEARLY") },
        { QStringLiteral("hourly"), QStringLiteral("FREQ=HOURLY") },
    };
    return rules;
}

std::optional<icalrecurrencetype> parseRule(const QString &text)
{
    icalerror_clear_errno();
    const icalrecurrencetype rule = icalrecurrencetype_from_string(text.toUtf8().constData());
    if (rule.freq == ICAL_NO_RECURRENCE || icalerrno != ICAL_NO_ERROR) {
        icalerror_clear_errno();
        return std::nullopt;
    }
    return rule;
}

// libical names only "malformed data"; the part it stumbled on is what the user needs.
QString whyRefused(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    if (!text.contains(QLatin1String("FREQ="), Qt::CaseInsensitive))
        return Repeat::tr("a rule needs FREQ, as in FREQ=DAILY");
    for (const QString &part : parts) {
        const QString alone = part.startsWith(QLatin1String("FREQ="), Qt::CaseInsensitive) ? part : QStringLiteral("FREQ=DAILY;") + part;
        if (!parseRule(alone))
            return Repeat::tr("“%1” is not a rule part that can be read").arg(part);
    }
    return Repeat::tr("the parts do not go together");
}

template<size_t N> QList<int> values(const short (&array)[N])
{
    QList<int> out;
    for (short v : array) {
        if (v == ICAL_RECURRENCE_ARRAY_MAX)
            break;
        out << v;
    }
    return out;
}

QString timeText(int hour, int minute)
{
    return QTime(hour, minute).toString(QStringLiteral("HH:mm"));
}

QString ordinal(int n)
{
    switch (n) {
    case 1:
        return Repeat::tr("first");
    case 2:
        return Repeat::tr("second");
    case 3:
        return Repeat::tr("third");
    case 4:
        return Repeat::tr("fourth");
    case 5:
        return Repeat::tr("fifth");
    case -1:
        return Repeat::tr("last");
    case -2:
        return Repeat::tr("second to last");
    default:
        return QString::number(n);
    }
}

QString dayName(short encoded, QLocale::FormatType format)
{
    // libical counts from Sunday as 1, Qt from Monday as 1.
    const int day = int(icalrecurrencetype_day_day_of_week(encoded));
    return QLocale().dayName(day == 1 ? 7 : day - 1, format);
}
} // namespace

std::optional<MissedPolicy> MissedPolicy::parse(const QString &text, QString *why)
{
    static const QRegularExpression within(QStringLiteral("^within\\s+(\\d+)\\s*([smhd]?)$"), QRegularExpression::CaseInsensitiveOption);
    const QString t = text.trimmed().toLower();
    if (t == QLatin1String("default") || t.isEmpty())
        return MissedPolicy {};
    if (t == QLatin1String("skip"))
        return MissedPolicy { Kind::Skip, 0 };
    if (t == QLatin1String("once"))
        return MissedPolicy { Kind::Once, 0 };
    if (const QRegularExpressionMatch m = within.match(t); m.hasMatch()) {
        static const QHash<QString, qint64> units { { {}, 60 }, { QStringLiteral("s"), 1 }, { QStringLiteral("m"), 60 }, { QStringLiteral("h"), 3600 },
            { QStringLiteral("d"), 86'400 } };
        const qint64 secs = m.captured(1).toLongLong() * units.value(m.captured(2));
        if (secs > 0 && secs <= qint64(366) * 86'400)
            return MissedPolicy { Kind::Within, secs };
    }
    if (why)
        *why = Repeat::tr("“%1” is not skip, once or within a time such as “within 1h”").arg(text);
    return std::nullopt;
}

QString MissedPolicy::toString() const
{
    switch (kind) {
    case Kind::Skip:
        return QStringLiteral("skip");
    case Kind::Once:
        return QStringLiteral("once");
    case Kind::Within:
        if (withinSecs % 3600 == 0)
            return QStringLiteral("within %1h").arg(withinSecs / 3600);
        if (withinSecs % 60 == 0)
            return QStringLiteral("within %1m").arg(withinSecs / 60);
        return QStringLiteral("within %1s").arg(withinSecs);
    case Kind::Default:
        break;
    }
    return QStringLiteral("default");
}

bool MissedPolicy::opens(qint64 lateSecs, bool openMissedItems) const
{
    switch (kind) {
    case Kind::Default:
        return openMissedItems;
    case Kind::Skip:
        return false;
    case Kind::Once:
        return true;
    case Kind::Within:
        return lateSecs < withinSecs;
    }
    return false;
}

QDateTime wallClockInstant(const QDateTime &wall, const QTimeZone &zone)
{
    const qint64 wallMSecs = wall.toMSecsSinceEpoch();
    // The offsets in force around that day: one of them names the time, unless it is in a gap.
    const int before = zone.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(wallMSecs - 2 * DayMSecs, Qt::UTC));
    const int after = zone.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(wallMSecs + 2 * DayMSecs, Qt::UTC));
    std::optional<qint64> first;
    for (int offset : { before, after }) {
        const qint64 at = wallMSecs - qint64(offset) * 1000;
        if (zone.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(at, Qt::UTC)) == offset && (!first || at < *first))
            first = at;
    }
    if (first)
        return QDateTime::fromMSecsSinceEpoch(*first, Qt::UTC);
    // In the gap: read with the offset before it, the time lies past the change, which is the
    // first moment that exists. Qt would move it on by the whole gap instead.
    const qint64 past = wallMSecs - qint64(before) * 1000;
    const QTimeZone::OffsetData change = zone.previousTransition(QDateTime::fromMSecsSinceEpoch(past + 1, Qt::UTC));
    return change.atUtc.isValid() ? change.atUtc.toUTC() : QDateTime::fromMSecsSinceEpoch(past, Qt::UTC);
}

Repeat::Repeat() = default;
Repeat::~Repeat() = default;
Repeat::Repeat(const Repeat &) = default;
Repeat &Repeat::operator=(const Repeat &) = default;

bool Repeat::operator==(const Repeat &other) const
{
    return m_rule == other.m_rule && m_zone == other.m_zone && m_start == other.m_start && m_exceptions == other.m_exceptions && missed == other.missed;
}

std::optional<Repeat> Repeat::fromRule(const QString &text, QString *why)
{
    const QString trimmed = text.trimmed();
    if (trimmed.contains(QLatin1Char(':')) || trimmed.contains(QLatin1Char('\n')))
        return fromICal(trimmed, why);
    const QString rule = friendlyRules().value(trimmed.toLower(), trimmed);
    const auto fail = [why](const QString &reason) -> std::optional<Repeat> {
        if (why)
            *why = reason;
        return std::nullopt;
    };
    std::optional<icalrecurrencetype> parsed = parseRule(rule);
    if (!parsed)
        return fail(whyRefused(rule));
    if (parsed->freq == ICAL_SECONDLY_RECURRENCE || values(parsed->by_second).size() > 1)
        return fail(Repeat::tr("Quillon repeats an item at most once a minute"));
    // A rule that names no day that exists (February 30th) has no iterator at all.
    icalrecur_iterator *probe = icalrecur_iterator_new(*parsed, icaltime_from_string("20000101T000000"));
    if (!probe)
        return fail(Repeat::tr("the rule never happens"));
    icalrecur_iterator_free(probe);
    Repeat repeat;
    char *canonical = icalrecurrencetype_as_string_r(&*parsed);
    repeat.m_rule = QString::fromUtf8(canonical);
    icalmemory_free_buffer(canonical);
    repeat.m_parsed = QSharedPointer<const icalrecurrencetype>::create(*parsed);
    return repeat;
}

void Repeat::clearRule()
{
    m_rule.clear();
    m_parsed.reset();
    m_start = {};
    m_exceptions.clear();
    m_zone.clear();
}

bool Repeat::setZoneId(const QByteArray &id)
{
    if (!id.isEmpty() && !QTimeZone::isTimeZoneIdAvailable(id))
        return false;
    m_zone = id;
    return true;
}

QTimeZone Repeat::timeZone() const
{
    return m_zone.isEmpty() ? QTimeZone::systemTimeZone() : QTimeZone(m_zone);
}

QTimeZone Repeat::timeZone(const QTimeZone &systemZone) const
{
    return m_zone.isEmpty() ? systemZone : QTimeZone(m_zone);
}

void Repeat::anchorAt(const QDateTime &instant)
{
    m_start = instant.isValid() ? wallOf(instant, timeZone()) : QDateTime();
}

QDateTime Repeat::start() const
{
    return m_start.isValid() ? wallClockInstant(m_start, timeZone()) : QDateTime();
}

void Repeat::addException(const QDateTime &instant)
{
    const QDateTime wall = wallOf(instant, timeZone());
    if (!m_exceptions.contains(wall))
        m_exceptions.append(wall);
}

std::optional<QDateTime> Repeat::nextAfter(const QDateTime &after) const
{
    return hasRule() ? nextAfter(after, QTimeZone::systemTimeZone()) : std::nullopt;
}

std::optional<QDateTime> Repeat::nextAfter(const QDateTime &after, const QTimeZone &systemZone) const
{
    if (!m_parsed || !m_start.isValid())
        return std::nullopt;
    const QTimeZone zone = timeZone(systemZone);
    icalrecur_iterator *it = icalrecur_iterator_new(*m_parsed, toIcal(m_start));
    if (!it)
        return std::nullopt;
    const auto freeIt = qScopeGuard([it] { icalrecur_iterator_free(it); });
    // Close to the answer where libical can jump there (not with COUNT, which counts from the
    // start); a day early, for the zone's offset is not known before the time is.
    const QDateTime from = wallOf(after, zone).addMSecs(-DayMSecs);
    if (m_parsed->count == 0 && from > m_start)
        icalrecur_iterator_set_start(it, toIcal(from));
    // libical 3.0 lets BYHOUR and BYMINUTE add times out of step with an hourly or minutely
    // INTERVAL; the rule limits them to the steps.
    const qint64 step = m_parsed->freq == ICAL_HOURLY_RECURRENCE ? 3600 : m_parsed->freq == ICAL_MINUTELY_RECURRENCE ? 60 : 0;
    const qint64 stride = step * std::max<short>(m_parsed->interval, 1);
    const qint64 startUnits = step ? m_start.toSecsSinceEpoch() / step : 0;
    for (int i = 0; i < MaxSteps; ++i) {
        const icaltimetype next = icalrecur_iterator_next(it);
        if (icaltime_is_null_time(next))
            return std::nullopt;
        const QDateTime wall = fromIcal(next);
        if (stride && ((wall.toSecsSinceEpoch() / step - startUnits) * step) % stride != 0)
            continue;
        if (m_exceptions.contains(wall))
            continue;
        const QDateTime at = wallClockInstant(wall, zone);
        if (at > after)
            return at;
    }
    return std::nullopt;
}

std::optional<QDateTime> Repeat::firstAfter(const QDateTime &now) const
{
    const QDateTime from = start();
    return nextAfter(from.isValid() && from > now ? from.addMSecs(-1) : now);
}

QList<QDateTime> Repeat::upcoming(const QDateTime &after, int count) const
{
    QList<QDateTime> out;
    QDateTime from = after;
    const QTimeZone system = QTimeZone::systemTimeZone();
    while (out.size() < count) {
        const std::optional<QDateTime> next = nextAfter(from, system);
        if (!next)
            break;
        out << *next;
        from = *next;
    }
    return out;
}

QString Repeat::describe() const
{
    if (!m_parsed)
        return {};
    const icalrecurrencetype &r = *m_parsed;
    const QList<int> hours = values(r.by_hour), minutes = values(r.by_minute), monthDays = values(r.by_month_day), months = values(r.by_month);
    QList<short> days;
    for (int d : values(r.by_day))
        days << short(d);
    const int interval = std::max<int>(r.interval, 1);
    const QTime startTime = m_start.isValid() ? m_start.time() : QTime(0, 0);
    const int minute = minutes.size() == 1 ? minutes.first() : startTime.minute();
    const QString at = timeText(hours.size() == 1 ? hours.first() : startTime.hour(), minute);
    QString text;
    const bool plainTime
        = hours.size() <= 1 && minutes.size() <= 1 && values(r.by_set_pos).isEmpty() && values(r.by_year_day).isEmpty() && values(r.by_week_no).isEmpty();
    // Hours at an even step ("every 2 hours from 09:00 to 17:00").
    const auto hourSpan = [&]() -> QString {
        if (hours.size() < 2)
            return {};
        const int gap = hours.at(1) - hours.at(0);
        for (qsizetype i = 1; i < hours.size(); ++i) {
            if (hours.at(i) - hours.at(i - 1) != gap)
                return {};
        }
        return Repeat::tr("Every %n hour(s) from %1 to %2", nullptr, gap).arg(timeText(hours.first(), minute), timeText(hours.last(), minute));
    };
    switch (r.freq) {
    case ICAL_MINUTELY_RECURRENCE:
        if (hours.isEmpty() && days.isEmpty())
            text = Repeat::tr("Every %n minute(s)", nullptr, interval);
        break;
    case ICAL_HOURLY_RECURRENCE:
        if (days.isEmpty() && minutes.size() <= 1)
            text = hours.isEmpty() ? Repeat::tr("Every %n hour(s)", nullptr, interval) : QString();
        break;
    case ICAL_DAILY_RECURRENCE:
        if (!days.isEmpty() || !monthDays.isEmpty() || !months.isEmpty())
            break;
        if (interval == 1 && !hourSpan().isEmpty())
            text = hourSpan();
        else if (plainTime)
            text = interval == 1 ? Repeat::tr("Every day at %1").arg(at) : Repeat::tr("Every %n day(s) at %1", nullptr, interval).arg(at);
        break;
    case ICAL_WEEKLY_RECURRENCE: {
        if (!plainTime || !monthDays.isEmpty() || !months.isEmpty())
            break;
        QStringList names;
        bool ordinals = false;
        for (short d : days) {
            names << dayName(d, QLocale::ShortFormat);
            ordinals = ordinals || icalrecurrencetype_day_position(d) != 0;
        }
        if (ordinals)
            break;
        const QString joined = names.join(QStringLiteral(", "));
        if (interval == 1
            && joined
                == QStringList(
                    { QLocale().dayName(1, QLocale::ShortFormat), QLocale().dayName(2, QLocale::ShortFormat), QLocale().dayName(3, QLocale::ShortFormat),
                        QLocale().dayName(4, QLocale::ShortFormat), QLocale().dayName(5, QLocale::ShortFormat) })
                       .join(QStringLiteral(", ")))
            text = Repeat::tr("Weekdays at %1").arg(at);
        else if (interval == 1 && days.size() == 2 && icalrecurrencetype_day_day_of_week(days.at(0)) == ICAL_SATURDAY_WEEKDAY
            && icalrecurrencetype_day_day_of_week(days.at(1)) == ICAL_SUNDAY_WEEKDAY)
            text = Repeat::tr("Weekends at %1").arg(at);
        else
            text = Repeat::tr("Every %n week(s) on %1 at %2", nullptr, interval)
                       .arg(names.isEmpty() ? QLocale().dayName(m_start.isValid() ? m_start.date().dayOfWeek() : 1, QLocale::ShortFormat) : joined, at);
        break;
    }
    case ICAL_MONTHLY_RECURRENCE:
        if (!plainTime || !months.isEmpty() || monthDays.size() > 1 || days.size() > 1 || (!days.isEmpty() && !monthDays.isEmpty()))
            break;
        if (monthDays == QList<int> { -1 })
            text = Repeat::tr("Every %n month(s) on the last day at %1", nullptr, interval).arg(at);
        else if (days.size() == 1 && icalrecurrencetype_day_position(days.first()) != 0)
            text = Repeat::tr("Every %n month(s) on the %1 %2 at %3", nullptr, interval)
                       .arg(ordinal(icalrecurrencetype_day_position(days.first())), dayName(days.first(), QLocale::LongFormat), at);
        else if (days.isEmpty())
            text = Repeat::tr("Every %n month(s) on day %1 at %2", nullptr, interval)
                       .arg(monthDays.isEmpty() ? (m_start.isValid() ? m_start.date().day() : 1) : monthDays.first())
                       .arg(at);
        break;
    case ICAL_YEARLY_RECURRENCE:
        if (plainTime && days.isEmpty() && monthDays.isEmpty() && months.isEmpty() && m_start.isValid())
            text = Repeat::tr("Every year on %1 at %2").arg(QLocale().toString(m_start.date(), QStringLiteral("d MMMM")), at);
        break;
    default:
        break;
    }
    if (text.isEmpty())
        text = Repeat::tr("Custom: %1").arg(m_rule);
    if (r.count > 0)
        text += Repeat::tr(", %n time(s)", nullptr, r.count);
    else if (!icaltime_is_null_time(r.until))
        text += Repeat::tr(", until %1").arg(QLocale().toString(fromIcal(r.until).date(), QLocale::ShortFormat));
    if (!m_zone.isEmpty())
        text += QStringLiteral(" (%1)").arg(QString::fromUtf8(m_zone));
    return text;
}

QString Repeat::toICal() const
{
    icalcomponent *event = icalcomponent_new_vevent();
    const auto freeEvent = qScopeGuard([event] { icalcomponent_free(event); });
    const QByteArray zone = m_zone;
    const auto withZone = [&zone](icalproperty *p) {
        if (!zone.isEmpty() && zone != "UTC")
            icalproperty_add_parameter(p, icalparameter_new_tzid(zone.constData()));
        return p;
    };
    const auto time = [&zone](const QDateTime &wall) {
        icaltimetype t = toIcal(wall);
        if (zone == "UTC")
            t.zone = icaltimezone_get_utc_timezone();
        return t;
    };
    if (m_start.isValid())
        icalcomponent_add_property(event, withZone(icalproperty_new_dtstart(time(m_start))));
    if (m_parsed)
        icalcomponent_add_property(event, icalproperty_new_rrule(*m_parsed));
    for (const QDateTime &wall : m_exceptions)
        icalcomponent_add_property(event, withZone(icalproperty_new_exdate(time(wall))));
    if (missed.kind != MissedPolicy::Kind::Default) {
        icalproperty *policy = icalproperty_new_x(missed.toString().toUtf8().constData());
        icalproperty_set_x_name(policy, "X-QUILLON-MISSED");
        icalcomponent_add_property(event, policy);
    }
    return QString::fromUtf8(icalcomponent_as_ical_string(event));
}

std::optional<Repeat> Repeat::fromICal(const QString &lines, QString *why)
{
    const auto fail = [why](const QString &reason) -> std::optional<Repeat> {
        if (why)
            *why = reason;
        return std::nullopt;
    };
    QString text = lines.trimmed();
    if (!text.startsWith(QLatin1String("BEGIN:"), Qt::CaseInsensitive))
        text = QStringLiteral("BEGIN:VEVENT\r\n%1\r\nEND:VEVENT\r\n").arg(text);
    icalcomponent *parsed = icalcomponent_new_from_string(text.toUtf8().constData());
    if (!parsed)
        return fail(Repeat::tr("the text is not iCalendar"));
    const auto freeParsed = qScopeGuard([parsed] { icalcomponent_free(parsed); });
    icalcomponent *event = icalcomponent_isa(parsed) == ICAL_VEVENT_COMPONENT ? parsed : icalcomponent_get_first_component(parsed, ICAL_VEVENT_COMPONENT);
    if (!event)
        return fail(Repeat::tr("the text holds no event"));
    Repeat repeat;
    if (icalproperty *rrule = icalcomponent_get_first_property(event, ICAL_RRULE_PROPERTY)) {
        icalrecurrencetype r = icalproperty_get_rrule(rrule);
        char *ruleText = icalrecurrencetype_as_string_r(&r);
        const QString ruleString = QString::fromUtf8(ruleText);
        icalmemory_free_buffer(ruleText);
        std::optional<Repeat> ruled = fromRule(ruleString, why);
        if (!ruled)
            return std::nullopt;
        repeat = *ruled;
    } else if (icalcomponent_get_first_property(event, ICAL_XLICERROR_PROPERTY)) {
        icalproperty *error = icalcomponent_get_first_property(event, ICAL_XLICERROR_PROPERTY);
        return fail(QString::fromUtf8(icalproperty_get_xlicerror(error)));
    }
    const auto zoneOf = [](icalproperty *p, const icaltimetype &t) -> QByteArray {
        if (icaltime_is_utc(t))
            return "UTC";
        icalparameter *tzid = icalproperty_get_first_parameter(p, ICAL_TZID_PARAMETER);
        return tzid ? QByteArray(icalparameter_get_tzid(tzid)) : QByteArray();
    };
    if (icalproperty *dtstart = icalcomponent_get_first_property(event, ICAL_DTSTART_PROPERTY)) {
        const icaltimetype t = icalproperty_get_dtstart(dtstart);
        if (!repeat.setZoneId(zoneOf(dtstart, t)))
            return fail(Repeat::tr("“%1” is not a time zone this computer knows").arg(QString::fromUtf8(zoneOf(dtstart, t))));
        repeat.m_start = fromIcal(t);
    }
    for (icalproperty *p = icalcomponent_get_first_property(event, ICAL_EXDATE_PROPERTY); p; p = icalcomponent_get_next_property(event, ICAL_EXDATE_PROPERTY))
        repeat.m_exceptions.append(fromIcal(icalproperty_get_exdate(p)));
    for (icalproperty *p = icalcomponent_get_first_property(event, ICAL_X_PROPERTY); p; p = icalcomponent_get_next_property(event, ICAL_X_PROPERTY)) {
        if (qstrcmp(icalproperty_get_x_name(p), "X-QUILLON-MISSED") != 0)
            continue;
        std::optional<MissedPolicy> policy = MissedPolicy::parse(QString::fromUtf8(icalproperty_get_x(p)), why);
        if (!policy)
            return std::nullopt;
        repeat.missed = *policy;
    }
    return repeat;
}

} // namespace Quillon

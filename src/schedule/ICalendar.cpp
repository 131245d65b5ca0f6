#include "ICalendar.h"

#include "FileName.h"

#include <QCoreApplication>
#include <QScopeGuard>
#include <QSysInfo>
#include <QUrl>

#include <libical/ical.h>

namespace Quillon::ICalendar {
namespace {
// The item's rule, policy and start as the saved form has them, as a component to add to.
icalcomponent *eventOf(const Item &item)
{
    Repeat repeat = item.repeat;
    // A plain item is its moment, written in UTC.
    if (!repeat.hasRule()) {
        repeat.setZoneId("UTC");
        repeat.anchorAt(item.date);
    }
    return icalcomponent_new_from_string(repeat.toICal().toUtf8().constData());
}
} // namespace

QByteArray write(const QList<Item> &items)
{
    icalcomponent *calendar = icalcomponent_new_vcalendar();
    const auto freeCalendar = qScopeGuard([calendar] { icalcomponent_free(calendar); });
    icalcomponent_add_property(calendar, icalproperty_new_version("2.0"));
    icalcomponent_add_property(calendar, icalproperty_new_prodid("-//Quillon//Schedule//EN"));
    const icaltimetype stamp = icaltime_current_time_with_zone(icaltimezone_get_utc_timezone());
    const QByteArray host = QSysInfo::machineHostName().toUtf8();
    for (qsizetype i = 0; i < items.size(); ++i) {
        icalcomponent *event = eventOf(items.at(i));
        if (!event)
            continue;
        const QByteArray uid
            = QStringLiteral("%1-%2@%3").arg(i + 1).arg(stamp.year * 10000 + stamp.month * 100 + stamp.day).arg(QString::fromUtf8(host)).toUtf8();
        icalcomponent_add_property(event, icalproperty_new_uid(uid.constData()));
        icalcomponent_add_property(event, icalproperty_new_dtstamp(stamp));
        const QString path = items.at(i).path;
        icalcomponent_add_property(event, icalproperty_new_summary(FileName::display(path.section(QLatin1Char('/'), -1)).toUtf8().constData()));
        // The name's own bytes, percent-encoded: a name that is not UTF-8 comes back as it was.
        const QByteArray url = "file://" + FileName::encode(path).toPercentEncoding("/");
        icalattach *attach = icalattach_new_from_url(url.constData());
        icalcomponent_add_property(event, icalproperty_new_attach(attach));
        icalattach_unref(attach);
        icalcomponent_add_component(calendar, event);
    }
    return QByteArray(icalcomponent_as_ical_string(calendar));
}

Read read(const QByteArray &text, const QDateTime &now)
{
    Read result;
    icalcomponent *calendar = icalparser_parse_string(text.constData());
    if (!calendar) {
        result.problems << QCoreApplication::translate("ICalendar", "the file is not an iCalendar file");
        return result;
    }
    const auto freeCalendar = qScopeGuard([calendar] { icalcomponent_free(calendar); });
    icalcomponent *first = icalcomponent_isa(calendar) == ICAL_VEVENT_COMPONENT ? calendar : icalcomponent_get_first_component(calendar, ICAL_VEVENT_COMPONENT);
    int n = 0;
    for (icalcomponent *event = first; event; event = event == calendar ? nullptr : icalcomponent_get_next_component(calendar, ICAL_VEVENT_COMPONENT)) {
        ++n;
        const auto problem = [&result, n](const QString &why) { result.problems << QCoreApplication::translate("ICalendar", "event %1: %2").arg(n).arg(why); };
        QString path;
        if (icalproperty *attach = icalcomponent_get_first_property(event, ICAL_ATTACH_PROPERTY)) {
            const icalattach *value = icalproperty_get_attach(attach);
            if (value && icalattach_get_is_url(const_cast<icalattach *>(value))) {
                const QByteArray url = icalattach_get_url(const_cast<icalattach *>(value));
                if (url.startsWith("file://"))
                    path = FileName::decode(QByteArray::fromPercentEncoding(url.mid(7)));
            }
        }
        if (!path.startsWith(QLatin1Char('/'))) {
            problem(QCoreApplication::translate("ICalendar", "no file to open (an ATTACH with a file URI)"));
            continue;
        }
        if (!icalcomponent_get_first_property(event, ICAL_DTSTART_PROPERTY)) {
            problem(QCoreApplication::translate("ICalendar", "no start (DTSTART)"));
            continue;
        }
        QString why;
        std::optional<Repeat> repeat = Repeat::fromICal(QString::fromUtf8(icalcomponent_as_ical_string(event)), &why);
        if (!repeat) {
            problem(why);
            continue;
        }
        Item item { path, repeat->start(), *repeat };
        if (repeat->hasRule()) {
            const std::optional<QDateTime> first = repeat->firstAfter(now);
            if (!first) {
                problem(QCoreApplication::translate("ICalendar", "its rule has no time after now"));
                continue;
            }
            item.date = *first;
        } else {
            const MissedPolicy missed = repeat->missed;
            item.repeat = Repeat();
            item.repeat.missed = missed;
        }
        result.items.append(item);
    }
    if (n == 0)
        result.problems << QCoreApplication::translate("ICalendar", "the file holds no event");
    return result;
}

} // namespace Quillon::ICalendar

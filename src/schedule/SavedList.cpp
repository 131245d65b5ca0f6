#include "SavedList.h"

#include "FileName.h"
#include "FileReference.h"
#include "Log.h"
#include "Preferences.h"
#include "SettingsKeys.h"

namespace Quillon {
namespace {
// A hand-written settings file has no date type of its own; ISO 8601 text is what people write.
QDateTime toDate(const QVariant &value)
{
    if (value.typeId() == QMetaType::QDateTime)
        return Preferences::isReadable(value) ? value.toDateTime() : QDateTime();
    if (value.typeId() == QMetaType::QString)
        return QDateTime::fromString(value.toString(), Qt::ISODateWithMs);
    return {};
}

// INI cannot write a one-element list, so in a hand-written file one value stands for a list of one.
QVariantList asList(const QVariant &value)
{
    if (value.typeId() == QMetaType::QVariantList)
        return value.toList();
    if (value.typeId() == QMetaType::QString || value.typeId() == QMetaType::QByteArray || value.typeId() == QMetaType::QDateTime)
        return { value };
    if (value.typeId() == QMetaType::QStringList) {
        QVariantList out;
        for (const QString &s : value.toStringList())
            out << s;
        return out;
    }
    return {};
}
} // namespace

QStringList SavedList::write(Preferences &preferences, const QStringList &paths, const QList<QDateTime> &dates, const QList<Repeat> &repeats, bool running)
{
    QVariantList items;
    items.reserve(paths.size());
    // Older versions read only the keys they know; this one they leave alone.
    QStringList rules;
    QStringList leftOut;
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const QString &path = paths.at(i);
        const QByteArray reference = FileReference::make(path);
        if (reference.isEmpty()) {
            systemLog(QStringLiteral("Could not save a reference to %1; it is left out of the saved list.").arg(FileName::display(path)));
            leftOut << path;
            continue;
        }
        items.append(reference);
        if (!repeats.isEmpty())
            rules.append(repeats.value(i).isEmpty() ? QString() : repeats.at(i).toICal());
    }
    QVariantList values;
    values.reserve(dates.size());
    // As moments: a local date would be read back in whatever zone the next start is in. Older
    // files hold local dates; they are read as they always were, and saved as moments from then on.
    for (const QDateTime &date : dates)
        values.append(date.isValid() ? QVariant(date.toUTC()) : QVariant(date));
    preferences.setValues({ { Keys::Items, items }, { Keys::Dates, values }, { Keys::TimersRunning, running }, { Keys::Repeats, rules } });
    return leftOut;
}

SavedList SavedList::read(const Preferences &preferences, const QDateTime &now)
{
    SavedList saved;
    const bool datesAbsent = !preferences.contains(Keys::Dates);
    if (!datesAbsent) {
        for (const QVariant &element : asList(preferences.value(Keys::Dates))) {
            const QDateTime date = toDate(element);
            saved.dates.append(date.isValid() ? date.toUTC() : now);
        }
    }
    if (preferences.contains(Keys::TimersRunning))
        saved.running = Preferences::toBool(preferences.value(Keys::TimersRunning));

    const QVariantList rules = asList(preferences.value(Keys::Repeats));
    QList<QByteArray> references;
    QList<Repeat> repeats;
    const QVariantList items = asList(preferences.value(Keys::Items));
    for (qsizetype i = 0; i < items.size(); ++i) {
        const QVariant &element = items.at(i);
        const QByteArray reference = element.typeId() == QMetaType::QString ? element.toString().toUtf8() : element.toByteArray();
        if (reference.isEmpty())
            continue;
        references.append(reference);
        QString why;
        const QString rule = rules.value(i).toString();
        std::optional<Repeat> repeat = rule.isEmpty() ? Repeat() : Repeat::fromICal(rule, &why);
        if (!repeat)
            systemLog(QStringLiteral("A saved rule could not be read (%1); its item is kept without it.").arg(why));
        repeats.append(repeat.value_or(Repeat()));
    }
    const QList<std::optional<QString>> resolved = FileReference::resolveAll(references);
    for (qsizetype i = 0; i < resolved.size(); ++i) {
        const std::optional<QString> &path = resolved.at(i);
        if (!path) {
            systemLog(QStringLiteral("A saved item could not be found and was left out of the list."));
            if (!datesAbsent && saved.shiftedFrom < 0)
                saved.shiftedFrom = int(saved.paths.size());
            continue;
        }
        saved.paths.append(*path);
        saved.repeats.append(repeats.value(i));
        if (datesAbsent)
            saved.dates.append(now);
    }
    // The items behind a missing one take the dates before theirs; it is kept so, and told. Items
    // and dates that disagree in number (an item left out at the save) may have moved anywhere.
    if (saved.shiftedFrom < 0 && !datesAbsent && saved.dates.size() != references.size())
        saved.shiftedFrom = 0;
    if (saved.shiftedFrom >= saved.paths.size())
        saved.shiftedFrom = -1;
    return saved;
}

} // namespace Quillon

#pragma once

#include "Repeat.h"

#include <QDateTime>
#include <QList>
#include <QStringList>

#include <optional>

namespace Quillon {

class Preferences;

// The list as the settings file keeps it: file references, launch dates and whether the schedule
// ran. Read without a schedule too (the command line lists it when Quillon is not running).
struct SavedList
{
    QStringList paths;
    // As saved: a list whose files went missing has more dates than paths, as it always had.
    QList<QDateTime> dates;
    // Each item's own rule, beside its file reference so that it never moves to another item.
    QList<Repeat> repeats;
    // Absent from the file: the schedule keeps what it had.
    std::optional<bool> running;
    // The first row whose date may be another item's: a saved item before it was not found, and
    // the dates are kept whole, so the later ones move up. -1 when the list is whole.
    int shiftedFrom = -1;

    // The paths left out (no reference could be made): the items after them take earlier dates
    // at the next start.
    // repeats: one per path, or none when no item has one.
    static QStringList write(Preferences &preferences, const QStringList &paths, const QList<QDateTime> &dates, const QList<Repeat> &repeats, bool running);
    // Dates that cannot be read, and every date when none were saved, are now.
    static SavedList read(const Preferences &preferences, const QDateTime &now);
};

} // namespace Quillon

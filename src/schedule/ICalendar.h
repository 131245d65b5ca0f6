#pragma once

#include "Repeat.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QStringList>

namespace Quillon {

// The schedule as an iCalendar file: one event per item, with its date or its rule, and the file
// as an ATTACH file URI. A schedule moves to another machine so, or is looked at in a calendar.
namespace ICalendar {

struct Item
{
    QString path;
    QDateTime date;
    Repeat repeat;
};

QByteArray write(const QList<Item> &items);

struct Read
{
    QList<Item> items;
    // What could not be used, one line each ("event 3: no file to open").
    QStringList problems;
};
// A ruled item's date is its rule's first moment after now.
Read read(const QByteArray &text, const QDateTime &now);

} // namespace ICalendar
} // namespace Quillon

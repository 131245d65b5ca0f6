#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QTimeZone>

#include <optional>

struct icalrecurrencetype;

namespace Quillon {

// What becomes of an item whose time passed while the computer slept or Quillon was off.
struct MissedPolicy
{
    // Default: what the "open missed items" preference says.
    enum class Kind { Default, Skip, Once, Within };
    Kind kind = Kind::Default;
    // Within: how late it may still be opened.
    qint64 withinSecs = 0;

    bool operator==(const MissedPolicy &) const = default;
    // "default", "skip", "once", "within 1h" / "within 90m" / "within 30s"; the reason otherwise.
    static std::optional<MissedPolicy> parse(const QString &text, QString *why = nullptr);
    QString toString() const;
    // Whether an item this late is opened; openMissedItems stands for the default.
    bool opens(qint64 lateSecs, bool openMissedItems) const;
};

// An item's own calendar rule: an iCalendar RRULE from a start that is a wall-clock time, in a
// pinned zone or in whatever zone the system has when it is evaluated. "07:00" stays 07:00
// through every change of daylight saving time.
class Repeat
{
    Q_DECLARE_TR_FUNCTIONS(Repeat)
public:
    Repeat();
    ~Repeat();
    Repeat(const Repeat &);
    Repeat &operator=(const Repeat &);

    // The rule's text (RRULE's value, "FREQ=WEEKLY;BYDAY=MO"), or a friendly name for a common
    // one: daily, weekdays, weekends, weekly, monthly, last-day, yearly, hourly. Returns the
    // reason a rule is refused: libical cannot read it, it repeats more often than once a minute,
    // or it never happens.
    static std::optional<Repeat> fromRule(const QString &rule, QString *why = nullptr);
    // The saved form (iCalendar lines: DTSTART, RRULE, EXDATE and the missed policy).
    static std::optional<Repeat> fromICal(const QString &lines, QString *why = nullptr);
    QString toICal() const;

    bool hasRule() const { return !m_rule.isEmpty(); }
    // Neither a rule nor a policy of its own: the item behaves as every plain item does.
    bool isEmpty() const { return !hasRule() && missed.kind == MissedPolicy::Kind::Default; }
    QString rule() const { return m_rule; }
    // The rule removed; the missed policy stays.
    void clearRule();

    // An empty id follows the system's zone.
    QByteArray zoneId() const { return m_zone; }
    bool setZoneId(const QByteArray &id);
    QTimeZone timeZone() const;
    QTimeZone timeZone(const QTimeZone &systemZone) const;

    bool hasStart() const { return m_start.isValid(); }
    // The start is the wall-clock time this instant shows in the rule's zone.
    void anchorAt(const QDateTime &instant);
    // The start as an instant in today's zone.
    QDateTime start() const;
    // Wall-clock times that do not happen (EXDATE), as the clock shows them.
    QList<QDateTime> exceptions() const { return m_exceptions; }
    void addException(const QDateTime &instant);

    // The first moment of the rule strictly after this one; none when the rule has ended.
    std::optional<QDateTime> nextAfter(const QDateTime &after) const;
    // The same with the system's zone looked up once by the caller: looking it up reads the file
    // system, which adds up over a long list.
    std::optional<QDateTime> nextAfter(const QDateTime &after, const QTimeZone &systemZone) const;
    // Its first moment at or after the start that is also after now: where a new rule begins.
    std::optional<QDateTime> firstAfter(const QDateTime &now) const;
    QList<QDateTime> upcoming(const QDateTime &after, int count) const;
    // "Weekdays at 07:00", "Every month on the last day at 07:00", ...
    QString describe() const;

    MissedPolicy missed;

    bool operator==(const Repeat &other) const;

private:
    QString m_rule;
    QSharedPointer<const icalrecurrencetype> m_parsed;
    QByteArray m_zone;
    // Wall-clock times carried in UTC so that no zone moves their digits.
    QDateTime m_start;
    QList<QDateTime> m_exceptions;
};

// The moment a wall-clock time names in a zone. A time in the hour that a change to summer time
// skips is the first moment after the gap; a time that happens twice is its first.
QDateTime wallClockInstant(const QDateTime &wall, const QTimeZone &zone);

} // namespace Quillon

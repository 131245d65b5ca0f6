#include "Repeat.h"
#include "TestSupport.h"

#include <QTest>

using namespace Quillon;
using namespace Qt::StringLiterals;

namespace {
QDateTime utc(const char *text)
{
    return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate).toUTC();
}

} // namespace

class RepeatTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    // Expected instants come from the tz database as Python's zoneinfo reads it, not from Qt.
    void nextMoments_data()
    {
        QTest::addColumn<QString>("rule");
        QTest::addColumn<QByteArray>("pinned");
        QTest::addColumn<QByteArray>("system");
        QTest::addColumn<QString>("start"); // the wall-clock time, in the rule's zone
        QTest::addColumn<QStringList>("exceptions");
        QTest::addColumn<QDateTime>("after");
        QTest::addColumn<QStringList>("expected"); // fewer than three: the rule ends

        // zone: the rule's own, none for the system's (New York unless system names another).
        const auto row = [](const char *tag, const char *rule, const QByteArray &zone, const char *start, const char *after, const QStringList &expected,
                             const QStringList &exceptions = {}, const QByteArray &system = {}) {
            QTest::newRow(tag) << QString::fromUtf8(rule) << zone << system << QString::fromUtf8(start) << exceptions << utc(after) << expected;
        };
        const QByteArray berlin = "Europe/Berlin", utcZone = "UTC", none;
        row("07:00 stays 07:00 at spring-forward", "daily", berlin, "2027-03-26T07:00", "2027-03-26T07:00Z",
            { "2027-03-27T06:00Z", "2027-03-28T05:00Z", "2027-03-29T05:00Z" });
        row("a skipped 02:30 runs as the gap ends", "FREQ=DAILY", berlin, "2027-03-26T02:30", "2027-03-26T02:00Z",
            { "2027-03-27T01:30Z", "2027-03-28T01:00Z", "2027-03-29T00:30Z" });
        row("a doubled 02:30 runs once, first", "FREQ=DAILY", berlin, "2027-10-29T02:30", "2027-10-29T12:00Z",
            { "2027-10-30T00:30Z", "2027-10-31T00:30Z", "2027-11-01T01:30Z" });
        row("weekdays across Sydney's autumn change", "weekdays", QByteArray("Australia/Sydney"), "2027-03-29T07:00", "2027-04-01T12:00Z",
            { "2027-04-01T20:00Z", "2027-04-04T21:00Z", "2027-04-05T21:00Z" });
        row("Lord Howe's half-hour gap", "FREQ=DAILY", QByteArray("Australia/Lord_Howe"), "2027-10-01T02:15", "2027-10-01T00:00Z",
            { "2027-10-01T15:45Z", "2027-10-02T15:30Z", "2027-10-03T15:15Z" });
        row("the 31st skips short months of a leap year", "FREQ=MONTHLY;BYMONTHDAY=31", utcZone, "2028-01-31T09:00", "2028-01-01T00:00Z",
            { "2028-01-31T09:00Z", "2028-03-31T09:00Z", "2028-05-31T09:00Z" });
        row("the last day is February 29th", "last-day", utcZone, "2028-01-31T09:00", "2028-01-31T09:00Z",
            { "2028-02-29T09:00Z", "2028-03-31T09:00Z", "2028-04-30T09:00Z" });
        row("second Monday", "FREQ=MONTHLY;BYDAY=2MO", utcZone, "2028-01-01T08:00", "2028-01-01T00:00Z",
            { "2028-01-10T08:00Z", "2028-02-14T08:00Z", "2028-03-13T08:00Z" });
        row("every 2 hours from 09:00 to 17:00", "FREQ=HOURLY;INTERVAL=2;BYHOUR=9,10,11,12,13,14,15,16,17", utcZone, "2028-01-01T09:00", "2028-01-01T14:00Z",
            { "2028-01-01T15:00Z", "2028-01-01T17:00Z", "2028-01-02T09:00Z" });
        row("COUNT ends after the third", "FREQ=DAILY;COUNT=3", utcZone, "2027-06-01T08:00", "2027-06-01T08:00Z", { "2027-06-02T08:00Z", "2027-06-03T08:00Z" });
        row("UNTIL keeps its last day", "FREQ=WEEKLY;UNTIL=20270615T235959", utcZone, "2027-06-01T08:00", "2027-06-01T08:00Z",
            { "2027-06-08T08:00Z", "2027-06-15T08:00Z" });
        row("an exception date does not happen", "FREQ=DAILY", utcZone, "2027-06-01T08:00", "2027-06-01T08:00Z",
            { "2027-06-03T08:00Z", "2027-06-04T08:00Z", "2027-06-05T08:00Z" }, { "2027-06-02T08:00" });
        row("a pinned zone ignores the system's", "FREQ=DAILY", berlin, "2027-06-01T07:00", "2027-06-01T12:00Z",
            { "2027-06-02T05:00Z", "2027-06-03T05:00Z", "2027-06-04T05:00Z" }, {}, QByteArray("Asia/Tokyo"));
        row("an unpinned rule follows the system's", "FREQ=DAILY", none, "2027-06-01T07:00", "2027-06-01T12:00Z",
            { "2027-06-01T22:00Z", "2027-06-02T22:00Z", "2027-06-03T22:00Z" }, {}, QByteArray("Asia/Tokyo"));
    }
    void nextMoments()
    {
        QFETCH(QString, rule);
        QFETCH(QByteArray, pinned);
        QFETCH(QByteArray, system);
        QFETCH(QString, start);
        QFETCH(QStringList, exceptions);
        QFETCH(QDateTime, after);
        QFETCH(QStringList, expected);
        const Test::SystemZone zone(system.isEmpty() ? QByteArray("America/New_York") : system);

        std::optional<Repeat> repeat = Repeat::fromRule(rule);
        QVERIFY(repeat);
        QVERIFY(repeat->setZoneId(pinned));
        const QTimeZone in = repeat->timeZone();
        repeat->anchorAt(QDateTime(QDate::fromString(start.left(10), Qt::ISODate), QTime::fromString(start.mid(11)), in));
        for (const QString &wall : std::as_const(exceptions))
            repeat->addException(QDateTime(QDate::fromString(wall.left(10), Qt::ISODate), QTime::fromString(wall.mid(11)), in));

        QStringList got;
        for (const QDateTime &moment : repeat->upcoming(after, 3))
            got << moment.toUTC().toString(u"yyyy-MM-ddTHH:mm'Z'"_s);
        QCOMPARE(got, expected);

        // The saved form gives the same moments back.
        const std::optional<Repeat> saved = Repeat::fromICal(repeat->toICal());
        QVERIFY(saved);
        QCOMPARE(*saved, *repeat);
    }

    void refusedWithTheirReason_data()
    {
        QTest::addColumn<QString>("rule");
        QTest::addColumn<QString>("reason");
        QTest::newRow("no frequency") << u"BYDAY=MO"_s << u"needs FREQ"_s;
        QTest::newRow("a part libical cannot read") << u"FREQ=DAILY;BYDAY=XX"_s << u"“BYDAY=XX”"_s;
        QTest::newRow("more often than a minute") << u"FREQ=SECONDLY"_s << u"once a minute"_s;
        QTest::newRow("a day that does not exist") << u"FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30"_s << u"never happens"_s;
        QTest::newRow("a zone nobody knows") << u"DTSTART;TZID=Mars/Olympus:20270101T070000\nRRULE:FREQ=DAILY"_s << u"Mars/Olympus"_s;
        QTest::newRow("a policy that is not one") << u"RRULE:FREQ=DAILY\nX-QUILLON-MISSED:sometimes"_s << u"“sometimes”"_s;
    }
    void refusedWithTheirReason()
    {
        QFETCH(QString, rule);
        QFETCH(QString, reason);
        QString why;
        QVERIFY(!Repeat::fromRule(rule, &why));
        QVERIFY2(why.contains(reason), qPrintable(why));
    }

    void inWords_data()
    {
        QTest::addColumn<QString>("rule");
        QTest::addColumn<QString>("words");
        QTest::newRow("weekdays") << u"weekdays"_s << u"Weekdays at 07:00"_s;
        QTest::newRow("daily") << u"FREQ=DAILY"_s << u"Every day at 07:00"_s;
        QTest::newRow("chosen days") << u"FREQ=WEEKLY;BYDAY=MO,WE"_s << u"Every week on Mon, Wed at 07:00"_s;
        QTest::newRow("last day, five times") << u"FREQ=MONTHLY;BYMONTHDAY=-1;COUNT=5"_s << u"Every month on the last day at 07:00, 5 times"_s;
        QTest::newRow("n-th weekday") << u"FREQ=MONTHLY;BYDAY=-1FR"_s << u"Every month on the last Friday at 07:00"_s;
        QTest::newRow("hours between") << u"FREQ=DAILY;BYHOUR=9,11,13,15,17;BYMINUTE=0"_s << u"Every 2 hours from 09:00 to 17:00"_s;
        QTest::newRow("anything else") << u"FREQ=YEARLY;BYWEEKNO=20"_s << u"Custom: FREQ=YEARLY;BYWEEKNO=20"_s;
    }
    void inWords()
    {
        QFETCH(QString, rule);
        QFETCH(QString, words);
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        std::optional<Repeat> repeat = Repeat::fromRule(rule);
        QVERIFY(repeat);
        repeat->anchorAt(QDateTime(QDate(2027, 6, 1), QTime(7, 0)));
        QCOMPARE(repeat->describe(), words);
    }
};

QTEST_GUILESS_MAIN(RepeatTest)
#include "repeat_test.moc"

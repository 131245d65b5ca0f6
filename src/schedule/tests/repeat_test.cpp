#include "Repeat.h"
#include "TestSupport.h"

#include <QTest>

using namespace Quillon;

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

        const QByteArray berlin = "Europe/Berlin", none;
        QTest::newRow("07:00 stays 07:00 at spring-forward") << "daily" << berlin << none << "2027-03-26T07:00" << QStringList() << utc("2027-03-26T07:00Z")
                                                             << QStringList { "2027-03-27T06:00Z", "2027-03-28T05:00Z", "2027-03-29T05:00Z" };
        QTest::newRow("a skipped 02:30 runs as the gap ends")
            << "FREQ=DAILY" << berlin << none << "2027-03-26T02:30" << QStringList() << utc("2027-03-26T02:00Z")
            << QStringList { "2027-03-27T01:30Z", "2027-03-28T01:00Z", "2027-03-29T00:30Z" };
        QTest::newRow("a doubled 02:30 runs once, first") << "FREQ=DAILY" << berlin << none << "2027-10-29T02:30" << QStringList() << utc("2027-10-29T12:00Z")
                                                          << QStringList { "2027-10-30T00:30Z", "2027-10-31T00:30Z", "2027-11-01T01:30Z" };
        QTest::newRow("weekdays across Sydney's autumn change")
            << "weekdays" << QByteArray("Australia/Sydney") << none << "2027-03-29T07:00" << QStringList() << utc("2027-04-01T12:00Z")
            << QStringList { "2027-04-01T20:00Z", "2027-04-04T21:00Z", "2027-04-05T21:00Z" };
        QTest::newRow("Lord Howe's half-hour gap") << "FREQ=DAILY" << QByteArray("Australia/Lord_Howe") << none << "2027-10-01T02:15" << QStringList()
                                                   << utc("2027-10-01T00:00Z") << QStringList { "2027-10-01T15:45Z", "2027-10-02T15:30Z", "2027-10-03T15:15Z" };
        QTest::newRow("the 31st skips short months of a leap year")
            << "FREQ=MONTHLY;BYMONTHDAY=31" << QByteArray("UTC") << none << "2028-01-31T09:00" << QStringList() << utc("2028-01-01T00:00Z")
            << QStringList { "2028-01-31T09:00Z", "2028-03-31T09:00Z", "2028-05-31T09:00Z" };
        QTest::newRow("the last day is February 29th")
            << "last-day" << QByteArray("UTC") << none << "2028-01-31T09:00" << QStringList() << utc("2028-01-31T09:00Z")
            << QStringList { "2028-02-29T09:00Z", "2028-03-31T09:00Z", "2028-04-30T09:00Z" };
        QTest::newRow("second Monday") << "FREQ=MONTHLY;BYDAY=2MO" << QByteArray("UTC") << none << "2028-01-01T08:00" << QStringList()
                                       << utc("2028-01-01T00:00Z") << QStringList { "2028-01-10T08:00Z", "2028-02-14T08:00Z", "2028-03-13T08:00Z" };
        QTest::newRow("every 2 hours from 09:00 to 17:00")
            << "FREQ=HOURLY;INTERVAL=2;BYHOUR=9,10,11,12,13,14,15,16,17" << QByteArray("UTC") << none << "2028-01-01T09:00" << QStringList()
            << utc("2028-01-01T14:00Z") << QStringList { "2028-01-01T15:00Z", "2028-01-01T17:00Z", "2028-01-02T09:00Z" };
        QTest::newRow("COUNT ends after the third") << "FREQ=DAILY;COUNT=3" << QByteArray("UTC") << none << "2027-06-01T08:00" << QStringList()
                                                    << utc("2027-06-01T08:00Z") << QStringList { "2027-06-02T08:00Z", "2027-06-03T08:00Z" };
        QTest::newRow("UNTIL keeps its last day") << "FREQ=WEEKLY;UNTIL=20270615T235959" << QByteArray("UTC") << none << "2027-06-01T08:00" << QStringList()
                                                  << utc("2027-06-01T08:00Z") << QStringList { "2027-06-08T08:00Z", "2027-06-15T08:00Z" };
        QTest::newRow("an exception date does not happen")
            << "FREQ=DAILY" << QByteArray("UTC") << none << "2027-06-01T08:00" << QStringList { "2027-06-02T08:00" } << utc("2027-06-01T08:00Z")
            << QStringList { "2027-06-03T08:00Z", "2027-06-04T08:00Z", "2027-06-05T08:00Z" };
        QTest::newRow("a pinned zone ignores the system's")
            << "FREQ=DAILY" << berlin << QByteArray("Asia/Tokyo") << "2027-06-01T07:00" << QStringList() << utc("2027-06-01T12:00Z")
            << QStringList { "2027-06-02T05:00Z", "2027-06-03T05:00Z", "2027-06-04T05:00Z" };
        QTest::newRow("an unpinned rule follows the system's")
            << "FREQ=DAILY" << none << QByteArray("Asia/Tokyo") << "2027-06-01T07:00" << QStringList() << utc("2027-06-01T12:00Z")
            << QStringList { "2027-06-01T22:00Z", "2027-06-02T22:00Z", "2027-06-03T22:00Z" };
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
            got << moment.toUTC().toString(QStringLiteral("yyyy-MM-ddTHH:mm'Z'"));
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
        QTest::newRow("no frequency") << "BYDAY=MO"
                                      << "needs FREQ";
        QTest::newRow("a part libical cannot read") << "FREQ=DAILY;BYDAY=XX"
                                                    << "“BYDAY=XX”";
        QTest::newRow("more often than a minute") << "FREQ=SECONDLY"
                                                  << "once a minute";
        QTest::newRow("a day that does not exist") << "FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30"
                                                   << "never happens";
        QTest::newRow("a zone nobody knows") << "DTSTART;TZID=Mars/Olympus:20270101T070000\nRRULE:FREQ=DAILY"
                                             << "Mars/Olympus";
        QTest::newRow("a policy that is not one") << "RRULE:FREQ=DAILY\nX-QUILLON-MISSED:sometimes"
                                                  << "“sometimes”";
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
        QTest::newRow("weekdays") << "weekdays"
                                  << "Weekdays at 07:00";
        QTest::newRow("daily") << "FREQ=DAILY"
                               << "Every day at 07:00";
        QTest::newRow("chosen days") << "FREQ=WEEKLY;BYDAY=MO,WE"
                                     << "Every week on Mon, Wed at 07:00";
        QTest::newRow("last day, five times") << "FREQ=MONTHLY;BYMONTHDAY=-1;COUNT=5"
                                              << "Every month on the last day at 07:00, 5 times";
        QTest::newRow("n-th weekday") << "FREQ=MONTHLY;BYDAY=-1FR"
                                      << "Every month on the last Friday at 07:00";
        QTest::newRow("hours between") << "FREQ=DAILY;BYHOUR=9,11,13,15,17;BYMINUTE=0"
                                       << "Every 2 hours from 09:00 to 17:00";
        QTest::newRow("anything else") << "FREQ=YEARLY;BYWEEKNO=20"
                                       << "Custom: FREQ=YEARLY;BYWEEKNO=20";
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

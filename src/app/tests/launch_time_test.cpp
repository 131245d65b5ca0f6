#include "LaunchTimeText.h"

#include <QTest>

using namespace Quillon;

// What a person types after --at, read against a fixed local "now" (Monday 2026-11-23 13:40:20.500).
class LaunchTimeTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { qputenv("TZ", "Europe/Berlin"); }
    void parse_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QDateTime>("expected");
        const auto local = [](int y, int mo, int d, int h, int mi, int s = 0) { return QDateTime(QDate(y, mo, d), QTime(h, mi, s), Qt::LocalTime); };
        QTest::newRow("local date and time") << "2026-12-01 07:00" << local(2026, 12, 1, 7, 0);
        QTest::newRow("with seconds, extra blanks") << " 2026-12-01   07:00:30 " << local(2026, 12, 1, 7, 0, 30);
        QTest::newRow("ISO with offset") << "2026-12-01T07:00:00+05:00" << QDateTime(QDate(2026, 12, 1), QTime(2, 0), Qt::UTC);
        QTest::newRow("ISO in UTC") << "2026-12-01T07:00:00Z" << QDateTime(QDate(2026, 12, 1), QTime(7, 0), Qt::UTC);
        // Whole seconds: "+10m" at 13:40:20.500 is 13:50:20, never a hidden half second.
        QTest::newRow("+10m") << "+10m" << local(2026, 11, 23, 13, 50, 20);
        QTest::newRow("+2h") << "+2h" << local(2026, 11, 23, 15, 40, 20);
        QTest::newRow("+1d across a month") << "+8d" << local(2026, 12, 1, 13, 40, 20);
        QTest::newRow("time still ahead today") << "18:00" << local(2026, 11, 23, 18, 0);
        QTest::newRow("time passed: tomorrow") << "07:00" << local(2026, 11, 24, 7, 0);
        QTest::newRow("tomorrow") << "tomorrow 07:00" << local(2026, 11, 24, 7, 0);
        QTest::newRow("today, even if past") << "today 7:00" << local(2026, 11, 23, 7, 0);
        QTest::newRow("nonsense") << "soon" << QDateTime();
        QTest::newRow("unit missing") << "+10" << QDateTime();
        QTest::newRow("impossible date") << "2026-02-30 07:00" << QDateTime();
        QTest::newRow("tomorrow without a time") << "tomorrow" << QDateTime();
    }
    void parse()
    {
        QFETCH(QString, text);
        QFETCH(QDateTime, expected);
        const QDateTime now(QDate(2026, 11, 23), QTime(13, 40, 20, 500), Qt::LocalTime);
        const std::optional<QDateTime> parsed = parseLaunchTime(text, now);
        QCOMPARE(parsed.has_value(), expected.isValid());
        if (parsed)
            QCOMPARE(parsed->toMSecsSinceEpoch(), expected.toMSecsSinceEpoch());
    }
};

QTEST_GUILESS_MAIN(LaunchTimeTest)
#include "launch_time_test.moc"

#include "Countdown.h"

#include <QTest>

using namespace Quillon;

class CountdownTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void text_data()
    {
        QTest::addColumn<quint32>("seconds");
        QTest::addColumn<QString>("expected");
        QTest::newRow("zero") << 0u << "0 secs";
        QTest::newRow("59") << 59u << "59 secs ";
        QTest::newRow("60") << 60u << "1 min ";
        QTest::newRow("61") << 61u << "1 min 1 sec ";
        QTest::newRow("120") << 120u << "2 mins ";
        QTest::newRow("3600") << 3600u << "1 hr ";
        QTest::newRow("3725") << 3725u << "1 hr 2 mins 5 secs ";
        QTest::newRow("largest") << 4294967295u << "1193046 hrs 28 mins 15 secs ";
    }
    void text()
    {
        QFETCH(quint32, seconds);
        QFETCH(QString, expected);
        char buffer[CountdownCapacity] = {};
        formatTimeToLaunch(seconds, buffer);
        QCOMPARE(QString::fromLatin1(buffer), expected);
    }

    void cell_data()
    {
        QTest::addColumn<double>("remaining");
        QTest::addColumn<QString>("expected");
        QTest::newRow("half a second left reads 0 secs") << 0.5 << "0 secs";
        QTest::newRow("0.9 truncates to 0") << 0.9 << "0 secs";
        QTest::newRow("1.99 truncates to 1") << 1.99 << "1 sec ";
        QTest::newRow("at the fire date: empty") << 0.0 << "";
        QTest::newRow("past: empty") << -3.0 << "";
        QTest::newRow("not a number: empty") << qQNaN() << "";
        QTest::newRow("a year ahead") << 366.0 * 86400 << "8784 hrs ";
    }
    void cell()
    {
        QFETCH(double, remaining);
        QFETCH(QString, expected);
        QCOMPARE(countdownText(remaining), expected);
    }

    void bufferIsNeverOverrun()
    {
        char buffer[CountdownCapacity];
        std::memset(buffer, 'z', sizeof buffer);
        buffer[0] = 0;
        // Pretend most of the buffer is already used: appends must stop at 255 characters.
        std::memset(buffer, 'a', 250);
        buffer[250] = 0;
        formatTimeToLaunch(3725, buffer);
        QCOMPARE(std::strlen(buffer), size_t(255));
        QCOMPARE(buffer[255], '\0');
    }
};

QTEST_GUILESS_MAIN(CountdownTest)
#include "countdown_test.moc"

#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <ctime>

// Settings and history of the benchmark's own, in home: the user's are never touched.
inline void useHome(const QTemporaryDir &home)
{
    qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toUtf8());
    qputenv("XDG_STATE_HOME", home.filePath(QStringLiteral("state")).toUtf8());
}

inline qint64 realtimeNs()
{
    timespec ts {};
    clock_gettime(CLOCK_REALTIME, &ts);
    return qint64(ts.tv_sec) * 1'000'000'000 + ts.tv_nsec;
}

inline qint64 monotonicNs()
{
    timespec ts {};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return qint64(ts.tv_sec) * 1'000'000'000 + ts.tv_nsec;
}

inline qint64 cpuNs()
{
    timespec ts {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return qint64(ts.tv_sec) * 1'000'000'000 + ts.tv_nsec;
}

// Prints median, 99th percentile and maximum of values given in nanoseconds, in milliseconds.
inline void printSpread(const char *label, QList<qint64> values)
{
    if (values.isEmpty())
        return;
    std::sort(values.begin(), values.end());
    const auto pick = [&](double q) { return values.at(std::min<qsizetype>(values.size() - 1, qsizetype(q * double(values.size())))); };
    std::printf("%s: n=%lld median=%.3f ms p99=%.3f ms max=%.3f ms\n", label, (long long)values.size(), pick(0.5) / 1e6, pick(0.99) / 1e6, values.last() / 1e6);
}

// The longest the event loop goes without a turn, seen by a 1 ms precise timer.
class LoopBlockMeter
{
public:
    LoopBlockMeter()
    {
        m_tick.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_tick, &QTimer::timeout, [this] {
            const qint64 now = monotonicNs();
            m_longest = std::max(m_longest, now - m_last);
            m_last = now;
        });
    }
    void start()
    {
        m_longest = 0;
        m_last = monotonicNs();
        m_tick.start(1);
    }
    void stop() { m_tick.stop(); }
    double longestMs() const { return double(m_longest) / 1e6; }

private:
    QTimer m_tick;
    qint64 m_last = 0;
    qint64 m_longest = 0;
};

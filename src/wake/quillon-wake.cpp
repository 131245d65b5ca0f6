// quillon-wake: holds kernel wake alarms for Quillon.
//
// Arming CLOCK_REALTIME_ALARM needs CAP_WAKE_ALARM. A program with file capabilities runs in
// secure-execution mode, where D-Bus and the session's environment are ignored, so the capability
// goes on this small helper instead of on Quillon. Quillon starts it once and writes one absolute
// wake time (seconds since the epoch) per line; each is answered "armed <time>" or
// "failed <time> <reason>". An alarm lasts as long as its descriptor is open, so the helper keeps
// them (at most 64, dropping those already past) and exits when its input closes.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <deque>
#include <string>
#include <sys/timerfd.h>
#include <unistd.h>

namespace {
constexpr std::size_t MaxAlarms = 64;

bool isPast(int fd)
{
    itimerspec left {};
    return timerfd_gettime(fd, &left) != 0 || (left.it_value.tv_sec == 0 && left.it_value.tv_nsec == 0);
}
} // namespace

int main()
{
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const int probe = timerfd_create(CLOCK_REALTIME_ALARM, TFD_CLOEXEC);
    if (probe < 0) {
        std::printf("unavailable %s\n", std::strerror(errno));
        return 1;
    }
    close(probe);
    std::printf("ready\n");

    std::deque<int> alarms;
    char line[64];
    while (std::fgets(line, sizeof line, stdin)) {
        char *end = nullptr;
        const long long when = std::strtoll(line, &end, 10);
        if (end == line || when <= 0) {
            std::printf("failed %s", line);
            continue;
        }
        for (auto it = alarms.begin(); it != alarms.end();) {
            if (isPast(*it)) {
                close(*it);
                it = alarms.erase(it);
            } else {
                ++it;
            }
        }
        if (alarms.size() >= MaxAlarms) {
            close(alarms.front());
            alarms.pop_front();
        }
        const int fd = timerfd_create(CLOCK_REALTIME_ALARM, TFD_CLOEXEC);
        itimerspec at {};
        at.it_value.tv_sec = time_t(when);
        if (fd < 0 || timerfd_settime(fd, TFD_TIMER_ABSTIME, &at, nullptr) != 0) {
            std::printf("failed %lld %s\n", when, std::strerror(errno));
            if (fd >= 0)
                close(fd);
            continue;
        }
        alarms.push_back(fd);
        std::printf("armed %lld\n", when);
    }
    return 0;
}

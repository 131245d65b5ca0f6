#include "UnixSignalWatcher.h"

#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace Quillon {
namespace {
int g_pipe[2] = { -1, -1 };
}

UnixSignalWatcher::UnixSignalWatcher(QObject *parent)
    : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, g_pipe) != 0)
        return;
    m_notifier = new QSocketNotifier(g_pipe[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        unsigned char signal = 0;
        if (::read(g_pipe[1], &signal, 1) == 1)
            Q_EMIT terminationRequested(signal);
    });
    struct sigaction action
    {
    };
    action.sa_handler = &UnixSignalWatcher::handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int s : { SIGTERM, SIGINT, SIGHUP })
        ::sigaction(s, &action, nullptr);
}

UnixSignalWatcher::~UnixSignalWatcher()
{
    for (int s : { SIGTERM, SIGINT, SIGHUP })
        ::signal(s, SIG_DFL);
}

void UnixSignalWatcher::handler(int signal)
{
    // Only async-signal-safe work here: hand the number to the event loop.
    const unsigned char byte = static_cast<unsigned char>(signal);
    [[maybe_unused]] ssize_t n = ::write(g_pipe[0], &byte, 1);
}

} // namespace Quillon

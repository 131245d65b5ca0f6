// Delivers 50 messages over loopback STARTTLS + AUTH PLAIN to a real server, one after another,
// then the same 50 with msmtp, and prints the time per message of both. Then starts 20 deliveries
// at once and prints the longest the event loop went without a turn. Last, 100 deliveries to a
// hostile server that feeds each about 1 MB of a reply that never ends: memory held per session
// while it lasts and after, and the longest event-loop block meanwhile.
#include "BenchUtil.h"
#include "Log.h"
#include "MailMessage.h"
#include "MailTestSupport.h"
#include "SettingsKeys.h"

#include <QCoreApplication>
#include <QTimer>

#include <malloc.h>
#include <sched.h>

using namespace Quillon;

namespace {
constexpr int Messages = 50;
constexpr int AtOnce = 20;
const QString Password = QStringLiteral("bench-pw");

// Runs the event loop until done() holds.
template<typename Done> void spin(Done done)
{
    while (!done())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
}
} // namespace

int main(int argc, char *argv[])
{
    // The server's TLS work would otherwise share our core and show up as our own blocking: the
    // server is a stand-in for a machine elsewhere. It runs on the other core (see below).
    cpu_set_t mine;
    CPU_ZERO(&mine);
    CPU_SET(0, &mine);
    sched_setaffinity(0, sizeof mine, &mine);
    QCoreApplication app(argc, argv);
    setLogSink([](const QString &) {});
    QTemporaryDir dir;
    if (!MailTest::makeCertificate(dir))
        return 1;
    qputenv("XDG_CONFIG_HOME", dir.filePath(QStringLiteral("config")).toUtf8());
    MailTest::Server server;
    if (!server.start(dir, QStringLiteral("1"),
            { QStringLiteral("--tls"), QStringLiteral("starttls"), QStringLiteral("--user"), QStringLiteral("ann"), QStringLiteral("--password"), Password,
                QStringLiteral("--quiet") })) {
        std::printf("the test server did not start\n");
        return 1;
    }
    Preferences prefs;
    prefs.setValues(
        { { Keys::RecipientEmail, QStringLiteral("ann@example.org") }, { Keys::ServerAddress, QStringLiteral("127.0.0.1") }, { Keys::ServerPort, server.port },
            { Keys::UseSSL, true }, { Keys::SelectedAuthentication, 1 }, { Keys::LoginUsername, QStringLiteral("ann") }, { Keys::LoginPassword, Password } });
    MailTest::Host host(prefs);

    const qint64 oursStart = monotonicNs();
    for (int i = 0; i < Messages; ++i) {
        bool finished = false;
        SimpleSMTP delivery;
        QObject::connect(&delivery, &SimpleSMTP::finished, [&] { finished = true; });
        delivery.sendMail(host, QStringLiteral("Message %1").arg(i), QStringLiteral("Quillon launched path..."));
        spin([&] { return finished; });
    }
    const double ours = double(monotonicNs() - oursStart) / Messages / 1e6;

    const QString messageFile = dir.filePath(QStringLiteral("message.eml"));
    {
        QFile f(messageFile);
        f.open(QIODevice::WriteOnly);
        f.write(composeMailMessage(QStringLiteral("ann@example.org"), QStringLiteral("Quillon launched path..."), QStringLiteral("Message")));
    }
    const QStringList msmtpArgs { QStringLiteral("--host=127.0.0.1"), QStringLiteral("--port=%1").arg(server.port), QStringLiteral("--tls=on"),
        QStringLiteral("--tls-starttls=on"), QStringLiteral("--tls-trust-file=%1").arg(dir.filePath(QStringLiteral("cert.pem"))),
        QStringLiteral("--auth=plain"), QStringLiteral("--user=ann"), QStringLiteral("--passwordeval=echo %1").arg(Password),
        QStringLiteral("--from=ann@example.org"), QStringLiteral("ann@example.org") };
    const qint64 msmtpStart = monotonicNs();
    int msmtpFailures = 0;
    for (int i = 0; i < Messages; ++i) {
        QProcess msmtp;
        msmtp.setStandardInputFile(messageFile);
        msmtp.start(QStringLiteral("msmtp"), msmtpArgs);
        if (!msmtp.waitForFinished(30'000) || msmtp.exitCode() != 0)
            ++msmtpFailures;
    }
    const double theirs = double(monotonicNs() - msmtpStart) / Messages / 1e6;

    // Twenty at once, measuring how long the loop goes without a turn.
    LoopBlockMeter meter;
    int finished = 0;
    std::vector<std::unique_ptr<SimpleSMTP>> deliveries;
    QCoreApplication::processEvents();
    meter.start();
    const qint64 burstStart = monotonicNs();
    for (int i = 0; i < AtOnce; ++i) {
        deliveries.push_back(std::make_unique<SimpleSMTP>());
        QObject::connect(deliveries.back().get(), &SimpleSMTP::finished, [&] { ++finished; });
        deliveries.back()->sendMail(host, QStringLiteral("Burst %1").arg(i), QStringLiteral("Quillon launched path..."));
    }
    const double starting = double(monotonicNs() - burstStart) / 1e6;
    spin([&] { return finished == AtOnce; });
    const double burst = double(monotonicNs() - burstStart) / 1e6;
    meter.stop();
    server.messages();

    std::printf("ours:  %.1f ms per message (%d messages, STARTTLS + AUTH PLAIN)\n", ours, Messages);
    std::printf("msmtp: %.1f ms per message (%d failed)\n", theirs, msmtpFailures);
    std::printf("ratio ours/msmtp: %.2f (target: at most 1)\n", ours / theirs);
    std::printf("%d deliveries at once: all done in %.0f ms; longest event-loop block %.2f ms (target under 5 ms)\n", AtOnce, burst, meter.longestMs());
    std::printf("  of which starting all %d in one turn (as Launch All Now would): %.2f ms\n", AtOnce, starting);
    std::printf("messages the server received: %d (expected %d)\n", server.count, 2 * Messages + AtOnce);

    // The flood: 1,000 reply lines of 1 KB each, under every limit but never finished.
    constexpr int Hostile = 100;
    QProcess flood;
    flood.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    flood.start(
        QStringLiteral("taskset"), { QStringLiteral("-c"), QStringLiteral("1"), QStringLiteral("/usr/bin/python3"), QStringLiteral("-c"), QStringLiteral(R"(
import socket, sys, threading
s = socket.socket()
s.bind(('127.0.0.1', 0))
s.listen(256)
print('PORT %d' % s.getsockname()[1], flush=True)
reply = (b'220-' + b'x' * 1000 + b'\r\n') * 1000
held = []
def feed(c):
    c.sendall(reply)
    print('SENT', flush=True)
while True:
    c, _ = s.accept()
    held.append(c)
    threading.Thread(target=feed, args=(c,), daemon=True).start()
)") });
    int floodPort = 0;
    spin([&] {
        if (flood.canReadLine())
            floodPort = flood.readLine().trimmed().mid(5).toInt();
        return floodPort > 0 || flood.state() == QProcess::NotRunning;
    });
    prefs.setValues({ { Keys::ServerPort, floodPort }, { Keys::UseSSL, false }, { Keys::SelectedAuthentication, 0 } });
    const auto heap = [] {
        const struct mallinfo2 m = ::mallinfo2();
        return qint64(m.uordblks) + qint64(m.hblkhd);
    };
    const qint64 heapBefore = heap();
    int sent = 0;
    QCoreApplication::processEvents();
    meter.start();
    std::vector<std::unique_ptr<SimpleSMTP>> hostile;
    for (int i = 0; i < Hostile; ++i) {
        hostile.push_back(std::make_unique<SimpleSMTP>());
        hostile.back()->sendMail(host, QStringLiteral("Flood %1").arg(i), QStringLiteral("Quillon launched path..."));
    }
    const qint64 floodStart = monotonicNs();
    spin([&] {
        while (flood.canReadLine())
            sent += flood.readLine().startsWith("SENT") ? 1 : 0;
        return sent == Hostile || monotonicNs() - floodStart > 60'000'000'000;
    });
    const qint64 settle = monotonicNs();
    spin([&] { return monotonicNs() - settle > 500'000'000; });
    meter.stop();
    const qint64 heapDuring = heap() - heapBefore;
    hostile.clear();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const qint64 heapAfter = heap() - heapBefore;
    flood.kill();
    flood.waitForFinished(5000);
    std::printf("%d sessions fed 1 MB of unfinished reply each (%d fed in full): %.2f MiB held per session (target about 1 MiB), "
                "%.2f MiB in all once they ended; longest event-loop block %.1f ms (target under 50 ms)\n",
        Hostile, sent, double(heapDuring) / Hostile / 1048576.0, double(heapAfter) / 1048576.0, meter.longestMs());
    return 0;
}

// Delivers 50 messages over loopback STARTTLS + AUTH PLAIN to a real server, one after another,
// then the same 50 with msmtp, and prints the time per message of both. Then starts 20 deliveries
// at once and prints the longest the event loop went without a turn.
#include "BenchUtil.h"
#include "Log.h"
#include "MailMessage.h"
#include "MailTestSupport.h"
#include "SettingsKeys.h"

#include <QCoreApplication>
#include <QTimer>

#include <sched.h>

using namespace Quillon;

namespace {
constexpr int Messages = 50;
constexpr int AtOnce = 20;
const QString Password = QStringLiteral("bench-pw");

// Runs the event loop until done() holds.
template<typename Done>
void spin(Done done)
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
    if (!server.start(dir, QStringLiteral("1"), {QStringLiteral("--tls"), QStringLiteral("starttls"), QStringLiteral("--user"), QStringLiteral("ann"), QStringLiteral("--password"),
                            Password, QStringLiteral("--quiet")})) {
        std::printf("the test server did not start\n");
        return 1;
    }
    Preferences prefs;
    prefs.setValues({{Keys::RecipientEmail, QStringLiteral("ann@example.org")}, {Keys::ServerAddress, QStringLiteral("127.0.0.1")},
                     {Keys::ServerPort, server.port}, {Keys::UseSSL, true}, {Keys::SelectedAuthentication, 1},
                     {Keys::LoginUsername, QStringLiteral("ann")}, {Keys::LoginPassword, Password}});
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
    const QStringList msmtpArgs{QStringLiteral("--host=127.0.0.1"), QStringLiteral("--port=%1").arg(server.port), QStringLiteral("--tls=on"),
                                QStringLiteral("--tls-starttls=on"), QStringLiteral("--tls-trust-file=%1").arg(dir.filePath(QStringLiteral("cert.pem"))),
                                QStringLiteral("--auth=plain"), QStringLiteral("--user=ann"), QStringLiteral("--passwordeval=echo %1").arg(Password),
                                QStringLiteral("--from=ann@example.org"), QStringLiteral("ann@example.org")};
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

    // Twenty at once, with a 1 ms timer measuring how long the loop goes without a turn.
    qint64 last = monotonicNs();
    qint64 longest = 0;
    QTimer tick;
    tick.setTimerType(Qt::PreciseTimer);
    QObject::connect(&tick, &QTimer::timeout, [&] {
        const qint64 now = monotonicNs();
        longest = std::max(longest, now - last);
        last = now;
    });
    int finished = 0;
    std::vector<std::unique_ptr<SimpleSMTP>> deliveries;
    tick.start(1);
    QCoreApplication::processEvents();
    last = monotonicNs();
    const qint64 burstStart = monotonicNs();
    for (int i = 0; i < AtOnce; ++i) {
        deliveries.push_back(std::make_unique<SimpleSMTP>());
        QObject::connect(deliveries.back().get(), &SimpleSMTP::finished, [&] { ++finished; });
        deliveries.back()->sendMail(host, QStringLiteral("Burst %1").arg(i), QStringLiteral("Quillon launched path..."));
    }
    const double starting = double(monotonicNs() - burstStart) / 1e6;
    spin([&] { return finished == AtOnce; });
    const double burst = double(monotonicNs() - burstStart) / 1e6;
    tick.stop();
    server.messages();

    std::printf("ours:  %.1f ms per message (%d messages, STARTTLS + AUTH PLAIN)\n", ours, Messages);
    std::printf("msmtp: %.1f ms per message (%d failed)\n", theirs, msmtpFailures);
    std::printf("ratio ours/msmtp: %.2f (target: at most 1)\n", ours / theirs);
    std::printf("%d deliveries at once: all done in %.0f ms; longest event-loop block %.2f ms (target under 5 ms)\n", AtOnce, burst, longest / 1e6);
    std::printf("  of which starting all %d in one turn (as Launch All Now would): %.2f ms\n", AtOnce, starting);
    std::printf("messages the server received: %d (expected %d)\n", server.count, 2 * Messages + AtOnce);
    return 0;
}

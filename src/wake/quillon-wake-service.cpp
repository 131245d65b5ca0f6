// quillon-wake-service: the system bus service that arms kernel wake alarms for Quillon. Started by
// D-Bus activation through systemd, which gives it CAP_WAKE_ALARM and nothing else; it ends a while
// after the last caller's alarms have gone.
#include "WakeService.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    Quillon::WakeService service(QDBusConnection::systemBus());
    if (!service.start()) {
        std::fprintf(stderr, "quillon-wake-service: could not take %s on the system bus\n", Quillon::WakeService::ServiceName);
        return 1;
    }
    QTimer linger;
    linger.setSingleShot(true);
    linger.setInterval(std::chrono::minutes(2));
    QObject::connect(&linger, &QTimer::timeout, &app, &QCoreApplication::quit);
    QObject::connect(&service, &Quillon::WakeService::idle, &linger, qOverload<>(&QTimer::start));
    QObject::connect(&service, &Quillon::WakeService::busy, &linger, &QTimer::stop);
    linger.start();
    return app.exec();
}

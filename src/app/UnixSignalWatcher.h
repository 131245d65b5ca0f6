#pragma once

#include <QObject>

class QSocketNotifier;

namespace Quillon {

// Turns SIGTERM, SIGINT and SIGHUP into a signal on the event loop, so they quit the normal way.
class UnixSignalWatcher final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(UnixSignalWatcher)
public:
    explicit UnixSignalWatcher(QObject *parent = nullptr);
    ~UnixSignalWatcher() override;

Q_SIGNALS:
    void terminationRequested(int signal);

private:
    static void handler(int signal);
    QSocketNotifier *m_notifier = nullptr;
};

} // namespace Quillon

#pragma once

#include "ScriptRunner.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>

#include <memory>

#include <sys/types.h>

class QProcess;
class QTimer;

namespace Quillon {

// Runs a script with the interpreter its #! line names (/bin/sh without one), in its own folder
// and its own process group. Its standard output, less one trailing newline, is its text result.
// Ending it (the time limit, quitting) reaches everything it started that is still in the
// session, whatever process group that moved to.
class ShebangScriptRunner final : public QObject, public ScriptRunner
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ShebangScriptRunner)
public:
    // More output than this is read and dropped, so that a runaway script cannot fill memory.
    static constexpr qsizetype MaxOutput = qsizetype(1024) * 1024;
    // Standard error is kept only for the record of a failure.
    static constexpr qsizetype MaxErrors = 4096;
    // SIGTERM, then SIGKILL after this; a process that outlives SIGKILL as long again is given up.
    static constexpr std::chrono::milliseconds StopGrace { 5000 };

    explicit ShebangScriptRunner(QObject *parent = nullptr);
    ~ShebangScriptRunner() override;

    void start(const QString &path, Done done) override;
    void stop(std::function<void()> stopped) override;
    void setTimeLimit(std::chrono::seconds limit) override { m_limit = limit; }
    bool isRunning() const { return m_process != nullptr; }

private:
    void readOutput();
    void readErrors();
    void finish(bool succeeded, const QString &problem = {});
    // Signals the script, its group and every process of the runs numbered first to last.
    void signalRuns(pid_t script, quint64 first, quint64 last, int signal) const;

    QProcess *m_process = nullptr;
    // What the child execs with; kept for as long as the process may start.
    std::shared_ptr<const void> m_childStart;
    QString m_path;
    Done m_done;
    QByteArray m_output;
    QByteArray m_errors;
    bool m_outputCut = false;
    bool m_overTime = false;
    QElapsedTimer m_started;
    std::chrono::seconds m_limit { 0 };
    QTimer *m_limitTimer = nullptr;
    // A run's mark is our pid and its number: only what our own runs started is ever signalled.
    QByteArray m_runPrefix;
    quint64 m_runs = 0;
};

} // namespace Quillon

#pragma once

#include "ScriptRunner.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>

#include <memory>

class QProcess;

namespace Quillon {

// Runs a script with the interpreter its #! line names (/bin/sh without one), in its own folder
// and its own process group. Its standard output, less one trailing newline, is its text result.
class ShebangScriptRunner final : public QObject, public ScriptRunner
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ShebangScriptRunner)
public:
    // More output than this is read and dropped, so that a runaway script cannot fill memory.
    static constexpr qsizetype MaxOutput = 1024 * 1024;

    explicit ShebangScriptRunner(QObject *parent = nullptr);
    ~ShebangScriptRunner() override;

    void start(const QString &path, Done done) override;
    void stop(std::function<void()> stopped) override;
    void setTimeLimit(std::chrono::seconds limit) override { m_limit = limit; }
    bool isRunning() const { return m_process != nullptr; }

private:
    void readOutput();
    void finish(bool succeeded, const QString &problem = {});

    QProcess *m_process = nullptr;
    // What the child execs with; kept for as long as the process may start.
    std::shared_ptr<const void> m_childStart;
    QString m_path;
    Done m_done;
    QByteArray m_output;
    bool m_outputCut = false;
    bool m_overTime = false;
    QElapsedTimer m_started;
    std::chrono::seconds m_limit{0};
};

} // namespace Quillon

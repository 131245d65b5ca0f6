#pragma once

#include "ScriptRunner.h"

#include <QHash>
#include <QStringList>

namespace Quillon {

// Answers with a prepared outcome per path; a path without one fails to load. With hold set,
// a script runs until the test calls finishRunning().
class FakeScriptRunner final : public ScriptRunner
{
public:
    void start(const QString &path, Done done) override
    {
        ran << path;
        if (hold) {
            m_running = { path, std::move(done) };
            return;
        }
        done(outcomes.value(path));
    }
    void stop(std::function<void()> done) override
    {
        if (m_running.second)
            stopped << m_running.first;
        m_running = {};
        done();
    }
    void setTimeLimit(std::chrono::seconds limit) override { this->limit = limit; }
    bool isRunning() const { return bool(m_running.second); }
    void finishRunning()
    {
        auto [path, done] = std::exchange(m_running, {});
        if (done)
            done(outcomes.value(path));
    }

    QHash<QString, Outcome> outcomes;
    QStringList ran;
    QStringList stopped;
    bool hold = false;
    std::chrono::seconds limit { -1 };

private:
    std::pair<QString, Done> m_running;
};

} // namespace Quillon

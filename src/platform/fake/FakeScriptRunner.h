#pragma once

#include "ScriptRunner.h"

#include <QHash>
#include <QStringList>

namespace Quillon {

// Answers with a prepared outcome per path; a path without one fails to load.
class FakeScriptRunner final : public ScriptRunner
{
public:
    Outcome run(const QString &path) override
    {
        ran << path;
        return outcomes.value(path);
    }

    QHash<QString, Outcome> outcomes;
    QStringList ran;
};

} // namespace Quillon

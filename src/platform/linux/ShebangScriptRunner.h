#pragma once

#include "ScriptRunner.h"

namespace Quillon {

// Runs a script with the interpreter its #! line names (/bin/sh without one).
// Its standard output, less one trailing newline, is its text result.
class ShebangScriptRunner final : public ScriptRunner
{
public:
    Outcome run(const QString &path) override;
};

} // namespace Quillon

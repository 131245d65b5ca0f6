#pragma once

#include <QString>

#include <functional>

namespace Quillon {

// One plain line for the journal: desktop sessions route a GUI program's stderr there. Control
// and direction-changing characters are escaped (\n, \x1b, \u{202e}): one event, one line.
void systemLog(const QString &line);

// A text with its control and direction-changing characters written out as escapes, as log lines
// have them: what a terminal shows of a file name, and no more.
QString escapeControls(const QString &text);

// Tests capture log lines instead of reading stderr. Pass an empty function to restore stderr.
using LogSink = std::function<void(const QString &line)>;
void setLogSink(LogSink sink);

} // namespace Quillon

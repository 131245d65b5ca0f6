#pragma once

#include <QList>
#include <QPair>
#include <QString>

#include <chrono>
#include <functional>
#include <optional>

namespace Quillon {

// The value a script hands back: text, a list or a record. Only text has a string value.
struct ScriptDescriptor
{
    enum class Type { Text, List, Record };
    Type type = Type::Text;
    QString text;
    QList<ScriptDescriptor> items; // List
    QList<QPair<QString, ScriptDescriptor>> fields; // Record

    static ScriptDescriptor fromText(const QString &t) { return { Type::Text, t, {}, {} }; }
    static ScriptDescriptor fromList(QList<ScriptDescriptor> l) { return { Type::List, {}, std::move(l), {} }; }

    int numberOfItems() const { return type == Type::List ? int(items.size()) : 0; }
    // Positions count from 1, as in the script world.
    std::optional<ScriptDescriptor> descriptorAtIndex(int position) const
    {
        if (type != Type::List || position < 1 || position > items.size())
            return std::nullopt;
        return items.at(position - 1);
    }
    std::optional<QString> stringValue() const
    {
        if (type == Type::Text)
            return text;
        return std::nullopt;
    }
};

// Runs one script file at a time, as a child the event loop watches: the window and quitting
// stay alive however long it runs.
class ScriptRunner
{
public:
    struct Outcome
    {
        bool loaded = false; // false: the script could not be read or has no interpreter
        std::optional<ScriptDescriptor> result; // none: the script failed while running
        QString problem; // why it failed, in words: "exit status 3"
        // The first lines it printed and wrote to standard error (bounded): what tells why it failed.
        QString firstOutput;
        QString firstErrors;
        std::chrono::milliseconds ran { 0 };
    };
    using Done = std::function<void(const Outcome &)>;
    virtual ~ScriptRunner() = default;
    // done is called once, when the script has ended or could not start.
    virtual void start(const QString &path, Done done) = 0;
    // At quit: ends a script that is still running and what scripts started that is still in the
    // session (its done is not called), and calls stopped once they are gone or could not be
    // ended in a bounded time, from the event loop; never waits on them.
    virtual void stop(std::function<void()> stopped) { stopped(); }
    // For the scripts started from now on: how long one may run before it is ended (as quitting
    // ends it) and reported as failed; zero for no limit.
    virtual void setTimeLimit(std::chrono::seconds limit) { Q_UNUSED(limit); }
};

} // namespace Quillon

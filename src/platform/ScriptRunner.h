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
    QList<ScriptDescriptor> items;                     // List
    QList<QPair<QString, ScriptDescriptor>> fields;    // Record

    static ScriptDescriptor fromText(const QString &t) { return {Type::Text, t, {}, {}}; }
    static ScriptDescriptor fromList(QList<ScriptDescriptor> l) { return {Type::List, {}, std::move(l), {}}; }

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
        bool loaded = false;                       // false: the script could not be read or has no interpreter
        std::optional<ScriptDescriptor> result;    // none: the script failed while running
        QString problem;                           // why it failed, in words: "exit status 3"
        std::chrono::milliseconds ran{0};
    };
    using Done = std::function<void(const Outcome &)>;
    virtual ~ScriptRunner() = default;
    // done is called once, when the script has ended or could not start.
    virtual void start(const QString &path, Done done) = 0;
    // At quit: ends a script that is still running (its done is not called) and calls stopped once
    // it is gone, from the event loop; never waits on it.
    virtual void stop(std::function<void()> stopped) { stopped(); }
    // For the scripts started from now on: how long one may run before it is ended (as quitting
    // ends it) and reported as failed; zero for no limit.
    virtual void setTimeLimit(std::chrono::seconds limit) { Q_UNUSED(limit); }
};

} // namespace Quillon

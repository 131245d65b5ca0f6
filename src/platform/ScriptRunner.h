#pragma once

#include <QList>
#include <QPair>
#include <QString>

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

// Loads and runs a script file synchronously.
class ScriptRunner
{
public:
    struct Outcome
    {
        bool loaded = false;                       // false: the script could not be read or has no interpreter
        std::optional<ScriptDescriptor> result;    // none: the script failed while running
    };
    virtual ~ScriptRunner() = default;
    virtual Outcome run(const QString &path) = 0;
};

} // namespace Quillon

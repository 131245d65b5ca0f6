#pragma once

#include <QCoreApplication>
#include <QStringList>

namespace Quillon {

// quillon VERB ...: talks to the running instance over the session bus, so that the list keeps
// one owner and the settings file one writer. add and start start an instance in the
// background when none runs; list without one reads the saved list and changes nothing.
class CommandLine final
{
    Q_DECLARE_TR_FUNCTIONS(CommandLine)
public:
    enum Exit { Done = 0, Refused = 1, Usage = 2 };

    static bool isVerb(const QString &word);
    // arguments: the program, the verb, its arguments. Needs a QCoreApplication.
    static int run(const QStringList &arguments);
    // The verbs with an example each, for --help.
    static QString help();
};

} // namespace Quillon

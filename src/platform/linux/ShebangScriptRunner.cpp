#include "ShebangScriptRunner.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStringDecoder>

namespace Quillon {

ScriptRunner::Outcome ShebangScriptRunner::run(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray firstLine = file.readLine(4096).trimmed();
    file.close();

    QString interpreter = QStringLiteral("/bin/sh");
    QStringList arguments;
    if (firstLine.startsWith("#!")) {
        // As the kernel reads it: the interpreter, then at most one argument holding the rest.
        const QString rest = QString::fromUtf8(firstLine.mid(2)).trimmed();
        const qsizetype space = rest.indexOf(QRegularExpression(QStringLiteral("[ \t]")));
        interpreter = space < 0 ? rest : rest.left(space);
        if (space >= 0 && !rest.mid(space).trimmed().isEmpty())
            arguments << rest.mid(space).trimmed();
    }
    const QFileInfo interpreterInfo(interpreter);
    if (!interpreterInfo.isFile() || !interpreterInfo.isExecutable())
        return {};

    Outcome outcome;
    outcome.loaded = true;
    const QFileInfo script(path);
    QProcess process;
    process.setProgram(interpreter);
    process.setArguments(arguments << script.absoluteFilePath());
    process.setWorkingDirectory(script.absolutePath());
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start();
    // Scripts run to the end before anything else happens: that is how the schedule treats them.
    if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return outcome;

    QByteArray out = process.readAllStandardOutput();
    if (out.endsWith('\n'))
        out.chop(1);
    outcome.result = ScriptDescriptor::fromText(QString::fromUtf8(out));
    return outcome;
}

} // namespace Quillon

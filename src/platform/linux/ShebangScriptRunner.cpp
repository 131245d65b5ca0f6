#include "ShebangScriptRunner.h"

#include "FileName.h"
#include "Log.h"
#include "ProcessFamily.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QProcess>
#include <QRegularExpression>
#include <QTimer>

#include <csignal>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace Quillon {
namespace {
// A record keeps this much of what a failed script printed: enough to tell why.
constexpr int FirstLines = 5;
constexpr int FirstChars = 500;

QString firstLines(const QByteArray &bytes)
{
    QStringList lines = QString::fromUtf8(bytes.left(qsizetype(8) * FirstChars)).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    lines = lines.mid(0, FirstLines);
    QString text = lines.join(QLatin1Char('\n')).trimmed();
    if (text.size() > FirstChars)
        text = text.left(FirstChars) + QChar(0x2026);
    return text;
}

// As the kernel reads a #! line: the interpreter, then at most one argument holding the rest.
bool interpreterOf(const QByteArray &script, QString &interpreter, QStringList &arguments)
{
    // Only a regular file: a FIFO or a link to /dev/zero would block or never end the read.
    const int fd = ::open(script.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return false;
    struct stat st = {};
    QFile file;
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || !file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return false;
    }
    const QByteArray firstLine = file.readLine(4096).trimmed();
    interpreter = QStringLiteral("/bin/sh");
    if (firstLine.startsWith("#!")) {
        const QString rest = QString::fromUtf8(firstLine.mid(2)).trimmed();
        const qsizetype space = rest.indexOf(QRegularExpression(QStringLiteral("[ \t]")));
        interpreter = space < 0 ? rest : rest.left(space);
        if (space >= 0 && !rest.mid(space).trimmed().isEmpty())
            arguments << rest.mid(space).trimmed();
    }
    const QFileInfo info(interpreter);
    return info.isFile() && info.isExecutable();
}
} // namespace

ShebangScriptRunner::ShebangScriptRunner(QObject *parent)
    : QObject(parent)
    , m_runPrefix(QByteArray::number(::getpid()) + '-')
{ }

ShebangScriptRunner::~ShebangScriptRunner()
{
    // Too late to wait for them: what scripts started goes with us.
    signalRuns(m_process ? pid_t(m_process->processId()) : 0, 1, m_runs, SIGKILL);
}

void ShebangScriptRunner::signalRuns(pid_t script, quint64 first, quint64 last, int signal) const
{
    if (script > 0) {
        ::kill(script, signal);
        ::kill(-script, signal);
    }
    ProcessFamily::signalMarked(
        [this, first, last](const QByteArray &value) {
            if (!value.startsWith(m_runPrefix))
                return false;
            bool number = false;
            const quint64 run = value.mid(m_runPrefix.size()).toULongLong(&number);
            return number && run >= first && run <= last;
        },
        signal);
}

void ShebangScriptRunner::start(const QString &path, Done done)
{
    QString interpreter;
    QStringList arguments;
    const QByteArray script = FileName::encode(QDir::isAbsolutePath(path) ? path : QDir::current().absoluteFilePath(path));
    if (m_process || !interpreterOf(script, interpreter, arguments)) {
        // Reported from the event loop, as a script that ran would be.
        QTimer::singleShot(0, this, [done = std::move(done)] { done({}); });
        return;
    }
    m_path = path;
    m_done = std::move(done);
    m_output.clear();
    m_errors.clear();
    m_outputCut = false;
    ++m_runs;

    // QProcess would pass the script's name and folder through Qt's encoder, which cannot write a
    // name that is not UTF-8: the child starts the interpreter itself, with the bytes. All is made
    // ready here: between fork and exec only async-signal-safe calls may run, and Qt may start the
    // child sharing our memory (vfork), so it must touch nothing but what it is given.
    struct ChildStart
    {
        QList<QByteArray> arguments;
        std::vector<char *> argv;
        QList<QByteArray> environment;
        std::vector<char *> envp;
        QByteArray folder;
    };
    auto child = std::make_shared<ChildStart>();
    child->arguments << QFile::encodeName(interpreter);
    for (const QString &argument : std::as_const(arguments))
        child->arguments << argument.toLocal8Bit();
    child->arguments << script;
    for (QByteArray &argument : child->arguments)
        child->argv.push_back(argument.data());
    child->argv.push_back(nullptr);
    // Our environment, with the mark of this run in place of any mark we inherited.
    const QByteArray markName = QByteArray(ProcessFamily::MarkName) + '=';
    for (char **variable = environ; variable && *variable; ++variable) {
        if (!QByteArray::fromRawData(*variable, qstrlen(*variable)).startsWith(markName))
            child->environment << QByteArray(*variable);
    }
    child->environment << markName + m_runPrefix + QByteArray::number(m_runs);
    for (QByteArray &variable : child->environment)
        child->envp.push_back(variable.data());
    child->envp.push_back(nullptr);
    child->folder = script.left(qMax(1, int(script.lastIndexOf('/'))));

    m_process = new QProcess(this);
    m_process->setProgram(interpreter);
    m_process->setArguments(arguments << FileName::display(path));
    m_childStart = child;
    m_process->setChildProcessModifier([argv = child->argv.data(), envp = child->envp.data(), folder = child->folder.constData()] {
        // A group of its own, so that ending it reaches what it started too.
        ::setpgid(0, 0);
        if (::chdir(folder) == 0)
            ::execve(argv[0], argv, envp);
        ::_exit(127);
    });
    connect(m_process, &QProcess::readyReadStandardOutput, this, &ShebangScriptRunner::readOutput);
    connect(m_process, &QProcess::readyReadStandardError, this, &ShebangScriptRunner::readErrors);
    connect(m_process, &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
        finish(status == QProcess::NormalExit && code == 0,
            status == QProcess::CrashExit ? (m_overTime ? QStringLiteral("ended after the time limit") : QStringLiteral("ended by a signal"))
                                          : QStringLiteral("exit status %1").arg(code));
    });
    connect(m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            finish(false, m_process->errorString());
    });
    m_overTime = false;
    m_started.start();
    m_process->start();
    if (m_limit.count() > 0) {
        // A script that never ends would hold every item behind it for ever. The timer belongs to
        // the runner and dies with the run, so it never outlives the process it would end.
        if (!m_limitTimer) {
            m_limitTimer = new QTimer(this);
            m_limitTimer->setSingleShot(true);
            connect(m_limitTimer, &QTimer::timeout, this, [this] {
                if (!m_process)
                    return;
                m_overTime = true;
                const pid_t script = pid_t(m_process->processId());
                signalRuns(script, m_runs, m_runs, SIGTERM);
                QTimer::singleShot(StopGrace, m_process, [this, script, run = m_runs] { signalRuns(script, run, run, SIGKILL); });
            });
        }
        m_limitTimer->start(m_limit);
    }
}

void ShebangScriptRunner::readOutput()
{
    const QByteArray chunk = m_process->readAllStandardOutput();
    const qsizetype room = MaxOutput - m_output.size();
    if (chunk.size() <= room) {
        m_output += chunk;
        return;
    }
    m_output += chunk.left(room);
    if (!m_outputCut)
        systemLog(QStringLiteral("The script %1 printed more than 1 MiB; the rest of its output was dropped.").arg(m_path));
    m_outputCut = true;
}

void ShebangScriptRunner::readErrors()
{
    const QByteArray chunk = m_process->readAllStandardError();
    m_errors += chunk.left(MaxErrors - m_errors.size());
}

void ShebangScriptRunner::finish(bool succeeded, const QString &problem)
{
    if (!m_process)
        return;
    if (m_limitTimer)
        m_limitTimer->stop();
    readOutput();
    readErrors();
    if (m_overTime)
        systemLog(QStringLiteral("The script %1 ran for more than %2 s and was ended; the items after it open now.").arg(m_path).arg(m_limit.count()));
    Outcome outcome;
    outcome.loaded = true;
    outcome.ran = std::chrono::milliseconds(m_started.elapsed());
    outcome.firstErrors = firstLines(std::exchange(m_errors, {}));
    if (!succeeded) {
        outcome.problem = problem;
        outcome.firstOutput = firstLines(m_output);
    } else {
        QByteArray out = m_output;
        if (out.endsWith('\n'))
            out.chop(1);
        // Text handed on as C strings (the mail body) would end at a NUL; each one becomes
        // U+FFFD, so nothing after it is lost and the reader sees that something was there.
        out.replace(QByteArrayView("\0", 1), QByteArrayView("\xEF\xBF\xBD"));
        outcome.result = ScriptDescriptor::fromText(QString::fromUtf8(out));
    }
    m_output.clear();
    m_process->disconnect(this);
    m_process->deleteLater();
    m_process = nullptr;
    if (Done done = std::exchange(m_done, {}))
        done(outcome);
}

void ShebangScriptRunner::stop(std::function<void()> stopped)
{
    if (m_limitTimer)
        m_limitTimer->stop();
    QProcess *process = std::exchange(m_process, nullptr);
    m_done = {};
    // What finished scripts left running in the session is ended too; it is not waited for.
    const quint64 runs = m_runs;
    if (!process) {
        signalRuns(0, 1, runs, SIGTERM);
        QTimer::singleShot(StopGrace, this, [this, runs] { signalRuns(0, 1, runs, SIGKILL); });
        QTimer::singleShot(0, this, [stopped = std::move(stopped)] { stopped(); });
        return;
    }
    process->disconnect(this);
    const pid_t script = pid_t(process->processId());
    const QString path = m_path;
    auto ended = std::make_shared<std::function<void(bool)>>([process, path, stopped = std::move(stopped)](bool gone) {
        systemLog(gone ? QStringLiteral("Quitting: the script %1 was ended before it finished.").arg(path)
                       : QStringLiteral("Quitting: the script %1 could not be ended; Quillon quits without it.").arg(path));
        process->deleteLater();
        stopped();
    });
    const auto once = [ended](bool gone) {
        if (const auto call = std::exchange(*ended, {}))
            call(gone);
    };
    connect(process, &QProcess::finished, this, [once] { once(true); });
    connect(process, &QProcess::errorOccurred, this, [once](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            once(true);
    });
    if (process->state() == QProcess::NotRunning) {
        QTimer::singleShot(0, this, [once] { once(true); });
        return;
    }
    if (script <= 0) {
        process->kill(); // still starting: no group to signal yet
        return;
    }
    // SIGTERM to the script, its group and everything its runs started; SIGKILL after the grace
    // time; and a process that outlives even that (stuck in the kernel) no longer holds the quit.
    signalRuns(script, 1, runs, SIGTERM);
    // The script's own pid only while it is still ours: once reaped, the number may be reused.
    QTimer::singleShot(StopGrace, this, [this, script, runs, process = QPointer<QProcess>(process)] {
        signalRuns(process && process->state() != QProcess::NotRunning ? script : 0, 1, runs, SIGKILL);
    });
    QTimer::singleShot(2 * StopGrace, this, [once] { once(false); });
}

} // namespace Quillon

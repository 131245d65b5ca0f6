#include "ShebangScriptRunner.h"

#include "FileName.h"
#include "Log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTimer>

#include <csignal>
#include <memory>
#include <vector>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Quillon {
namespace {
constexpr int StopGraceMSecs = 5000;

// As the kernel reads a #! line: the interpreter, then at most one argument holding the rest.
bool interpreterOf(const QByteArray &script, QString &interpreter, QStringList &arguments)
{
    // Only a regular file: a FIFO or a link to /dev/zero would block or never end the read.
    const int fd = ::open(script.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return false;
    struct stat st{};
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
{
}

ShebangScriptRunner::~ShebangScriptRunner()
{
    // Too late to wait for it: what it started goes with it.
    if (m_process && m_process->processId() > 0)
        ::kill(-pid_t(m_process->processId()), SIGKILL);
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
    m_outputCut = false;

    // QProcess would pass the script's name and folder through Qt's encoder, which cannot write a
    // name that is not UTF-8: the child starts the interpreter itself, with the bytes. All is made
    // ready here: between fork and exec only async-signal-safe calls may run, and Qt may start the
    // child sharing our memory (vfork), so it must touch nothing but what it is given.
    struct ChildStart
    {
        QList<QByteArray> arguments;
        std::vector<char *> argv;
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
    child->folder = script.left(qMax(1, int(script.lastIndexOf('/'))));

    m_process = new QProcess(this);
    m_process->setProgram(interpreter);
    m_process->setArguments(arguments << FileName::display(path));
    m_childStart = child;
    m_process->setChildProcessModifier([argv = child->argv.data(), folder = child->folder.constData()] {
        // A group of its own, so that quitting ends whatever the script started too.
        ::setpgid(0, 0);
        if (::chdir(folder) == 0)
            ::execv(argv[0], argv);
        ::_exit(127);
    });
    connect(m_process, &QProcess::readyReadStandardOutput, this, &ShebangScriptRunner::readOutput);
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
        // A script that never ends would hold every item behind it for ever, silently.
        auto *limit = new QTimer(m_process);
        limit->setSingleShot(true);
        connect(limit, &QTimer::timeout, this, [this] {
            const pid_t group = pid_t(m_process->processId());
            m_overTime = true;
            systemLog(QStringLiteral("The script %1 ran for more than %2 s and was ended; the items after it open now.").arg(m_path).arg(m_limit.count()));
            ::kill(-group, SIGTERM);
            QTimer::singleShot(StopGraceMSecs, m_process, [group] { ::kill(-group, SIGKILL); });
        });
        limit->start(m_limit);
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

void ShebangScriptRunner::finish(bool succeeded, const QString &problem)
{
    if (!m_process)
        return;
    readOutput();
    Outcome outcome;
    outcome.loaded = true;
    outcome.ran = std::chrono::milliseconds(m_started.elapsed());
    if (!succeeded)
        outcome.problem = problem;
    if (succeeded) {
        QByteArray out = std::exchange(m_output, {});
        if (out.endsWith('\n'))
            out.chop(1);
        // Text handed on as C strings (the mail body) would end at a NUL; each one becomes
        // U+FFFD, so nothing after it is lost and the reader sees that something was there.
        out.replace(QByteArrayView("\0", 1), QByteArrayView("\xEF\xBF\xBD"));
        outcome.result = ScriptDescriptor::fromText(QString::fromUtf8(out));
    }
    m_process->disconnect(this);
    m_process->deleteLater();
    m_process = nullptr;
    if (Done done = std::exchange(m_done, {}))
        done(outcome);
}

void ShebangScriptRunner::stop(std::function<void()> stopped)
{
    if (!m_process) {
        QTimer::singleShot(0, this, [stopped = std::move(stopped)] { stopped(); });
        return;
    }
    QProcess *process = std::exchange(m_process, nullptr);
    m_done = {};
    process->disconnect(this);
    const pid_t group = pid_t(process->processId());
    const QString path = m_path;
    // Ended the way quitting ends it: SIGTERM to its whole group, SIGKILL if it is still there
    // after the grace time; the event loop goes on meanwhile.
    auto ended = std::make_shared<std::function<void()>>([process, path, stopped = std::move(stopped)] {
        systemLog(QStringLiteral("Quitting: the script %1 was ended before it finished.").arg(path));
        process->deleteLater();
        stopped();
    });
    const auto once = [ended] {
        if (const auto call = std::exchange(*ended, {}))
            call();
    };
    connect(process, &QProcess::finished, this, once);
    connect(process, &QProcess::errorOccurred, this, [once](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            once();
    });
    if (process->state() == QProcess::NotRunning) {
        QTimer::singleShot(0, this, once);
    } else if (group > 0) {
        ::kill(-group, SIGTERM);
        QTimer::singleShot(StopGraceMSecs, process, [group] { ::kill(-group, SIGKILL); });
    } else {
        process->kill(); // still starting: no group to signal yet
    }
}

} // namespace Quillon

#pragma once

#include "FileName.h"
#include "Log.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTranslator>

#include <ctime>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// What the tests share: a fixed "now", dates relative to it, files on disk, a private settings file.
namespace Quillon::Test {

// English plurals ("1 item", "2 items") come from a catalogue, as in the program.
inline void installEnglish()
{
    auto *english = new QTranslator(QCoreApplication::instance());
    if (english->load(QStringLiteral("quillon_en"), QStringLiteral(QUILLON_TRANSLATIONS_DIR)))
        QCoreApplication::installTranslator(english);
}
inline const bool englishAtStart = (qAddPreRoutine(installEnglish), true);
inline constexpr qint64 Now = 1'800'000'000'000;

inline QDateTime at(double offsetSecs)
{
    return QDateTime::fromMSecsSinceEpoch(Now + qint64(offsetSecs * 1000));
}

// The system's zone for as long as it lives, as a change of /etc/localtime would set it for the
// program; an empty zone leaves the machine's.
struct SystemZone
{
    explicit SystemZone(const QByteArray &zone) { set(zone); }
    ~SystemZone() { set({}); }
    static void set(const QByteArray &zone)
    {
        if (zone.isEmpty())
            qunsetenv("TZ");
        else
            qputenv("TZ", zone);
        ::tzset();
    }
};

inline bool writeFile(const QString &path, const QByteArray &text = {}, bool executable = false)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    // By its bytes, so that a test can make a file whose name is not UTF-8.
    const int fd = ::open(FileName::encode(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        return false;
    struct stat st = {};
    bool ok = ::write(fd, text.constData(), size_t(text.size())) == text.size();
    if (executable)
        ok = ok && ::fstat(fd, &st) == 0 && ::fchmod(fd, st.st_mode | S_IXUSR) == 0;
    return ::close(fd) == 0 && ok;
}

// The permission bits, 0 for a file that is not there.
inline uint modeOf(const QString &path)
{
    struct stat st = {};
    return ::stat(FileName::encode(path).constData(), &st) == 0 ? uint(st.st_mode & 07777) : 0;
}

inline QString readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

// Runs a program to its end: whether it exited with 0.
inline bool run(const QString &program, const QStringList &arguments)
{
    QProcess p;
    p.start(program, arguments);
    return p.waitForFinished(60'000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
}

// Sends the signal (none: waits for an end of its own), then whether the program ended cleanly, with 0.
inline bool endsCleanly(QProcess &p, int signal = 0, int msecs = 15'000)
{
    if (signal)
        ::kill(pid_t(p.processId()), signal);
    return p.waitForFinished(msecs) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
}

// The real program's environment in a session of its own below home: settings, state, data (no
// document handlers) and a private runtime folder; offscreen, with no display and no token.
inline QProcessEnvironment sessionEnvironment(const QTemporaryDir &home)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char *folder : { "config", "state", "data" })
        env.insert(QStringLiteral("XDG_%1_HOME").arg(QString::fromLatin1(folder).toUpper()), home.filePath(QString::fromLatin1(folder)));
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), home.filePath(QStringLiteral("runtime")));
    QDir().mkpath(home.filePath(QStringLiteral("runtime")));
    QFile::setPermissions(home.filePath(QStringLiteral("runtime")), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    for (const char *name : { "DISPLAY", "WAYLAND_DISPLAY", "XDG_ACTIVATION_TOKEN" })
        env.remove(QString::fromLatin1(name));
    return env;
}

// The log lines said while it lives, instead of stderr.
class CapturedLog : public QStringList
{
public:
    CapturedLog()
    {
        setLogSink([this](const QString &line) { append(line); });
    }
    ~CapturedLog() { setLogSink({}); }
    CapturedLog(const CapturedLog &) = delete;
    CapturedLog &operator=(const CapturedLog &) = delete;
};

// An environment variable set for a scope, then put back.
class ScopedEnv
{
public:
    ScopedEnv(const char *name, const QByteArray &value)
        : m_name(name)
        , m_old(qgetenv(name))
    {
        qputenv(name, value);
    }
    ~ScopedEnv() { qputenv(m_name, m_old); }
    ScopedEnv(const ScopedEnv &) = delete;
    ScopedEnv &operator=(const ScopedEnv &) = delete;

private:
    const char *m_name;
    QByteArray m_old;
};

// A dbus-daemon of the test's own, ended with it.
class PrivateBus
{
public:
    // env: what the bus starts services with (its own, as a session's bus passes on its own).
    bool start(const QProcessEnvironment &env = QProcessEnvironment::systemEnvironment())
    {
        m_daemon.setProcessEnvironment(env);
        m_daemon.start(QStringLiteral("dbus-daemon"), { QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address=1") });
        if (!m_daemon.waitForReadyRead(10'000))
            return false;
        m_address = QString::fromUtf8(m_daemon.readLine().trimmed());
        return !m_address.isEmpty();
    }
    ~PrivateBus()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }
    QString address() const { return m_address; }

private:
    QProcess m_daemon;
    QString m_address;
};
} // namespace Quillon::Test

// Points the settings file at a fresh folder; call before the first Preferences is made.
class TestSettings
{
public:
    TestSettings() { qputenv("XDG_CONFIG_HOME", m_dir.path().toUtf8()); }
    QString configDir() const { return m_dir.path() + QStringLiteral("/Quillon"); }
    QString file() const { return configDir() + QStringLiteral("/Quillon.conf"); }
    // Back to no file at all, and the preferences told so.
    void clear(auto &preferences) const
    {
        preferences.flush();
        QFile::remove(file());
        preferences.synchronize();
    }
    // Another process's view of the file: written at once, without our cache.
    void writeRaw(const QByteArray &ini) const
    {
        QDir().mkpath(configDir());
        QFile f(file());
        f.open(QIODevice::WriteOnly | QIODevice::Truncate);
        f.write(ini);
    }
    QVariant read(const QString &key) const
    {
        QSettings s(file(), QSettings::IniFormat);
        return s.value(key);
    }

private:
    QTemporaryDir m_dir;
};

#include "DesktopWorkspace.h"

#include "FileName.h"
#include "FileTrust.h"
#include "Log.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QTimer>

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#undef signals
#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

namespace Quillon {
namespace {

template<typename T> struct GFree
{
    void operator()(T *p) const { g_object_unref(p); }
};
template<typename T> using GPtr = std::unique_ptr<T, GFree<T>>;

void reapWhenDone(GDesktopAppInfo *, GPid pid, gpointer reaper)
{
    static_cast<ChildReaper *>(reaper)->add(pid);
}

// GIO's plain launch double-forks so that it never has to reap; reaping ourselves lets GLib spawn
// once, several times faster. Not with a GLib child watch: only the event loop dispatches those,
// and each unreaped child holds a descriptor meanwhile.
bool launchApp(GAppInfo *app, GList *uris, ChildReaper &reaper, GError **error)
{
    if (!G_IS_DESKTOP_APP_INFO(app))
        return g_app_info_launch(app, uris, nullptr, error);
    return g_desktop_app_info_launch_uris_as_manager(
        G_DESKTOP_APP_INFO(app), uris, nullptr, GSpawnFlags(G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD), nullptr, nullptr, reapWhenDone, &reaper, error);
}

// GLib percent-encodes the name's bytes as they are.
QByteArray uriOf(const QByteArray &file)
{
    gchar *uri = g_filename_to_uri(file.constData(), nullptr, nullptr);
    QByteArray out(uri);
    g_free(uri);
    return out;
}

// Why an opening failed; reason: what went wrong when GLib gave no error of its own.
QString failure(GError *error, const QString &reason = QStringLiteral("it could not be opened"))
{
    QString why = error ? QString::fromUtf8(error->message) : reason;
    if (error)
        g_error_free(error);
    return why;
}

QString failureLine(const QString &what, const QString &why)
{
    return QStringLiteral("Could not open %1: %2").arg(FileName::display(what), why);
}

// Started in its own folder and reaped by the reaper, so it never lingers as a zombie.
QString startProgram(const QByteArray &program, const QByteArray &folder, ChildReaper &reaper)
{
    char *argv[] = { const_cast<char *>(program.constData()), nullptr };
    GPid pid = 0;
    GError *error = nullptr;
    if (!g_spawn_async(folder.constData(), argv, nullptr, G_SPAWN_DO_NOT_REAP_CHILD, nullptr, nullptr, &pid, &error))
        return failure(error);
    reaper.add(pid);
    return {};
}

QString launchDesktopFile(const QString &path, ChildReaper &reaper)
{
    GPtr<GDesktopAppInfo> info(g_desktop_app_info_new_from_filename(FileName::encode(path).constData()));
    if (!info)
        return failure(nullptr, QStringLiteral("it is not a valid desktop entry, or the program it names is not installed"));
    GError *error = nullptr;
    if (!launchApp(G_APP_INFO(info.get()), nullptr, reaper, &error))
        return failure(error);
    return {};
}

QString openWithDefaultHandler(const QByteArray &uri)
{
    GError *error = nullptr;
    if (!g_app_info_launch_default_for_uri(uri.constData(), nullptr, &error))
        return failure(error);
    return {};
}

// The type from the name alone spares reading the file; only a name that says nothing
// certain (no extension, say) falls back to GIO's content sniffing.
QString openLocalFile(const QByteArray &file, ChildReaper &reaper)
{
    gboolean uncertain = FALSE;
    gchar *type = g_content_type_guess(file.constData(), nullptr, 0, &uncertain);
    GAppInfo *app = uncertain ? nullptr : g_app_info_get_default_for_type(type, FALSE);
    g_free(type);
    const QByteArray uri = uriOf(file);
    if (!app)
        return openWithDefaultHandler(uri);
    GList uris { const_cast<char *>(uri.constData()), nullptr, nullptr };
    GError *error = nullptr;
    const bool ok = launchApp(app, &uris, reaper, &error);
    g_object_unref(app);
    return ok ? QString() : failure(error);
}

QIcon desktopFileIcon(const QString &path)
{
    GPtr<GDesktopAppInfo> info(g_desktop_app_info_new_from_filename(FileName::encode(path).constData()));
    if (!info)
        return {};
    GIcon *icon = g_app_info_get_icon(G_APP_INFO(info.get()));
    if (G_IS_THEMED_ICON(icon)) {
        for (const gchar *const *name = g_themed_icon_get_names(G_THEMED_ICON(icon)); name && *name; ++name) {
            QIcon themed = QIcon::fromTheme(QString::fromUtf8(*name));
            if (!themed.isNull())
                return themed;
        }
    } else if (G_IS_FILE_ICON(icon)) {
        gchar *file = g_file_get_path(g_file_icon_get_file(G_FILE_ICON(icon)));
        QIcon fromFile(QString::fromUtf8(file));
        g_free(file);
        return fromFile;
    }
    return {};
}

// A file is a program only by its content: the run bit alone is set on every file of a FAT, NTFS
// or SMB mount, and GLib would run such a document with /bin/sh.
bool isProgramByContent(const QByteArray &file)
{
    const int fd = ::open(file.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return false;
    char head[4] = {};
    const ssize_t got = ::read(fd, head, sizeof head);
    ::close(fd);
    return (got == 4
               && QByteArray(head, 4)
                   == QByteArrayLiteral("\x7f"
                                        "ELF"))
        || (got >= 2 && head[0] == '#' && head[1] == '!');
}

bool isExecutableFile(const QByteArray &file)
{
    struct stat st = {};
    return ::stat(file.constData(), &st) == 0 && S_ISREG(st.st_mode) && ::access(file.constData(), X_OK) == 0;
}

// GIO finishes part of a launch later, from the thread-default main context of the thread that
// launched (the D-Bus notice that a program was launched, say). Nothing runs a pool thread's
// context, so each launch left its tasks there for good. The opener runs in a context of its own,
// which it runs after every job; what finishes later is run after the next one.
template<typename Job> auto withOwnMainContext(Job &&job)
{
    thread_local GMainContext *const context = g_main_context_new();
    g_main_context_push_thread_default(context);
    auto result = job();
    while (g_main_context_iteration(context, FALSE)) { }
    g_main_context_pop_thread_default(context);
    return result;
}

} // namespace

ChildReaper::ChildReaper()
    : m_wakeFd(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , m_thread([this] { run(); })
{ }

ChildReaper::~ChildReaper()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    wake();
    m_thread.join();
    for (const Child &child : m_children) {
        if (child.fd >= 0)
            ::close(child.fd);
    }
    ::close(m_wakeFd);
}

void ChildReaper::wake()
{
    const quint64 one = 1;
    (void)::write(m_wakeFd, &one, sizeof one);
}

void ChildReaper::add(pid_t pid)
{
    // A pidfd becomes readable when its child ends (also when it ended already), so the thread
    // can sleep until then instead of polling.
    const int fd = int(::syscall(SYS_pidfd_open, pid, 0));
    {
        const std::lock_guard lock(m_mutex);
        m_children.push_back({ pid, fd });
    }
    wake();
}

int ChildReaper::pending() const
{
    const std::lock_guard lock(m_mutex);
    return int(m_children.size());
}

// Waits only for the children it was given: a waitpid(-1) would steal QProcess's children too.
void ChildReaper::run()
{
    ::pthread_setname_np(::pthread_self(), "quillon-reaper");
    std::vector<pollfd> watched;
    std::unique_lock lock(m_mutex);
    while (!m_stopping) {
        watched.assign(1, pollfd { m_wakeFd, POLLIN, 0 });
        bool withoutFd = false; // a kernel without pidfds: those children are looked at now and then
        for (const Child &child : m_children) {
            if (child.fd >= 0)
                watched.push_back({ child.fd, POLLIN, 0 });
            else
                withoutFd = true;
        }
        lock.unlock();
        ::poll(watched.data(), nfds_t(watched.size()), withoutFd ? 100 : -1);
        quint64 count = 0;
        (void)::read(m_wakeFd, &count, sizeof count);
        lock.lock();
        std::erase_if(m_children, [](const Child &child) {
            if (::waitpid(child.pid, nullptr, WNOHANG) == 0)
                return false;
            if (child.fd >= 0)
                ::close(child.fd);
            return true;
        });
    }
}

DesktopWorkspace::DesktopWorkspace()
{
    m_opener.setMaxThreadCount(1);
    m_opener.setExpiryTimeout(-1);
}

DesktopWorkspace::~DesktopWorkspace() = default; // the pool's own end waits for the opening under way

void DesktopWorkspace::inBackground(std::function<QString()> job, const QString &what, OpenedAs as, OpenDone done)
{
    ++m_pending;
    m_opener.start([this, job = std::move(job), what, as, done = std::move(done)] {
        if (m_dropping) {
            ++m_dropped;
            --m_pending;
            return;
        }
        QString error;
        {
            const std::lock_guard starting(m_starting);
            error = withOwnMainContext(job);
            // A start can fail for a passing reason (no free process slot, a descriptor short).
            if (!error.isEmpty())
                error = withOwnMainContext(job);
        }
        if (!error.isEmpty() || done) {
            QMetaObject::invokeMethod(
                &m_logContext,
                [error, what, as, done] {
                    if (!error.isEmpty())
                        systemLog(failureLine(what, error));
                    if (done)
                        done({ as, error.isEmpty() ? OpenFailure::None : OpenFailure::CannotOpen, error });
                },
                Qt::QueuedConnection);
        }
        --m_pending;
    });
}

void DesktopWorkspace::finishOpenings(std::chrono::milliseconds limit, std::function<void(int dropped)> done)
{
    // Watched from the event loop, never waited on: the loop goes on serving the session meanwhile.
    auto *watch = new QTimer(&m_logContext);
    const QDeadlineTimer deadline(limit);
    QObject::connect(watch, &QTimer::timeout, &m_logContext, [this, watch, deadline, done = std::move(done)] {
        if (deadline.hasExpired())
            m_dropping = true;
        if (m_pending > 0)
            return;
        watch->deleteLater();
        const int dropped = m_dropped.exchange(0);
        if (dropped > 0)
            systemLog(QStringLiteral("Quitting: %1 launches that were due were not started.").arg(dropped));
        done(dropped);
    });
    watch->start(10);
}

bool DesktopWorkspace::whileNoProgramStarts(const std::function<void()> &use)
{
    const std::unique_lock starting(m_starting, std::try_to_lock);
    if (!starting.owns_lock())
        return false;
    use();
    return true;
}

bool DesktopWorkspace::openFile(const QString &path, OpenDone done)
{
    // Looked at by its bytes: Qt's file classes cannot name a file whose name is not UTF-8.
    const QByteArray file = FileName::encode(QDir::isAbsolutePath(path) ? path : QDir::current().absoluteFilePath(path));
    struct stat st = {};
    const bool exists = ::stat(file.constData(), &st) == 0;
    // Refused before anything starts: logged now, told from the event loop as every answer is.
    const auto refuse = [&](const Opening &opening) {
        systemLog(failureLine(path, opening.detail));
        if (done)
            QMetaObject::invokeMethod(
                &m_logContext, [done, opening] { done(opening); }, Qt::QueuedConnection);
        return false;
    };
    if (!exists && ::lstat(file.constData(), &st) != 0)
        return refuse({ OpenedAs::Document, OpenFailure::Vanished, QStringLiteral("the file no longer exists") });
    const bool isFile = exists && S_ISREG(st.st_mode);
    const bool isDir = exists && S_ISDIR(st.st_mode);
    const QByteArray folder = file.left(qMax(1, int(file.lastIndexOf('/'))));
    const QByteArray appRun = file + "/AppRun";
    if (isFile && file.endsWith(".desktop")) {
        if (const QString why = FileTrust::whyNotRun(path, FileTrust::Kind::DesktopEntry); !why.isEmpty())
            return refuse({ OpenedAs::Application, OpenFailure::NotTrusted, why });
        inBackground([this, path] { return launchDesktopFile(path, m_reaper); }, path, OpenedAs::Application, std::move(done));
    } else if (isFile && ::access(file.constData(), X_OK) == 0 && isProgramByContent(file)) {
        inBackground([this, file, folder] { return startProgram(file, folder, m_reaper); }, path, OpenedAs::Program, std::move(done));
    } else if (isDir && isExecutableFile(appRun)) {
        // An AppDir: its AppRun starts the application, from inside the folder.
        inBackground([this, appRun, file] { return startProgram(appRun, file, m_reaper); }, path, OpenedAs::Program, std::move(done));
    } else if (isDir) {
        inBackground([uri = uriOf(file)] { return openWithDefaultHandler(uri); }, path, OpenedAs::Folder, std::move(done));
    } else {
        inBackground([this, file] { return openLocalFile(file, m_reaper); }, path, OpenedAs::Document, std::move(done));
    }
    return true;
}

void DesktopWorkspace::selectFile(const QString &path)
{
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList { QString::fromLatin1(uriOf(FileName::encode(path))) } << QString();
    auto *watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), &m_logContext);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [this, path](QDBusPendingCallWatcher *w) {
        w->deleteLater();
        if (!w->isError())
            return;
        // No file manager on the bus: show the folder that holds it instead.
        const QByteArray file = FileName::encode(path);
        inBackground([uri = uriOf(file.left(qMax(1, int(file.lastIndexOf('/')))))] { return openWithDefaultHandler(uri); }, path);
    });
}

QIcon DesktopWorkspace::iconForFile(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir())
        return QIcon::fromTheme(QStringLiteral("folder"));
    if (info.suffix() == QLatin1String("desktop")) {
        QIcon own = desktopFileIcon(path);
        if (!own.isNull())
            return own;
    }
    const QMimeType type = m_mimes.mimeTypeForFile(info, info.exists() ? QMimeDatabase::MatchDefault : QMimeDatabase::MatchExtension);
    QIcon icon = QIcon::fromTheme(type.iconName());
    if (icon.isNull())
        icon = QIcon::fromTheme(type.genericIconName());
    if (icon.isNull())
        icon = QIcon::fromTheme(info.isExecutable() ? QStringLiteral("application-x-executable") : QStringLiteral("text-x-generic"));
    return icon;
}

bool DesktopWorkspace::openUrl(const QUrl &url)
{
    if (!url.isValid())
        return false;
    inBackground([uri = url.toString(QUrl::FullyEncoded).toUtf8()] { return openWithDefaultHandler(uri); }, url.toDisplayString());
    return true;
}

} // namespace Quillon

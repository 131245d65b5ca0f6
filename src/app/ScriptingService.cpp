#include "ScriptingService.h"

#include "Launcher.h"
#include "Log.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "Texts.h"
#include "WallClock.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QFile>

#include <sys/stat.h>

namespace Quillon {

QDBusArgument &operator<<(QDBusArgument &argument, const ListedItem &item)
{
    argument.beginStructure();
    argument << item.path << item.date << item.fired;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, ListedItem &item)
{
    argument.beginStructure();
    argument >> item.path >> item.date >> item.fired;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const UpcomingMoment &moment)
{
    argument.beginStructure();
    argument << moment.row << moment.date;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, UpcomingMoment &moment)
{
    argument.beginStructure();
    argument >> moment.row >> moment.date;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const ListedOutcome &outcome)
{
    argument.beginStructure();
    argument << outcome.outcome << outcome.reason;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, ListedOutcome &outcome)
{
    argument.beginStructure();
    argument >> outcome.outcome >> outcome.reason;
    argument.endStructure();
    return argument;
}

ScriptingService::ScriptingService(ScheduleEditor &editor, Launcher &launcher, QObject *parent)
    : QObject(parent)
    , m_editor(editor)
    , m_launcher(launcher)
{
    registerTypes();
    Schedule &schedule = editor.schedule();
    connect(&schedule, &Schedule::runningStateChanged, this, &ScriptingService::announceRunning);
    connect(
        &schedule, &Schedule::launched, this, [this](const QString &path, const QDateTime &date, quint64) { Q_EMIT Launched(path, date.toSecsSinceEpoch()); });
}

void ScriptingService::registerTypes()
{
    qDBusRegisterMetaType<ListedItem>();
    qDBusRegisterMetaType<ListedItems>();
    qDBusRegisterMetaType<ListedOutcome>();
    qDBusRegisterMetaType<ListedOutcomes>();
    qDBusRegisterMetaType<UpcomingMoment>();
    qDBusRegisterMetaType<UpcomingMoments>();
}

bool ScriptingService::registerOn(QDBusConnection bus)
{
    if (!bus.isConnected()) {
        systemLog(QStringLiteral("No session bus: Quillon cannot be driven from scripts in this session."));
        return false;
    }
    if (!exportOn(bus)) {
        systemLog(QStringLiteral("Could not export %1 on the session bus: %2").arg(QLatin1String(ObjectPath), bus.lastError().message()));
        return false;
    }
    // Without queueing: a second Quillon (another settings file) must not wait for the name and
    // take it over later from under the scripts that talk to the first.
    if (!bus.registerService(QLatin1String(ServiceName))) {
        systemLog(QStringLiteral("The session bus name %1 belongs to another program or another Quillon.").arg(QLatin1String(ServiceName)));
        bus.unregisterObject(QLatin1String(ObjectPath));
        return false;
    }
    m_bus = bus;
    m_announced = running();
    return true;
}

bool ScriptingService::exportOn(QDBusConnection bus)
{
    // With its adaptors: org.freedesktop.Application shares the path.
    return bus.registerObject(QLatin1String(ObjectPath), this,
        QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportScriptableSignals | QDBusConnection::ExportAllProperties
            | QDBusConnection::ExportAdaptors);
}

bool ScriptingService::running() const
{
    return m_editor.schedule().timersRunning();
}

bool ScriptingService::quitting() const
{
    return m_editor.schedule().isFrozen();
}

bool ScriptingService::refuse(const QString &why)
{
    if (calledFromDBus())
        sendErrorReply(QDBusError::InvalidArgs, why);
    return false;
}

bool ScriptingService::checkNotQuitting()
{
    // The list was saved as the quit began: a change now would be answered OK and lost.
    if (!quitting())
        return true;
    if (calledFromDBus())
        sendErrorReply(QLatin1String(QuittingError), tr("Quillon is quitting"));
    return false;
}

bool ScriptingService::checkDate(qint64 date)
{
    if (date >= 0 && date <= LatestDate)
        return true;
    return refuse(tr("The date %1 is out of range: Unix seconds from 0 to %2.").arg(date).arg(LatestDate));
}

bool ScriptingService::checkRows(const QList<int> &rows, const QString &method)
{
    if (rows.isEmpty())
        return refuse(tr("%1 needs at least one row.").arg(method));
    const int count = m_editor.schedule().count();
    for (int row : rows) {
        if (row >= 0 && row < count)
            continue;
        if (calledFromDBus())
            sendErrorReply(QLatin1String(NoSuchRowError), tr("Row %1 is out of range: the list has %n row(s), counted from 0.", nullptr, count).arg(row));
        return false;
    }
    return true;
}

QString ScriptingService::pathProblem(const QString &path, bool &isFolder)
{
    // lstat, not QFileInfo: a script's 10,000 paths are looked up while the window waits.
    const QByteArray name = QFile::encodeName(path);
    struct stat info = {};
    if (!name.startsWith('/'))
        return tr("Not an absolute path: \"%1\".").arg(path);
    if (::lstat(name.constData(), &info) != 0)
        return tr("No such file or folder: %1").arg(path);
    // A link to a folder is that folder, as for a drop.
    isFolder = S_ISDIR(info.st_mode) || (S_ISLNK(info.st_mode) && ::stat(name.constData(), &info) == 0 && S_ISDIR(info.st_mode));
    return {};
}

int ScriptingService::Add(const QStringList &paths, qint64 date)
{
    if (!checkNotQuitting())
        return 0;
    if (paths.isEmpty()) {
        refuse(tr("Add needs at least one path."));
        return 0;
    }
    if (!checkDate(date))
        return 0;
    if (calledFromDBus()) {
        // Looked up a slice per event-loop turn, then added in one edit: the window and the
        // timers go on between the slices of a long call.
        setDelayedReply(true);
        checkSlice(std::make_shared<PendingAdd>(PendingAdd { message(), connection(), paths, date }));
        return 0;
    }
    bool anyFolder = false;
    for (const QString &path : paths) {
        bool isFolder = false;
        if (const QString problem = pathProblem(path, isFolder); !problem.isEmpty()) {
            refuse(problem);
            return 0;
        }
        anyFolder = anyFolder || isFolder;
    }
    return addChecked(paths, date, anyFolder);
}

void ScriptingService::checkSlice(const std::shared_ptr<PendingAdd> &add)
{
    constexpr qsizetype Slice = 1000;
    const qsizetype end = std::min(add->paths.size(), add->next + Slice);
    for (; add->next < end; ++add->next) {
        bool isFolder = false;
        if (const QString problem = pathProblem(add->paths.at(add->next), isFolder); !problem.isEmpty()) {
            add->bus.send(add->call.createErrorReply(QDBusError::InvalidArgs, problem));
            return;
        }
        add->anyFolder = add->anyFolder || isFolder;
    }
    if (add->next < add->paths.size()) {
        QMetaObject::invokeMethod(
            this, [this, add] { checkSlice(add); }, Qt::QueuedConnection);
        return;
    }
    if (quitting()) {
        add->bus.send(add->call.createErrorReply(QLatin1String(QuittingError), tr("Quillon is quitting")));
        return;
    }
    if (!add->anyFolder) {
        add->bus.send(add->call.createReply(addChecked(add->paths, add->date, false)));
        return;
    }
    // The folders are read off the event loop; the answer comes when their files are in.
    m_editor.expandFoldersThen(add->paths, [this, add](const QStringList &expanded) {
        if (quitting())
            add->bus.send(add->call.createErrorReply(QLatin1String(QuittingError), tr("Quillon is quitting")));
        else
            add->bus.send(add->call.createReply(addChecked(expanded, add->date, false)));
    });
}

int ScriptingService::addChecked(const QStringList &paths, qint64 date, bool anyFolder)
{
    // Each path looked at again only when a folder is among them.
    ScheduleEditor &editor = m_editor;
    return editor.add(anyFolder ? editor.expandFolders(paths) : paths, QDateTime::fromSecsSinceEpoch(date));
}

ListedItems ScriptingService::List()
{
    const Schedule &schedule = m_editor.schedule();
    ListedItems items;
    items.reserve(schedule.count());
    for (int row = 0; row < schedule.count(); ++row) {
        const TimerSlot &slot = schedule.timers().value(row);
        const QDateTime date = schedule.dates().value(row);
        items.append({ schedule.paths().at(row), date.isValid() ? date.toSecsSinceEpoch() : 0, slot && !slot->isValid() });
    }
    return items;
}

ListedOutcomes ScriptingService::Outcomes()
{
    const Schedule &schedule = m_editor.schedule();
    ListedOutcomes outcomes;
    outcomes.reserve(schedule.count());
    for (int row = 0; row < schedule.count(); ++row) {
        const Schedule::Outcome outcome = schedule.outcomeAt(row);
        static const char *const keys[] = { "", "opened", "opened-late", "failed", "not-started" };
        outcomes.append({ QLatin1String(keys[int(outcome.kind)]), outcome.reason });
    }
    return outcomes;
}

void ScriptingService::Remove(const QList<int> &rows)
{
    if (!checkNotQuitting() || !checkRows(rows, QStringLiteral("Remove")))
        return;
    // As in the window: the list of a running schedule is not cut into.
    if (running()) {
        refuse(tr("The schedule is running; stop it before removing items."));
        return;
    }
    m_editor.remove(rows);
}

void ScriptingService::SetDate(const QList<int> &rows, qint64 date)
{
    if (checkNotQuitting() && checkRows(rows, QStringLiteral("SetDate")) && checkDate(date))
        m_editor.setDate(rows, QDateTime::fromSecsSinceEpoch(date));
}

void ScriptingService::SetRepeat(const QList<int> &rows, const QString &rule)
{
    if (!checkNotQuitting() || !checkRows(rows, QStringLiteral("SetRepeat")))
        return;
    QString why;
    const std::optional<Repeat> repeat = rule.trimmed().isEmpty() ? Repeat() : Repeat::fromRule(rule, &why);
    if (!repeat) {
        refuse(tr("The rule is refused: %1.").arg(why));
        return;
    }
    if (const QString problem = m_editor.setRepeat(rows, *repeat); !problem.isEmpty())
        refuse(tr("The rule is refused: %1.").arg(problem));
}

void ScriptingService::SetMissed(const QList<int> &rows, const QString &policy)
{
    if (!checkNotQuitting() || !checkRows(rows, QStringLiteral("SetMissed")))
        return;
    QString why;
    if (const std::optional<MissedPolicy> missed = MissedPolicy::parse(policy, &why))
        m_editor.setMissed(rows, *missed);
    else
        refuse(tr("The policy is refused: %1.").arg(why));
}

UpcomingMoments ScriptingService::Upcoming(const QList<int> &rows, int count)
{
    constexpr int MostMoments = 100'000;
    const Schedule &schedule = m_editor.schedule();
    if ((!rows.isEmpty() && !checkRows(rows, QStringLiteral("Upcoming"))) || count < 1 || count > MostMoments) {
        if (count < 1 || count > MostMoments)
            refuse(tr("The count %1 is out of range: from 1 to %2.").arg(count).arg(MostMoments));
        return {};
    }
    QList<int> asked = rows;
    if (asked.isEmpty()) {
        for (int row = 0; row < schedule.count(); ++row)
            asked << row;
    }
    UpcomingMoments moments;
    for (int row : std::as_const(asked)) {
        for (const QDateTime &date : schedule.upcoming(row, count))
            moments.append({ row, date.toSecsSinceEpoch() });
    }
    std::stable_sort(moments.begin(), moments.end(), [](const UpcomingMoment &a, const UpcomingMoment &b) { return a.date < b.date; });
    moments.resize(std::min<qsizetype>(moments.size(), count));
    return moments;
}

QString ScriptingService::ExportCalendar()
{
    return QString::fromUtf8(m_editor.exportCalendar());
}

int ScriptingService::ImportCalendar(const QString &text, QStringList &problems)
{
    if (!checkNotQuitting())
        return 0;
    return m_editor.importCalendar(text.toUtf8(), problems);
}

void ScriptingService::Start()
{
    Schedule &schedule = m_editor.schedule();
    if (!checkNotQuitting() || schedule.timersRunning())
        return;
    // Refused here rather than in an alert on a screen the script's user may not be watching.
    if (!schedule.hasItemAhead()) {
        refuse(Texts::tr(Texts::NoItemsScheduled) + QLatin1Char(' ') + Texts::tr(Texts::NoItemsScheduledInfo));
        return;
    }
    schedule.startStopButtonClicked();
}

void ScriptingService::Stop()
{
    if (checkNotQuitting() && m_editor.schedule().timersRunning())
        m_editor.schedule().startStopButtonClicked();
}

void ScriptingService::LaunchAllNow()
{
    if (checkNotQuitting())
        m_launcher.launchAllNow(m_editor.schedule().paths());
}

void ScriptingService::announceRunning()
{
    // A restart passes through "stopped" on its way; a script hears only where it ended, once.
    if (std::exchange(m_announceQueued, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_announceQueued = false;
            const bool now = running();
            if (now == std::exchange(m_announced, now) || !m_bus.isConnected())
                return;
            sendRunning(now);
        },
        Qt::QueuedConnection);
}

void ScriptingService::sendRunning(bool running)
{
    QDBusMessage signal
        = QDBusMessage::createSignal(QLatin1String(ObjectPath), QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"));
    signal << QLatin1String(InterfaceName) << QVariantMap { { QStringLiteral("Running"), running } } << QStringList();
    m_bus.send(signal);
}

} // namespace Quillon

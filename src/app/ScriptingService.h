#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDateTime>
#include <QList>
#include <QObject>

#include <memory>

namespace Quillon {

class Launcher;

class ScheduleEditor;

// One row as List() gives it: a(sxb).
struct ListedItem
{
    QString path;
    qint64 date = 0;
    bool fired = false;
};
using ListedItems = QList<ListedItem>;

// What became of each row's last launch, as Outcomes() gives it beside List(): a(ss).
struct ListedOutcome
{
    QString outcome; // "", "opened", "opened-late", "failed", "not-started"
    QString reason;
};
using ListedOutcomes = QList<ListedOutcome>;

// One moment an item is to open, as Upcoming() gives it: a(ix).
struct UpcomingMoment
{
    int row = 0;
    qint64 date = 0;
};
using UpcomingMoments = QList<UpcomingMoment>;

QDBusArgument &operator<<(QDBusArgument &argument, const UpcomingMoment &moment);
const QDBusArgument &operator>>(const QDBusArgument &argument, UpcomingMoment &moment);
QDBusArgument &operator<<(QDBusArgument &argument, const ListedItem &item);
const QDBusArgument &operator>>(const QDBusArgument &argument, ListedItem &item);
QDBusArgument &operator<<(QDBusArgument &argument, const ListedOutcome &outcome);
const QDBusArgument &operator>>(const QDBusArgument &argument, ListedOutcome &outcome);

// The list of the running instance for scripts in the user's session: every change is the
// window's own edit (undoable there), and bad input is refused whole with the reason.
class ScriptingService final : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.quillon.Quillon1")
    Q_PROPERTY(bool Running READ running)
public:
    static constexpr const char *ServiceName = "org.quillon.Quillon";
    static constexpr const char *ObjectPath = "/org/quillon/Quillon";
    static constexpr const char *InterfaceName = "org.quillon.Quillon1";
    // Unix seconds: the dates a launch date can have (up to the end of year 9999).
    static constexpr qint64 LatestDate = 253402300799;
    // The error a change gets once the quit has saved the list.
    static constexpr const char *QuittingError = "org.quillon.Quillon1.Error.Quitting";
    // A row the list does not have: the command line words it in its own rows, counted from 1.
    static constexpr const char *NoSuchRowError = "org.quillon.Quillon1.Error.NoSuchRow";

    ScriptingService(ScheduleEditor &editor, Launcher &launcher, QObject *parent = nullptr);
    // Exports the object and takes the name; false (and a log line) when the bus or the name is
    // not to be had. Quillon works on without it.
    bool registerOn(QDBusConnection bus);
    // Every type the interface names, for callers too: for one it does not know, QDBusInterface's
    // meta-object building leaks what it made.
    static void registerTypes();
    // Only exports the object, as registerOn does: for a private connection.
    bool exportOn(QDBusConnection bus);
    bool running() const;

public Q_SLOTS:
    Q_SCRIPTABLE int Add(const QStringList &paths, qint64 date);
    Q_SCRIPTABLE Quillon::ListedItems List();
    Q_SCRIPTABLE Quillon::ListedOutcomes Outcomes();
    Q_SCRIPTABLE void Remove(const QList<int> &rows);
    Q_SCRIPTABLE void SetDate(const QList<int> &rows, qint64 date);
    // An iCalendar RRULE ("FREQ=WEEKLY;BYDAY=MO"), a friendly name ("weekdays") or iCalendar
    // lines with DTSTART and EXDATE; an empty rule takes the rows' rule away.
    Q_SCRIPTABLE void SetRepeat(const QList<int> &rows, const QString &rule);
    // "default", "skip", "once" or "within 1h".
    Q_SCRIPTABLE void SetMissed(const QList<int> &rows, const QString &policy);
    // The next count moments of these rows (every row when none is given), in order.
    Q_SCRIPTABLE Quillon::UpcomingMoments Upcoming(const QList<int> &rows, int count);
    Q_SCRIPTABLE QString ExportCalendar();
    // Adds the file's events as items, in one edit; problems says what could not be used.
    Q_SCRIPTABLE int ImportCalendar(const QString &text, QStringList &problems);
    Q_SCRIPTABLE void Start();
    Q_SCRIPTABLE void Stop();
    Q_SCRIPTABLE void LaunchAllNow();

Q_SIGNALS:
    Q_SCRIPTABLE void Launched(const QString &path, qint64 date);

private:
    // Each returns false after sending the caller an error; outside a D-Bus call (tests) it
    // only returns false.
    bool refuse(const QString &why);
    bool checkNotQuitting();
    bool checkDate(qint64 date);
    bool checkRows(const QList<int> &rows, const QString &method);
    struct PendingAdd
    {
        QDBusMessage call;
        QDBusConnection bus;
        QStringList paths;
        qint64 date = 0;
        qsizetype next = 0;
        bool anyFolder = false;
    };
    static QString pathProblem(const QString &path, bool &isFolder);
    void checkSlice(const std::shared_ptr<PendingAdd> &add);
    int addChecked(const QStringList &paths, qint64 date, bool anyFolder);
    void announceRunning();
    void sendRunning(bool running);

    // Quitting began when the list was saved and frozen: changes are refused from then on.
    bool quitting() const;

    ScheduleEditor &m_editor;
    Launcher &m_launcher;
    QDBusConnection m_bus { QString() };
    bool m_announced = false;
    bool m_announceQueued = false;
};

} // namespace Quillon

Q_DECLARE_METATYPE(Quillon::ListedItem)
Q_DECLARE_METATYPE(Quillon::ListedOutcome)
Q_DECLARE_METATYPE(Quillon::UpcomingMoment)

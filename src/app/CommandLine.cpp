#include "CommandLine.h"

#include "LaunchTimeText.h"
#include "Log.h"
#include "MediumDateFormat.h"
#include "Preferences.h"
#include "SavedList.h"
#include "ScriptingService.h"
#include "quillon_proxy.h"

#include <QCommandLineParser>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QThread>

#include <cstdio>

namespace Quillon {
namespace {
const QStringList Verbs { QStringLiteral("add"), QStringLiteral("list"), QStringLiteral("remove"), QStringLiteral("start"), QStringLiteral("stop"),
    QStringLiteral("launch-all") };

void say(FILE *to, const QString &text)
{
    std::fputs(text.toLocal8Bit().constData(), to);
    std::fputc('\n', to);
}

int usage(const QString &verb, const QString &problem)
{
    say(stderr, CommandLine::tr("quillon %1: %2 (try quillon --help)").arg(verb, problem));
    return CommandLine::Usage;
}

int refused(const QString &why)
{
    say(stderr, QStringLiteral("quillon: %1").arg(why));
    return CommandLine::Refused;
}

bool instanceRuns(const QDBusConnection &bus)
{
    return bus.isConnected() && bus.interface()->isServiceRegistered(QLatin1String(ScriptingService::ServiceName));
}

// As a start at login does: the schedule as saved, the window out of the way. This process is a
// command, not the app: waiting here holds up nobody's window.
bool startInstance(const QDBusConnection &bus)
{
    // Its output must not go to ours: a pipe that closes when this command ends would take it down.
    QProcess instance;
    instance.setProgram(QCoreApplication::applicationFilePath());
    instance.setArguments({ QStringLiteral("--autostart") });
    instance.setStandardInputFile(QProcess::nullDevice());
    instance.setStandardOutputFile(QProcess::nullDevice());
    instance.setStandardErrorFile(QProcess::nullDevice());
    if (!instance.startDetached())
        return false;
    const QDeadlineTimer deadline(std::chrono::seconds(20));
    while (!deadline.hasExpired()) {
        if (instanceRuns(bus))
            return true;
        QThread::msleep(100);
    }
    return false;
}

// The interface of the instance, as the build generated it from the exported class.
std::unique_ptr<QuillonProxy> proxyOn(const QDBusConnection &bus)
{
    auto proxy = std::make_unique<QuillonProxy>(QLatin1String(ScriptingService::ServiceName), QLatin1String(ScriptingService::ObjectPath), bus);
    proxy->setTimeout(120'000);
    return proxy;
}

// Whether a call went through; when not, the refusal is said and the exit status is returned.
template<typename Reply> bool answered(Reply &reply, int &status)
{
    reply.waitForFinished();
    if (!reply.isError())
        return true;
    status = refused(reply.error().message());
    return false;
}

// The table's countdown is fixed English text; the terminal speaks the user's language.
QString timeLeft(qint64 secs)
{
    if (secs <= 0)
        return CommandLine::tr("due");
    const int h = int(std::min<qint64>(secs / 3600, INT_MAX)), m = int(secs % 3600 / 60), s = int(secs % 60);
    QStringList parts;
    if (h > 0)
        parts << CommandLine::tr("%n hr(s)", nullptr, h);
    if (m > 0)
        parts << CommandLine::tr("%n min(s)", nullptr, m);
    if (s > 0)
        parts << CommandLine::tr("%n sec(s)", nullptr, s);
    return parts.join(QLatin1Char(' '));
}

int printList(const ListedItems &items, bool json, bool running, const ListedOutcomes &outcomes = {})
{
    const QDateTime now = QDateTime::currentDateTime();
    if (json) {
        QJsonArray array;
        for (qsizetype i = 0; i < items.size(); ++i) {
            const QDateTime date = QDateTime::fromSecsSinceEpoch(items.at(i).date);
            array.append(QJsonObject { { QStringLiteral("row"), int(i + 1) }, { QStringLiteral("path"), items.at(i).path },
                { QStringLiteral("date"), items.at(i).date }, { QStringLiteral("dateText"), date.toOffsetFromUtc(date.offsetFromUtc()).toString(Qt::ISODate) },
                { QStringLiteral("opened"), items.at(i).fired },
                // What became of it: "opened" says only that its time came.
                { QStringLiteral("outcome"), outcomes.value(i).outcome.isEmpty() ? QJsonValue() : QJsonValue(outcomes.value(i).outcome) },
                { QStringLiteral("outcomeReason"), outcomes.value(i).reason } });
        }
        std::fputs(QJsonDocument(array).toJson(QJsonDocument::Indented).constData(), stdout);
        return CommandLine::Done;
    }
    if (items.isEmpty()) {
        say(stdout, CommandLine::tr("The list is empty."));
        return CommandLine::Done;
    }
    // A countdown for an item that will never open would be a lie: a stopped schedule says so.
    say(stdout,
        running ? CommandLine::tr("The schedule runs.") : CommandLine::tr("The schedule is stopped: nothing opens until it is started (quillon start)."));
    QStringList dates, states;
    qsizetype dateWidth = 0, stateWidth = 0;
    for (qsizetype i = 0; i < items.size(); ++i) {
        const ListedItem &item = items.at(i);
        const QDateTime date = QDateTime::fromSecsSinceEpoch(item.date);
        dates << formatMediumDateTime(date);
        const QString outcome = outcomes.value(i).outcome;
        if (outcome == QLatin1String("failed"))
            states << CommandLine::tr("could not open");
        else if (outcome == QLatin1String("not-started"))
            states << CommandLine::tr("not started");
        else if (outcome == QLatin1String("opened-late"))
            states << CommandLine::tr("opened late");
        else
            states << (item.fired || !outcome.isEmpty() ? CommandLine::tr("opened") : running ? timeLeft(now.secsTo(date)) : CommandLine::tr("not armed"));
        dateWidth = std::max(dateWidth, dates.last().size());
        stateWidth = std::max(stateWidth, states.last().size());
    }
    const int rowWidth = int(QString::number(items.size()).size());
    for (qsizetype i = 0; i < items.size(); ++i)
        say(stdout,
            QStringLiteral("%1  %2  %3  %4")
                .arg(i + 1, rowWidth)
                .arg(dates.at(i), -int(dateWidth))
                .arg(states.at(i), -int(stateWidth))
                .arg(escapeControls(items.at(i).path)));
    return CommandLine::Done;
}

// Rows as list shows them, from 1; the bus counts from 0.
std::optional<QList<int>> rowsFrom(const QStringList &words)
{
    QList<int> rows;
    for (const QString &word : words) {
        bool ok = false;
        const int row = word.toInt(&ok);
        if (!ok || row < 1)
            return std::nullopt;
        rows << row - 1;
    }
    return rows;
}
} // namespace

bool CommandLine::isVerb(const QString &word)
{
    return Verbs.contains(word);
}

QString CommandLine::help()
{
    return tr("Commands (each talks to the running Quillon; add and start start one when none runs):\n"
              "  add FILE… --at TIME [--start]\n"
              "                        Schedule files or folders;      quillon add ~/notes.txt --at \"tomorrow 07:00\" --start\n"
              "                        --start starts the schedule.\n"
              "  list [--json]         Show the list, rows from 1.     quillon list --json\n"
              "  remove ROW…           Remove rows as list shows them. quillon remove 2 3\n"
              "  start                 Start the schedule.             quillon start\n"
              "  stop                  Stop the schedule.              quillon stop\n"
              "  launch-all            Open every item now.            quillon launch-all\n"
              "TIME: \"2026-12-01 07:00\" (local time), ISO 8601 with an offset, +10m, +2h, +1d, 07:00, tomorrow 07:00.\n"
              "Exit status: 0 done, 1 refused (the reason is on standard error), 2 wrong use.\n");
}

int CommandLine::run(const QStringList &arguments)
{
    const QString verb = arguments.value(1);
    QCommandLineParser parser;
    const QCommandLineOption at(QStringLiteral("at"), tr("When to open the files."), QStringLiteral("TIME"));
    const QCommandLineOption json(QStringLiteral("json"), tr("Print the list as JSON."));
    const QCommandLineOption startToo(QStringLiteral("start"), tr("Start the schedule too, if it is stopped."));
    if (verb == QLatin1String("add")) {
        parser.addOption(at);
        parser.addOption(startToo);
    }
    if (verb == QLatin1String("list"))
        parser.addOption(json);
    if (!parser.parse(arguments.mid(1)))
        return usage(verb, parser.errorText());
    const QStringList words = parser.positionalArguments();
    if (verb != QLatin1String("add") && verb != QLatin1String("remove") && !words.isEmpty())
        return usage(verb, tr("unexpected argument '%1'").arg(words.first()));

    qRegisterMetaType<ListedItem>();
    qDBusRegisterMetaType<ListedItem>();
    qDBusRegisterMetaType<ListedItems>();
    qDBusRegisterMetaType<ListedOutcome>();
    qDBusRegisterMetaType<ListedOutcomes>();
    const QDBusConnection bus = QDBusConnection::sessionBus();

    std::optional<QDateTime> when;
    QStringList paths;
    QList<int> rows;
    if (verb == QLatin1String("add")) {
        if (words.isEmpty())
            return usage(verb, tr("no file given"));
        if (!parser.isSet(at))
            return usage(verb, tr("--at TIME is needed"));
        QString note;
        when = parseLaunchTime(parser.value(at), QDateTime::currentDateTime(), &note);
        if (!when)
            return usage(verb, tr("cannot read the time '%1'").arg(parser.value(at)));
        if (!note.isEmpty())
            say(stderr, note);
        for (const QString &word : words)
            paths << QDir::cleanPath(QFileInfo(word).absoluteFilePath());
    } else if (verb == QLatin1String("remove")) {
        const std::optional<QList<int>> given = rowsFrom(words);
        if (!given || given->isEmpty())
            return usage(verb, tr("give the rows to remove as numbers from 1, as list shows them"));
        rows = *given;
    }

    if (!instanceRuns(bus)) {
        if (verb == QLatin1String("list")) {
            const Preferences preferences;
            const SavedList saved = SavedList::read(preferences, QDateTime::currentDateTime());
            ListedItems items;
            for (qsizetype i = 0; i < saved.paths.size(); ++i)
                items.append({ saved.paths.at(i), saved.dates.value(i).toSecsSinceEpoch(), false });
            // Nothing runs it now, whatever the file says it did.
            return printList(items, parser.isSet(json), false);
        }
        if (!bus.isConnected())
            return refused(tr("there is no session bus to reach Quillon on"));
        if (verb != QLatin1String("add") && verb != QLatin1String("start"))
            return refused(tr("Quillon is not running"));
        if (!startInstance(bus))
            return refused(tr("Quillon could not be started"));
    }

    const std::unique_ptr<QuillonProxy> quillon = proxyOn(bus);
    int status = Done;
    if (verb == QLatin1String("list")) {
        QDBusPendingReply<ListedItems> items = quillon->List();
        if (!answered(items, status))
            return status;
        // An older instance has no Outcomes: the list is still shown.
        QDBusPendingReply<ListedOutcomes> outcomes = quillon->Outcomes();
        outcomes.waitForFinished();
        return printList(items.value(), parser.isSet(json), quillon->running(), outcomes.isError() ? ListedOutcomes() : outcomes.value());
    }
    if (verb == QLatin1String("remove")) {
        // Said in the rows the user sees, counted from 1.
        QDBusPendingReply<ListedItems> listed = quillon->List();
        listed.waitForFinished();
        const qsizetype count = listed.isError() ? 0 : listed.value().size();
        for (int row : std::as_const(rows)) {
            if (!listed.isError() && row >= count)
                return refused(tr("there is no row %1; the list has %n row(s)", nullptr, int(count)).arg(row + 1));
        }
        QDBusPendingReply<> removed = quillon->Remove(rows);
        answered(removed, status);
        return status;
    }
    if (verb == QLatin1String("add")) {
        QDBusPendingReply<int> added = quillon->Add(paths, when->toSecsSinceEpoch());
        if (!answered(added, status))
            return status;
        say(stdout, tr("%n item(s) added.", nullptr, added.value()));
        if (!quillon->running()) {
            if (!parser.isSet(startToo)) {
                say(stderr,
                    tr("The schedule is stopped: the item(s) open only once it is started (quillon start, or add with --start).", nullptr, added.value()));
            } else {
                QDBusPendingReply<> started = quillon->Start();
                answered(started, status);
            }
        }
        return status;
    }
    QDBusPendingReply<> done = verb == QLatin1String("start") ? quillon->Start() : verb == QLatin1String("stop") ? quillon->Stop() : quillon->LaunchAllNow();
    answered(done, status);
    return status;
}

} // namespace Quillon

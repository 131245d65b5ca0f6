#include "CommandLine.h"

#include "LaunchTimeText.h"
#include "Log.h"
#include "MediumDateFormat.h"
#include "Preferences.h"
#include "Repeat.h"
#include "SavedList.h"
#include "ScriptingService.h"
#include "quillon_proxy.h"

#include <QCommandLineParser>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSaveFile>
#include <QThread>

#include <cstdio>

namespace Quillon {
namespace {
const QStringList Verbs { QStringLiteral("add"), QStringLiteral("list"), QStringLiteral("remove"), QStringLiteral("start"), QStringLiteral("stop"),
    QStringLiteral("launch-all"), QStringLiteral("repeat"), QStringLiteral("upcoming"), QStringLiteral("export"), QStringLiteral("import") };

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

// As a start at login does: the schedule as saved, the window out of the way. The session bus
// starts it from its service file, with the session's environment, working folder and umask: a
// command's own (a secret in its environment, umask 000, a folder on a stick) are not passed on.
bool startInstance(const QDBusConnection &bus)
{
    const QDBusReply<uint> activated = bus.interface()->call(QStringLiteral("StartServiceByName"), QLatin1String(ScriptingService::ServiceName), 0u);
    if (activated.isValid() || instanceRuns(bus))
        return true;
    // Not installed (a build run from its folder): started directly, from the home folder.
    systemLog(QStringLiteral("The session bus could not start Quillon (%1); starting it directly.").arg(activated.error().message()));
    QProcess instance;
    instance.setProgram(QCoreApplication::applicationFilePath());
    instance.setArguments({ QStringLiteral("--autostart") });
    instance.setWorkingDirectory(QDir::homePath());
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

int listedCount(QuillonProxy &quillon)
{
    QDBusPendingReply<ListedItems> listed = quillon.List();
    listed.waitForFinished();
    return listed.isError() ? 0 : int(listed.value().size());
}

// The instance alone decides whether the rows exist; its refusal is said here in the rows the user
// gave, counted from 1. The largest is the one beyond the list.
template<typename Reply> bool answeredForRows(Reply &reply, int &status, QuillonProxy &quillon, const QList<int> &rows)
{
    reply.waitForFinished();
    if (!reply.isError() || reply.error().name() != QLatin1String(ScriptingService::NoSuchRowError))
        return answered(reply, status);
    const int count = listedCount(quillon);
    status = refused(CommandLine::tr("there is no row %1; the list has %n row(s)", nullptr, count).arg(*std::max_element(rows.begin(), rows.end()) + 1));
    return false;
}

int printUpcoming(QuillonProxy &quillon, const QList<int> &rows, int count, bool json)
{
    QDBusPendingReply<UpcomingMoments> reply = quillon.Upcoming(rows, count);
    int status = CommandLine::Done;
    if (!answeredForRows(reply, status, quillon, rows))
        return status;
    const UpcomingMoments moments = reply.value();
    if (json) {
        QJsonArray array;
        for (const UpcomingMoment &moment : moments) {
            const QDateTime date = QDateTime::fromSecsSinceEpoch(moment.date);
            array.append(QJsonObject { { QStringLiteral("row"), moment.row + 1 }, { QStringLiteral("date"), moment.date },
                { QStringLiteral("dateText"), date.toOffsetFromUtc(date.offsetFromUtc()).toString(Qt::ISODate) } });
        }
        std::fputs(QJsonDocument(array).toJson(QJsonDocument::Indented).constData(), stdout);
        return status;
    }
    if (moments.isEmpty())
        say(stdout, CommandLine::tr("Nothing is to open."));
    for (const UpcomingMoment &moment : moments)
        say(stdout, QStringLiteral("%1  %2").arg(moment.row + 1).arg(formatMediumDateTime(QDateTime::fromSecsSinceEpoch(moment.date))));
    if (!quillon.running())
        say(stderr, CommandLine::tr("The schedule is stopped: nothing opens until it is started (quillon start)."));
    return status;
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
              "  add FILE… --at TIME [--start] [--repeat NAME | --rrule RULE] [--missed POLICY]\n"
              "                        Schedule files or folders;      quillon add ~/notes.txt --at \"tomorrow 07:00\" --start\n"
              "                        --start starts the schedule.    quillon add ~/news.sh --at 07:00 --repeat weekdays\n"
              "  list [--json]         Show the list, rows from 1.     quillon list --json\n"
              "  remove ROW…           Remove rows as list shows them. quillon remove 2 3\n"
              "  start                 Start the schedule.             quillon start\n"
              "  stop                  Stop the schedule.              quillon stop\n"
              "  launch-all            Open every item now.            quillon launch-all\n"
              "  repeat ROW… RULE|--none\n"
              "                        Give rows a rule, or none.      quillon repeat 2 \"FREQ=MONTHLY;BYDAY=2MO\"\n"
              "  upcoming [ROW…] [--count N] [--json]\n"
              "                        The next moments, in order.     quillon upcoming 1 --count 5\n"
              "  export FILE.ics       The list as iCalendar.          quillon export ~/schedule.ics\n"
              "  import FILE.ics       Add a calendar's events.        quillon import ~/schedule.ics\n"
              "NAME: daily, weekdays, weekends, weekly, monthly, last-day, yearly, hourly. RULE: an iCalendar RRULE.\n"
              "POLICY (when the computer slept or Quillon was off): skip, once, within 1h (or 30m, 2d).\n"
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
    const QCommandLineOption repeatName(QStringLiteral("repeat"), tr("Repeat by a common rule."), QStringLiteral("NAME"));
    const QCommandLineOption rrule(QStringLiteral("rrule"), tr("Repeat by an iCalendar rule."), QStringLiteral("RULE"));
    const QCommandLineOption missedOption(QStringLiteral("missed"), tr("What to do when a time passed unseen."), QStringLiteral("POLICY"));
    const QCommandLineOption none(QStringLiteral("none"), tr("Take the rule away."));
    const QCommandLineOption count(QStringLiteral("count"), tr("How many moments to show."), QStringLiteral("N"), QStringLiteral("10"));
    if (verb == QLatin1String("add"))
        parser.addOptions({ at, startToo, repeatName, rrule, missedOption });
    if (verb == QLatin1String("list"))
        parser.addOption(json);
    if (verb == QLatin1String("repeat"))
        parser.addOption(none);
    if (verb == QLatin1String("upcoming"))
        parser.addOptions({ json, count });
    if (!parser.parse(arguments.mid(1)))
        return usage(verb, parser.errorText());
    const QStringList words = parser.positionalArguments();
    const QStringList takesWords { QStringLiteral("add"), QStringLiteral("remove"), QStringLiteral("repeat"), QStringLiteral("upcoming"),
        QStringLiteral("export"), QStringLiteral("import") };
    if (!takesWords.contains(verb) && !words.isEmpty())
        return usage(verb, tr("unexpected argument '%1'").arg(words.first()));

    qRegisterMetaType<ListedItem>();
    ScriptingService::registerTypes();
    const QDBusConnection bus = QDBusConnection::sessionBus();

    std::optional<QDateTime> when;
    QStringList paths;
    QList<int> rows;
    // Read here, so that a rule that will be refused adds nothing.
    QString rule;
    std::optional<MissedPolicy> missed;
    if (verb == QLatin1String("add") || verb == QLatin1String("repeat")) {
        if (parser.isSet(repeatName) && parser.isSet(rrule))
            return usage(verb, tr("give --repeat or --rrule, not both"));
        QStringList rest = words;
        rule = parser.isSet(repeatName) ? parser.value(repeatName) : parser.value(rrule);
        if (verb == QLatin1String("repeat") && !parser.isSet(none)) {
            if (rest.size() < 2)
                return usage(verb, tr("give the rows and a rule, or the rows and --none"));
            rule = rest.takeLast();
        }
        QString why;
        if (!rule.isEmpty() && !Repeat::fromRule(rule, &why))
            return refused(tr("the rule is refused: %1").arg(why));
        if (parser.isSet(missedOption) && !(missed = MissedPolicy::parse(parser.value(missedOption), &why)))
            return refused(tr("the policy is refused: %1").arg(why));
        if (verb == QLatin1String("repeat")) {
            const std::optional<QList<int>> given = rowsFrom(rest);
            if (!given || given->isEmpty())
                return usage(verb, tr("give the rows as numbers from 1, as list shows them"));
            rows = *given;
        }
    }
    if (verb == QLatin1String("upcoming")) {
        const std::optional<QList<int>> given = rowsFrom(words);
        bool ok = false;
        if (!given || parser.value(count).toInt(&ok) < 1 || !ok)
            return usage(verb, tr("give rows as numbers from 1 and --count as a number from 1"));
        rows = *given;
    }
    if ((verb == QLatin1String("export") || verb == QLatin1String("import")) && words.size() != 1)
        return usage(verb, tr("give one file"));
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
        if (verb != QLatin1String("add") && verb != QLatin1String("start") && verb != QLatin1String("import"))
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
        QDBusPendingReply<> removed = quillon->Remove(rows);
        answeredForRows(removed, status, *quillon, rows);
        return status;
    }
    if (verb == QLatin1String("repeat")) {
        QDBusPendingReply<> set = quillon->SetRepeat(rows, rule);
        answeredForRows(set, status, *quillon, rows);
        return status;
    }
    if (verb == QLatin1String("upcoming"))
        return printUpcoming(*quillon, rows, parser.value(count).toInt(), parser.isSet(json));
    if (verb == QLatin1String("export")) {
        QDBusPendingReply<QString> text = quillon->ExportCalendar();
        if (!answered(text, status))
            return status;
        QSaveFile file(words.first());
        if (!file.open(QIODevice::WriteOnly) || file.write(text.value().toUtf8()) < 0 || !file.commit())
            return refused(tr("could not write %1: %2").arg(words.first(), file.errorString()));
        return Done;
    }
    if (verb == QLatin1String("import")) {
        QFile file(words.first());
        if (!file.open(QIODevice::ReadOnly))
            return refused(tr("could not read %1: %2").arg(words.first(), file.errorString()));
        QDBusPendingReply<int, QStringList> imported = quillon->ImportCalendar(QString::fromUtf8(file.readAll()));
        if (!answered(imported, status))
            return status;
        say(stdout, tr("%n item(s) added.", nullptr, imported.argumentAt<0>()));
        for (const QString &problem : imported.argumentAt<1>())
            say(stderr, tr("not used: %1").arg(problem));
        return imported.argumentAt<1>().isEmpty() ? Done : Refused;
    }
    if (verb == QLatin1String("add")) {
        // The rows the new items get are the list's last ones, to which the rule then goes.
        const int before = rule.isEmpty() && !missed ? 0 : listedCount(*quillon);
        QDBusPendingReply<int> added = quillon->Add(paths, when->toSecsSinceEpoch());
        if (!answered(added, status))
            return status;
        say(stdout, tr("%n item(s) added.", nullptr, added.value()));
        QList<int> newRows;
        for (int row = before; row < before + added.value(); ++row)
            newRows << row;
        if (!rule.isEmpty()) {
            QDBusPendingReply<> set = quillon->SetRepeat(newRows, rule);
            if (!answered(set, status))
                return status;
        }
        if (missed) {
            QDBusPendingReply<> set = quillon->SetMissed(newRows, missed->toString());
            if (!answered(set, status))
                return status;
        }
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

#include "LaunchTimeText.h"
#include "ScriptingService.h"
#include "TestSupport.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusInterface>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <sys/stat.h>

using namespace Quillon;
using Test::readFile;

// The real program on a private session bus, driven over D-Bus and through its command line.
class ScriptingTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        qputenv("TZ", "Europe/Berlin"); // for the launch times, whose "now" is local
        ScriptingService::registerTypes();
        // The session's bus, which starts Quillon from its service file with its own environment.
        QProcessEnvironment session = Test::sessionEnvironment(m_home);
        session.insert(QStringLiteral("XDG_DATA_DIRS"), QStringLiteral(QUILLON_SERVICE_DATA ":/usr/share"));
        QVERIFY(m_daemon.start(session));
        m_bus = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(m_daemon.address(), QStringLiteral("test")));
        QVERIFY(m_bus->isConnected());
        for (const char *name : { "a.txt", "Grüße/c.txt", "forged\n2  row.txt" })
            QVERIFY(Test::writeFile(m_home.filePath(QString::fromUtf8(name)), "x"));
        // A program by its content: launched, it leaves its mark.
        QVERIFY(Test::writeFile(file("b.txt"), "#!/bin/sh\ntouch '" + file("launched").toUtf8() + "'\n", true));
    }
    void cleanupTestCase() { stopInstance(); }

    // Without an instance list reads the saved list; two adds at once start one instance and lose no row.
    void commandLineStartsTheInstance()
    {
        QCOMPARE(cli({ QStringLiteral("list") }).first, 0);
        QCOMPARE(cli({ QStringLiteral("stop") }).first, 1); // nothing to stop: none runs
        QProcess first, second;
        for (QProcess *p : { &first, &second })
            startCli(*p, { QStringLiteral("add"), file(p == &first ? "a.txt" : "b.txt"), QStringLiteral("--at"), QStringLiteral("+1h") });
        for (QProcess *p : { &first, &second }) {
            QVERIFY(p->waitForFinished(30'000));
            QCOMPARE(p->exitCode(), 0);
        }
        const ListedItems items = list();
        QCOMPARE(items.size(), 2);
        QStringList paths { items.at(0).path, items.at(1).path };
        paths.sort();
        QCOMPARE(paths, (QStringList { file("a.txt"), file("b.txt") }));
        QCOMPARE(cli({ QStringLiteral("launch-all") }).first, 0);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(file("launched")), 10'000);
        // Saved at quit; then read back without an instance, read-only.
        stopInstance();
        const auto [code, out] = cli({ QStringLiteral("list"), QStringLiteral("--json") });
        QCOMPARE(code, 0);
        const QJsonArray json = QJsonDocument::fromJson(out).array();
        QCOMPARE(json.size(), 2);
        QCOMPARE(json.at(0).toObject().value(QStringLiteral("row")).toInt(), 1);
        QCOMPARE(json.at(0).toObject().value(QStringLiteral("date")).toInteger(), items.at(0).date);
        QVERIFY(!json.at(0).toObject().value(QStringLiteral("opened")).toBool());
    }

    // Started for a command, Quillon has the session's environment, umask and home folder, not the
    // command's: no secret of its environment, no umask 000, no folder kept busy.
    void aBackgroundStartIsTheSessions()
    {
        stopInstance();
        QTemporaryDir elsewhere;
        QProcess add;
        QProcessEnvironment env = Test::sessionEnvironment(m_home);
        env.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_daemon.address());
        env.insert(QStringLiteral("SECRET_TOKEN"), QStringLiteral("s3cr3t"));
        add.setProcessEnvironment(env);
        add.setWorkingDirectory(elsewhere.path());
        add.setChildProcessModifier([] { ::umask(0); });
        add.start(QStringLiteral(QUILLON_BINARY), { QStringLiteral("add"), file("a.txt"), QStringLiteral("--at"), QStringLiteral("+1h") });
        QVERIFY(add.waitForFinished(30'000));
        QCOMPARE(add.exitCode(), 0);
        const QDBusReply<uint> pid = m_bus->interface()->servicePid(QLatin1String(ScriptingService::ServiceName));
        QVERIFY(pid.isValid());
        const QString proc = QStringLiteral("/proc/%1/").arg(pid.value());
        QCOMPARE(QFileInfo(proc + QStringLiteral("cwd")).symLinkTarget(), QDir::homePath());
        // A launcher then asks it for its window, as for a D-Bus activatable desktop entry.
        QDBusMessage activate = QDBusMessage::createMethodCall(QLatin1String(ScriptingService::ServiceName), QLatin1String(ScriptingService::ObjectPath),
            QStringLiteral("org.freedesktop.Application"), QStringLiteral("Activate"));
        activate << QVariantMap { { QStringLiteral("activation-token"), QStringLiteral("t-1") } };
        const QDBusMessage activated = m_bus->call(activate);
        QVERIFY2(activated.type() == QDBusMessage::ReplyMessage, qPrintable(activated.errorMessage()));
        QVERIFY(!Test::readFile(proc + QStringLiteral("environ")).contains(QLatin1String("SECRET_TOKEN")));
        const mode_t ours = ::umask(022);
        ::umask(ours);
        QVERIFY(Test::readFile(proc + QStringLiteral("status")).contains(QStringLiteral("Umask:\t%1\n").arg(uint(ours), 4, 8, QLatin1Char('0'))));
    }

    // Each verb's refusals and wrong uses, with the instance running.
    void commandLineExitCodes_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("says");
        QTest::addColumn<QString>("language"); // LC_ALL of the command
        QTest::newRow("add, no time") << QStringList { QStringLiteral("add"), file("a.txt") } << 2 << "--at"
                                      << "C";
        QTest::newRow("add, unreadable time") << QStringList { QStringLiteral("add"), file("a.txt"), QStringLiteral("--at"), QStringLiteral("soon") } << 2
                                              << "soon"
                                              << "C";
        QTest::newRow("add, missing file") << QStringList { QStringLiteral("add"), file("nope"), QStringLiteral("--at"), QStringLiteral("+1m") } << 1
                                           << "No such file"
                                           << "C";
        QTest::newRow("remove, no such row") << QStringList { QStringLiteral("remove"), QStringLiteral("9") } << 1 << "no row 9"
                                             << "C";
        QTest::newRow("upcoming, no such row") << QStringList { QStringLiteral("upcoming"), QStringLiteral("1"), QStringLiteral("7") } << 1 << "no row 7"
                                               << "C";
        QTest::newRow("remove, not a row") << QStringList { QStringLiteral("remove"), QStringLiteral("0") } << 2 << "from 1"
                                           << "C";
        QTest::newRow("add, non-ASCII folder") << QStringList { QStringLiteral("add"), file("Grüße/c.txt"), QStringLiteral("--at"),
            QStringLiteral("tomorrow 07:00") } << 0
                                               << "1"
                                               << "C";
        // What the command line says is what happened: a stopped schedule opens nothing.
        const QStringList inAnHour { QStringLiteral("--at"), QStringLiteral("+1h") };
        QTest::newRow("stop") << QStringList { QStringLiteral("stop") } << 0 << ""
                              << "C";
        QTest::newRow("add into a stopped schedule says so")
            << QStringList { QStringLiteral("add"), file("a.txt") } + inAnHour << 0 << "The schedule is stopped"
            << "C";
        QTest::newRow("list of a stopped schedule counts nothing down") << QStringList { QStringLiteral("list") } << 0 << "not armed"
                                                                        << "C";
        QTest::newRow("add --start starts it") << QStringList { QStringLiteral("add"), file("a.txt"), QStringLiteral("--start") } + inAnHour << 0
                                               << "1 item added"
                                               << "C";
        QTest::newRow("list of a running schedule") << QStringList { QStringLiteral("list") } << 0 << "The schedule runs."
                                                    << "C";
        QTest::newRow("a name that would forge a row") << QStringList { QStringLiteral("add"), file("forged\n2  row.txt") } + inAnHour << 0 << "1 item added"
                                                       << "C";
        QTest::newRow("list counts down in the user's language") << QStringList { QStringLiteral("list") } << 0 << " Min. "
                                                                 << "de_DE.UTF-8";
        QTest::newRow("list writes it escaped") << QStringList { QStringLiteral("list") } << 0 << "forged\\n2  row.txt"
                                                << "C";
        // A rule that will be refused adds nothing.
        QTest::newRow("add, a rule libical cannot read")
            << QStringList { QStringLiteral("add"), file("a.txt"), QStringLiteral("--rrule"), QStringLiteral("FREQ=DAILY;BYDAY=XX") } + inAnHour << 1
            << "“BYDAY=XX”"
            << "C";
        QTest::newRow("add, a policy that is not one")
            << QStringList { QStringLiteral("add"), file("a.txt"), QStringLiteral("--missed"), QStringLiteral("sometimes") } + inAnHour << 1 << "sometimes"
            << "C";
        QTest::newRow("repeat, rows without a rule") << QStringList { QStringLiteral("repeat"), QStringLiteral("1") } << 2 << "--none"
                                                     << "C";
        QTest::newRow("import, not a calendar") << QStringList { QStringLiteral("import"), file("a.txt") } << 1 << "not an iCalendar file"
                                                << "C";
    }
    void commandLineExitCodes()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, says);
        QFETCH(QString, language);
        ensureInstance();
        const auto [code, out] = cli(arguments, language);
        QCOMPARE(code, exitCode);
        QVERIFY2(QString::fromUtf8(out).contains(says), out.constData());
    }

    // Each method, the Running property's changes and Launched when an item opens.
    void methodsPropertyAndSignal()
    {
        ensureInstance();
        QDBusInterface quillon(
            QLatin1String(ScriptingService::ServiceName), QLatin1String(ScriptingService::ObjectPath), QLatin1String(ScriptingService::InterfaceName), *m_bus);
        QVERIFY(quillon.call(QStringLiteral("Stop")).type() == QDBusMessage::ReplyMessage);
        const int before = int(list().size());
        const qint64 soon = QDateTime::currentSecsSinceEpoch() + 2;
        QDBusReply<int> added = quillon.call(QStringLiteral("Add"), QStringList { file("a.txt"), file("b.txt") }, soon);
        QCOMPARE(added.value(), 2);
        QCOMPARE(quillon.call(QStringLiteral("SetDate"), QVariant::fromValue(QList<int> { before + 1 }), soon + 3600).type(), QDBusMessage::ReplyMessage);
        ListedItems items = list();
        QCOMPARE(items.at(before).date, soon);
        QCOMPARE(items.at(before + 1).date, soon + 3600);

        QDBusInterface properties(quillon.service(), quillon.path(), QStringLiteral("org.freedesktop.DBus.Properties"), *m_bus);
        QSignalSpy launched(&quillon, SIGNAL(Launched(QString, qlonglong)));
        QSignalSpy changed(&properties, SIGNAL(PropertiesChanged(QString, QVariantMap, QStringList)));
        QVERIFY(launched.isValid() && changed.isValid());
        QCOMPARE(quillon.call(QStringLiteral("Start")).type(), QDBusMessage::ReplyMessage);
        QVERIFY(quillon.property("Running").toBool());
        QTRY_COMPARE_WITH_TIMEOUT(launched.size(), 1, 10'000);
        QCOMPARE(launched.at(0).at(0).toString(), file("a.txt"));
        QCOMPARE(launched.at(0).at(1).toLongLong(), soon);
        QVERIFY(list().at(before).fired);
        QCOMPARE(quillon.call(QStringLiteral("Stop")).type(), QDBusMessage::ReplyMessage);
        QTRY_COMPARE(changed.size(), 2);
        QCOMPARE(changed.at(0).at(1).toMap().value(QStringLiteral("Running")).toBool(), true);
        QCOMPARE(changed.at(1).at(1).toMap().value(QStringLiteral("Running")).toBool(), false);
        QCOMPARE(quillon.call(QStringLiteral("Remove"), QVariant::fromValue(QList<int> { before, before + 1 })).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(list().size(), before);
    }

    // Bad input gets an error that says what is wrong, and the list stays as it was.
    void badCallsChangeNothing_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QString>("message");
        const qint64 later = QDateTime::currentSecsSinceEpoch() + 3600;
        QTest::newRow("missing file") << "Add" << QVariantList { QStringList { file("a.txt"), file("gone.txt") }, later } << "No such file or folder";
        QTest::newRow("relative path") << "Add" << QVariantList { QStringList { QStringLiteral("a.txt") }, later } << "Not an absolute path";
        QTest::newRow("no paths") << "Add" << QVariantList { QStringList {}, later } << "at least one path";
        QTest::newRow("date too late") << "Add" << QVariantList { QStringList { file("a.txt") }, Q_INT64_C(253402300800) } << "out of range";
        QTest::newRow("negative date") << "SetDate" << QVariantList { QVariant::fromValue(QList<int> { 0 }), Q_INT64_C(-1) } << "out of range";
        QTest::newRow("row out of range") << "Remove" << QVariantList { QVariant::fromValue(QList<int> { 0, 99 }) } << "out of range";
        QTest::newRow("no rows") << "SetDate" << QVariantList { QVariant::fromValue(QList<int> {}), later } << "at least one row";
        QTest::newRow("wrong types") << "Add" << QVariantList { QStringLiteral("/tmp"), later } << "";
        QTest::newRow("a rule too frequent") << "SetRepeat" << QVariantList { QVariant::fromValue(QList<int> { 0 }), QStringLiteral("FREQ=SECONDLY") }
                                             << "once a minute";
        QTest::newRow("a rule that has ended") << "SetRepeat"
                                               << QVariantList { QVariant::fromValue(QList<int> { 0 }), QStringLiteral("FREQ=DAILY;UNTIL=20000101T000000") }
                                               << "no time after now";
        QTest::newRow("no such policy") << "SetMissed" << QVariantList { QVariant::fromValue(QList<int> { 0 }), QStringLiteral("later") } << "skip, once";
        QTest::newRow("no moments asked") << "Upcoming" << QVariantList { QVariant::fromValue(QList<int> {}), 0 } << "out of range";
    }
    void badCallsChangeNothing()
    {
        QFETCH(QString, method);
        QFETCH(QVariantList, arguments);
        QFETCH(QString, message);
        ensureInstance();
        const ListedItems before = list();
        QVERIFY(!before.isEmpty());
        QDBusMessage call = QDBusMessage::createMethodCall(
            QLatin1String(ScriptingService::ServiceName), QLatin1String(ScriptingService::ObjectPath), QLatin1String(ScriptingService::InterfaceName), method);
        call.setArguments(arguments);
        const QDBusMessage reply = m_bus->call(call);
        QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
        QVERIFY2(reply.errorMessage().contains(message), qPrintable(reply.errorMessage()));
        const ListedItems after = list();
        QCOMPARE(after.size(), before.size());
        for (qsizetype i = 0; i < after.size(); ++i)
            QVERIFY(after.at(i).path == before.at(i).path && after.at(i).date == before.at(i).date);
    }

    // Weekdays at 07:00 and the second Monday, from the command line; the schedule exported and
    // imported into an empty list gives the same items, rules, policies and moments.
    void rulesExportAndImport()
    {
        ensureInstance();
        QCOMPARE(cli({ QStringLiteral("stop") }).first, 0);
        QList<int> all;
        for (int row = 0; row < list().size(); ++row)
            all << row;
        if (!all.isEmpty())
            QCOMPARE(call(QStringLiteral("Remove"), { QVariant::fromValue(all) }).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(cli({ QStringLiteral("add"), file("a.txt"), QStringLiteral("--at"), QStringLiteral("07:00"), QStringLiteral("--repeat"),
                         QStringLiteral("weekdays"), QStringLiteral("--missed"), QStringLiteral("once") })
                     .first,
            0);
        QCOMPARE(cli({ QStringLiteral("add"), file("b.txt"), QStringLiteral("--at"), QStringLiteral("tomorrow 08:30"), QStringLiteral("--rrule"),
                         QStringLiteral("FREQ=MONTHLY;BYDAY=2MO") })
                     .first,
            0);
        QCOMPARE(cli({ QStringLiteral("add"), file("Grüße/c.txt"), QStringLiteral("--at"), QStringLiteral("+1h") }).first, 0);
        const auto upcoming = [this] {
            const auto [code, out] = cli({ QStringLiteral("upcoming"), QStringLiteral("--count"), QStringLiteral("12"), QStringLiteral("--json") });
            return code == 0 ? QJsonDocument::fromJson(out).array() : QJsonArray();
        };
        const QJsonArray moments = upcoming();
        QCOMPARE(moments.size(), 12);
        qint64 last = 0;
        int weekdays = 0;
        for (const auto &moment : moments) {
            const qint64 secs = moment.toObject().value(QStringLiteral("date")).toInteger();
            QVERIFY(secs >= last);
            last = secs;
            const QDateTime local = QDateTime::fromSecsSinceEpoch(secs);
            if (moment.toObject().value(QStringLiteral("row")).toInt() == 1) {
                QCOMPARE(local.time(), QTime(7, 0));
                QVERIFY(local.date().dayOfWeek() <= 5);
                ++weekdays;
            }
            if (moment.toObject().value(QStringLiteral("row")).toInt() == 2)
                QCOMPARE(local.time(), QTime(8, 30));
        }
        QVERIFY(weekdays >= 9);

        const QString ics = file("schedule.ics");
        QCOMPARE(cli({ QStringLiteral("export"), ics }).first, 0);
        const QString exported = readFile(ics);
        QVERIFY(exported.contains(QStringLiteral("RRULE:FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR")));
        QVERIFY(exported.contains(QStringLiteral("X-QUILLON-MISSED:once")));
        const ListedItems before = list();
        QCOMPARE(call(QStringLiteral("Remove"), { QVariant::fromValue(QList<int> { 0, 1, 2 }) }).type(), QDBusMessage::ReplyMessage);
        QVERIFY(list().isEmpty());
        const auto [code, out] = cli({ QStringLiteral("import"), ics });
        QCOMPARE(code, 0);
        QVERIFY2(out.contains("3 items added"), out.constData());
        const ListedItems after = list();
        QCOMPARE(after.size(), before.size());
        for (qsizetype i = 0; i < after.size(); ++i)
            QVERIFY(after.at(i).path == before.at(i).path && after.at(i).date == before.at(i).date);
        QCOMPARE(upcoming(), moments);
        const QString again = file("again.ics");
        QCOMPARE(cli({ QStringLiteral("export"), again }).first, 0);
        const auto withoutStamps = [](QString text) {
            static const QRegularExpression stamps(QStringLiteral("(DTSTAMP|UID):[^\r\n]*"));
            return text.remove(stamps);
        };
        QCOMPARE(withoutStamps(readFile(again)), withoutStamps(exported));
    }

    // The interface the package installs is the one the program exports.
    // From the save on, a quit changes nothing the saved list does not know of: calls that would
    // change the list are refused, an item due meanwhile does not open, and a script that ignores
    // SIGTERM (its limit falling due during the quit) is ended without taking Quillon down.
    void quitWaitRefusesChangesAndOpensNothing()
    {
        stopInstance();
        const QString script = file("stubborn.scpt"), pidFile = file("stubborn.pid"), late = file("late-launched");
        QVERIFY(Test::writeFile(script, "#!/bin/sh\ntrap '' TERM\necho $$ > '" + pidFile.toUtf8() + "'\nsleep 60\n"));
        QVERIFY(Test::writeFile(file("late.sh"), "#!/bin/sh\ntouch '" + late.toUtf8() + "'\n", true));
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const QString conf = file("config/Quillon/Quillon.conf");
        QVERIFY(Test::writeFile(conf,
            "[General]\nItems=" + script.toUtf8() + ", " + file("late.sh").toUtf8() + "\nDates=" + now.addSecs(3).toString(Qt::ISODate).toUtf8() + ", "
                + now.addSecs(8).toString(Qt::ISODate).toUtf8() + "\nTimersRunning=true\nscriptTimeLimitSeconds=6\n"));
        QProcess app;
        startCli(app, {});
        QTRY_VERIFY_WITH_TIMEOUT(readFile(pidFile).endsWith(QLatin1Char('\n')), 15'000);
        const pid_t scriptPid = readFile(pidFile).trimmed().toInt();
        QTest::qWait(3000);
        ::kill(pid_t(app.processId()), SIGTERM);
        QTest::qWait(300);
        QDBusInterface quillon(
            QLatin1String(ScriptingService::ServiceName), QLatin1String(ScriptingService::ObjectPath), QLatin1String(ScriptingService::InterfaceName), *m_bus);
        for (const auto &[method, arguments] : std::initializer_list<std::pair<QString, QVariantList>> { { QStringLiteral("Stop"), {} },
                 { QStringLiteral("Add"), { QStringList { file("a.txt") }, now.addSecs(60).toSecsSinceEpoch() } },
                 { QStringLiteral("Remove"), { QVariant::fromValue(QList<int> { 0 }) } } }) {
            const QDBusMessage reply = quillon.callWithArgumentList(QDBus::Block, method, arguments);
            QCOMPARE(reply.errorName() + QLatin1Char(' ') + reply.errorMessage(),
                QStringLiteral("%1 Quillon is quitting").arg(QLatin1String(ScriptingService::QuittingError)));
        }
        QVERIFY(app.waitForFinished(20'000));
        QCOMPARE(app.exitStatus(), QProcess::NormalExit);
        QCOMPARE(app.exitCode(), 0);
        QVERIFY(::kill(scriptPid, 0) != 0);
        QVERIFY(!QFile::exists(late));
        QSettings saved(conf, QSettings::IniFormat);
        QCOMPARE(saved.value(QStringLiteral("TimersRunning")).toBool(), true);
        QCOMPARE(saved.value(QStringLiteral("Items")).toList().size(), 2);
        QFile::remove(conf);
    }

    // What a person types after --at, against a local "now" of 2026-11-23 13:40:20.500 in Berlin.
    void launchTimeText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QDateTime>("expected");
        const auto local = [](int y, int mo, int d, int h, int mi, int s = 0) { return QDateTime(QDate(y, mo, d), QTime(h, mi, s), Qt::LocalTime); };
        QTest::newRow("local date and time") << "2026-12-01 07:00" << local(2026, 12, 1, 7, 0);
        QTest::newRow("with seconds, extra blanks") << " 2026-12-01   07:00:30 " << local(2026, 12, 1, 7, 0, 30);
        QTest::newRow("ISO with offset") << "2026-12-01T07:00:00+05:00" << QDateTime(QDate(2026, 12, 1), QTime(2, 0), Qt::UTC);
        QTest::newRow("ISO in UTC") << "2026-12-01T07:00:00Z" << QDateTime(QDate(2026, 12, 1), QTime(7, 0), Qt::UTC);
        // Whole seconds: "+10m" at 13:40:20.500 is 13:50:20, never a hidden half second.
        QTest::newRow("+10m") << "+10m" << local(2026, 11, 23, 13, 50, 20);
        QTest::newRow("+2h") << "+2h" << local(2026, 11, 23, 15, 40, 20);
        QTest::newRow("+1d across a month") << "+8d" << local(2026, 12, 1, 13, 40, 20);
        QTest::newRow("time still ahead today") << "18:00" << local(2026, 11, 23, 18, 0);
        QTest::newRow("time passed: tomorrow") << "07:00" << local(2026, 11, 24, 7, 0);
        QTest::newRow("tomorrow") << "tomorrow 07:00" << local(2026, 11, 24, 7, 0);
        QTest::newRow("today, even if past") << "today 7:00" << local(2026, 11, 23, 7, 0);
        QTest::newRow("nonsense") << "soon" << QDateTime();
        QTest::newRow("unit missing") << "+10" << QDateTime();
        QTest::newRow("impossible date") << "2026-02-30 07:00" << QDateTime();
        QTest::newRow("tomorrow without a time") << "tomorrow" << QDateTime();
        // The hour the clocks skip in spring: the first moment after it, however it is written, and said.
        const QDateTime afterTheGap(QDate(2027, 3, 28), QTime(1, 0), Qt::UTC); // 03:00 in Berlin
        QTest::newRow("in the skipped hour, as a date") << "2027-03-28 02:30" << afterTheGap;
        QTest::newRow("in the skipped hour, tomorrow") << "tomorrow 02:30" << afterTheGap;
        QTest::newRow("in the skipped hour, its next coming") << "02:30" << afterTheGap;
    }
    void launchTimeText()
    {
        QFETCH(QString, text);
        QFETCH(QDateTime, expected);
        const bool inTheGap = QByteArray(QTest::currentDataTag()).contains("skipped hour");
        const QDateTime now = inTheGap ? QDateTime(QDate(2027, 3, 27), QTime(13, 40, 20, 500), Qt::LocalTime)
                                       : QDateTime(QDate(2026, 11, 23), QTime(13, 40, 20, 500), Qt::LocalTime);
        QString note;
        const std::optional<QDateTime> parsed = parseLaunchTime(text, now, &note);
        QCOMPARE(note.isEmpty(), !inTheGap);
        QCOMPARE(parsed.has_value(), expected.isValid());
        if (parsed)
            QCOMPARE(parsed->toMSecsSinceEpoch(), expected.toMSecsSinceEpoch());
    }

private:
    QString file(const char *name) const { return m_home.filePath(QString::fromUtf8(name)); }
    void startCli(QProcess &p, const QStringList &arguments, const QString &language = QStringLiteral("C")) const
    {
        QProcessEnvironment env = Test::sessionEnvironment(m_home);
        env.insert(QStringLiteral("LC_ALL"), language);
        env.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_daemon.address());
        p.setProcessEnvironment(env);
        p.setProcessChannelMode(QProcess::MergedChannels);
        p.start(QStringLiteral(QUILLON_BINARY), arguments);
    }
    std::pair<int, QByteArray> cli(const QStringList &arguments, const QString &language = QStringLiteral("C")) const
    {
        QProcess p;
        startCli(p, arguments, language);
        if (!p.waitForFinished(30'000))
            return { -1, "timed out" };
        return { p.exitCode(), p.readAll() };
    }
    // The background instance a command started, or one started here.
    void ensureInstance()
    {
        if (m_bus->interface()->isServiceRegistered(QLatin1String(ScriptingService::ServiceName)))
            return;
        cli({ QStringLiteral("start") }); // refused for a list with nothing ahead, but started all the same
        QTRY_VERIFY_WITH_TIMEOUT(m_bus->interface()->isServiceRegistered(QLatin1String(ScriptingService::ServiceName)), 20'000);
    }
    void stopInstance()
    {
        const QDBusReply<uint> pid = m_bus->interface()->servicePid(QLatin1String(ScriptingService::ServiceName));
        if (!pid.isValid())
            return;
        ::kill(pid_t(pid.value()), SIGTERM);
        QTRY_VERIFY_WITH_TIMEOUT(!m_bus->interface()->isServiceRegistered(QLatin1String(ScriptingService::ServiceName)), 20'000);
        // The name goes before the process has written its list.
        QTRY_VERIFY_WITH_TIMEOUT(::kill(pid_t(pid.value()), 0) != 0, 20'000);
    }
    QDBusMessage call(const QString &method, const QVariantList &arguments)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            QLatin1String(ScriptingService::ServiceName), QLatin1String(ScriptingService::ObjectPath), QLatin1String(ScriptingService::InterfaceName), method);
        message.setArguments(arguments);
        return m_bus->call(message);
    }
    ListedItems list()
    {
        const QDBusMessage reply = m_bus->call(QDBusMessage::createMethodCall(QLatin1String(ScriptingService::ServiceName),
            QLatin1String(ScriptingService::ObjectPath), QLatin1String(ScriptingService::InterfaceName), QStringLiteral("List")));
        return qdbus_cast<ListedItems>(reply.arguments().value(0));
    }

    QTemporaryDir m_home;
    Test::PrivateBus m_daemon;
    std::unique_ptr<QDBusConnection> m_bus;
};

QTEST_GUILESS_MAIN(ScriptingTest)
#include "scripting_test.moc"

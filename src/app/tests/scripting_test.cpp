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
using namespace Qt::StringLiterals;
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
        session.insert(u"XDG_DATA_DIRS"_s, QStringLiteral(QUILLON_SERVICE_DATA ":/usr/share"));
        QVERIFY(m_daemon.start(session));
        m_bus = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(m_daemon.address(), u"test"_s));
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
        QCOMPARE(cli({ u"list"_s }).first, 0);
        QCOMPARE(cli({ u"stop"_s }).first, 1); // nothing to stop: none runs
        QProcess first, second;
        for (QProcess *p : { &first, &second })
            startCli(*p, { u"add"_s, file(p == &first ? "a.txt" : "b.txt"), u"--at"_s, u"+1h"_s });
        for (QProcess *p : { &first, &second }) {
            QVERIFY(p->waitForFinished(30'000));
            QCOMPARE(p->exitCode(), 0);
        }
        const ListedItems items = list();
        QCOMPARE(items.size(), 2);
        QStringList paths { items.at(0).path, items.at(1).path };
        paths.sort();
        QCOMPARE(paths, (QStringList { file("a.txt"), file("b.txt") }));
        QCOMPARE(cli({ u"launch-all"_s }).first, 0);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(file("launched")), 10'000);
        // Saved at quit; then read back without an instance, read-only.
        stopInstance();
        const auto [code, out] = cli({ u"list"_s, u"--json"_s });
        QCOMPARE(code, 0);
        const QJsonArray json = QJsonDocument::fromJson(out).array();
        QCOMPARE(json.size(), 2);
        QCOMPARE(json.at(0).toObject().value(u"row"_s).toInt(), 1);
        QCOMPARE(json.at(0).toObject().value(u"date"_s).toInteger(), items.at(0).date);
        QVERIFY(!json.at(0).toObject().value(u"opened"_s).toBool());
    }

    // Started for a command, Quillon has the session's environment, umask and home folder, not the
    // command's: no secret of its environment, no umask 000, no folder kept busy.
    void aBackgroundStartIsTheSessions()
    {
        stopInstance();
        QTemporaryDir elsewhere;
        QProcess add;
        QProcessEnvironment env = Test::sessionEnvironment(m_home);
        env.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, m_daemon.address());
        env.insert(u"SECRET_TOKEN"_s, u"s3cr3t"_s);
        add.setProcessEnvironment(env);
        add.setWorkingDirectory(elsewhere.path());
        add.setChildProcessModifier([] { ::umask(0); });
        add.start(QStringLiteral(QUILLON_BINARY), { u"add"_s, file("a.txt"), u"--at"_s, u"+1h"_s });
        QVERIFY(add.waitForFinished(30'000));
        QCOMPARE(add.exitCode(), 0);
        const QDBusReply<uint> pid = m_bus->interface()->servicePid(QLatin1String(ScriptingService::ServiceName));
        QVERIFY(pid.isValid());
        const QString proc = u"/proc/%1/"_s.arg(pid.value());
        QCOMPARE(QFileInfo(proc + u"cwd"_s).symLinkTarget(), QDir::homePath());
        // A launcher then asks it for its window, as for a D-Bus activatable desktop entry.
        QDBusMessage activate = QDBusMessage::createMethodCall(
            QLatin1String(ScriptingService::ServiceName), QLatin1String(ScriptingService::ObjectPath), u"org.freedesktop.Application"_s, u"Activate"_s);
        activate << QVariantMap { { u"activation-token"_s, u"t-1"_s } };
        const QDBusMessage activated = m_bus->call(activate);
        QVERIFY2(activated.type() == QDBusMessage::ReplyMessage, qPrintable(activated.errorMessage()));
        QVERIFY(!Test::readFile(proc + u"environ"_s).contains(QLatin1String("SECRET_TOKEN")));
        const mode_t ours = ::umask(022);
        ::umask(ours);
        QVERIFY(Test::readFile(proc + u"status"_s).contains(u"Umask:\t%1\n"_s.arg(uint(ours), 4, 8, QLatin1Char('0'))));
    }

    // Each verb's refusals and wrong uses, with the instance running.
    void commandLineExitCodes_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("says");
        QTest::addColumn<QString>("language"); // LC_ALL of the command
        QTest::newRow("add, no time") << QStringList { u"add"_s, file("a.txt") } << 2 << u"--at"_s << u"C"_s;
        QTest::newRow("add, unreadable time") << QStringList { u"add"_s, file("a.txt"), u"--at"_s, u"soon"_s } << 2 << u"soon"_s << u"C"_s;
        QTest::newRow("add, missing file") << QStringList { u"add"_s, file("nope"), u"--at"_s, u"+1m"_s } << 1 << u"No such file"_s << u"C"_s;
        QTest::newRow("remove, no such row") << QStringList { u"remove"_s, u"9"_s } << 1 << u"no row 9"_s << u"C"_s;
        QTest::newRow("upcoming, no such row") << QStringList { u"upcoming"_s, u"1"_s, u"7"_s } << 1 << u"no row 7"_s << u"C"_s;
        QTest::newRow("remove, not a row") << QStringList { u"remove"_s, u"0"_s } << 2 << u"from 1"_s << u"C"_s;
        QTest::newRow("add, non-ASCII folder") << QStringList { u"add"_s, file("Grüße/c.txt"), u"--at"_s, u"tomorrow 07:00"_s } << 0 << u"1"_s << u"C"_s;
        // What the command line says is what happened: a stopped schedule opens nothing.
        const QStringList inAnHour { u"--at"_s, u"+1h"_s };
        QTest::newRow("stop") << QStringList { u"stop"_s } << 0 << u""_s << u"C"_s;
        QTest::newRow("add into a stopped schedule says so")
            << QStringList { u"add"_s, file("a.txt") } + inAnHour << 0 << u"The schedule is stopped"_s << u"C"_s;
        QTest::newRow("list of a stopped schedule counts nothing down") << QStringList { u"list"_s } << 0 << u"not armed"_s << u"C"_s;
        QTest::newRow("add --start starts it") << QStringList { u"add"_s, file("a.txt"), u"--start"_s } + inAnHour << 0 << u"1 item added"_s << u"C"_s;
        QTest::newRow("list of a running schedule") << QStringList { u"list"_s } << 0 << u"The schedule runs."_s << u"C"_s;
        QTest::newRow("a name that would forge a row") << QStringList { u"add"_s, file("forged\n2  row.txt") } + inAnHour << 0 << u"1 item added"_s << u"C"_s;
        QTest::newRow("list counts down in the user's language") << QStringList { u"list"_s } << 0 << u" Min. "_s << u"de_DE.UTF-8"_s;
        QTest::newRow("list writes it escaped") << QStringList { u"list"_s } << 0 << u"forged\\n2  row.txt"_s << u"C"_s;
        // A rule that will be refused adds nothing.
        QTest::newRow("add, a rule libical cannot read")
            << QStringList { u"add"_s, file("a.txt"), u"--rrule"_s, u"FREQ=DAILY;BYDAY=XX"_s } + inAnHour << 1 << u"“BYDAY=XX”"_s << u"C"_s;
        QTest::newRow("add, a policy that is not one")
            << QStringList { u"add"_s, file("a.txt"), u"--missed"_s, u"sometimes"_s } + inAnHour << 1 << u"sometimes"_s << u"C"_s;
        QTest::newRow("repeat, rows without a rule") << QStringList { u"repeat"_s, u"1"_s } << 2 << u"--none"_s << u"C"_s;
        QTest::newRow("import, not a calendar") << QStringList { u"import"_s, file("a.txt") } << 1 << u"not an iCalendar file"_s << u"C"_s;
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
        QVERIFY(quillon.call(u"Stop"_s).type() == QDBusMessage::ReplyMessage);
        const int before = int(list().size());
        const qint64 soon = QDateTime::currentSecsSinceEpoch() + 2;
        QDBusReply<int> added = quillon.call(u"Add"_s, QStringList { file("a.txt"), file("b.txt") }, soon);
        QCOMPARE(added.value(), 2);
        QCOMPARE(quillon.call(u"SetDate"_s, QVariant::fromValue(QList<int> { before + 1 }), soon + 3600).type(), QDBusMessage::ReplyMessage);
        ListedItems items = list();
        QCOMPARE(items.at(before).date, soon);
        QCOMPARE(items.at(before + 1).date, soon + 3600);

        QDBusInterface properties(quillon.service(), quillon.path(), u"org.freedesktop.DBus.Properties"_s, *m_bus);
        QSignalSpy launched(&quillon, SIGNAL(Launched(QString, qlonglong)));
        QSignalSpy changed(&properties, SIGNAL(PropertiesChanged(QString, QVariantMap, QStringList)));
        QVERIFY(launched.isValid() && changed.isValid());
        QCOMPARE(quillon.call(u"Start"_s).type(), QDBusMessage::ReplyMessage);
        QVERIFY(quillon.property("Running").toBool());
        QTRY_COMPARE_WITH_TIMEOUT(launched.size(), 1, 10'000);
        QCOMPARE(launched.at(0).at(0).toString(), file("a.txt"));
        QCOMPARE(launched.at(0).at(1).toLongLong(), soon);
        QVERIFY(list().at(before).fired);
        QCOMPARE(quillon.call(u"Stop"_s).type(), QDBusMessage::ReplyMessage);
        QTRY_COMPARE(changed.size(), 2);
        QCOMPARE(changed.at(0).at(1).toMap().value(u"Running"_s).toBool(), true);
        QCOMPARE(changed.at(1).at(1).toMap().value(u"Running"_s).toBool(), false);
        QCOMPARE(quillon.call(u"Remove"_s, QVariant::fromValue(QList<int> { before, before + 1 })).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(list().size(), before);
    }

    // Bad input gets an error that says what is wrong, and the list stays as it was.
    void badCallsChangeNothing_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QString>("message");
        const qint64 later = QDateTime::currentSecsSinceEpoch() + 3600;
        QTest::newRow("missing file") << u"Add"_s << QVariantList { QStringList { file("a.txt"), file("gone.txt") }, later } << u"No such file or folder"_s;
        QTest::newRow("relative path") << u"Add"_s << QVariantList { QStringList { u"a.txt"_s }, later } << u"Not an absolute path"_s;
        QTest::newRow("no paths") << u"Add"_s << QVariantList { QStringList {}, later } << u"at least one path"_s;
        QTest::newRow("date too late") << u"Add"_s << QVariantList { QStringList { file("a.txt") }, Q_INT64_C(253402300800) } << u"out of range"_s;
        QTest::newRow("negative date") << u"SetDate"_s << QVariantList { QVariant::fromValue(QList<int> { 0 }), Q_INT64_C(-1) } << u"out of range"_s;
        QTest::newRow("row out of range") << u"Remove"_s << QVariantList { QVariant::fromValue(QList<int> { 0, 99 }) } << u"out of range"_s;
        QTest::newRow("no rows") << u"SetDate"_s << QVariantList { QVariant::fromValue(QList<int> {}), later } << u"at least one row"_s;
        QTest::newRow("wrong types") << u"Add"_s << QVariantList { u"/tmp"_s, later } << u""_s;
        QTest::newRow("a rule too frequent") << u"SetRepeat"_s << QVariantList { QVariant::fromValue(QList<int> { 0 }), u"FREQ=SECONDLY"_s }
                                             << u"once a minute"_s;
        QTest::newRow("a rule that has ended") << u"SetRepeat"_s
                                               << QVariantList { QVariant::fromValue(QList<int> { 0 }), u"FREQ=DAILY;UNTIL=20000101T000000"_s }
                                               << u"no time after now"_s;
        QTest::newRow("no such policy") << u"SetMissed"_s << QVariantList { QVariant::fromValue(QList<int> { 0 }), u"later"_s } << u"skip, once"_s;
        QTest::newRow("no moments asked") << u"Upcoming"_s << QVariantList { QVariant::fromValue(QList<int> {}), 0 } << u"out of range"_s;
    }
    void badCallsChangeNothing()
    {
        QFETCH(QString, method);
        QFETCH(QVariantList, arguments);
        QFETCH(QString, message);
        ensureInstance();
        const ListedItems before = list();
        QVERIFY(!before.isEmpty());
        const QDBusMessage reply = call(method, arguments);
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
        QCOMPARE(cli({ u"stop"_s }).first, 0);
        QList<int> all;
        for (int row = 0; row < list().size(); ++row)
            all << row;
        if (!all.isEmpty())
            QCOMPARE(call(u"Remove"_s, { QVariant::fromValue(all) }).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(cli({ u"add"_s, file("a.txt"), u"--at"_s, u"07:00"_s, u"--repeat"_s, u"weekdays"_s, u"--missed"_s, u"once"_s }).first, 0);
        QCOMPARE(cli({ u"add"_s, file("b.txt"), u"--at"_s, u"tomorrow 08:30"_s, u"--rrule"_s, u"FREQ=MONTHLY;BYDAY=2MO"_s }).first, 0);
        QCOMPARE(cli({ u"add"_s, file("Grüße/c.txt"), u"--at"_s, u"+1h"_s }).first, 0);
        const auto upcoming = [this] {
            const auto [code, out] = cli({ u"upcoming"_s, u"--count"_s, u"12"_s, u"--json"_s });
            return code == 0 ? QJsonDocument::fromJson(out).array() : QJsonArray();
        };
        const QJsonArray moments = upcoming();
        QCOMPARE(moments.size(), 12);
        qint64 last = 0;
        int weekdays = 0;
        for (const auto &moment : moments) {
            const qint64 secs = moment.toObject().value(u"date"_s).toInteger();
            QVERIFY(secs >= last);
            last = secs;
            const QDateTime local = QDateTime::fromSecsSinceEpoch(secs);
            if (moment.toObject().value(u"row"_s).toInt() == 1) {
                QCOMPARE(local.time(), QTime(7, 0));
                QVERIFY(local.date().dayOfWeek() <= 5);
                ++weekdays;
            }
            if (moment.toObject().value(u"row"_s).toInt() == 2)
                QCOMPARE(local.time(), QTime(8, 30));
        }
        QVERIFY(weekdays >= 9);

        const QString ics = file("schedule.ics");
        QCOMPARE(cli({ u"export"_s, ics }).first, 0);
        const QString exported = readFile(ics);
        QVERIFY(exported.contains(u"RRULE:FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR"_s));
        QVERIFY(exported.contains(u"X-QUILLON-MISSED:once"_s));
        const ListedItems before = list();
        QCOMPARE(call(u"Remove"_s, { QVariant::fromValue(QList<int> { 0, 1, 2 }) }).type(), QDBusMessage::ReplyMessage);
        QVERIFY(list().isEmpty());
        const auto [code, out] = cli({ u"import"_s, ics });
        QCOMPARE(code, 0);
        QVERIFY2(out.contains("3 items added"), out.constData());
        const ListedItems after = list();
        QCOMPARE(after.size(), before.size());
        for (qsizetype i = 0; i < after.size(); ++i)
            QVERIFY(after.at(i).path == before.at(i).path && after.at(i).date == before.at(i).date);
        QCOMPARE(upcoming(), moments);
        const QString again = file("again.ics");
        QCOMPARE(cli({ u"export"_s, again }).first, 0);
        const auto withoutStamps = [](QString text) {
            static const QRegularExpression stamps(u"(DTSTAMP|UID):[^\r\n]*"_s);
            return text.remove(stamps);
        };
        QCOMPARE(withoutStamps(readFile(again)), withoutStamps(exported));
    }

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
        for (const auto &[method, arguments] : std::initializer_list<std::pair<QString, QVariantList>> { { u"Stop"_s, {} },
                 { u"Add"_s, { QStringList { file("a.txt") }, now.addSecs(60).toSecsSinceEpoch() } },
                 { u"Remove"_s, { QVariant::fromValue(QList<int> { 0 }) } } }) {
            const QDBusMessage reply = call(method, arguments);
            QCOMPARE(
                reply.errorName() + QLatin1Char(' ') + reply.errorMessage(), u"%1 Quillon is quitting"_s.arg(QLatin1String(ScriptingService::QuittingError)));
        }
        QVERIFY(app.waitForFinished(20'000));
        QCOMPARE(app.exitStatus(), QProcess::NormalExit);
        QCOMPARE(app.exitCode(), 0);
        QVERIFY(::kill(scriptPid, 0) != 0);
        QVERIFY(!QFile::exists(late));
        QSettings saved(conf, QSettings::IniFormat);
        QCOMPARE(saved.value(u"TimersRunning"_s).toBool(), true);
        QCOMPARE(saved.value(u"Items"_s).toList().size(), 2);
        QFile::remove(conf);
    }

    // What a person types after --at, against a local "now" of 2026-11-23 13:40:20.500 in Berlin.
    void launchTimeText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QDateTime>("expected");
        const auto local = [](int y, int mo, int d, int h, int mi, int s = 0) { return QDateTime(QDate(y, mo, d), QTime(h, mi, s), Qt::LocalTime); };
        QTest::newRow("local date and time") << u"2026-12-01 07:00"_s << local(2026, 12, 1, 7, 0);
        QTest::newRow("with seconds, extra blanks") << u" 2026-12-01   07:00:30 "_s << local(2026, 12, 1, 7, 0, 30);
        QTest::newRow("ISO with offset") << u"2026-12-01T07:00:00+05:00"_s << QDateTime(QDate(2026, 12, 1), QTime(2, 0), Qt::UTC);
        QTest::newRow("ISO in UTC") << u"2026-12-01T07:00:00Z"_s << QDateTime(QDate(2026, 12, 1), QTime(7, 0), Qt::UTC);
        // Whole seconds: "+10m" at 13:40:20.500 is 13:50:20, never a hidden half second.
        QTest::newRow("+10m") << u"+10m"_s << local(2026, 11, 23, 13, 50, 20);
        QTest::newRow("+2h") << u"+2h"_s << local(2026, 11, 23, 15, 40, 20);
        QTest::newRow("+1d across a month") << u"+8d"_s << local(2026, 12, 1, 13, 40, 20);
        QTest::newRow("time still ahead today") << u"18:00"_s << local(2026, 11, 23, 18, 0);
        QTest::newRow("time passed: tomorrow") << u"07:00"_s << local(2026, 11, 24, 7, 0);
        QTest::newRow("tomorrow") << u"tomorrow 07:00"_s << local(2026, 11, 24, 7, 0);
        QTest::newRow("today, even if past") << u"today 7:00"_s << local(2026, 11, 23, 7, 0);
        QTest::newRow("nonsense") << u"soon"_s << QDateTime();
        QTest::newRow("unit missing") << u"+10"_s << QDateTime();
        QTest::newRow("impossible date") << u"2026-02-30 07:00"_s << QDateTime();
        QTest::newRow("tomorrow without a time") << u"tomorrow"_s << QDateTime();
        // The hour the clocks skip in spring: the first moment after it, however it is written, and said.
        const QDateTime afterTheGap(QDate(2027, 3, 28), QTime(1, 0), Qt::UTC); // 03:00 in Berlin
        QTest::newRow("in the skipped hour, as a date") << u"2027-03-28 02:30"_s << afterTheGap;
        QTest::newRow("in the skipped hour, tomorrow") << u"tomorrow 02:30"_s << afterTheGap;
        QTest::newRow("in the skipped hour, its next coming") << u"02:30"_s << afterTheGap;
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
    void startCli(QProcess &p, const QStringList &arguments, const QString &language = u"C"_s) const
    {
        QProcessEnvironment env = Test::sessionEnvironment(m_home);
        env.insert(u"LC_ALL"_s, language);
        env.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, m_daemon.address());
        p.setProcessEnvironment(env);
        p.setProcessChannelMode(QProcess::MergedChannels);
        p.start(QStringLiteral(QUILLON_BINARY), arguments);
    }
    std::pair<int, QByteArray> cli(const QStringList &arguments, const QString &language = u"C"_s) const
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
        cli({ u"start"_s }); // refused for a list with nothing ahead, but started all the same
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
    QDBusMessage call(const QString &method, const QVariantList &arguments = {})
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            QLatin1String(ScriptingService::ServiceName), QLatin1String(ScriptingService::ObjectPath), QLatin1String(ScriptingService::InterfaceName), method);
        message.setArguments(arguments);
        return m_bus->call(message);
    }
    ListedItems list() { return qdbus_cast<ListedItems>(call(u"List"_s).arguments().value(0)); }

    QTemporaryDir m_home;
    Test::PrivateBus m_daemon;
    std::unique_ptr<QDBusConnection> m_bus;
};

QTEST_GUILESS_MAIN(ScriptingTest)
#include "scripting_test.moc"

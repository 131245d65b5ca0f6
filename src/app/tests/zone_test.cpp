#include "FakeClock.h"
#include "FakePowerService.h"
#include "FakeScriptRunner.h"
#include "FakeWorkspace.h"
#include "ItemTableModel.h"
#include "MainWindow.h"
#include "QuillonController.h"
#include "TestSupport.h"
#include "TimeZoneWatcher.h"

#include <QApplication>
#include <QTest>
#include <QTimeZone>

#include <cstdlib>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

using namespace Quillon;
using namespace Qt::StringLiterals;

namespace {
// As timedated does it: a new link, renamed over the old one.
bool linkZone(const char *zone)
{
    const QByteArray target = QByteArray("/usr/share/zoneinfo/").append(zone);
    ::unlink("/etc/localtime.new");
    return ::symlink(target.constData(), "/etc/localtime.new") == 0 && ::rename("/etc/localtime.new", "/etc/localtime") == 0;
}
} // namespace

// The system's zone changes under a running schedule, as timedated or an administrator changes
// it: the moments stay, the list is shown in the new zone, and nothing due is dropped.
class ZoneTest : public QObject
{
    Q_OBJECT
public:
    explicit ZoneTest(bool isolated)
        : m_isolated(isolated)
    { }

private Q_SLOTS:
    void zoneChangeWhileRunning()
    {
        if (!m_isolated)
            QSKIP("Changing the zone under the program needs a mount namespace of its own: run as root.");
        QTemporaryDir home;
        qputenv("XDG_CONFIG_HOME", home.filePath(u"config"_s).toUtf8());
        qputenv("XDG_STATE_HOME", home.filePath(u"state"_s).toUtf8());
        QVERIFY(Test::writeFile(home.filePath(u"a.txt"_s)) && Test::writeFile(home.filePath(u"b.txt"_s)));
        FakeClock clock(Test::Now);
        FakePowerService power;
        FakeWorkspace workspace;
        FakeScriptRunner scripts;
        QuillonController controller(Platform { clock, power, workspace, scripts });
        TimeZoneWatcher zones;
        connect(&zones, &TimeZoneWatcher::zoneChanged, &controller, &QuillonController::timeZoneChanged);
        controller.awakeFromNib();
        ScheduleEditor &editor = controller.editor();
        editor.add({ home.filePath(u"a.txt"_s), home.filePath(u"b.txt"_s) }, Test::at(30));
        editor.setDate({ 1 }, Test::at(50));
        // 07:00 every day: one item in whatever zone the system has, one pinned to Berlin.
        const QDateTime sevenInBerlin(QDate(2027, 1, 16), QTime(7, 0), QTimeZone("Europe/Berlin"));
        editor.add({ home.filePath(u"a.txt"_s), home.filePath(u"b.txt"_s) }, sevenInBerlin);
        Repeat daily = *Repeat::fromRule(u"daily"_s);
        QCOMPARE(editor.setRepeat({ 2 }, daily), QString());
        QVERIFY(daily.setZoneId("Europe/Berlin"));
        QCOMPARE(editor.setRepeat({ 3 }, daily), QString());
        QCOMPARE(controller.schedule().dates().at(2), sevenInBerlin.toUTC());
        controller.schedule().startStopButtonClicked();
        const auto shown
            = [&controller](int row) { return controller.fileListWindow()->model()->index(row, ItemTableModel::LaunchTimeColumn).data().toString(); };
        const auto wallTime = [](qint64 offset, const char *zone) {
            // The 12-hour clock of the test's locale, without its AM or PM.
            return Test::at(offset).toTimeZone(QTimeZone(zone)).time().toString(u"h:mm:ss AP"_s).section(QLatin1Char(' '), 0, 0);
        };
        QVERIFY2(shown(0).contains(wallTime(30, "Europe/Berlin")), qPrintable(shown(0)));

        QVERIFY(linkZone("Asia/Tokyo"));
        QTRY_VERIFY2(shown(0).contains(wallTime(30, "Asia/Tokyo")), qPrintable(shown(0)));
        QCOMPARE(controller.schedule().dates().at(0), Test::at(30));
        QCOMPARE(controller.schedule().dates().at(2), QDateTime(QDate(2027, 1, 16), QTime(7, 0), QTimeZone("Asia/Tokyo")).toUTC());
        QCOMPARE(controller.schedule().dates().at(3), sevenInBerlin.toUTC());
        clock.advance(60'000);
        QCOMPARE(workspace.opened, (QStringList { home.filePath(u"a.txt"_s), home.filePath(u"b.txt"_s) }));
    }

private:
    bool m_isolated;
};

int main(int argc, char *argv[])
{
    // A mount namespace of our own, made while no thread exists yet, with a copy of /etc mounted
    // over it: the zone this process sees can be changed without touching the machine's.
    QTemporaryDir etc;
    const bool isolated = ::geteuid() == 0 && ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
        && std::system(QByteArray("cp -a /etc/. '" + QFile::encodeName(etc.path()) + "'").constData()) == 0
        && ::mount(QFile::encodeName(etc.path()).constData(), "/etc", nullptr, MS_BIND, nullptr) == 0 && linkZone("Europe/Berlin");
    qunsetenv("TZ");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QApplication app(argc, argv);
    ZoneTest test(isolated);
    return QTest::qExec(&test, argc, argv);
}

#include "zone_test.moc"

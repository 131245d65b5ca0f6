#include "FakeClock.h"
#include "FakeWorkspace.h"
#include "FileName.h"
#include "ItemTableModel.h"
#include "MediumDateFormat.h"
#include "Preferences.h"
#include "Schedule.h"
#include "ScheduleEditor.h"
#include "SettingsKeys.h"
#include "StatusImages.h"
#include "TestSupport.h"

#include <QAbstractItemModelTester>
#include <QMimeData>
#include <QSet>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

using namespace Quillon;
using namespace Qt::StringLiterals;

using Test::Now;

class ItemTableModelTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_prefs.setValues({ { Keys::AddFolderFiles, false }, { Keys::AddFolderFilesRecursively, false } });
        m_clock = std::make_unique<FakeClock>(Now);
        m_schedule = std::make_unique<Schedule>(m_prefs, *m_clock);
        m_editor = std::make_unique<ScheduleEditor>(*m_schedule, m_prefs);
        m_workspace = FakeWorkspace();
        m_model = std::make_unique<ItemTableModel>(*m_editor, m_workspace);
        m_tester = std::make_unique<QAbstractItemModelTester>(m_model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    }
    void cleanup()
    {
        m_tester.reset();
        m_model.reset();
        m_editor.reset();
        m_schedule.reset();
    }

    // A file that changes (made executable, replaced) is asked for its icon again; one that does not, never.
    void iconFollowsTheFile()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(u"tool"_s);
        QVERIFY(Test::writeFile(path, "#!/bin/sh\n"));
        m_editor->add({ path });
        const auto paint = [this] { m_model->data(m_model->index(0, ItemTableModel::IconColumn), Qt::DecorationRole); };
        paint();
        paint();
        QCOMPARE(m_workspace.iconPaths.size(), 1);
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        paint();
        QCOMPARE(m_workspace.iconPaths.size(), 2);
        QVERIFY(QFile::remove(path));
        paint();
        paint();
        QCOMPARE(m_workspace.iconPaths.size(), 3);
    }

    // The icon of something inside a bundle is the outermost bundle's.
    void pathCells_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("iconPath");
        QTest::newRow("plain file") << u"/home/me/Documents/Report.txt"_s << u"Report.txt"_s << u"/home/me/Documents/Report.txt"_s;
        QTest::newRow("nested: outermost") << u"/A.app/Contents/B.app/Contents/x"_s << u"x"_s << u"/A.app"_s;
    }
    void pathCells()
    {
        QFETCH(QString, path);
        QFETCH(QString, name);
        QFETCH(QString, iconPath);
        m_editor->add({ path });
        m_model->data(m_model->index(0, ItemTableModel::IconColumn), Qt::DecorationRole);
        QCOMPARE(m_workspace.iconPaths, QStringList { iconPath });
        QCOMPARE(m_model->cellValue(u"Name"_s, 0).toString(), name);
        QCOMPARE(m_model->cellValue(u"File"_s, 0).toString(), path);
        QCOMPARE(m_model->cellValue(u"Launch Time"_s, 0).toString(), formatMediumDateTime(QDateTime::fromMSecsSinceEpoch(Now)));
    }

    void mediumDateStyle_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("expected");
        QTest::newRow("en_US") << u"en_US"_s << u"Mar 1, 2026, 8:30:05 AM"_s;
        QTest::newRow("de_DE") << u"de_DE"_s << u"01.03.2026, 08:30:05"_s;
    }
    void mediumDateStyle()
    {
        QFETCH(QString, locale);
        QFETCH(QString, expected);
        const QDateTime local(QDate(2026, 3, 1), QTime(8, 30, 5));
        QString text = formatMediumDateTime(local, QLocale(locale));
        text.replace(QChar(0x202F), QLatin1Char(' ')).replace(QChar(0xA0), QLatin1Char(' '));
        QCOMPARE(text, expected);
    }

    void countdownAndStatusCells()
    {
        for (int i = 0; i < 4; ++i)
            m_editor->add({ u"/p%1"_s.arg(i) });
        m_editor->setDate({ 0 }, QDateTime::fromMSecsSinceEpoch(Now + 400));
        m_editor->setDate({ 1 }, QDateTime::fromMSecsSinceEpoch(Now + 3725'000));
        m_editor->setDate({ 2 }, QDateTime::fromMSecsSinceEpoch(Now + 1000));
        m_schedule->startTimers(true);
        QVERIFY(!m_model->cellValue(u"Check"_s, 3).isValid()); // placeholder
        QCOMPARE(m_model->cellValue(u"File"_s, 0).toString(), u"0 secs"_s);
        QCOMPARE(m_model->cellValue(u"File"_s, 1).toString(), u"1 hr 2 mins 5 secs "_s);
        QCOMPARE(m_model->cellValue(u"File"_s, 3).toString(), QString());
        QCOMPARE(m_model->cellValue(u"Check"_s, 1).value<QIcon>().cacheKey(), statusIcon("Pending.tiff"));
        m_clock->advance(400);
        // Fired: a check mark, and no countdown.
        QCOMPARE(m_model->cellValue(u"Check"_s, 0).value<QIcon>().cacheKey(), statusIcon("Check.tiff"));
        QCOMPARE(m_model->cellValue(u"File"_s, 0).toString(), QString());
        // Due this very moment but not yet served: no image, neither pending nor opened.
        m_clock->setClock(Now + 1000);
        QVERIFY(!m_model->cellValue(u"Check"_s, 2).isValid());
        // Stopped with timers kept: paths again, check marks stay.
        m_schedule->invalidateTimers(true);
        QCOMPARE(m_model->cellValue(u"File"_s, 1).toString(), u"/p1"_s);
        QCOMPARE(m_model->cellValue(u"Check"_s, 1).value<QIcon>().cacheKey(), statusIcon("Check.tiff"));
    }

    // Told as their rows, once, at the end of the turn: a burst must not redraw the whole table at each launch.
    void firingsUpdateOnlyTheirRows()
    {
        for (int i = 0; i < 6; ++i)
            m_editor->add({ u"/p%1"_s.arg(i) });
        m_editor->setDate({ 1, 2, 4 }, QDateTime::fromMSecsSinceEpoch(Now + 1000));
        m_editor->setDate({ 0, 3, 5 }, QDateTime::fromMSecsSinceEpoch(Now + 9000));
        m_schedule->startTimers(true);
        QSignalSpy changed(m_model.get(), &QAbstractItemModel::dataChanged);
        m_clock->advanceSecs(2);
        QTRY_VERIFY(!changed.isEmpty());
        QCoreApplication::processEvents();
        QSet<int> rows;
        for (const QList<QVariant> &signal : std::as_const(changed)) {
            for (int r = signal.at(0).toModelIndex().row(); r <= signal.at(1).toModelIndex().row(); ++r)
                rows.insert(r);
        }
        QCOMPARE(rows, (QSet<int> { 1, 2, 4 }));
        QCOMPARE(changed.size(), 2); // rows 1-2, then row 4
    }

    void toolTipsSayWhen()
    {
        m_editor->add({ u"/soon"_s });
        m_editor->add({ u"/later"_s });
        m_editor->setDate({ 0 }, QDateTime::fromMSecsSinceEpoch(Now + 400));
        m_editor->setDate({ 1 }, QDateTime::fromMSecsSinceEpoch(Now + qint64(3) * 86'400'000 + 5000));
        m_schedule->startTimers(true);
        const auto tip = [this](int row, int column) { return m_model->data(m_model->index(row, column), Qt::ToolTipRole).toString(); };
        QVERIFY2(
            tip(1, ItemTableModel::FileColumn).startsWith(QLatin1String("Opens ")) && tip(1, ItemTableModel::FileColumn).endsWith(QLatin1String("(in 3 days)")),
            qPrintable(tip(1, ItemTableModel::FileColumn)));
        QVERIFY(!tip(0, ItemTableModel::FileColumn).contains(QLatin1String("days")));
        QCOMPARE(tip(0, ItemTableModel::CheckColumn), u"Waiting"_s);
        m_clock->advance(400);
        QCOMPARE(tip(0, ItemTableModel::CheckColumn), u"Opened at %1"_s.arg(QDateTime::fromMSecsSinceEpoch(Now + 400).time().toString(u"HH:mm:ss"_s)));
    }

    void movingRows_data()
    {
        QTest::addColumn<QList<int>>("dragged");
        QTest::addColumn<int>("dropRow");
        QTest::addColumn<QStringList>("order");
        QTest::newRow("first to after the last") << QList<int> { 0 } << 3 << QStringList { "b", "c", "a" };
        QTest::newRow("just below itself") << QList<int> { 0 } << 1 << QStringList { "a", "b", "c" };
        QTest::newRow("last to the top") << QList<int> { 2 } << 0 << QStringList { "c", "a", "b" };
        QTest::newRow("two rows: only the first moves") << QList<int> { 1, 2 } << 0 << QStringList { "b", "a", "c" };
        QTest::newRow("onto its own place") << QList<int> { 1 } << 1 << QStringList { "a", "b", "c" };
    }
    void movingRows()
    {
        QFETCH(QList<int>, dragged);
        QFETCH(int, dropRow);
        QFETCH(QStringList, order);
        m_editor->add({ "a", "b", "c" });
        m_editor->setDate({ 0 }, QDateTime::fromMSecsSinceEpoch(Now + 1000));
        QModelIndexList indexes;
        for (int row : dragged) {
            for (int c = 0; c < ItemTableModel::ColumnCount; ++c)
                indexes << m_model->index(row, c);
        }
        std::unique_ptr<QMimeData> data(m_model->mimeData(indexes));
        QVERIFY(m_model->canDropMimeData(data.get(), Qt::MoveAction, dropRow, 0, {}));
        QVERIFY(m_model->dropMimeData(data.get(), Qt::MoveAction, dropRow, 0, {}));
        QCOMPARE(m_schedule->paths(), order);
        // The date travels with its item.
        QCOMPARE(m_schedule->dates().at(order.indexOf("a")), QDateTime::fromMSecsSinceEpoch(Now + 1000));
    }

    void filesDroppedAtARowLandInReverse()
    {
        m_editor->add({ "/old1", "/old2" });
        QMimeData data;
        // As a file manager sends it: a name that is not UTF-8 stays percent-encoded, and is kept.
        data.setUrls({ QUrl::fromLocalFile("/A"), QUrl::fromEncoded("file:///r%E9sum%E9"), QUrl::fromLocalFile("/C") });
        QVERIFY(m_model->dropMimeData(&data, Qt::CopyAction, 1, 0, {}));
        // Read off the event loop: a row that comes above the drop meanwhile keeps its place.
        QCOMPARE(m_schedule->count(), 2);
        m_editor->drop(0, { "/new" });
        QTRY_COMPARE(m_schedule->paths(), (QStringList { "/new", "/old1", "/C", FileName::decode("/r\xe9sum\xe9"), "/A", "/old2" }));
        QVERIFY(!m_schedule->timers().at(2));
        QVERIFY(!m_schedule->timers().at(1));
    }

    void droppedFolders_data()
    {
        QTest::addColumn<bool>("folderFiles");
        QTest::addColumn<bool>("recursive");
        QTest::addColumn<QString>("dropped");
        QTest::addColumn<QStringList>("items");
        const QStringList top = { "f1.txt", "Tool.app", "AppDir" };
        QTest::newRow("folder as itself") << false << false << u"top"_s << QStringList { "top" };
        QTest::newRow("recursive alone changes nothing") << false << true << u"top"_s << QStringList { "top" };
        QTest::newRow("top-level files and packages") << true << false << u"top"_s << top;
        QTest::newRow("every depth, inside packages and hidden folders too")
            << true << true << u"top"_s
            << QStringList { "f1.txt", "Tool.app", "Tool.app/Contents/MacOS/Tool", "AppDir", "AppDir/AppRun", "sub/s1.txt", ".hid/v.txt" };
        QTest::newRow("a package dropped is one item") << true << true << u"top/Tool.app"_s << QStringList { "top/Tool.app" };
        QTest::newRow("a hidden file dropped itself is taken") << true << true << u"top/.dot"_s << QStringList { "top/.dot" };
        QTest::newRow("a link to a folder counts as the folder") << true << false << u"link"_s << QStringList { "link/f1.txt", "link/Tool.app", "link/AppDir" };
    }
    void droppedFolders()
    {
        QFETCH(bool, folderFiles);
        QFETCH(bool, recursive);
        QFETCH(QString, dropped);
        QFETCH(QStringList, items);
        QTemporaryDir tree;
        const QString topDir = tree.filePath(u"top"_s);
        for (const char *f : { "f1.txt", ".dot", "listed.txt", "Tool.app/Contents/MacOS/Tool", "sub/s1.txt", ".hid/v.txt", "sub/.inner" })
            QVERIFY(Test::writeFile(topDir + QLatin1Char('/') + QLatin1String(f)));
        QVERIFY(Test::writeFile(topDir + u"/AppDir/AppRun"_s, {}, true));
        QVERIFY(QFile::link(topDir, tree.filePath(u"link"_s)));
        QVERIFY(Test::writeFile(topDir + u"/.hidden"_s, "listed.txt\n"));
        m_prefs.setValues({ { Keys::AddFolderFiles, folderFiles }, { Keys::AddFolderFilesRecursively, recursive } });

        QMimeData data;
        data.setUrls({ QUrl::fromLocalFile(tree.filePath(dropped)) });
        QVERIFY(m_model->dropMimeData(&data, Qt::CopyAction, 0, 0, {}));
        QTRY_VERIFY(m_schedule->count() > 0);
        QStringList got;
        const QString base = dropped == QLatin1String("top") && folderFiles ? topDir + QLatin1Char('/') : tree.path() + QLatin1Char('/');
        for (const QString &p : m_schedule->paths())
            got << p.mid(base.size());
        got.sort();
        items.sort();
        QCOMPARE(got, items);
    }

private:
    static qint64 statusIcon(const char *name) { return imageNamed(QString::fromLatin1(name)).cacheKey(); }

    TestSettings m_settings; // first: it points the preferences at their folder
    Preferences m_prefs;
    std::unique_ptr<FakeClock> m_clock;
    std::unique_ptr<Schedule> m_schedule;
    std::unique_ptr<ScheduleEditor> m_editor;
    FakeWorkspace m_workspace;
    std::unique_ptr<ItemTableModel> m_model;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

QTEST_MAIN(ItemTableModelTest)
#include "item_table_model_test.moc"

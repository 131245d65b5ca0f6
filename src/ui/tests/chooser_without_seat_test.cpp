#include "FileAndFolderChooser.h"
#include "WaylandSeat.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>

#include <cstdio>

using namespace Quillon;
using namespace Qt::StringLiterals;

// The Add… chooser on a compositor with no seat (with_weston.sh: headless weston has none), started
// the way the program starts. Without the guard, Qt crashes as soon as the name field draws its
// cursor. Not a QTest class: the guard must run before the QApplication exists.
int main(int argc, char *argv[])
{
    const bool noSeat = WaylandSeat::compositorHasNoSeat();
    if (noSeat)
        WaylandSeat::disableInputMethod();
    QApplication app(argc, argv);
    WaylandSeat::restoreInputMethod();
    const auto fail = [](const char *what) {
        std::fprintf(stderr, "FAIL: %s\n", what);
        return 1;
    };
    if (!noSeat)
        return fail("this compositor has a seat; the test needs one without");
    if (qEnvironmentVariableIsSet("QT_IM_MODULE"))
        return fail("the input-method setting was left for the programs Quillon starts");
    FileAndFolderChooser chooser;
    chooser.open();
    if (!QTest::qWaitForWindowExposed(&chooser))
        return fail("the chooser was never shown");
    auto *name = chooser.findChild<QLineEdit *>(u"fileNameEdit"_s);
    if (!name)
        return fail("no name field");
    name->setFocus();
    name->clear();
    name->repaint(); // an empty field with the cursor: the path that crashed
    QTest::qWait(500);
    std::puts("PASS: the chooser showed and drew its name field");
    return 0;
}

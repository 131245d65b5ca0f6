<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name>CommandLine</name>
    <message numerus="yes">
        <location filename="../../src/app/CommandLine.cpp" line="105"/>
        <source>%n hr(s)</source>
        <translation>
            <numerusform>%n hr</numerusform>
            <numerusform>%n hrs</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/CommandLine.cpp" line="107"/>
        <source>%n min(s)</source>
        <translation>
            <numerusform>%n min</numerusform>
            <numerusform>%n mins</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/CommandLine.cpp" line="109"/>
        <source>%n sec(s)</source>
        <translation>
            <numerusform>%n sec</numerusform>
            <numerusform>%n secs</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/CommandLine.cpp" line="372"/>
        <source>there is no row %1; the list has %n row(s)</source>
        <translation>
            <numerusform>there is no row %1; the list has %n row</numerusform>
            <numerusform>there is no row %1; the list has %n rows</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/CommandLine.cpp" line="401"/>
        <location filename="../../src/app/CommandLine.cpp" line="412"/>
        <source>%n item(s) added.</source>
        <translation>
            <numerusform>%n item added.</numerusform>
            <numerusform>%n items added.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/CommandLine.cpp" line="429"/>
        <source>The schedule is stopped: the item(s) open only once it is started (quillon start, or add with --start).</source>
        <translation>
            <numerusform>The schedule is stopped: the item opens only once it is started (quillon start, or add with --start).</numerusform>
            <numerusform>The schedule is stopped: the items open only once it is started (quillon start, or add with --start).</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Quillon::DateWindow</name>
    <message numerus="yes">
        <location filename="../../src/ui/DateWindow.cpp" line="142"/>
        <source>Launch date and time of %n selected item(s):</source>
        <translation>
            <numerusform>Launch date and time of %n selected item:</numerusform>
            <numerusform>Launch date and time of %n selected items:</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Quillon::History</name>
    <message numerus="yes">
        <location filename="../../src/history/History.cpp" line="79"/>
        <source>%n s late</source>
        <translation>
            <numerusform>%n s late</numerusform>
            <numerusform>%n s late</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/history/History.cpp" line="81"/>
        <source>%n min late</source>
        <translation>
            <numerusform>%n min late</numerusform>
            <numerusform>%n min late</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/history/History.cpp" line="83"/>
        <source>%n h late</source>
        <translation>
            <numerusform>%n h late</numerusform>
            <numerusform>%n h late</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/history/History.cpp" line="84"/>
        <source>%n days late</source>
        <translation>
            <numerusform>%n day late</numerusform>
            <numerusform>%n days late</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Quillon::ItemTableModel</name>
    <message numerus="yes">
        <location filename="../../src/ui/ItemTableModel.cpp" line="174"/>
        <source>Opens %1 (in %n day(s))</source>
        <translation>
            <numerusform>Opens %1 (in %n day)</numerusform>
            <numerusform>Opens %1 (in %n days)</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Quillon::MainWindow</name>
    <message numerus="yes">
        <location filename="../../src/ui/MainWindow.cpp" line="98"/>
        <source>Launch All Now opened %n item(s).</source>
        <translation>
            <numerusform>Launch All Now opened %n item.</numerusform>
            <numerusform>Launch All Now opened %n items.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/ui/MainWindow.cpp" line="251"/>
        <source>%n item(s) imported.</source>
        <translation>
            <numerusform>%n item imported.</numerusform>
            <numerusform>%n items imported.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/ui/MainWindow.cpp" line="454"/>
        <source>%n problem(s) since you last looked</source>
        <translation>
            <numerusform>%n problem since you last looked</numerusform>
            <numerusform>%n problems since you last looked</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/ui/LaunchAllConfirmation.cpp" line="22"/>
        <source>Open all %n items now?</source>
        <translation>
            <numerusform>Open the item now?</numerusform>
            <numerusform>Open all %n items now?</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Quillon::ProblemNotifier</name>
    <message numerus="yes">
        <location filename="../../src/app/ProblemNotifier.cpp" line="128"/>
        <source>%n item(s) could not be opened</source>
        <translation>
            <numerusform>%n item could not be opened</numerusform>
            <numerusform>%n items could not be opened</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/ProblemNotifier.cpp" line="134"/>
        <source>%n item(s) missed while Quillon was not running</source>
        <translation>
            <numerusform>%n item was missed while Quillon was not running</numerusform>
            <numerusform>%n items were missed while Quillon was not running</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/ProblemNotifier.cpp" line="136"/>
        <source>%n item(s) missed while the computer slept</source>
        <translation>
            <numerusform>%n item was missed while the computer slept</numerusform>
            <numerusform>%n items were missed while the computer slept</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/ProblemNotifier.cpp" line="140"/>
        <source>%n script(s) failed</source>
        <translation>
            <numerusform>A script failed</numerusform>
            <numerusform>%n scripts failed</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/ProblemNotifier.cpp" line="151"/>
        <source>%n missed item(s) opened late</source>
        <translation>
            <numerusform>%n missed item was opened late</numerusform>
            <numerusform>%n missed items were opened late</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/ProblemNotifier.cpp" line="158"/>
        <source>Quillon opened %n item(s)</source>
        <translation>
            <numerusform>Quillon opened %n item</numerusform>
            <numerusform>Quillon opened %n items</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Quillon::ScriptingService</name>
    <message numerus="yes">
        <location filename="../../src/app/ScriptingService.cpp" line="154"/>
        <source>Row %1 is out of range: the list has %n row(s), counted from 0.</source>
        <translation>
            <numerusform>Row %1 is out of range: the list has %n row, counted from 0.</numerusform>
            <numerusform>Row %1 is out of range: the list has %n rows, counted from 0.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Repeat</name>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="364"/>
        <source>Every %n hour(s) from %1 to %2</source>
        <translation>
            <numerusform>Every hour from %1 to %2</numerusform>
            <numerusform>Every %n hours from %1 to %2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="369"/>
        <source>Every %n minute(s)</source>
        <translation>
            <numerusform>Every minute</numerusform>
            <numerusform>Every %n minutes</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="373"/>
        <source>Every %n hour(s)</source>
        <translation>
            <numerusform>Every hour</numerusform>
            <numerusform>Every %n hours</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="381"/>
        <source>Every %n day(s) at %1</source>
        <translation>
            <numerusform>Every day at %1</numerusform>
            <numerusform>Every %n days at %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="406"/>
        <source>Every %n week(s) on %1 at %2</source>
        <translation>
            <numerusform>Every week on %1 at %2</numerusform>
            <numerusform>Every %n weeks on %1 at %2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="414"/>
        <source>Every %n month(s) on the last day at %1</source>
        <translation>
            <numerusform>Every month on the last day at %1</numerusform>
            <numerusform>Every %n months on the last day at %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="416"/>
        <source>Every %n month(s) on the %1 %2 at %3</source>
        <translation>
            <numerusform>Every month on the %1 %2 at %3</numerusform>
            <numerusform>Every %n months on the %1 %2 at %3</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="419"/>
        <source>Every %n month(s) on day %1 at %2</source>
        <translation>
            <numerusform>Every month on day %1 at %2</numerusform>
            <numerusform>Every %n months on day %1 at %2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="433"/>
        <source>, %n time(s)</source>
        <translation>
            <numerusform>, once</numerusform>
            <numerusform>, %n times</numerusform>
        </translation>
    </message>
</context>
</TS>

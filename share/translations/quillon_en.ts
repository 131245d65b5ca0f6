<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<!-- English plural forms only: everything else shows as written in the source. -->
<TS version="2.1" language="en">
<context>
    <name>CommandLine</name>
    <message numerus="yes">
        <source>there is no row %1; the list has %n row(s)</source>
        <translation>
            <numerusform>there is no row %1; the list has %n row</numerusform>
            <numerusform>there is no row %1; the list has %n rows</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n item(s) added.</source>
        <translation>
            <numerusform>%n item added.</numerusform>
            <numerusform>%n items added.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Quillon::MainWindow</name>
    <message numerus="yes">
        <source>Launch All Now opened %n item(s).</source>
        <translation>
            <numerusform>Launch All Now opened %n item.</numerusform>
            <numerusform>Launch All Now opened %n items.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Open all %n items now?</source>
        <translation>
            <numerusform>Open the item now?</numerusform>
            <numerusform>Open all %n items now?</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Quillon::ScriptingService</name>
    <message numerus="yes">
        <source>Row %1 is out of range: the list has %n row(s), counted from 0.</source>
        <translation>
            <numerusform>Row %1 is out of range: the list has %n row, counted from 0.</numerusform>
            <numerusform>Row %1 is out of range: the list has %n rows, counted from 0.</numerusform>
        </translation>
    </message>
</context>
</TS>

<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>CommandLine</name>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="42"/>
        <source>quillon %1: %2 (try quillon --help)</source>
        <translation>quillon %1: %2 (siehe quillon --help)</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="101"/>
        <source>due</source>
        <translation>fällig</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/CommandLine.cpp" line="105"/>
        <source>%n hr(s)</source>
        <translation>
            <numerusform>%n Std.</numerusform>
            <numerusform>%n Std.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/CommandLine.cpp" line="107"/>
        <source>%n min(s)</source>
        <translation>
            <numerusform>%n Min.</numerusform>
            <numerusform>%n Min.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/CommandLine.cpp" line="109"/>
        <source>%n sec(s)</source>
        <translation>
            <numerusform>%n Sek.</numerusform>
            <numerusform>%n Sek.</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="131"/>
        <source>The list is empty.</source>
        <translation>Die Liste ist leer.</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="136"/>
        <source>The schedule runs.</source>
        <translation>Der Zeitplan läuft.</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="136"/>
        <location filename="../../src/app/CommandLine.cpp" line="195"/>
        <source>The schedule is stopped: nothing opens until it is started (quillon start).</source>
        <translation>Der Zeitplan ist angehalten: nichts wird geöffnet, bis er gestartet wird (quillon start).</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="145"/>
        <source>could not open</source>
        <translation>nicht geöffnet</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="147"/>
        <source>not started</source>
        <translation>nicht gestartet</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="149"/>
        <source>opened late</source>
        <translation>verspätet geöffnet</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="151"/>
        <source>opened</source>
        <translation>geöffnet</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="151"/>
        <source>not armed</source>
        <translation>nicht gestellt</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="191"/>
        <source>Nothing is to open.</source>
        <translation>Nichts ist zu öffnen.</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="221"/>
        <source>Commands (each talks to the running Quillon; add and start start one when none runs):
  add FILE… --at TIME [--start] [--repeat NAME | --rrule RULE] [--missed POLICY]
                        Schedule files or folders;      quillon add ~/notes.txt --at &quot;tomorrow 07:00&quot; --start
                        --start starts the schedule.    quillon add ~/news.sh --at 07:00 --repeat weekdays
  list [--json]         Show the list, rows from 1.     quillon list --json
  remove ROW…           Remove rows as list shows them. quillon remove 2 3
  start                 Start the schedule.             quillon start
  stop                  Stop the schedule.              quillon stop
  launch-all            Open every item now.            quillon launch-all
  repeat ROW… RULE|--none
                        Give rows a rule, or none.      quillon repeat 2 &quot;FREQ=MONTHLY;BYDAY=2MO&quot;
  upcoming [ROW…] [--count N] [--json]
                        The next moments, in order.     quillon upcoming 1 --count 5
  export FILE.ics       The list as iCalendar.          quillon export ~/schedule.ics
  import FILE.ics       Add a calendar&apos;s events.        quillon import ~/schedule.ics
NAME: daily, weekdays, weekends, weekly, monthly, last-day, yearly, hourly. RULE: an iCalendar RRULE.
POLICY (when the computer slept or Quillon was off): skip, once, within 1h (or 30m, 2d).
TIME: &quot;2026-12-01 07:00&quot; (local time), ISO 8601 with an offset, +10m, +2h, +1d, 07:00, tomorrow 07:00.
Exit status: 0 done, 1 refused (the reason is on standard error), 2 wrong use.
</source>
        <translation>Befehle (jeder spricht mit dem laufenden Quillon; add und start starten eines, wenn keines läuft):
  add DATEI… --at ZEIT [--start] [--repeat NAME | --rrule REGEL] [--missed VORGABE]
                        Dateien oder Ordner planen;         quillon add ~/notizen.txt --at &quot;tomorrow 07:00&quot; --start
                        --start startet den Zeitplan.       quillon add ~/news.sh --at 07:00 --repeat weekdays
  list [--json]         Die Liste zeigen, Zeilen ab 1.      quillon list --json
  remove ZEILE…         Zeilen entfernen, wie list sie zeigt. quillon remove 2 3
  start                 Den Zeitplan starten.               quillon start
  stop                  Den Zeitplan anhalten.              quillon stop
  launch-all            Alle Objekte jetzt öffnen.          quillon launch-all
  repeat ZEILE… REGEL|--none
                        Zeilen eine Regel geben oder keine. quillon repeat 2 &quot;FREQ=MONTHLY;BYDAY=2MO&quot;
  upcoming [ZEILE…] [--count N] [--json]
                        Die nächsten Zeitpunkte, geordnet.  quillon upcoming 1 --count 5
  export DATEI.ics      Die Liste als iCalendar.            quillon export ~/zeitplan.ics
  import DATEI.ics      Termine eines Kalenders hinzufügen. quillon import ~/zeitplan.ics
NAME: daily, weekdays, weekends, weekly, monthly, last-day, yearly, hourly. REGEL: eine iCalendar-RRULE.
VORGABE (wenn der Computer schlief oder Quillon nicht lief): skip, once, within 1h (oder 30m, 2d).
ZEIT: &quot;2026-12-01 07:00&quot; (Ortszeit), ISO 8601 mit Zeitzone, +10m, +2h, +1d, 07:00, tomorrow 07:00.
Exitstatus: 0 erledigt, 1 abgelehnt (der Grund steht auf der Standardfehlerausgabe), 2 falscher Aufruf.
</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="246"/>
        <source>When to open the files.</source>
        <translation>Wann die Dateien geöffnet werden.</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="247"/>
        <source>Print the list as JSON.</source>
        <translation>Die Liste als JSON ausgeben.</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="248"/>
        <source>Start the schedule too, if it is stopped.</source>
        <translation>Auch den Zeitplan starten, falls er angehalten ist.</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="249"/>
        <source>Repeat by a common rule.</source>
        <translation>Nach einer üblichen Regel wiederholen.</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="250"/>
        <source>Repeat by an iCalendar rule.</source>
        <translation>Nach einer iCalendar-Regel wiederholen.</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="251"/>
        <source>What to do when a time passed unseen.</source>
        <translation>Was geschieht, wenn eine Zeit unbemerkt verstrich.</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="252"/>
        <source>Take the rule away.</source>
        <translation>Die Regel entfernen.</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="253"/>
        <source>How many moments to show.</source>
        <translation>Wie viele Zeitpunkte gezeigt werden.</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="268"/>
        <source>unexpected argument &apos;%1&apos;</source>
        <translation>unerwartetes Argument „%1“</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="287"/>
        <source>give --repeat or --rrule, not both</source>
        <translation>geben Sie --repeat oder --rrule an, nicht beide</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="292"/>
        <source>give the rows and a rule, or the rows and --none</source>
        <translation>geben Sie die Zeilen und eine Regel an, oder die Zeilen und --none</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="297"/>
        <source>the rule is refused: %1</source>
        <translation>die Regel wird abgelehnt: %1</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="299"/>
        <source>the policy is refused: %1</source>
        <translation>die Vorgabe wird abgelehnt: %1</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="303"/>
        <source>give the rows as numbers from 1, as list shows them</source>
        <translation>geben Sie die Zeilen als Zahlen ab 1 an, wie list sie zeigt</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="311"/>
        <source>give rows as numbers from 1 and --count as a number from 1</source>
        <translation>geben Sie Zeilen als Zahlen ab 1 und --count als Zahl ab 1 an</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="315"/>
        <source>give one file</source>
        <translation>geben Sie eine Datei an</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="318"/>
        <source>no file given</source>
        <translation>keine Datei angegeben</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="320"/>
        <source>--at TIME is needed</source>
        <translation>--at ZEIT fehlt</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="324"/>
        <source>cannot read the time &apos;%1&apos;</source>
        <translation>die Zeit „%1“ ist nicht lesbar</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="332"/>
        <source>give the rows to remove as numbers from 1, as list shows them</source>
        <translation>die zu entfernenden Zeilen als Zahlen ab 1 angeben, wie list sie zeigt</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="347"/>
        <source>there is no session bus to reach Quillon on</source>
        <translation>es gibt keinen Sitzungsbus, über den Quillon erreichbar wäre</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="349"/>
        <source>Quillon is not running</source>
        <translation>Quillon läuft nicht</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="351"/>
        <source>Quillon could not be started</source>
        <translation>Quillon konnte nicht gestartet werden</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/CommandLine.cpp" line="372"/>
        <source>there is no row %1; the list has %n row(s)</source>
        <translation>
            <numerusform>es gibt keine Zeile %1; die Liste hat %n Zeile</numerusform>
            <numerusform>es gibt keine Zeile %1; die Liste hat %n Zeilen</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="391"/>
        <source>could not write %1: %2</source>
        <translation>%1 konnte nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="397"/>
        <source>could not read %1: %2</source>
        <translation>%1 konnte nicht gelesen werden: %2</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/CommandLine.cpp" line="401"/>
        <location filename="../../src/app/CommandLine.cpp" line="412"/>
        <source>%n item(s) added.</source>
        <translation>
            <numerusform>%n Objekt hinzugefügt.</numerusform>
            <numerusform>%n Objekte hinzugefügt.</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/app/CommandLine.cpp" line="403"/>
        <source>not used: %1</source>
        <translation>nicht übernommen: %1</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/CommandLine.cpp" line="429"/>
        <source>The schedule is stopped: the item(s) open only once it is started (quillon start, or add with --start).</source>
        <translation>
            <numerusform>Der Zeitplan ist angehalten: das Objekt wird erst geöffnet, wenn er gestartet wird (quillon start, oder add mit --start).</numerusform>
            <numerusform>Der Zeitplan ist angehalten: die Objekte werden erst geöffnet, wenn er gestartet wird (quillon start, oder add mit --start).</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>ICalendar</name>
    <message>
        <location filename="../../src/schedule/ICalendar.cpp" line="60"/>
        <source>the file is not an iCalendar file</source>
        <translation>die Datei ist keine iCalendar-Datei</translation>
    </message>
    <message>
        <location filename="../../src/schedule/ICalendar.cpp" line="68"/>
        <source>event %1: %2</source>
        <translation>Termin %1: %2</translation>
    </message>
    <message>
        <location filename="../../src/schedule/ICalendar.cpp" line="79"/>
        <source>no file to open (an ATTACH with a file URI)</source>
        <translation>keine Datei zum Öffnen (ein ATTACH mit einer Datei-URI)</translation>
    </message>
    <message>
        <location filename="../../src/schedule/ICalendar.cpp" line="83"/>
        <source>no start (DTSTART)</source>
        <translation>kein Beginn (DTSTART)</translation>
    </message>
    <message>
        <location filename="../../src/schedule/ICalendar.cpp" line="96"/>
        <source>its rule has no time after now</source>
        <translation>seine Regel hat keine Zeit nach jetzt</translation>
    </message>
    <message>
        <location filename="../../src/schedule/ICalendar.cpp" line="108"/>
        <source>the file holds no event</source>
        <translation>die Datei enthält keinen Termin</translation>
    </message>
</context>
<context>
    <name>LocalizedStrings</name>
    <message>
        <location filename="../../src/mail/MailSettings.cpp" line="52"/>
        <source>The outgoing SMTP server &apos;Address:&apos; preference value has not been specified.</source>
        <translation>Die Einstellung „Adresse:“ des Postausgangsservers (SMTP) ist nicht angegeben.</translation>
    </message>
    <message>
        <location filename="../../src/mail/MailSettings.cpp" line="61"/>
        <source>The outgoing SMTP server &apos;Port:&apos; preference value is out of range.</source>
        <translation>Die Einstellung „Port:“ des Postausgangsservers (SMTP) liegt außerhalb des gültigen Bereichs.</translation>
    </message>
    <message>
        <location filename="../../src/mail/MailSettings.cpp" line="80"/>
        <source>The outgoing SMTP server &apos;Username:&apos; preference value has not been specified.</source>
        <translation>Die Einstellung „Benutzername:“ des Postausgangsservers (SMTP) ist nicht angegeben.</translation>
    </message>
    <message>
        <location filename="../../src/mail/MailSettings.cpp" line="84"/>
        <source>The outgoing SMTP server &apos;Password:&apos; preference value has not been specified.</source>
        <translation>Die Einstellung „Passwort:“ des Postausgangsservers (SMTP) ist nicht angegeben.</translation>
    </message>
</context>
<context>
    <name>MailAddress</name>
    <message>
        <location filename="../../src/mail/MailAddress.cpp" line="12"/>
        <source>it holds a control character (a line break pasted with it?)</source>
        <translation>sie enthält ein Steuerzeichen (mit eingefügter Zeilenumbruch?)</translation>
    </message>
    <message>
        <location filename="../../src/mail/MailAddress.cpp" line="14"/>
        <source>it holds a space</source>
        <translation>sie enthält ein Leerzeichen</translation>
    </message>
    <message>
        <location filename="../../src/mail/MailAddress.cpp" line="16"/>
        <source>it holds an angle bracket</source>
        <translation>sie enthält eine spitze Klammer</translation>
    </message>
    <message>
        <location filename="../../src/mail/MailAddress.cpp" line="18"/>
        <source>it holds an invisible formatting character</source>
        <translation>sie enthält ein unsichtbares Formatierungszeichen</translation>
    </message>
</context>
<context>
    <name>Quillon::CommandLine</name>
    <message>
        <location filename="../../src/app/LaunchTimeText.cpp" line="33"/>
        <source>%1 %2 does not exist here (the clocks go forward); %3 is used.</source>
        <translation>%1 %2 gibt es hier nicht (die Uhren werden vorgestellt); %3 wird verwendet.</translation>
    </message>
</context>
<context>
    <name>Quillon::DateWindow</name>
    <message>
        <location filename="../../src/ui/DateWindow.cpp" line="33"/>
        <location filename="../../src/ui/DateWindow.cpp" line="34"/>
        <source>Date &amp; Time</source>
        <translation>Datum &amp; Uhrzeit</translation>
    </message>
    <message>
        <location filename="../../src/ui/DateWindow.cpp" line="49"/>
        <source>Calenda&amp;r…</source>
        <translation>&amp;Kalender …</translation>
    </message>
    <message>
        <location filename="../../src/ui/DateWindow.cpp" line="51"/>
        <source>Calendar</source>
        <translation>Kalender</translation>
    </message>
    <message>
        <location filename="../../src/ui/DateWindow.cpp" line="54"/>
        <source>&amp;Now</source>
        <translation>J&amp;etzt</translation>
    </message>
    <message>
        <location filename="../../src/ui/DateWindow.cpp" line="56"/>
        <source>Now</source>
        <translation>Jetzt</translation>
    </message>
    <message>
        <location filename="../../src/ui/DateWindow.cpp" line="57"/>
        <source>Set the date and time to this moment.</source>
        <translation>Datum und Uhrzeit auf diesen Augenblick setzen.</translation>
    </message>
    <message>
        <location filename="../../src/ui/DateWindow.cpp" line="67"/>
        <location filename="../../src/ui/DateWindow.cpp" line="68"/>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <location filename="../../src/ui/DateWindow.cpp" line="83"/>
        <source>Launch date</source>
        <translation>Startdatum</translation>
    </message>
    <message>
        <location filename="../../src/ui/DateWindow.cpp" line="114"/>
        <source>Launch date and time</source>
        <translation>Startdatum und -uhrzeit</translation>
    </message>
    <message>
        <location filename="../../src/ui/DateWindow.cpp" line="138"/>
        <source>No item is selected: a date set here changes nothing.</source>
        <translation>Kein Eintrag ist ausgewählt: Ein hier gesetztes Datum ändert nichts.</translation>
    </message>
    <message>
        <location filename="../../src/ui/DateWindow.cpp" line="140"/>
        <source>Launch date and time of the selected item:</source>
        <translation>Startdatum und -uhrzeit des ausgewählten Eintrags:</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/ui/DateWindow.cpp" line="142"/>
        <source>Launch date and time of %n selected item(s):</source>
        <translation>
            <numerusform>Startdatum und -zeit des ausgewählten Objekts:</numerusform>
            <numerusform>Startdatum und -zeit der %n ausgewählten Objekte:</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Quillon::FileAndFolderChooser</name>
    <message>
        <location filename="../../src/ui/FileAndFolderChooser.cpp" line="17"/>
        <source>Choose Files and Folders</source>
        <translation>Dateien und Ordner auswählen</translation>
    </message>
    <message>
        <location filename="../../src/ui/FileAndFolderChooser.cpp" line="21"/>
        <location filename="../../src/ui/FileAndFolderChooser.cpp" line="44"/>
        <source>Choose</source>
        <translation>Auswählen</translation>
    </message>
</context>
<context>
    <name>Quillon::History</name>
    <message numerus="yes">
        <location filename="../../src/history/History.cpp" line="79"/>
        <source>%n s late</source>
        <translation>
            <numerusform>%n s zu spät</numerusform>
            <numerusform>%n s zu spät</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/history/History.cpp" line="81"/>
        <source>%n min late</source>
        <translation>
            <numerusform>%n min zu spät</numerusform>
            <numerusform>%n min zu spät</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/history/History.cpp" line="83"/>
        <source>%n h late</source>
        <translation>
            <numerusform>%n h zu spät</numerusform>
            <numerusform>%n h zu spät</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/history/History.cpp" line="84"/>
        <source>%n days late</source>
        <translation>
            <numerusform>%n Tag zu spät</numerusform>
            <numerusform>%n Tage zu spät</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/history/History.cpp" line="91"/>
        <source>Opened</source>
        <translation>Geöffnet</translation>
    </message>
    <message>
        <location filename="../../src/history/History.cpp" line="93"/>
        <source>Could not be opened</source>
        <translation>Konnte nicht geöffnet werden</translation>
    </message>
    <message>
        <location filename="../../src/history/History.cpp" line="95"/>
        <source>Script finished</source>
        <translation>Skript beendet</translation>
    </message>
    <message>
        <location filename="../../src/history/History.cpp" line="97"/>
        <source>Script failed</source>
        <translation>Skript fehlgeschlagen</translation>
    </message>
    <message>
        <location filename="../../src/history/History.cpp" line="99"/>
        <source>Script ended by quitting</source>
        <translation>Skript beim Beenden abgebrochen</translation>
    </message>
    <message>
        <location filename="../../src/history/History.cpp" line="102"/>
        <source>Missed</source>
        <translation>Verpasst</translation>
    </message>
    <message>
        <location filename="../../src/history/History.cpp" line="104"/>
        <source>Opened late</source>
        <translation>Verspätet geöffnet</translation>
    </message>
    <message>
        <location filename="../../src/history/History.cpp" line="106"/>
        <source>Mail sent</source>
        <translation>E-Mail gesendet</translation>
    </message>
    <message>
        <location filename="../../src/history/History.cpp" line="108"/>
        <source>Mail refused</source>
        <translation>E-Mail abgelehnt</translation>
    </message>
    <message>
        <location filename="../../src/history/History.cpp" line="110"/>
        <source>Mail failed</source>
        <translation>E-Mail fehlgeschlagen</translation>
    </message>
    <message>
        <location filename="../../src/history/History.cpp" line="112"/>
        <source>Not started</source>
        <translation>Nicht gestartet</translation>
    </message>
    <message>
        <location filename="../../src/history/History.cpp" line="114"/>
        <source>Did not quit normally</source>
        <translation>Nicht normal beendet</translation>
    </message>
    <message>
        <location filename="../../src/history/History.cpp" line="116"/>
        <source>Dates may have moved</source>
        <translation>Termine eventuell verschoben</translation>
    </message>
</context>
<context>
    <name>Quillon::HistoryModel</name>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="116"/>
        <source>(mail)</source>
        <translation>(E-Mail)</translation>
    </message>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="132"/>
        <source>When</source>
        <translation>Wann</translation>
    </message>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="134"/>
        <source>Due</source>
        <translation>Fällig</translation>
    </message>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="136"/>
        <source>Item</source>
        <translation>Objekt</translation>
    </message>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="138"/>
        <source>What</source>
        <translation>Was</translation>
    </message>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="140"/>
        <source>Detail</source>
        <translation>Einzelheiten</translation>
    </message>
</context>
<context>
    <name>Quillon::HistoryWindow</name>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="152"/>
        <location filename="../../src/ui/HistoryWindow.cpp" line="173"/>
        <source>History</source>
        <translation>Verlauf</translation>
    </message>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="157"/>
        <source>Filter by item, detail or what happened</source>
        <translation>Nach Objekt, Detail oder Ereignis filtern</translation>
    </message>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="158"/>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="162"/>
        <source>Show</source>
        <translation>Anzeigen</translation>
    </message>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="163"/>
        <source>Everything</source>
        <translation>Alles</translation>
    </message>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="163"/>
        <source>Problems only</source>
        <translation>Nur Probleme</translation>
    </message>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="164"/>
        <source>&amp;Show:</source>
        <translation>&amp;Zeigen:</translation>
    </message>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="223"/>
        <source>&amp;Open Now</source>
        <translation>Jetzt ö&amp;ffnen</translation>
    </message>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="224"/>
        <source>Show in &amp;File Manager</source>
        <translation>Im &amp;Dateimanager zeigen</translation>
    </message>
    <message>
        <location filename="../../src/ui/HistoryWindow.cpp" line="230"/>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
</context>
<context>
    <name>Quillon::ItemTableModel</name>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="35"/>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="35"/>
        <source>Launch Time</source>
        <translation>Startzeit</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="35"/>
        <source>Repeat</source>
        <translation>Wiederholung</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="173"/>
        <source>Opens %1</source>
        <translation>Öffnet %1</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/ui/ItemTableModel.cpp" line="173"/>
        <source>Opens %1 (in %n day(s))</source>
        <translation>
            <numerusform>Öffnet %1 (in %n Tag)</numerusform>
            <numerusform>Öffnet %1 (in %n Tagen)</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="181"/>
        <source>Could not open: %1</source>
        <translation>Konnte nicht geöffnet werden: %1</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="183"/>
        <source>Not started: %1</source>
        <translation>Nicht gestartet: %1</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="185"/>
        <source>Opened late (%1)</source>
        <translation>Verspätet geöffnet (%1)</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="193"/>
        <source>Opened at %1</source>
        <translation>Geöffnet um %1</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="222"/>
        <source>Could not be opened</source>
        <translation>Konnte nicht geöffnet werden</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="224"/>
        <source>Not started</source>
        <translation>Nicht gestartet</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="226"/>
        <source>Opened late</source>
        <translation>Verspätet geöffnet</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="228"/>
        <location filename="../../src/ui/ItemTableModel.cpp" line="233"/>
        <source>Opened</source>
        <translation>Geöffnet</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="195"/>
        <location filename="../../src/ui/ItemTableModel.cpp" line="233"/>
        <source>Waiting</source>
        <translation>Wartet</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="251"/>
        <source>Icon</source>
        <translation>Symbol</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="253"/>
        <source>Status</source>
        <translation>Status</translation>
    </message>
</context>
<context>
    <name>Quillon::ItemTableView</name>
    <message>
        <location filename="../../src/ui/ItemTableView.cpp" line="39"/>
        <source>Scheduled items</source>
        <translation>Geplante Einträge</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableView.cpp" line="89"/>
        <source>Drop files here or choose Add…</source>
        <translation>Dateien hier ablegen oder „Hinzufügen …“ wählen</translation>
    </message>
</context>
<context>
    <name>Quillon::MainWindow</name>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="83"/>
        <source>Open the history.</source>
        <translation>Den Verlauf öffnen.</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/ui/MainWindow.cpp" line="99"/>
        <source>Launch All Now opened %n item(s).</source>
        <translation>
            <numerusform>„Alle jetzt öffnen“ hat %n Eintrag geöffnet.</numerusform>
            <numerusform>„Alle jetzt öffnen“ hat %n Einträge geöffnet.</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/ui/LaunchAllConfirmation.cpp" line="21"/>
        <source>Launch All Now</source>
        <translation>Alle jetzt öffnen</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/ui/LaunchAllConfirmation.cpp" line="22"/>
        <source>Open all %n items now?</source>
        <translation>
            <numerusform>Den einen Eintrag jetzt öffnen?</numerusform>
            <numerusform>Alle %n Einträge jetzt öffnen?</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/ui/LaunchAllConfirmation.cpp" line="24"/>
        <source>Every item opens, every script runs and every notice is mailed, at once.</source>
        <translation>Alle Einträge werden sofort geöffnet, alle Skripte ausgeführt und alle Benachrichtigungen verschickt.</translation>
    </message>
    <message>
        <location filename="../../src/ui/LaunchAllConfirmation.cpp" line="25"/>
        <source>Open All</source>
        <translation>Alle öffnen</translation>
    </message>
    <message>
        <location filename="../../src/ui/LaunchAllConfirmation.cpp" line="27"/>
        <source>Don&apos;t ask again</source>
        <translation>Nicht mehr fragen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="56"/>
        <source>select the items first</source>
        <translation>wählen Sie zuerst die Objekte aus</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="128"/>
        <source>&amp;Add…</source>
        <translation>H&amp;inzufügen …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="128"/>
        <source>Add files and folders to the schedule.</source>
        <translation>Dateien und Ordner zum Zeitplan hinzufügen.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="129"/>
        <source>&amp;Clear</source>
        <translation>&amp;Leeren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="129"/>
        <source>Remove the selected items, or every item when none is selected.</source>
        <translation>Die ausgewählten Einträge entfernen, oder alle, wenn keiner ausgewählt ist.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="132"/>
        <source>Select All</source>
        <translation>Alle auswählen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="132"/>
        <source>Select every item.</source>
        <translation>Jeden Eintrag auswählen.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="133"/>
        <source>Deselect All</source>
        <translation>Auswahl aufheben</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="133"/>
        <source>Select no item.</source>
        <translation>Keinen Eintrag auswählen.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="135"/>
        <source>Invert Selection</source>
        <translation>Auswahl umkehren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="135"/>
        <source>Not available.</source>
        <translation>Nicht verfügbar.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="138"/>
        <location filename="../../src/ui/MainWindow.cpp" line="166"/>
        <source>&amp;Launch All Now</source>
        <translation>Alle &amp;jetzt öffnen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="138"/>
        <source>Open every item now, top to bottom.</source>
        <translation>Jeden Eintrag jetzt öffnen, von oben nach unten.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="140"/>
        <location filename="../../src/ui/MainWindow.cpp" line="393"/>
        <source>&amp;Date &amp;&amp; Time…</source>
        <translation>Datum &amp;&amp; &amp;Uhrzeit …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="140"/>
        <source>Set the launch date of the selected items.</source>
        <translation>Das Startdatum der ausgewählten Einträge festlegen.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="143"/>
        <source>Schedule running</source>
        <translation>Zeitplan läuft</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="163"/>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="164"/>
        <source>&amp;Add Files and Folders…</source>
        <translation>Dateien und Ordner &amp;hinzufügen …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="168"/>
        <source>&amp;Import Calendar…</source>
        <translation>Kalender &amp;importieren …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="169"/>
        <source>&amp;Export Calendar…</source>
        <translation>Kalender e&amp;xportieren …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="171"/>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="175"/>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="176"/>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="179"/>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederherstellen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="192"/>
        <source>Re&amp;move Selected Items</source>
        <translation>Ausgewählte Einträge ent&amp;fernen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="194"/>
        <source>Mo&amp;ve Up</source>
        <translation>Nach &amp;oben</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="197"/>
        <source>Move Do&amp;wn</source>
        <translation>Nach &amp;unten</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="200"/>
        <source>&amp;Clear List</source>
        <translation>Liste &amp;leeren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="202"/>
        <source>Select &amp;All</source>
        <translation>&amp;Alle auswählen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="204"/>
        <source>&amp;Deselect All</source>
        <translation>Auswahl auf&amp;heben</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="206"/>
        <source>&amp;Invert Selection</source>
        <translation>Auswahl um&amp;kehren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="208"/>
        <source>&amp;Preferences…</source>
        <translation>&amp;Einstellungen …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="212"/>
        <source>&amp;Schedule</source>
        <translation>&amp;Zeitplan</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="213"/>
        <location filename="../../src/ui/MainWindow.cpp" line="283"/>
        <source>&amp;Start</source>
        <translation>&amp;Starten</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="215"/>
        <source>&amp;Date and Time…</source>
        <translation>&amp;Datum und Uhrzeit …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="217"/>
        <source>&amp;History</source>
        <translation>&amp;Verlauf</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="221"/>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="222"/>
        <source>Quillon &amp;Help</source>
        <translation>Quillon-&amp;Hilfe</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="224"/>
        <source>&amp;About Quillon</source>
        <translation>&amp;Über Quillon</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="230"/>
        <source>Export Calendar</source>
        <translation>Kalender exportieren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="230"/>
        <source>Import Calendar</source>
        <translation>Kalender importieren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="234"/>
        <source>iCalendar files (*.ics)</source>
        <translation>iCalendar-Dateien (*.ics)</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="234"/>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="243"/>
        <source>Exported to %1.</source>
        <translation>Nach %1 exportiert.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="243"/>
        <source>Could not export to %1: %2</source>
        <translation>Export nach %1 fehlgeschlagen: %2</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="248"/>
        <source>Could not read %1: %2</source>
        <translation>%1 konnte nicht gelesen werden: %2</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/ui/MainWindow.cpp" line="253"/>
        <source>%n item(s) imported.</source>
        <translation>
            <numerusform>%n Objekt importiert.</numerusform>
            <numerusform>%n Objekte importiert.</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="255"/>
        <source>Not used: %1</source>
        <translation>Nicht übernommen: %1</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="283"/>
        <source>&amp;Stop</source>
        <translation>&amp;Anhalten</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="384"/>
        <source>&amp;Open Now</source>
        <translation>Jetzt ö&amp;ffnen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="392"/>
        <source>Show in &amp;File Manager</source>
        <translation>In der &amp;Dateiverwaltung zeigen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="395"/>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/ui/MainWindow.cpp" line="456"/>
        <source>%n problem(s) since you last looked</source>
        <translation>
            <numerusform>%n Problem seit Ihrem letzten Blick</numerusform>
            <numerusform>%n Probleme seit Ihrem letzten Blick</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Quillon::PreferencesDialog</name>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="70"/>
        <source>Quillon Preferences</source>
        <translation>Quillon-Einstellungen</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="72"/>
        <source>&amp;General</source>
        <translation>&amp;Allgemein</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="73"/>
        <source>&amp;Mail</source>
        <translation>&amp;E-Mail</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="128"/>
        <source>&amp;Remember the list between sessions</source>
        <translation>Die &amp;Liste zwischen Sitzungen behalten</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="129"/>
        <source>A dropped &amp;folder adds the files inside it</source>
        <translation>Ein abgelegter &amp;Ordner fügt die Dateien darin hinzu</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="130"/>
        <source>…and the files in its &amp;subfolders</source>
        <translation>… und die Dateien in seinen &amp;Unterordnern</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="140"/>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="170"/>
        <source>Never</source>
        <translation>Nie</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="142"/>
        <source>Repeat every</source>
        <translation>Wiederholen alle</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="145"/>
        <source>seconds</source>
        <translation>Sekunden</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="145"/>
        <source>minutes</source>
        <translation>Minuten</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="145"/>
        <source>hours</source>
        <translation>Stunden</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="145"/>
        <source>days</source>
        <translation>Tage</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="146"/>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="149"/>
        <source>Repeat unit</source>
        <translation>Wiederholungseinheit</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="162"/>
        <source>Repeat &amp;every:</source>
        <translation>&amp;Wiederholen alle:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="165"/>
        <source>&amp;Quit after the last item has been opened</source>
        <translation>&amp;Beenden, nachdem der letzte Eintrag geöffnet wurde</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="173"/>
        <source>End a scrip&amp;t after:</source>
        <translation>&amp;Skript beenden nach:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="176"/>
        <source>&amp;Open items missed while the computer was asleep or off</source>
        <translation>Objekte öffnen, die &amp;verpasst wurden, während der Rechner schlief oder aus war</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="177"/>
        <source>&amp;Notify me about problems</source>
        <translation>Bei &amp;Problemen benachrichtigen</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="178"/>
        <source>Notify me about every &amp;launch</source>
        <translation>Bei &amp;jedem Öffnen benachrichtigen</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="181"/>
        <source>Start Quillon &amp;when I log in</source>
        <translation>Quillon bei der A&amp;nmeldung starten</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="226"/>
        <source>&amp;Send a message for each opened item</source>
        <translation>Für jeden geöffneten Eintrag eine &amp;Nachricht senden</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="227"/>
        <source>Send the &amp;result of each script</source>
        <translation>Das E&amp;rgebnis jedes Skripts senden</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="228"/>
        <source>Recipient &amp;address:</source>
        <translation>Empfängera&amp;dresse:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="230"/>
        <source>Recipient &amp;name:</source>
        <translation>Empfängerna&amp;me:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="235"/>
        <source>A&amp;ddress:</source>
        <translation>Adre&amp;sse:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="243"/>
        <source>&amp;Port:</source>
        <translation>P&amp;ort:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="244"/>
        <source>Use a secure &amp;connection (TLS)</source>
        <translation>Sichere &amp;Verbindung verwenden (TLS)</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="250"/>
        <source>&amp;Login:</source>
        <translation>Anmeldun&amp;g:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="252"/>
        <source>&amp;Username:</source>
        <translation>&amp;Benutzername:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="268"/>
        <source>Pass&amp;word:</source>
        <translation>Pass&amp;wort:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="285"/>
        <source>Send &amp;Test Message</source>
        <translation>&amp;Testnachricht senden</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="169"/>
        <source> min</source>
        <translation> Min.</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="211"/>
        <source>This address cannot be used for mail: %1. It was not saved.</source>
        <translation>Diese Adresse kann nicht für E-Mails verwendet werden: %1. Sie wurde nicht gespeichert.</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="232"/>
        <source>Outgoing server</source>
        <translation>Postausgangsserver</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="240"/>
        <source>Not set</source>
        <translation>Nicht gesetzt</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="249"/>
        <source>Login</source>
        <translation>Anmeldung</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="247"/>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="272"/>
        <source>Without TLS the password is sent unencrypted.</source>
        <translation>Ohne TLS wird das Passwort unverschlüsselt gesendet.</translation>
    </message>
</context>
<context>
    <name>Quillon::ProblemNotifier</name>
    <message>
        <location filename="../../src/app/ProblemNotifier.cpp" line="122"/>
        <location filename="../../src/app/ProblemNotifier.cpp" line="146"/>
        <source>and %1 more</source>
        <translation>und %1 weitere</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/ProblemNotifier.cpp" line="128"/>
        <source>%n item(s) could not be opened</source>
        <translation>
            <numerusform>%n Objekt konnte nicht geöffnet werden</numerusform>
            <numerusform>%n Objekte konnten nicht geöffnet werden</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/ProblemNotifier.cpp" line="134"/>
        <source>%n item(s) missed while Quillon was not running</source>
        <translation>
            <numerusform>%n Objekt wurde verpasst, während Quillon nicht lief</numerusform>
            <numerusform>%n Objekte wurden verpasst, während Quillon nicht lief</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/ProblemNotifier.cpp" line="136"/>
        <source>%n item(s) missed while the computer slept</source>
        <translation>
            <numerusform>%n Objekt wurde verpasst, während der Computer schlief</numerusform>
            <numerusform>%n Objekte wurden verpasst, während der Computer schlief</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/ProblemNotifier.cpp" line="140"/>
        <source>%n script(s) failed</source>
        <translation>
            <numerusform>Ein Skript ist fehlgeschlagen</numerusform>
            <numerusform>%n Skripte sind fehlgeschlagen</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/ProblemNotifier.cpp" line="151"/>
        <source>%n missed item(s) opened late</source>
        <translation>
            <numerusform>%n verpasstes Objekt wurde verspätet geöffnet</numerusform>
            <numerusform>%n verpasste Objekte wurden verspätet geöffnet</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/ProblemNotifier.cpp" line="158"/>
        <source>Quillon opened %n item(s)</source>
        <translation>
            <numerusform>Quillon hat %n Objekt geöffnet</numerusform>
            <numerusform>Quillon hat %n Objekte geöffnet</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/app/ProblemNotifier.cpp" line="137"/>
        <source>Open Now</source>
        <translation>Jetzt öffnen</translation>
    </message>
    <message>
        <location filename="../../src/app/ProblemNotifier.cpp" line="154"/>
        <source>Mail could not be sent</source>
        <translation>E-Mail konnte nicht gesendet werden</translation>
    </message>
    <message>
        <location filename="../../src/app/ProblemNotifier.cpp" line="161"/>
        <source>Show History</source>
        <translation>Verlauf zeigen</translation>
    </message>
</context>
<context>
    <name>Quillon::QuillonController</name>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="62"/>
        <source>it waited for a script when the schedule was stopped</source>
        <translation>es wartete auf ein Skript, als der Zeitplan angehalten wurde</translation>
    </message>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="103"/>
        <source>the last quit</source>
        <translation>dem letzten Beenden</translation>
    </message>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="105"/>
        <source>Quillon did not quit normally; changes since %1 were not saved</source>
        <translation>Quillon wurde nicht normal beendet; Änderungen seit %1 wurden nicht gespeichert</translation>
    </message>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="111"/>
        <source>A saved item could not be found: the dates from row %1 on may belong to the items above them.</source>
        <translation>Ein gespeichertes Objekt wurde nicht gefunden: die Termine ab Zeile %1 gehören eventuell zu den Objekten darüber.</translation>
    </message>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="208"/>
        <source>it could not be saved; the items after it will show the dates before theirs at the next start</source>
        <translation>es konnte nicht gespeichert werden; die Objekte danach zeigen beim nächsten Start die Termine ihrer Vorgänger</translation>
    </message>
</context>
<context>
    <name>Quillon::RepeatEditor</name>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="35"/>
        <source>Repeat</source>
        <translation>Wiederholung</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="43"/>
        <source>Never (the period in Preferences)</source>
        <translation>Nie (der Zeitraum in den Einstellungen)</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="43"/>
        <source>Every day</source>
        <translation>Jeden Tag</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="43"/>
        <source>Weekdays</source>
        <translation>Werktags</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="43"/>
        <source>Every week on…</source>
        <translation>Jede Woche am …</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="43"/>
        <source>Every month on day…</source>
        <translation>Jeden Monat am Tag …</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="44"/>
        <source>Every month on the last day</source>
        <translation>Jeden Monat am letzten Tag</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="44"/>
        <source>Every month on the…</source>
        <translation>Jeden Monat am …</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="44"/>
        <source>Every few hours between…</source>
        <translation>Alle paar Stunden zwischen …</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="44"/>
        <source>Custom rule…</source>
        <translation>Eigene Regel …</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="45"/>
        <source>Re&amp;peat:</source>
        <translation>&amp;Wiederholen:</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="64"/>
        <source>first</source>
        <translation>ersten</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="64"/>
        <source>second</source>
        <translation>zweiten</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="64"/>
        <source>third</source>
        <translation>dritten</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="64"/>
        <source>fourth</source>
        <translation>vierten</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="64"/>
        <source>last</source>
        <translation>letzten</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="73"/>
        <source>every </source>
        <translation>alle </translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="74"/>
        <source> h</source>
        <translation> Std.</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="79"/>
        <source>from</source>
        <translation>von</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="79"/>
        <source>to</source>
        <translation>bis</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="83"/>
        <source>Custom rule</source>
        <translation>Eigene Regel</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="89"/>
        <source>Never</source>
        <translation>Nie</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="89"/>
        <source>After</source>
        <translation>Nach</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="89"/>
        <source>On</source>
        <translation>Am</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="93"/>
        <source> times</source>
        <translation> Mal</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="96"/>
        <source>&amp;Ends:</source>
        <translation>E&amp;nde:</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="102"/>
        <source>The computer&apos;s</source>
        <translation>Die des Computers</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="105"/>
        <source>Time &amp;zone:</source>
        <translation>&amp;Zeitzone:</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="109"/>
        <source>As in Preferences</source>
        <translation>Wie in den Einstellungen</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="109"/>
        <source>Skip it</source>
        <translation>Auslassen</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="109"/>
        <source>Run it once</source>
        <translation>Einmal nachholen</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="109"/>
        <source>Run it if less late than</source>
        <translation>Nachholen, wenn weniger verspätet als</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="113"/>
        <source> min</source>
        <translation> Min.</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="114"/>
        <source>If m&amp;issed:</source>
        <translation>Wenn &amp;verpasst:</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="122"/>
        <source>Appl&amp;y Repeat</source>
        <translation>Wiederholung &amp;übernehmen</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="170"/>
        <source>Not applied: %1</source>
        <translation>Nicht übernommen: %1</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="229"/>
        <source>choose at least one day</source>
        <translation>wählen Sie mindestens einen Tag</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="233"/>
        <source>write a rule, such as FREQ=MONTHLY;BYDAY=2MO</source>
        <translation>schreiben Sie eine Regel, etwa FREQ=MONTHLY;BYDAY=2MO</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="272"/>
        <source>Refused: %1</source>
        <translation>Abgelehnt: %1</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="278"/>
        <source>The item opens at its launch time, and again by the period in Preferences if one is set.</source>
        <translation>Das Objekt öffnet zu seiner Startzeit und, wenn einer eingestellt ist, wieder nach dem Zeitraum in den Einstellungen.</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="285"/>
        <source>The rule has no time after now.</source>
        <translation>Die Regel hat keine Zeit nach jetzt.</translation>
    </message>
    <message>
        <location filename="../../src/ui/RepeatEditor.cpp" line="285"/>
        <source>Next: %1</source>
        <translation>Nächste: %1</translation>
    </message>
</context>
<context>
    <name>Quillon::ScheduleEditor</name>
    <message>
        <location filename="../../src/schedule/ScheduleEditor.cpp" line="128"/>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <location filename="../../src/schedule/ScheduleEditor.cpp" line="130"/>
        <source>Drop</source>
        <translation>Ablegen</translation>
    </message>
    <message>
        <location filename="../../src/schedule/ScheduleEditor.cpp" line="132"/>
        <source>Move</source>
        <translation>Verschieben</translation>
    </message>
    <message>
        <location filename="../../src/schedule/ScheduleEditor.cpp" line="134"/>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <location filename="../../src/schedule/ScheduleEditor.cpp" line="136"/>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <location filename="../../src/schedule/ScheduleEditor.cpp" line="138"/>
        <source>Date Change</source>
        <translation>Datumsänderung</translation>
    </message>
    <message>
        <location filename="../../src/schedule/ScheduleEditor.cpp" line="140"/>
        <source>Repeat Change</source>
        <translation>Wiederholung ändern</translation>
    </message>
    <message>
        <location filename="../../src/schedule/ScheduleEditor.cpp" line="265"/>
        <source>the rule has no time after now</source>
        <translation>die Regel hat keine Zeit nach jetzt</translation>
    </message>
</context>
<context>
    <name>Quillon::ScriptingService</name>
    <message>
        <location filename="../../src/app/ScriptingService.cpp" line="144"/>
        <source>The date %1 is out of range: Unix seconds from 0 to %2.</source>
        <translation>Das Datum %1 liegt außerhalb des Bereichs: Unix-Sekunden von 0 bis %2.</translation>
    </message>
    <message>
        <location filename="../../src/app/ScriptingService.cpp" line="150"/>
        <source>%1 needs at least one row.</source>
        <translation>%1 braucht mindestens eine Zeile.</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/app/ScriptingService.cpp" line="154"/>
        <source>Row %1 is out of range: the list has %n row(s), counted from 0.</source>
        <translation>
            <numerusform>Zeile %1 liegt außerhalb des Bereichs: Die Liste hat %n Zeile, gezählt ab 0.</numerusform>
            <numerusform>Zeile %1 liegt außerhalb des Bereichs: Die Liste hat %n Zeilen, gezählt ab 0.</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/app/ScriptingService.cpp" line="178"/>
        <source>Add needs at least one path.</source>
        <translation>Add braucht mindestens einen Pfad.</translation>
    </message>
    <message>
        <location filename="../../src/app/ScriptingService.cpp" line="294"/>
        <location filename="../../src/app/ScriptingService.cpp" line="298"/>
        <source>The rule is refused: %1.</source>
        <translation>Die Regel wird abgelehnt: %1.</translation>
    </message>
    <message>
        <location filename="../../src/app/ScriptingService.cpp" line="309"/>
        <source>The policy is refused: %1.</source>
        <translation>Die Vorgabe wird abgelehnt: %1.</translation>
    </message>
    <message>
        <location filename="../../src/app/ScriptingService.cpp" line="318"/>
        <source>The count %1 is out of range: from 1 to %2.</source>
        <translation>Die Anzahl %1 liegt außerhalb des Bereichs: von 1 bis %2.</translation>
    </message>
    <message>
        <location filename="../../src/app/ScriptingService.cpp" line="165"/>
        <source>Not an absolute path: &quot;%1&quot;.</source>
        <translation>Kein absoluter Pfad: „%1“.</translation>
    </message>
    <message>
        <location filename="../../src/app/ScriptingService.cpp" line="136"/>
        <location filename="../../src/app/ScriptingService.cpp" line="220"/>
        <location filename="../../src/app/ScriptingService.cpp" line="230"/>
        <source>Quillon is quitting</source>
        <translation>Quillon wird beendet</translation>
    </message>
    <message>
        <location filename="../../src/app/ScriptingService.cpp" line="167"/>
        <source>No such file or folder: %1</source>
        <translation>Keine solche Datei und kein solcher Ordner: %1</translation>
    </message>
    <message>
        <location filename="../../src/app/ScriptingService.cpp" line="275"/>
        <source>The schedule is running; stop it before removing items.</source>
        <translation>Der Zeitplan läuft; halten Sie ihn an, bevor Sie Objekte entfernen.</translation>
    </message>
</context>
<context>
    <name>Quillon::Shell</name>
    <message>
        <location filename="../../src/ui/Shell.cpp" line="43"/>
        <source>The history cannot be written now (%1); it is kept until it can be.</source>
        <translation>Der Verlauf kann gerade nicht geschrieben werden (%1); er wird aufbewahrt, bis es geht.</translation>
    </message>
    <message>
        <location filename="../../src/ui/Shell.cpp" line="118"/>
        <source>About Quillon</source>
        <translation>Über Quillon</translation>
    </message>
    <message>
        <location filename="../../src/ui/Shell.cpp" line="119"/>
        <source>&lt;h3&gt;Quillon %1&lt;/h3&gt;&lt;p&gt;Opens files, applications and scripts at the times you choose.&lt;/p&gt;&lt;p&gt;Free software under the GNU General Public License, version 3 or later.&lt;/p&gt;</source>
        <translation>&lt;h3&gt;Quillon %1&lt;/h3&gt;&lt;p&gt;Öffnet Dateien, Anwendungen und Skripte zu den Zeiten, die Sie festlegen.&lt;/p&gt;&lt;p&gt;Freie Software unter der GNU General Public License, Version 3 oder neuer.&lt;/p&gt;</translation>
    </message>
    <message>
        <location filename="../../src/ui/Shell.cpp" line="138"/>
        <source>Show Quillon</source>
        <translation>Quillon anzeigen</translation>
    </message>
    <message>
        <location filename="../../src/ui/Shell.cpp" line="139"/>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <location filename="../../src/ui/Shell.cpp" line="192"/>
        <source>Sending…</source>
        <translation>Wird gesendet …</translation>
    </message>
    <message>
        <location filename="../../src/ui/Shell.cpp" line="198"/>
        <source>Sent to %1</source>
        <translation>Gesendet an %1</translation>
    </message>
    <message>
        <location filename="../../src/ui/Shell.cpp" line="198"/>
        <source>Not sent: %1</source>
        <translation>Nicht gesendet: %1</translation>
    </message>
</context>
<context>
    <name>Quillon::SimpleSMTP</name>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="45"/>
        <source>The recipient address cannot be used: %1.</source>
        <translation>Die Empfängeradresse kann nicht verwendet werden: %1.</translation>
    </message>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="65"/>
        <source>An error occurred when sending email.</source>
        <translation>Beim Senden der E-Mail ist ein Fehler aufgetreten.</translation>
    </message>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="65"/>
        <source>Error (%1): %2</source>
        <translation>Fehler (%1): %2</translation>
    </message>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="157"/>
        <source>the server offers no login; choose None for Login in Preferences</source>
        <translation>der Server bietet keine Anmeldung an; wählen Sie „Keine“ bei „Anmeldung“ in den Einstellungen</translation>
    </message>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="159"/>
        <source>the server does not offer the %1 login; it offers %2</source>
        <translation>der Server bietet die Anmeldung %1 nicht an; er bietet %2 an</translation>
    </message>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="161"/>
        <source>the server refused the login</source>
        <translation>der Server hat die Anmeldung abgelehnt</translation>
    </message>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="180"/>
        <source>the server refused the message: %1</source>
        <translation>der Server hat die Nachricht abgelehnt: %1</translation>
    </message>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="199"/>
        <source>Message not sent. Server response: %1</source>
        <translation>Nachricht nicht gesendet. Antwort des Servers: %1</translation>
    </message>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="211"/>
        <source>the session ended before the message was sent</source>
        <translation>die Verbindung endete, bevor die Nachricht gesendet war</translation>
    </message>
</context>
<context>
    <name>Repeat</name>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="74"/>
        <source>a rule needs FREQ, as in FREQ=DAILY</source>
        <translation>eine Regel braucht FREQ, etwa FREQ=DAILY</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="78"/>
        <source>“%1” is not a rule part that can be read</source>
        <translation>„%1“ ist kein lesbarer Teil einer Regel</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="80"/>
        <source>the parts do not go together</source>
        <translation>die Teile passen nicht zusammen</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="103"/>
        <source>first</source>
        <translation>ersten</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="105"/>
        <source>second</source>
        <translation>zweiten</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="107"/>
        <source>third</source>
        <translation>dritten</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="109"/>
        <source>fourth</source>
        <translation>vierten</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="111"/>
        <source>fifth</source>
        <translation>fünften</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="113"/>
        <source>last</source>
        <translation>letzten</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="115"/>
        <source>second to last</source>
        <translation>vorletzten</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="147"/>
        <source>“%1” is not skip, once or within a time such as “within 1h”</source>
        <translation>„%1“ ist weder skip noch once noch within mit einer Zeit wie „within 1h“</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="231"/>
        <source>Quillon repeats an item at most once a minute</source>
        <translation>Quillon wiederholt ein Objekt höchstens einmal pro Minute</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="235"/>
        <source>the rule never happens</source>
        <translation>die Regel trifft nie zu</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="375"/>
        <source>Every %n hour(s) from %1 to %2</source>
        <translation>
            <numerusform>Jede Stunde von %1 bis %2</numerusform>
            <numerusform>Alle %n Stunden von %1 bis %2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="380"/>
        <source>Every %n minute(s)</source>
        <translation>
            <numerusform>Jede Minute</numerusform>
            <numerusform>Alle %n Minuten</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="384"/>
        <source>Every %n hour(s)</source>
        <translation>
            <numerusform>Jede Stunde</numerusform>
            <numerusform>Alle %n Stunden</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="392"/>
        <source>Every day at %1</source>
        <translation>Jeden Tag um %1</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="392"/>
        <source>Every %n day(s) at %1</source>
        <translation>
            <numerusform>Jeden Tag um %1</numerusform>
            <numerusform>Alle %n Tage um %1</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="412"/>
        <source>Weekdays at %1</source>
        <translation>Werktags um %1</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="415"/>
        <source>Weekends at %1</source>
        <translation>Am Wochenende um %1</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="417"/>
        <source>Every %n week(s) on %1 at %2</source>
        <translation>
            <numerusform>Jede Woche am %1 um %2</numerusform>
            <numerusform>Alle %n Wochen am %1 um %2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="425"/>
        <source>Every %n month(s) on the last day at %1</source>
        <translation>
            <numerusform>Jeden Monat am letzten Tag um %1</numerusform>
            <numerusform>Alle %n Monate am letzten Tag um %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="427"/>
        <source>Every %n month(s) on the %1 %2 at %3</source>
        <translation>
            <numerusform>Jeden Monat am %1 %2 um %3</numerusform>
            <numerusform>Alle %n Monate am %1 %2 um %3</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="430"/>
        <source>Every %n month(s) on day %1 at %2</source>
        <translation>
            <numerusform>Jeden Monat am %1. um %2</numerusform>
            <numerusform>Alle %n Monate am %1. um %2</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="436"/>
        <source>Every year on %1 at %2</source>
        <translation>Jedes Jahr am %1 um %2</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="442"/>
        <source>Custom: %1</source>
        <translation>Eigene Regel: %1</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/schedule/Repeat.cpp" line="444"/>
        <source>, %n time(s)</source>
        <translation>
            <numerusform>, einmal</numerusform>
            <numerusform>, %n Mal</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="446"/>
        <source>, until %1</source>
        <translation>, bis %1</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="494"/>
        <source>the text is not iCalendar</source>
        <translation>der Text ist kein iCalendar</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="498"/>
        <source>the text holds no event</source>
        <translation>der Text enthält keinen Termin</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Repeat.cpp" line="522"/>
        <source>“%1” is not a time zone this computer knows</source>
        <translation>„%1“ ist keine Zeitzone, die dieser Computer kennt</translation>
    </message>
</context>
<context>
    <name>Texts</name>
    <message>
        <location filename="../../src/settings/Texts.h" line="15"/>
        <source>No items were scheduled to run.</source>
        <translation>Es wurden keine Einträge zum Öffnen eingeplant.</translation>
    </message>
    <message>
        <location filename="../../src/settings/Texts.h" line="16"/>
        <source>Make sure that at least one item has a scheduled run time in the future.</source>
        <translation>Stellen Sie sicher, dass mindestens ein Eintrag eine Startzeit in der Zukunft hat.</translation>
    </message>
    <message>
        <location filename="../../src/settings/Texts.h" line="17"/>
        <source>Start</source>
        <translation>Starten</translation>
    </message>
    <message>
        <location filename="../../src/settings/Texts.h" line="18"/>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <location filename="../../src/settings/Texts.h" line="19"/>
        <source>Run the schedule.</source>
        <translation>Den Zeitplan ausführen.</translation>
    </message>
    <message>
        <location filename="../../src/settings/Texts.h" line="20"/>
        <source>Cancel the schedule.</source>
        <translation>Den Zeitplan abbrechen.</translation>
    </message>
    <message>
        <location filename="../../src/settings/Texts.h" line="21"/>
        <source>No item has a launch time in the future; the schedule stopped.</source>
        <translation>Kein Eintrag hat eine Startzeit in der Zukunft; der Zeitplan wurde angehalten.</translation>
    </message>
    <message>
        <location filename="../../src/settings/Texts.h" line="22"/>
        <source>The last item was opened; the schedule stopped.</source>
        <translation>Der letzte Eintrag wurde geöffnet; der Zeitplan wurde angehalten.</translation>
    </message>
    <message>
        <location filename="../../src/settings/Texts.h" line="23"/>
        <source>Location</source>
        <translation>Ort</translation>
    </message>
    <message>
        <location filename="../../src/settings/Texts.h" line="24"/>
        <source>Time to Launch</source>
        <translation>Zeit bis zum Start</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <location filename="../../src/app/main.cpp" line="55"/>
        <source>Quillon opens files, applications and scripts at the times you choose.</source>
        <translation>Quillon öffnet Dateien, Anwendungen und Skripte zu den Zeiten, die Sie wählen.</translation>
    </message>
    <message>
        <location filename="../../src/app/main.cpp" line="58"/>
        <source>Start as the login session does: the schedule runs, the window stays hidden.</source>
        <translation>So starten wie bei der Anmeldung: der Zeitplan läuft, das Fenster bleibt verborgen.</translation>
    </message>
</context>
</TS>

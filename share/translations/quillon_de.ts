<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
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
        <location filename="../../src/mail/MailSettings.cpp" line="86"/>
        <source>The outgoing SMTP server &apos;Password:&apos; preference value has not been specified.</source>
        <translation>Die Einstellung „Passwort:“ des Postausgangsservers (SMTP) ist nicht angegeben.</translation>
    </message>
</context>
<context>
    <name>Quillon::DateWindow</name>
    <message>
        <location filename="../../src/ui/DateWindow.cpp" line="17"/>
        <source>Date &amp; Time</source>
        <translation>Datum &amp; Uhrzeit</translation>
    </message>
    <message>
        <location filename="../../src/ui/DateWindow.cpp" line="37"/>
        <source>No item is selected: a date set here changes nothing.</source>
        <translation>Kein Eintrag ist ausgewählt: Ein hier gesetztes Datum ändert nichts.</translation>
    </message>
    <message>
        <location filename="../../src/ui/DateWindow.cpp" line="39"/>
        <source>Launch date and time of the selected item:</source>
        <translation>Startdatum und -uhrzeit des ausgewählten Eintrags:</translation>
    </message>
    <message>
        <location filename="../../src/ui/DateWindow.cpp" line="41"/>
        <source>Launch date and time of %1 selected items:</source>
        <translation>Startdatum und -uhrzeit von %1 ausgewählten Einträgen:</translation>
    </message>
</context>
<context>
    <name>Quillon::FileAndFolderChooser</name>
    <message>
        <location filename="../../src/ui/FileAndFolderChooser.cpp" line="16"/>
        <source>Choose Files and Folders</source>
        <translation>Dateien und Ordner auswählen</translation>
    </message>
    <message>
        <location filename="../../src/ui/FileAndFolderChooser.cpp" line="20"/>
        <location filename="../../src/ui/FileAndFolderChooser.cpp" line="37"/>
        <source>Choose</source>
        <translation>Auswählen</translation>
    </message>
</context>
<context>
    <name>Quillon::ItemTableModel</name>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="34"/>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="34"/>
        <source>Launch Time</source>
        <translation>Startzeit</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="109"/>
        <source>Opens %1 (in %2 days)</source>
        <translation>Öffnet %1 (in %2 Tagen)</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="109"/>
        <source>Opens %1</source>
        <translation>Öffnet %1</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="115"/>
        <source>Opened at %1</source>
        <translation>Geöffnet um %1</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="141"/>
        <source>Opened</source>
        <translation>Geöffnet</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="245"/>
        <source>Move</source>
        <translation>Verschieben</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="245"/>
        <source>Drop</source>
        <translation>Ablegen</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="117"/>
        <location filename="../../src/ui/ItemTableModel.cpp" line="141"/>
        <source>Waiting</source>
        <translation>Wartet</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="159"/>
        <source>Icon</source>
        <translation>Symbol</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="161"/>
        <source>Status</source>
        <translation>Status</translation>
    </message>
</context>
<context>
    <name>Quillon::MainWindow</name>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="112"/>
        <source>Scheduled items</source>
        <translation>Geplante Einträge</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="144"/>
        <source>Drop files here or choose Add…</source>
        <translation>Dateien hier ablegen oder „Hinzufügen …“ wählen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="186"/>
        <source>&amp;Add…</source>
        <translation>H&amp;inzufügen …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="186"/>
        <source>Add files and folders to the schedule.</source>
        <translation>Dateien und Ordner zum Zeitplan hinzufügen.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="187"/>
        <source>&amp;Clear</source>
        <translation>&amp;Leeren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="187"/>
        <source>Remove the selected items, or every item when none is selected.</source>
        <translation>Die ausgewählten Einträge entfernen, oder alle, wenn keiner ausgewählt ist.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="190"/>
        <source>Select All</source>
        <translation>Alle auswählen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="190"/>
        <source>Select every item.</source>
        <translation>Jeden Eintrag auswählen.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="191"/>
        <source>Deselect All</source>
        <translation>Auswahl aufheben</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="191"/>
        <source>Select no item.</source>
        <translation>Keinen Eintrag auswählen.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="192"/>
        <source>Invert Selection</source>
        <translation>Auswahl umkehren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="192"/>
        <source>Not available.</source>
        <translation>Nicht verfügbar.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="194"/>
        <location filename="../../src/ui/MainWindow.cpp" line="250"/>
        <source>&amp;Launch All Now</source>
        <translation>Alle &amp;jetzt öffnen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="194"/>
        <source>Open every item now, top to bottom.</source>
        <translation>Jeden Eintrag jetzt öffnen, von oben nach unten.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="196"/>
        <location filename="../../src/ui/MainWindow.cpp" line="470"/>
        <source>&amp;Date &amp;&amp; Time…</source>
        <translation>Datum &amp;&amp; &amp;Uhrzeit …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="196"/>
        <source>Set the launch date of the selected items.</source>
        <translation>Das Startdatum der ausgewählten Einträge festlegen.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="202"/>
        <source>Schedule running</source>
        <translation>Zeitplan läuft</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="247"/>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="248"/>
        <source>&amp;Add Files and Folders…</source>
        <translation>Dateien und Ordner &amp;hinzufügen …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="252"/>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="256"/>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="257"/>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="260"/>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederherstellen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="266"/>
        <source>&amp;Remove Selected Items</source>
        <translation>Ausgewählte Einträge &amp;entfernen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="268"/>
        <source>Move &amp;Up</source>
        <translation>Nach &amp;oben</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="271"/>
        <source>Move Do&amp;wn</source>
        <translation>Nach &amp;unten</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="274"/>
        <source>&amp;Clear List</source>
        <translation>Liste &amp;leeren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="276"/>
        <source>Select &amp;All</source>
        <translation>&amp;Alle auswählen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="278"/>
        <source>&amp;Deselect All</source>
        <translation>Auswahl auf&amp;heben</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="280"/>
        <source>&amp;Invert Selection</source>
        <translation>Auswahl &amp;umkehren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="282"/>
        <source>&amp;Preferences…</source>
        <translation>&amp;Einstellungen …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="286"/>
        <source>&amp;Schedule</source>
        <translation>&amp;Zeitplan</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="287"/>
        <location filename="../../src/ui/MainWindow.cpp" line="318"/>
        <source>&amp;Start</source>
        <translation>&amp;Starten</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="289"/>
        <source>&amp;Date and Time…</source>
        <translation>&amp;Datum und Uhrzeit …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="292"/>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="293"/>
        <source>Quillon &amp;Help</source>
        <translation>Quillon-&amp;Hilfe</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="295"/>
        <source>&amp;About Quillon</source>
        <translation>&amp;Über Quillon</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="318"/>
        <source>&amp;Stop</source>
        <translation>&amp;Anhalten</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="356"/>
        <source>Launch date and time</source>
        <translation>Startdatum und -uhrzeit</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="372"/>
        <location filename="../../src/ui/MainWindow.cpp" line="418"/>
        <source>Date Change</source>
        <translation>Datumsänderung</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="428"/>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="435"/>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="450"/>
        <source>Move</source>
        <translation>Verschieben</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="463"/>
        <source>&amp;Open Now</source>
        <translation>Jetzt ö&amp;ffnen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="469"/>
        <source>Show in &amp;File Manager</source>
        <translation>In der &amp;Dateiverwaltung zeigen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="472"/>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="482"/>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
</context>
<context>
    <name>Quillon::PreferencesDialog</name>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="61"/>
        <source>Quillon Preferences</source>
        <translation>Quillon-Einstellungen</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="63"/>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="64"/>
        <source>Mail</source>
        <translation>E-Mail</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="77"/>
        <source>Remember the list between sessions</source>
        <translation>Die Liste zwischen Sitzungen behalten</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="78"/>
        <source>A dropped folder adds the files inside it</source>
        <translation>Ein abgelegter Ordner fügt die Dateien darin hinzu</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="79"/>
        <source>…and the files in its subfolders</source>
        <translation>… und die Dateien in seinen Unterordnern</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="89"/>
        <source>Never</source>
        <translation>Nie</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="91"/>
        <source>Repeat every</source>
        <translation>Wiederholen alle</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="94"/>
        <source>seconds</source>
        <translation>Sekunden</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="94"/>
        <source>minutes</source>
        <translation>Minuten</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="94"/>
        <source>hours</source>
        <translation>Stunden</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="94"/>
        <source>days</source>
        <translation>Tage</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="105"/>
        <source>Repeat every:</source>
        <translation>Wiederholen alle:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="106"/>
        <source>Quit after the last item has been opened</source>
        <translation>Beenden, nachdem der letzte Eintrag geöffnet wurde</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="109"/>
        <source>Start Quillon when I log in</source>
        <translation>Quillon bei der Anmeldung starten</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="127"/>
        <source>Send a message for each opened item</source>
        <translation>Für jeden geöffneten Eintrag eine Nachricht senden</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="128"/>
        <source>Send the result of each script</source>
        <translation>Das Ergebnis jedes Skripts senden</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="129"/>
        <source>Recipient address:</source>
        <translation>Empfängeradresse:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="130"/>
        <source>Recipient name:</source>
        <translation>Empfängername:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="132"/>
        <source>Outgoing server</source>
        <translation>Postausgangsserver</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="135"/>
        <source>Address:</source>
        <translation>Adresse:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="140"/>
        <source>Not set</source>
        <translation>Nicht gesetzt</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="143"/>
        <source>Port:</source>
        <translation>Port:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="144"/>
        <source>Use a secure connection (TLS)</source>
        <translation>Sichere Verbindung verwenden (TLS)</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="146"/>
        <source>Login:</source>
        <translation>Anmeldung:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="145"/>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="148"/>
        <source>Username:</source>
        <translation>Benutzername:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="151"/>
        <source>Password:</source>
        <translation>Passwort:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="160"/>
        <source>Send Test Message</source>
        <translation>Testnachricht senden</translation>
    </message>
</context>
<context>
    <name>Quillon::QuillonController</name>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="133"/>
        <source>About Quillon</source>
        <translation>Über Quillon</translation>
    </message>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="134"/>
        <source>&lt;h3&gt;Quillon %1&lt;/h3&gt;&lt;p&gt;Opens files, applications and scripts at the times you choose.&lt;/p&gt;&lt;p&gt;Free software under the GNU General Public License, version 3 or later.&lt;/p&gt;</source>
        <translation>&lt;h3&gt;Quillon %1&lt;/h3&gt;&lt;p&gt;Öffnet Dateien, Anwendungen und Skripte zu den Zeiten, die Sie festlegen.&lt;/p&gt;&lt;p&gt;Freie Software unter der GNU General Public License, Version 3 oder neuer.&lt;/p&gt;</translation>
    </message>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="153"/>
        <source>Show Quillon</source>
        <translation>Quillon anzeigen</translation>
    </message>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="154"/>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
</context>
<context>
    <name>Quillon::SimpleSMTP</name>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="63"/>
        <source>An error occurred when sending email.</source>
        <translation>Beim Senden der E-Mail ist ein Fehler aufgetreten.</translation>
    </message>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="141"/>
        <source>Message not sent. Server response: %1</source>
        <translation>Nachricht nicht gesendet. Antwort des Servers: %1</translation>
    </message>
</context>
<context>
    <name>Texts</name>
    <message>
        <location filename="../../src/schedule/Texts.h" line="15"/>
        <source>No items were scheduled to run.</source>
        <translation>Es wurden keine Einträge zum Öffnen eingeplant.</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Texts.h" line="16"/>
        <source>Make sure that at least one item has a scheduled run time in the future.</source>
        <translation>Stellen Sie sicher, dass mindestens ein Eintrag eine Startzeit in der Zukunft hat.</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Texts.h" line="17"/>
        <source>Start</source>
        <translation>Starten</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Texts.h" line="18"/>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Texts.h" line="19"/>
        <source>Run the schedule.</source>
        <translation>Den Zeitplan ausführen.</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Texts.h" line="20"/>
        <source>Cancel the schedule.</source>
        <translation>Den Zeitplan abbrechen.</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Texts.h" line="21"/>
        <source>No item has a launch time in the future; the schedule stopped.</source>
        <translation>Kein Eintrag hat eine Startzeit in der Zukunft; der Zeitplan wurde angehalten.</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Texts.h" line="22"/>
        <source>The last item was opened; the schedule stopped.</source>
        <translation>Der letzte Eintrag wurde geöffnet; der Zeitplan wurde angehalten.</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Texts.h" line="23"/>
        <source>Location</source>
        <translation>Ort</translation>
    </message>
    <message>
        <location filename="../../src/schedule/Texts.h" line="24"/>
        <source>Time to Launch</source>
        <translation>Zeit bis zum Start</translation>
    </message>
</context>
</TS>

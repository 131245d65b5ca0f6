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
        <location filename="../../src/ui/ItemTableModel.cpp" line="131"/>
        <source>Opens %1 (in %2 days)</source>
        <translation>Öffnet %1 (in %2 Tagen)</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="131"/>
        <source>Opens %1</source>
        <translation>Öffnet %1</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="137"/>
        <source>Opened at %1</source>
        <translation>Geöffnet um %1</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="163"/>
        <source>Opened</source>
        <translation>Geöffnet</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="267"/>
        <source>Move</source>
        <translation>Verschieben</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="267"/>
        <source>Drop</source>
        <translation>Ablegen</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="139"/>
        <location filename="../../src/ui/ItemTableModel.cpp" line="163"/>
        <source>Waiting</source>
        <translation>Wartet</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="181"/>
        <source>Icon</source>
        <translation>Symbol</translation>
    </message>
    <message>
        <location filename="../../src/ui/ItemTableModel.cpp" line="183"/>
        <source>Status</source>
        <translation>Status</translation>
    </message>
</context>
<context>
    <name>Quillon::MainWindow</name>
    <message numerus="yes">
        <location filename="../../src/ui/MainWindow.cpp" line="112"/>
        <source>Launch All Now opened %n item(s).</source>
        <translation>
            <numerusform>„Alle jetzt öffnen“ hat %n Eintrag geöffnet.</numerusform>
            <numerusform>„Alle jetzt öffnen“ hat %n Einträge geöffnet.</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="119"/>
        <source>Launch All Now</source>
        <translation>Alle jetzt öffnen</translation>
    </message>
    <message numerus="yes">
        <location filename="../../src/ui/MainWindow.cpp" line="119"/>
        <source>Open all %n items now?</source>
        <translation>
            <numerusform>Den einen Eintrag jetzt öffnen?</numerusform>
            <numerusform>Alle %n Einträge jetzt öffnen?</numerusform>
        </translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="121"/>
        <source>Every item opens, every script runs and every notice is mailed, at once.</source>
        <translation>Alle Einträge werden sofort geöffnet, alle Skripte ausgeführt und alle Benachrichtigungen verschickt.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="122"/>
        <source>Open All</source>
        <translation>Alle öffnen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="124"/>
        <source>Don&apos;t ask again</source>
        <translation>Nicht mehr fragen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="179"/>
        <source>Scheduled items</source>
        <translation>Geplante Einträge</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="220"/>
        <source>Drop files here or choose Add…</source>
        <translation>Dateien hier ablegen oder „Hinzufügen …“ wählen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="279"/>
        <source>&amp;Add…</source>
        <translation>H&amp;inzufügen …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="279"/>
        <source>Add files and folders to the schedule.</source>
        <translation>Dateien und Ordner zum Zeitplan hinzufügen.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="280"/>
        <source>&amp;Clear</source>
        <translation>&amp;Leeren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="280"/>
        <source>Remove the selected items, or every item when none is selected.</source>
        <translation>Die ausgewählten Einträge entfernen, oder alle, wenn keiner ausgewählt ist.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="283"/>
        <source>Select All</source>
        <translation>Alle auswählen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="283"/>
        <source>Select every item.</source>
        <translation>Jeden Eintrag auswählen.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="284"/>
        <source>Deselect All</source>
        <translation>Auswahl aufheben</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="284"/>
        <source>Select no item.</source>
        <translation>Keinen Eintrag auswählen.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="285"/>
        <source>Invert Selection</source>
        <translation>Auswahl umkehren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="285"/>
        <source>Not available.</source>
        <translation>Nicht verfügbar.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="287"/>
        <location filename="../../src/ui/MainWindow.cpp" line="343"/>
        <source>&amp;Launch All Now</source>
        <translation>Alle &amp;jetzt öffnen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="287"/>
        <source>Open every item now, top to bottom.</source>
        <translation>Jeden Eintrag jetzt öffnen, von oben nach unten.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="289"/>
        <location filename="../../src/ui/MainWindow.cpp" line="572"/>
        <source>&amp;Date &amp;&amp; Time…</source>
        <translation>Datum &amp;&amp; &amp;Uhrzeit …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="289"/>
        <source>Set the launch date of the selected items.</source>
        <translation>Das Startdatum der ausgewählten Einträge festlegen.</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="295"/>
        <source>Schedule running</source>
        <translation>Zeitplan läuft</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="340"/>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="341"/>
        <source>&amp;Add Files and Folders…</source>
        <translation>Dateien und Ordner &amp;hinzufügen …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="345"/>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="349"/>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="350"/>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="353"/>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederherstellen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="366"/>
        <source>&amp;Remove Selected Items</source>
        <translation>Ausgewählte Einträge &amp;entfernen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="368"/>
        <source>Move &amp;Up</source>
        <translation>Nach &amp;oben</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="371"/>
        <source>Move Do&amp;wn</source>
        <translation>Nach &amp;unten</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="374"/>
        <source>&amp;Clear List</source>
        <translation>Liste &amp;leeren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="376"/>
        <source>Select &amp;All</source>
        <translation>&amp;Alle auswählen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="378"/>
        <source>&amp;Deselect All</source>
        <translation>Auswahl auf&amp;heben</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="380"/>
        <source>&amp;Invert Selection</source>
        <translation>Auswahl &amp;umkehren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="382"/>
        <source>&amp;Preferences…</source>
        <translation>&amp;Einstellungen …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="386"/>
        <source>&amp;Schedule</source>
        <translation>&amp;Zeitplan</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="387"/>
        <location filename="../../src/ui/MainWindow.cpp" line="420"/>
        <source>&amp;Start</source>
        <translation>&amp;Starten</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="389"/>
        <source>&amp;Date and Time…</source>
        <translation>&amp;Datum und Uhrzeit …</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="392"/>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="393"/>
        <source>Quillon &amp;Help</source>
        <translation>Quillon-&amp;Hilfe</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="395"/>
        <source>&amp;About Quillon</source>
        <translation>&amp;Über Quillon</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="420"/>
        <source>&amp;Stop</source>
        <translation>&amp;Anhalten</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="458"/>
        <source>Launch date and time</source>
        <translation>Startdatum und -uhrzeit</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="474"/>
        <location filename="../../src/ui/MainWindow.cpp" line="520"/>
        <source>Date Change</source>
        <translation>Datumsänderung</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="530"/>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="537"/>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="552"/>
        <source>Move</source>
        <translation>Verschieben</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="565"/>
        <source>&amp;Open Now</source>
        <translation>Jetzt ö&amp;ffnen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="571"/>
        <source>Show in &amp;File Manager</source>
        <translation>In der &amp;Dateiverwaltung zeigen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="574"/>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <location filename="../../src/ui/MainWindow.cpp" line="584"/>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
</context>
<context>
    <name>Quillon::PreferencesDialog</name>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="69"/>
        <source>Quillon Preferences</source>
        <translation>Quillon-Einstellungen</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="71"/>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="72"/>
        <source>Mail</source>
        <translation>E-Mail</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="121"/>
        <source>Remember the list between sessions</source>
        <translation>Die Liste zwischen Sitzungen behalten</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="122"/>
        <source>A dropped folder adds the files inside it</source>
        <translation>Ein abgelegter Ordner fügt die Dateien darin hinzu</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="123"/>
        <source>…and the files in its subfolders</source>
        <translation>… und die Dateien in seinen Unterordnern</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="133"/>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="156"/>
        <source>Never</source>
        <translation>Nie</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="135"/>
        <source>Repeat every</source>
        <translation>Wiederholen alle</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="138"/>
        <source>seconds</source>
        <translation>Sekunden</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="138"/>
        <source>minutes</source>
        <translation>Minuten</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="138"/>
        <source>hours</source>
        <translation>Stunden</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="138"/>
        <source>days</source>
        <translation>Tage</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="139"/>
        <source>Repeat unit</source>
        <translation>Wiederholungseinheit</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="150"/>
        <source>Repeat every:</source>
        <translation>Wiederholen alle:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="151"/>
        <source>Quit after the last item has been opened</source>
        <translation>Beenden, nachdem der letzte Eintrag geöffnet wurde</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="155"/>
        <source> min</source>
        <translation> Min.</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="159"/>
        <source>End a script after:</source>
        <translation>Skript beenden nach:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="162"/>
        <source>Start Quillon when I log in</source>
        <translation>Quillon bei der Anmeldung starten</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="192"/>
        <source>This address cannot be used for mail: %1. It was not saved.</source>
        <translation>Diese Adresse kann nicht für E-Mails verwendet werden: %1. Sie wurde nicht gespeichert.</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="207"/>
        <source>Send a message for each opened item</source>
        <translation>Für jeden geöffneten Eintrag eine Nachricht senden</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="208"/>
        <source>Send the result of each script</source>
        <translation>Das Ergebnis jedes Skripts senden</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="209"/>
        <source>Recipient address:</source>
        <translation>Empfängeradresse:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="211"/>
        <source>Recipient name:</source>
        <translation>Empfängername:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="213"/>
        <source>Outgoing server</source>
        <translation>Postausgangsserver</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="216"/>
        <source>Address:</source>
        <translation>Adresse:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="221"/>
        <source>Not set</source>
        <translation>Nicht gesetzt</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="224"/>
        <source>Port:</source>
        <translation>Port:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="225"/>
        <source>Use a secure connection (TLS)</source>
        <translation>Sichere Verbindung verwenden (TLS)</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="229"/>
        <source>Login</source>
        <translation>Anmeldung</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="230"/>
        <source>Login:</source>
        <translation>Anmeldung:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="227"/>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="232"/>
        <source>Username:</source>
        <translation>Benutzername:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="248"/>
        <source>Password:</source>
        <translation>Passwort:</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="252"/>
        <source>Without TLS the password is sent unencrypted.</source>
        <translation>Ohne TLS wird das Passwort unverschlüsselt gesendet.</translation>
    </message>
    <message>
        <location filename="../../src/ui/PreferencesDialog.cpp" line="265"/>
        <source>Send Test Message</source>
        <translation>Testnachricht senden</translation>
    </message>
</context>
<context>
    <name>Quillon::QuillonController</name>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="167"/>
        <source>About Quillon</source>
        <translation>Über Quillon</translation>
    </message>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="168"/>
        <source>&lt;h3&gt;Quillon %1&lt;/h3&gt;&lt;p&gt;Opens files, applications and scripts at the times you choose.&lt;/p&gt;&lt;p&gt;Free software under the GNU General Public License, version 3 or later.&lt;/p&gt;</source>
        <translation>&lt;h3&gt;Quillon %1&lt;/h3&gt;&lt;p&gt;Öffnet Dateien, Anwendungen und Skripte zu den Zeiten, die Sie festlegen.&lt;/p&gt;&lt;p&gt;Freie Software unter der GNU General Public License, Version 3 oder neuer.&lt;/p&gt;</translation>
    </message>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="187"/>
        <source>Show Quillon</source>
        <translation>Quillon anzeigen</translation>
    </message>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="188"/>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="268"/>
        <source>Sending…</source>
        <translation>Wird gesendet …</translation>
    </message>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="274"/>
        <source>Sent to %1</source>
        <translation>Gesendet an %1</translation>
    </message>
    <message>
        <location filename="../../src/app/QuillonController.cpp" line="275"/>
        <source>Not sent: %1</source>
        <translation>Nicht gesendet: %1</translation>
    </message>
</context>
<context>
    <name>Quillon::SimpleSMTP</name>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="52"/>
        <source>The recipient address cannot be used: %1.</source>
        <translation>Die Empfängeradresse kann nicht verwendet werden: %1.</translation>
    </message>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="74"/>
        <source>An error occurred when sending email.</source>
        <translation>Beim Senden der E-Mail ist ein Fehler aufgetreten.</translation>
    </message>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="162"/>
        <source>the server refused the login</source>
        <translation>der Server hat die Anmeldung abgelehnt</translation>
    </message>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="180"/>
        <source>the server refused the message: %1</source>
        <translation>der Server hat die Nachricht abgelehnt: %1</translation>
    </message>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="190"/>
        <source>Message not sent. Server response: %1</source>
        <translation>Nachricht nicht gesendet. Antwort des Servers: %1</translation>
    </message>
    <message>
        <location filename="../../src/mail/SimpleSMTP.cpp" line="208"/>
        <source>the session ended before the message was sent</source>
        <translation>die Verbindung endete, bevor die Nachricht gesendet war</translation>
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

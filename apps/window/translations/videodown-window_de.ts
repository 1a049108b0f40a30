<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>AddDialog</name>
    <message>
        <source>Add videos</source>
        <translation>Videos hinzufügen</translation>
    </message>
    <message>
        <source>&amp;Addresses of video pages, one per line:</source>
        <translation>&amp;Adressen von Videoseiten, eine pro Zeile:</translation>
    </message>
    <message>
        <source>Ask the &amp;site what it offers</source>
        <translation>&amp;Angebot der Seite abfragen</translation>
    </message>
    <message>
        <source>Formats that the site offers</source>
        <translation>Formate, die die Seite anbietet</translation>
    </message>
    <message>
        <source>Container</source>
        <translation>Container</translation>
    </message>
    <message>
        <source>Picture size</source>
        <translation>Bildgröße</translation>
    </message>
    <message>
        <source>Remarks</source>
        <translation>Bemerkungen</translation>
    </message>
    <message>
        <source>&amp;Download</source>
        <translation>&amp;Herunterladen</translation>
    </message>
    <message>
        <source>&quot;%1&quot;: %2</source>
        <translation>„%1“: %2</translation>
    </message>
    <message numerus="yes">
        <source>%n address(es)</source>
        <translation>
            <numerusform>%n Adresse</numerusform>
            <numerusform>%n Adressen</numerusform>
        </translation>
    </message>
    <message>
        <source>Asking the site…</source>
        <translation>Die Seite wird gefragt …</translation>
    </message>
    <message>
        <source>%1 (%2:%3)</source>
        <translation>%1 (%2:%3)</translation>
    </message>
    <message>
        <source>no address</source>
        <translation>keine Adresse</translation>
    </message>
    <message>
        <source>will be downloaded</source>
        <translation>wird heruntergeladen</translation>
    </message>
</context>
<context>
    <name>ColumnMenu</name>
    <message>
        <source>&amp;Columns</source>
        <translation>&amp;Spalten</translation>
    </message>
</context>
<context>
    <name>DetailsPane</name>
    <message>
        <source>Details of the selected task</source>
        <translation>Einzelheiten zum ausgewählten Video</translation>
    </message>
    <message>
        <source>Why it failed</source>
        <translation>Warum es fehlschlug</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>A conversion would make</source>
        <translation>Eine Umwandlung ergäbe</translation>
    </message>
    <message>
        <source>Formats that the site offered</source>
        <translation>Formate, die die Seite angeboten hat</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Eintrag</translation>
    </message>
    <message>
        <source>Select a video to see its details.</source>
        <translation>Wählen Sie ein Video aus, um Einzelheiten zu sehen.</translation>
    </message>
    <message numerus="yes">
        <source>%n video(s) selected.</source>
        <translation>
            <numerusform>%n Video ausgewählt.</numerusform>
            <numerusform>%n Videos ausgewählt.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Engine</name>
    <message>
        <source>The address may have expired: parse the page again.</source>
        <translation>Die Adresse ist vielleicht abgelaufen: Fragen Sie die Seite noch einmal ab.</translation>
    </message>
    <message>
        <source>Try again later.</source>
        <translation>Versuchen Sie es später noch einmal.</translation>
    </message>
    <message>
        <source>Check the address.</source>
        <translation>Prüfen Sie die Adresse.</translation>
    </message>
    <message>
        <source>Run the command by hand with this address to see what it says.</source>
        <translation>Rufen Sie den Befehl mit dieser Adresse von Hand auf, um zu sehen, was er meldet.</translation>
    </message>
    <message>
        <source>Bad Request</source>
        <translation>Fehlerhafte Anfrage</translation>
    </message>
    <message>
        <source>Unauthorized</source>
        <translation>Nicht angemeldet</translation>
    </message>
    <message>
        <source>The site wants a login, which is not supported.</source>
        <translation>Die Seite verlangt eine Anmeldung; das wird nicht unterstützt.</translation>
    </message>
    <message>
        <source>Forbidden</source>
        <translation>Verboten</translation>
    </message>
    <message>
        <source>Not Found</source>
        <translation>Nicht gefunden</translation>
    </message>
    <message>
        <source>Proxy Authentication Required</source>
        <translation>Anmeldung am Proxy nötig</translation>
    </message>
    <message>
        <source>Check user and password of the proxy.</source>
        <translation>Prüfen Sie Benutzer und Passwort des Proxys.</translation>
    </message>
    <message>
        <source>Request Timeout</source>
        <translation>Anfrage dauerte zu lange</translation>
    </message>
    <message>
        <source>Gone</source>
        <translation>Nicht mehr vorhanden</translation>
    </message>
    <message>
        <source>Range Not Satisfiable</source>
        <translation>Bereich nicht verfügbar</translation>
    </message>
    <message>
        <source>Too Many Requests</source>
        <translation>Zu viele Anfragen</translation>
    </message>
    <message>
        <source>Unavailable For Legal Reasons</source>
        <translation>Aus rechtlichen Gründen nicht verfügbar</translation>
    </message>
    <message>
        <source>Internal Server Error</source>
        <translation>Interner Fehler des Servers</translation>
    </message>
    <message>
        <source>Bad Gateway</source>
        <translation>Fehlerhaftes Gateway</translation>
    </message>
    <message>
        <source>Service Unavailable</source>
        <translation>Dienst nicht verfügbar</translation>
    </message>
    <message>
        <source>Gateway Timeout</source>
        <translation>Zeitüberschreitung am Gateway</translation>
    </message>
    <message>
        <source>not the address of a video</source>
        <translation>nicht die Adresse eines Videos</translation>
    </message>
    <message>
        <source>the address leads away from HTTP and HTTPS</source>
        <translation>die Adresse führt weg von HTTP und HTTPS</translation>
    </message>
    <message>
        <source>unknown host</source>
        <translation>unbekannter Server</translation>
    </message>
    <message>
        <source>Check the address and the connection to the network.</source>
        <translation>Prüfen Sie die Adresse und die Netzwerkverbindung.</translation>
    </message>
    <message>
        <source>no connection to the host</source>
        <translation>keine Verbindung zum Server</translation>
    </message>
    <message>
        <source>Check the connection to the network, or try again later.</source>
        <translation>Prüfen Sie die Netzwerkverbindung, oder versuchen Sie es später noch einmal.</translation>
    </message>
    <message>
        <source>no trustworthy encrypted connection</source>
        <translation>keine vertrauenswürdige verschlüsselte Verbindung</translation>
    </message>
    <message>
        <source>Check the clock of this computer and its certificates.</source>
        <translation>Prüfen Sie die Uhr und die Zertifikate dieses Rechners.</translation>
    </message>
    <message>
        <source>the proxy does not serve</source>
        <translation>der Proxy arbeitet nicht</translation>
    </message>
    <message>
        <source>Check the proxy settings.</source>
        <translation>Prüfen Sie die Proxy-Einstellungen.</translation>
    </message>
    <message>
        <source>no answer in time</source>
        <translation>keine Antwort in der vorgesehenen Zeit</translation>
    </message>
    <message>
        <source>the connection broke off</source>
        <translation>die Verbindung ist abgebrochen</translation>
    </message>
    <message>
        <source>the site sent less than it announced</source>
        <translation>die Seite hat weniger gesendet als angekündigt</translation>
    </message>
    <message>
        <source>redirected too many times</source>
        <translation>zu viele Weiterleitungen</translation>
    </message>
    <message>
        <source>the site sent an empty answer</source>
        <translation>die Seite hat eine leere Antwort gesendet</translation>
    </message>
    <message>
        <source>the answer makes no sense</source>
        <translation>die Antwort ist unbrauchbar</translation>
    </message>
    <message>
        <source>the answer is too large</source>
        <translation>die Antwort ist zu groß</translation>
    </message>
    <message>
        <source>the site sent a page instead of the file</source>
        <translation>die Seite hat statt der Datei eine Webseite gesendet</translation>
    </message>
    <message>
        <source>the site does not continue where the file ends</source>
        <translation>die Seite setzt nicht dort fort, wo die Datei endet</translation>
    </message>
    <message>
        <source>the download folder does not exist</source>
        <translation>der Download-Ordner existiert nicht</translation>
    </message>
    <message>
        <source>Create the folder or choose another one.</source>
        <translation>Legen Sie den Ordner an, oder wählen Sie einen anderen.</translation>
    </message>
    <message>
        <source>the file&apos;s name is too long</source>
        <translation>der Dateiname ist zu lang</translation>
    </message>
    <message>
        <source>Choose a download folder with a shorter path or another file system.</source>
        <translation>Wählen Sie einen Download-Ordner mit kürzerem Pfad oder auf einem anderen Dateisystem.</translation>
    </message>
    <message>
        <source>the file cannot be written</source>
        <translation>die Datei kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>Check the permissions of the download folder, and what is in the file&apos;s place.</source>
        <translation>Prüfen Sie die Rechte des Download-Ordners, und was am Platz der Datei liegt.</translation>
    </message>
    <message>
        <source>another download is writing this file</source>
        <translation>ein anderer Download schreibt diese Datei</translation>
    </message>
    <message>
        <source>Wait until it has ended.</source>
        <translation>Warten Sie, bis er beendet ist.</translation>
    </message>
    <message>
        <source>the disk is full</source>
        <translation>der Datenträger ist voll</translation>
    </message>
    <message>
        <source>Free some space and try again.</source>
        <translation>Schaffen Sie Platz, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>the video-info command cannot be started</source>
        <translation>der Video-Info-Befehl kann nicht gestartet werden</translation>
    </message>
    <message>
        <source>Check the name of the command, and that it is installed and executable.</source>
        <translation>Prüfen Sie den Namen des Befehls, und ob er installiert und ausführbar ist.</translation>
    </message>
    <message>
        <source>the video-info command failed</source>
        <translation>der Video-Info-Befehl ist fehlgeschlagen</translation>
    </message>
    <message>
        <source>internal error</source>
        <translation>interner Fehler</translation>
    </message>
    <message>
        <source>too many files are open</source>
        <translation>zu viele Dateien sind geöffnet</translation>
    </message>
    <message>
        <source>Download fewer videos at once, or allow more open files.</source>
        <translation>Laden Sie weniger Videos gleichzeitig herunter, oder erlauben Sie mehr offene Dateien.</translation>
    </message>
    <message>
        <source>the disk reports an error</source>
        <translation>der Datenträger meldet einen Fehler</translation>
    </message>
    <message>
        <source>Check the disk.</source>
        <translation>Prüfen Sie den Datenträger.</translation>
    </message>
    <message>
        <source>the video-info command gave no usable answer</source>
        <translation>der Video-Info-Befehl gab keine brauchbare Antwort</translation>
    </message>
    <message>
        <source>the file is larger than the disk or the system allows</source>
        <translation>die Datei ist größer, als Datenträger oder System erlauben</translation>
    </message>
    <message>
        <source>Choose a smaller format, or a download folder on another file system.</source>
        <translation>Wählen Sie ein kleineres Format, oder einen Download-Ordner auf einem anderen Dateisystem.</translation>
    </message>
    <message>
        <source>the site answered</source>
        <translation>die Seite antwortete</translation>
    </message>
    <message>
        <source>unknown cause</source>
        <translation>unbekannte Ursache</translation>
    </message>
</context>
<context>
    <name>HistoryKeeper</name>
    <message>
        <source>the folder of %1 cannot be made</source>
        <translation>der Ordner von %1 kann nicht angelegt werden</translation>
    </message>
    <message>
        <source>%1 is not a file</source>
        <translation>%1 ist keine Datei</translation>
    </message>
    <message>
        <source>%1 is damaged and cannot be set aside</source>
        <translation>%1 ist beschädigt und kann nicht beiseitegelegt werden</translation>
    </message>
    <message>
        <source>%1 belongs to another history and cannot be set aside</source>
        <translation>%1 gehört zu einem anderen Verlauf und kann nicht beiseitegelegt werden</translation>
    </message>
    <message>
        <source>the history is not open</source>
        <translation>der Verlauf ist nicht geöffnet</translation>
    </message>
    <message>
        <source>%1.journal cannot be written; the disk may be full</source>
        <translation>%1.journal kann nicht geschrieben werden; vielleicht ist der Datenträger voll</translation>
    </message>
    <message>
        <source>%1 cannot be replaced</source>
        <translation>%1 kann nicht ersetzt werden</translation>
    </message>
    <message>
        <source>%1 cannot be written</source>
        <translation>%1 kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>%1 could not be written whole; the disk may be full</source>
        <translation>%1 konnte nicht ganz geschrieben werden; vielleicht ist der Datenträger voll</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Videodown</source>
        <translation>Videodown</translation>
    </message>
    <message>
        <source>There is no keyring: the password of the proxy is kept until the program ends.</source>
        <translation>Es gibt keinen Schlüsselbund: Das Passwort des Proxys bleibt bis zum Ende des Programms gespeichert.</translation>
    </message>
    <message>
        <source>Videos</source>
        <translation>Videos</translation>
    </message>
    <message>
        <source>Details</source>
        <translation>Einzelheiten</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Add…</source>
        <translation>&amp;Hinzufügen …</translation>
    </message>
    <message>
        <source>&amp;Paste addresses</source>
        <translation>Adressen &amp;einfügen</translation>
    </message>
    <message>
        <source>&amp;Settings…</source>
        <translation>E&amp;instellungen …</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Pause</source>
        <translation>&amp;Pause</translation>
    </message>
    <message>
        <source>C&amp;ontinue</source>
        <translation>&amp;Weiter</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>&amp;Anhalten</translation>
    </message>
    <message>
        <source>&amp;Resume</source>
        <translation>&amp;Fortsetzen</translation>
    </message>
    <message>
        <source>&amp;Try again</source>
        <translation>&amp;Erneut versuchen</translation>
    </message>
    <message>
        <source>Move &amp;up</source>
        <translation>Nach &amp;oben</translation>
    </message>
    <message>
        <source>Move &amp;down</source>
        <translation>Nach &amp;unten</translation>
    </message>
    <message>
        <source>&amp;Open file</source>
        <translation>&amp;Datei öffnen</translation>
    </message>
    <message>
        <source>Open &amp;folder</source>
        <translation>O&amp;rdner öffnen</translation>
    </message>
    <message>
        <source>&amp;Copy address</source>
        <translation>Adresse &amp;kopieren</translation>
    </message>
    <message>
        <source>Re&amp;name…</source>
        <translation>U&amp;mbenennen …</translation>
    </message>
    <message>
        <source>&amp;Larger picture…</source>
        <translation>&amp;Größeres Bild …</translation>
    </message>
    <message>
        <source>Con&amp;vert…</source>
        <translation>Um&amp;wandeln …</translation>
    </message>
    <message>
        <source>Re&amp;move from list</source>
        <translation>Aus der &amp;Liste entfernen</translation>
    </message>
    <message>
        <source>&amp;Delete files…</source>
        <translation>Dateien lös&amp;chen …</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Video</source>
        <translation>&amp;Video</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>Werkzeuge</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>Show videos in this state</source>
        <translation>Videos in diesem Zustand zeigen</translation>
    </message>
    <message>
        <source>All</source>
        <translation>Alle</translation>
    </message>
    <message>
        <source>Running</source>
        <translation>Laufend</translation>
    </message>
    <message>
        <source>Waiting</source>
        <translation>Wartend</translation>
    </message>
    <message>
        <source>Finished</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Failed</source>
        <translation>Fehlgeschlagen</translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation>Angehalten</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Search titles, addresses and files</source>
        <translation>Titel, Adressen und Dateien durchsuchen</translation>
    </message>
    <message>
        <source>&amp;Search</source>
        <translation>&amp;Suchen</translation>
    </message>
    <message numerus="yes">
        <source>%n video(s) added</source>
        <translation>
            <numerusform>%n Video hinzugefügt</numerusform>
            <numerusform>%n Videos hinzugefügt</numerusform>
        </translation>
    </message>
    <message>
        <source>There is no address in the clipboard.</source>
        <translation>In der Zwischenablage ist keine Adresse.</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Umbenennen</translation>
    </message>
    <message>
        <source>New name of the file:</source>
        <translation>Neuer Name der Datei:</translation>
    </message>
    <message>
        <source>Larger picture</source>
        <translation>Größeres Bild</translation>
    </message>
    <message>
        <source>Container and picture size:</source>
        <translation>Container und Bildgröße:</translation>
    </message>
    <message>
        <source>Convert</source>
        <translation>Umwandeln</translation>
    </message>
    <message>
        <source>Container, and picture size if it matters:</source>
        <translation>Container und, falls gewünscht, Bildgröße:</translation>
    </message>
    <message>
        <source>For reading only: %1</source>
        <translation>Nur zum Lesen: %1</translation>
    </message>
    <message>
        <source>The journal beside the history belongs to another history. It was kept as
%1</source>
        <translation>Das Journal neben dem Verlauf gehört zu einem anderen Verlauf. Es liegt unter
%1</translation>
    </message>
    <message numerus="yes">
        <source>%n download(s) were interrupted. Resume them now?</source>
        <translation>
            <numerusform>%n Download wurde unterbrochen. Jetzt fortsetzen?</numerusform>
            <numerusform>%n Downloads wurden unterbrochen. Jetzt fortsetzen?</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 running, %2 waiting, %3 failed · %4/s</source>
        <translation>%1 laufend, %2 wartend, %3 fehlgeschlagen · %4/s</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message numerus="yes">
        <source>Remove %n video(s) from the list and delete these files?</source>
        <translation>
            <numerusform>%n Video aus der Liste entfernen und diese Dateien löschen?</numerusform>
            <numerusform>%n Videos aus der Liste entfernen und diese Dateien löschen?</numerusform>
        </translation>
    </message>
    <message>
        <source>There are no files.</source>
        <translation>Es gibt keine Dateien.</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>All downloads have ended.</source>
        <translation>Alle Downloads sind beendet.</translation>
    </message>
    <message>
        <source>Stopping and saving…</source>
        <translation>Es wird angehalten und gespeichert …</translation>
    </message>
    <message>
        <source>The history could not be saved: %1</source>
        <translation>Der Verlauf konnte nicht gespeichert werden: %1</translation>
    </message>
    <message>
        <source>no video is selected</source>
        <translation>kein Video ausgewählt</translation>
    </message>
    <message>
        <source>only one video at a time</source>
        <translation>nur für ein einzelnes Video</translation>
    </message>
    <message numerus="yes">
        <source>%n video(s) not added: the history can only be read.</source>
        <translation>
            <numerusform>%n Video nicht hinzugefügt: Der Verlauf kann nur gelesen werden.</numerusform>
            <numerusform>%n Videos nicht hinzugefügt: Der Verlauf kann nur gelesen werden.</numerusform>
        </translation>
    </message>
    <message>
        <source>Open a&amp;gain</source>
        <translation>&amp;Neu öffnen</translation>
    </message>
    <message>
        <source>The history was damaged. What could be read of it is in the list.

The damaged file was kept as
%1
The version before it, if there was one, is beside it, with “.previous” added to the name.</source>
        <translation>Der Verlauf war beschädigt. Was davon zu lesen war, steht in der Liste.

Die beschädigte Datei liegt nun unter
%1
Die Fassung davor, falls es eine gab, liegt daneben, mit angehängtem „.previous“.</translation>
    </message>
</context>
<context>
    <name>SettingsDialog</name>
    <message>
        <source>&amp;Download to:</source>
        <translation>&amp;Herunterladen nach:</translation>
    </message>
    <message>
        <source>the same folder</source>
        <translation>derselbe Ordner</translation>
    </message>
    <message>
        <source>&amp;Videos at once:</source>
        <translation>&amp;Videos gleichzeitig:</translation>
    </message>
    <message>
        <source>&amp;Notify me when all downloads have ended</source>
        <translation>&amp;Melden, wenn alle Downloads beendet sind</translation>
    </message>
    <message>
        <source>Show an &amp;icon in the system tray</source>
        <translation>&amp;Symbol im Infobereich zeigen</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keiner</translation>
    </message>
    <message>
        <source>SOCKS5 that resolves host names</source>
        <translation>SOCKS5, der Rechnernamen auflöst</translation>
    </message>
    <message>
        <source>&amp;Proxy:</source>
        <translation>&amp;Proxy:</translation>
    </message>
    <message>
        <source>&amp;Host:</source>
        <translation>&amp;Rechner:</translation>
    </message>
    <message>
        <source>P&amp;ort:</source>
        <translation>P&amp;ort:</translation>
    </message>
    <message>
        <source>&amp;User:</source>
        <translation>&amp;Benutzer:</translation>
    </message>
    <message>
        <source>Pass&amp;word:</source>
        <translation>Pass&amp;wort:</translation>
    </message>
    <message>
        <source>There is no keyring: the password is kept until the program ends.</source>
        <translation>Es gibt keinen Schlüsselbund: Das Passwort bleibt bis zum Ende des Programms gespeichert.</translation>
    </message>
    <message>
        <source>&quot;auto&quot;: the site is asked, then yt-dlp, if it is installed; &quot;site&quot;: only the site. Anything else is a command: it gets the address of a page as its last argument and prints what the site offers.</source>
        <translation>„auto“: gefragt wird die Seite, dann yt-dlp, falls installiert; „site“: nur die Seite. Alles andere ist ein Befehl: Er bekommt die Adresse einer Seite als letztes Argument und gibt aus, was die Seite anbietet.</translation>
    </message>
    <message>
        <source>Video &amp;info:</source>
        <translation>Video&amp;angaben:</translation>
    </message>
    <message>
        <source>Give the whole path of the folder.</source>
        <translation>Geben Sie den vollständigen Pfad des Ordners an.</translation>
    </message>
    <message>
        <source>Give the host of the proxy.</source>
        <translation>Geben Sie den Rechner des Proxys an.</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Do&amp;wnloads</source>
        <translation>&amp;Downloads</translation>
    </message>
    <message>
        <source>N&amp;etwork</source>
        <translation>&amp;Netzwerk</translation>
    </message>
    <message>
        <source>Download &amp;thumbnails</source>
        <translation>&amp;Vorschaubilder herunterladen</translation>
    </message>
    <message>
        <source>&amp;Connections for each video:</source>
        <translation>&amp;Verbindungen je Video:</translation>
    </message>
    <message>
        <source> KiB/s</source>
        <translation> KiB/s</translation>
    </message>
    <message>
        <source>No limit</source>
        <translation>Unbegrenzt</translation>
    </message>
    <message>
        <source>For all downloads together</source>
        <translation>Für alle Downloads zusammen</translation>
    </message>
    <message>
        <source>&amp;Speed limit:</source>
        <translation>&amp;Tempo höchstens:</translation>
    </message>
</context>
<context>
    <name>TaskModel</name>
    <message>
        <source>Title</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Tempo</translation>
    </message>
    <message>
        <source>Time left</source>
        <translation>Restzeit</translation>
    </message>
    <message>
        <source>Added</source>
        <translation>Hinzugefügt</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>%1/s</source>
        <translation>%1/s</translation>
    </message>
    <message>
        <source>Converting</source>
        <translation>Wird umgewandelt</translation>
    </message>
    <message>
        <source>Waiting</source>
        <translation>Wartend</translation>
    </message>
    <message>
        <source>Asking the site</source>
        <translation>Seite wird gefragt</translation>
    </message>
    <message>
        <source>Downloading</source>
        <translation>Wird heruntergeladen</translation>
    </message>
    <message>
        <source>Paused</source>
        <translation>Pausiert</translation>
    </message>
    <message>
        <source>Copying</source>
        <translation>Wird kopiert</translation>
    </message>
    <message>
        <source>Stopping</source>
        <translation>Wird angehalten</translation>
    </message>
    <message>
        <source>Finished</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Failed</source>
        <translation>Fehlgeschlagen</translation>
    </message>
    <message>
        <source>Failed: %1</source>
        <translation>Fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation>Angehalten</translation>
    </message>
    <message>
        <source>Interrupted</source>
        <translation>Unterbrochen</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
</context>
<context>
    <name>Texts</name>
    <message>
        <source>the address is empty</source>
        <translation>die Adresse ist leer</translation>
    </message>
    <message>
        <source>Give the address of a video page.</source>
        <translation>Geben Sie die Adresse einer Videoseite an.</translation>
    </message>
    <message>
        <source>the address is longer than %1 bytes</source>
        <translation>die Adresse ist länger als %1 Bytes</translation>
    </message>
    <message>
        <source>Give a shorter address of the same page.</source>
        <translation>Geben Sie eine kürzere Adresse derselben Seite an.</translation>
    </message>
    <message>
        <source>not an http or https address</source>
        <translation>keine http- oder https-Adresse</translation>
    </message>
    <message>
        <source>Give the whole address of a video page, as in https://host/page.</source>
        <translation>Geben Sie die ganze Adresse einer Videoseite an, etwa https://server/seite.</translation>
    </message>
    <message>
        <source>the folder name &quot;%1&quot; has a backslash, or a percent sign before a digit</source>
        <translation>der Ordnername „%1“ enthält einen umgekehrten Schrägstrich oder ein Prozentzeichen vor einer Ziffer</translation>
    </message>
    <message>
        <source>Choose another folder.</source>
        <translation>Wählen Sie einen anderen Ordner.</translation>
    </message>
    <message>
        <source>there is no such task</source>
        <translation>diese Aufgabe gibt es nicht</translation>
    </message>
    <message>
        <source>the task is at work</source>
        <translation>die Aufgabe ist gerade in Arbeit</translation>
    </message>
    <message>
        <source>only a video that is being downloaded can be paused</source>
        <translation>nur ein Video, das gerade geladen wird, kann pausiert werden</translation>
    </message>
    <message>
        <source>the task is not paused</source>
        <translation>die Aufgabe ist nicht pausiert</translation>
    </message>
    <message>
        <source>only a task that waits can be moved</source>
        <translation>nur eine wartende Aufgabe kann verschoben werden</translation>
    </message>
    <message>
        <source>only a task that waits or runs can be stopped</source>
        <translation>nur eine wartende oder laufende Aufgabe kann angehalten werden</translation>
    </message>
    <message>
        <source>ffmpeg cannot be started</source>
        <translation>ffmpeg kann nicht gestartet werden</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be written to</source>
        <translation>in „%1“ kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>ffmpeg was ended</source>
        <translation>ffmpeg wurde beendet</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be written</source>
        <translation>„%1“ kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>the conversion failed, %1; the downloaded file is safe: &quot;%2&quot;</source>
        <translation>die Umwandlung ist fehlgeschlagen, %1; die heruntergeladene Datei ist sicher: „%2“</translation>
    </message>
    <message>
        <source>the video is being converted</source>
        <translation>das Video wird gerade umgewandelt</translation>
    </message>
    <message>
        <source>only a finished task whose file is there can be converted</source>
        <translation>nur eine fertige Aufgabe, deren Datei da ist, kann umgewandelt werden</translation>
    </message>
    <message>
        <source>ffmpeg is not installed</source>
        <translation>ffmpeg ist nicht installiert</translation>
    </message>
    <message>
        <source>the path of the file is too long: &quot;%1&quot;</source>
        <translation>der Pfad der Datei ist zu lang: „%1“</translation>
    </message>
    <message>
        <source>Choose a folder with a shorter path.</source>
        <translation>Wählen Sie einen Ordner mit kürzerem Pfad.</translation>
    </message>
    <message>
        <source>the site&apos;s address of the video is too long</source>
        <translation>die Adresse, die die Seite für das Video nennt, ist zu lang</translation>
    </message>
    <message>
        <source>Choose another format.</source>
        <translation>Wählen Sie ein anderes Format.</translation>
    </message>
    <message>
        <source>the download engine did not take the request</source>
        <translation>die Download-Engine hat die Anfrage nicht angenommen</translation>
    </message>
    <message>
        <source>Try again later.</source>
        <translation>Versuchen Sie es später noch einmal.</translation>
    </message>
    <message>
        <source>%1 is in use by %2</source>
        <translation>%1 wird von %2 benutzt</translation>
    </message>
    <message>
        <source>%1 cannot be locked: its folder cannot be written</source>
        <translation>%1 kann nicht gesperrt werden: In den Ordner kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>%1 cannot be locked: &quot;%2&quot; is in the way</source>
        <translation>%1 kann nicht gesperrt werden: „%2“ ist im Weg</translation>
    </message>
    <message>
        <source>%1 cannot be locked: &quot;%2&quot; cannot be read or removed</source>
        <translation>%1 kann nicht gesperrt werden: „%2“ kann nicht gelesen oder entfernt werden</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be written (%2)</source>
        <translation>„%1“ kann nicht geschrieben werden (%2)</translation>
    </message>
    <message>
        <source>Choose an output folder that you may write to.</source>
        <translation>Wählen Sie einen Ausgabeordner, in den Sie schreiben dürfen.</translation>
    </message>
    <message>
        <source>the copy into &quot;%1&quot; failed, %2; the downloaded file is safe: &quot;%3&quot;</source>
        <translation>das Kopieren nach „%1“ ist fehlgeschlagen, %2; die heruntergeladene Datei ist sicher: „%3“</translation>
    </message>
    <message>
        <source>the disk is full</source>
        <translation>der Datenträger ist voll</translation>
    </message>
    <message>
        <source>the folder cannot be written</source>
        <translation>in den Ordner kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>Free some space and copy the file yourself.</source>
        <translation>Schaffen Sie Platz, und kopieren Sie die Datei selbst.</translation>
    </message>
    <message>
        <source>Copy the file yourself, or choose another output folder.</source>
        <translation>Kopieren Sie die Datei selbst, oder wählen Sie einen anderen Ausgabeordner.</translation>
    </message>
    <message>
        <source>it cannot be made</source>
        <translation>er kann nicht angelegt werden</translation>
    </message>
    <message>
        <source>the downloaded file &quot;%1&quot; is gone</source>
        <translation>die heruntergeladene Datei „%1“ ist verschwunden</translation>
    </message>
    <message>
        <source>Start the download again.</source>
        <translation>Starten Sie den Download noch einmal.</translation>
    </message>
    <message>
        <source>nothing of that name can be used in a file name</source>
        <translation>nichts von diesem Namen ist in einem Dateinamen erlaubt</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not the task&apos;s, or has another name than the video</source>
        <translation>„%1“ gehört nicht zur Aufgabe oder heißt anders als das Video</translation>
    </message>
    <message>
        <source>&quot;%1&quot; exists already</source>
        <translation>„%1“ gibt es schon</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be renamed</source>
        <translation>„%1“ kann nicht umbenannt werden</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be renamed; the video is &quot;%2&quot; now</source>
        <translation>„%1“ kann nicht umbenannt werden; das Video heißt jetzt „%2“</translation>
    </message>
    <message>
        <source>it is not UTF-8</source>
        <translation>sie ist nicht in UTF-8</translation>
    </message>
    <message>
        <source>there are blanks before the key or around the equals sign: &quot;%1&quot;</source>
        <translation>vor dem Schlüssel oder um das Gleichheitszeichen stehen Leerzeichen: „%1“</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not of the form N/WIDTHxHEIGHT</source>
        <translation>„%1“ hat nicht die Form N/BREITExHÖHE</translation>
    </message>
    <message>
        <source>the number of &quot;%1&quot; stands for no container: 18, 22, 37 and 38 are MP4, 5, 34 and 35 are FLV</source>
        <translation>die Nummer von „%1“ steht für keinen Container: 18, 22, 37 und 38 sind MP4, 5, 34 und 35 sind FLV</translation>
    </message>
    <message>
        <source>&quot;%1&quot; does not begin with a number and a bar: a comma inside an address is written %2</source>
        <translation>„%1“ beginnt nicht mit einer Nummer und einem senkrechten Strich: ein Komma in einer Adresse schreibt man %2</translation>
    </message>
    <message>
        <source>&quot;%1&quot; has a second bar: a bar inside an address is written %2</source>
        <translation>„%1“ hat einen zweiten senkrechten Strich: in einer Adresse schreibt man ihn %2</translation>
    </message>
    <message>
        <source>&quot;%1&quot; has no address of HTTP or HTTPS with at most 1023 bytes</source>
        <translation>„%1“ hat keine HTTP- oder HTTPS-Adresse von höchstens 1023 Bytes</translation>
    </message>
    <message>
        <source>the format %1 is only in one of fmt_list and fmt_stream_map</source>
        <translation>das Format %1 steht nur in einer der Listen fmt_list und fmt_stream_map</translation>
    </message>
    <message>
        <source>there is no line &quot;%1=...&quot;</source>
        <translation>die Zeile „%1=...“ fehlt</translation>
    </message>
    <message>
        <source>line %1: %2</source>
        <translation>Zeile %1: %2</translation>
    </message>
    <message>
        <source>a mistake in what the video-info command prints: %1</source>
        <translation>ein Fehler in der Ausgabe des Video-Info-Befehls: %1</translation>
    </message>
    <message>
        <source>Run the command by hand with this address to see what it says.</source>
        <translation>Rufen Sie den Befehl mit dieser Adresse von Hand auf, um zu sehen, was er meldet.</translation>
    </message>
    <message>
        <source>the site has no video info, and the extractor says: %1</source>
        <translation>die Seite hat keine Videoangaben, und der Extraktor meldet: %1</translation>
    </message>
    <message>
        <source>the site offers no formats of this video</source>
        <translation>die Seite bietet keine Formate dieses Videos an</translation>
    </message>
    <message>
        <source>the site refuses this video: %1</source>
        <translation>die Seite verweigert dieses Video: %1</translation>
    </message>
    <message>
        <source>the disk of &quot;%1&quot; is full</source>
        <translation>der Datenträger von „%1“ ist voll</translation>
    </message>
    <message>
        <source>Free some space, or choose another folder.</source>
        <translation>Schaffen Sie Platz, oder wählen Sie einen anderen Ordner.</translation>
    </message>
    <message>
        <source>the transfer failed (code %1)</source>
        <translation>die Übertragung ist fehlgeschlagen (Code %1)</translation>
    </message>
    <message>
        <source>the video is in the list, but the site has not yet said what it offers</source>
        <translation>das Video steht in der Liste, aber die Seite hat noch nicht gesagt, was sie anbietet</translation>
    </message>
    <message>
        <source>only an interrupted or stopped task can be resumed</source>
        <translation>nur eine unterbrochene oder angehaltene Aufgabe kann fortgesetzt werden</translation>
    </message>
    <message>
        <source>a finished task is not tried again</source>
        <translation>eine fertige Aufgabe wird nicht noch einmal versucht</translation>
    </message>
    <message>
        <source>only a finished task can be upgraded whose video is there as it was downloaded</source>
        <translation>ein größeres Bild gibt es nur für eine fertige Aufgabe, deren Video unverändert da ist</translation>
    </message>
    <message>
        <source>only a finished task whose file is there can be renamed</source>
        <translation>nur eine fertige Aufgabe, deren Datei da ist, kann umbenannt werden</translation>
    </message>
    <message>
        <source>its file is not there</source>
        <translation>die Datei ist nicht da</translation>
    </message>
    <message>
        <source>the task is not at work</source>
        <translation>die Aufgabe ist nicht in Arbeit</translation>
    </message>
    <message>
        <source>the old video cannot be kept as &quot;%1&quot;</source>
        <translation>das alte Video kann nicht als „%1“ aufgehoben werden</translation>
    </message>
    <message>
        <source>Move away what is in its place.</source>
        <translation>Räumen Sie weg, was an diesem Platz liegt.</translation>
    </message>
    <message>
        <source>the old video could not be put back; it is &quot;%1&quot; now</source>
        <translation>das alte Video konnte nicht zurückgelegt werden; es heißt jetzt „%1“</translation>
    </message>
    <message>
        <source>Make its folder writable, and rename the file.</source>
        <translation>Machen Sie den Ordner schreibbar, und benennen Sie die Datei um.</translation>
    </message>
    <message>
        <source>Look at the page in a browser.</source>
        <translation>Sehen Sie sich die Seite in einem Browser an.</translation>
    </message>
    <message>
        <source>the history cannot be written</source>
        <translation>der Verlauf kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be replaced</source>
        <translation>„%1“ kann nicht ersetzt werden</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a file</source>
        <translation>„%1“ ist keine Datei</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is the file of another task</source>
        <translation>„%1“ ist die Datei einer anderen Aufgabe</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is the name of an unfinished download</source>
        <translation>„%1“ ist der Name eines unvollständigen Downloads</translation>
    </message>
    <message>
        <source>the site has no video info (%1), and %2, which might know the page, is not installed</source>
        <translation>die Seite hat keine Videoangaben (%1), und %2, das sie vielleicht kennt, ist nicht installiert</translation>
    </message>
    <message>
        <source>Check the address, or install the package %1.</source>
        <translation>Prüfen Sie die Adresse, oder installieren Sie das Paket %1.</translation>
    </message>
</context>
<context>
    <name>WishWidget</name>
    <message>
        <source>&amp;Folder:</source>
        <translation>&amp;Ordner:</translation>
    </message>
    <message>
        <source>Any</source>
        <translation>Beliebig</translation>
    </message>
    <message>
        <source>&amp;Container:</source>
        <translation>&amp;Container:</translation>
    </message>
    <message>
        <source>Largest</source>
        <translation>Größtes</translation>
    </message>
    <message>
        <source>&amp;Picture size:</source>
        <translation>&amp;Bildgröße:</translation>
    </message>
    <message>
        <source>&amp;Keep videos as the site offers them</source>
        <translation>Videos so &amp;behalten, wie die Seite sie anbietet</translation>
    </message>
    <message>
        <source>C&amp;onvert with ffmpeg if the site has no such format</source>
        <translation>Mit ffmpeg &amp;umwandeln, wenn die Seite kein solches Format hat</translation>
    </message>
    <message>
        <source>Choose…</source>
        <translation>Auswählen …</translation>
    </message>
    <message>
        <source>Choose a folder</source>
        <translation>Ordner auswählen</translation>
    </message>
    <message>
        <source>Give the whole path of the folder.</source>
        <translation>Geben Sie den vollständigen Pfad des Ordners an.</translation>
    </message>
    <message>
        <source>Give the picture size as in 1280x720.</source>
        <translation>Geben Sie die Bildgröße an wie in 1280x720.</translation>
    </message>
    <message>
        <source>Give the container as in mp4.</source>
        <translation>Geben Sie den Container an wie in mp4.</translation>
    </message>
</context>
<context>
    <name>Worker</name>
    <message>
        <source>The history cannot be saved: %1</source>
        <translation>Der Verlauf kann nicht gespeichert werden: %1</translation>
    </message>
    <message>
        <source>The video cannot be converted: %1</source>
        <translation>Das Video kann nicht umgewandelt werden: %1</translation>
    </message>
    <message>
        <source>The video cannot be renamed: %1</source>
        <translation>Das Video kann nicht umbenannt werden: %1</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be deleted.</source>
        <translation>„%1“ kann nicht gelöscht werden.</translation>
    </message>
    <message>
        <source>another program has the history</source>
        <translation>ein anderes Programm hat den Verlauf</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Shows the videos of the history and downloads those of the pages that are added: pasted, dropped, or named on the command line. A second start hands its addresses to the window that is open.</source>
        <translation>Zeigt die Videos des Verlaufs und lädt die der Seiten herunter, die hinzugefügt werden: eingefügt, herübergezogen oder auf der Befehlszeile genannt. Ein zweiter Start übergibt seine Adressen dem offenen Fenster.</translation>
    </message>
    <message>
        <source>The history file.</source>
        <translation>Die Verlaufsdatei.</translation>
    </message>
    <message>
        <source>The address of a video page.</source>
        <translation>Die Adresse einer Videoseite.</translation>
    </message>
</context>
</TS>

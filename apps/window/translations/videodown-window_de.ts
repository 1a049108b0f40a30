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
        <source>The history was damaged. What could be read of it is in the list; the damaged file was kept as
%1</source>
        <translation>Der Verlauf war beschädigt. Was sich davon lesen ließ, steht in der Liste; die beschädigte Datei liegt unter
%1</translation>
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
        <source>Download &amp;thumbnails (from the next start)</source>
        <translation>&amp;Vorschaubilder herunterladen (ab dem nächsten Start)</translation>
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
        <source>Gets the address of a page as its last argument and prints what the site offers.</source>
        <translation>Bekommt die Adresse einer Seite als letztes Argument und gibt aus, was die Seite anbietet.</translation>
    </message>
    <message>
        <source>Video-info &amp;command:</source>
        <translation>Befehl für Video&amp;angaben:</translation>
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
    <name>main</name>
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

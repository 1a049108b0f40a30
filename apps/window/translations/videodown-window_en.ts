<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en">
<context>
    <name>AddDialog</name>
    <message numerus="yes">
        <source>%n address(es)</source>
        <translation>
            <numerusform>%n address</numerusform>
            <numerusform>%n addresses</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>DetailsPane</name>
    <message numerus="yes">
        <source>%n video(s) selected.</source>
        <translation>
            <numerusform>%n video selected.</numerusform>
            <numerusform>%n videos selected.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message numerus="yes">
        <source>%n video(s) added</source>
        <translation>
            <numerusform>%n video added</numerusform>
            <numerusform>%n videos added</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n video(s) not added: the history can only be read.</source>
        <translation>
            <numerusform>%n video not added: the history can only be read.</numerusform>
            <numerusform>%n videos not added: the history can only be read.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n download(s) were interrupted. Resume them now?</source>
        <translation>
            <numerusform>%n download was interrupted. Resume it now?</numerusform>
            <numerusform>%n downloads were interrupted. Resume them now?</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Remove %n video(s) from the list and delete these files?</source>
        <translation>
            <numerusform>Remove %n video from the list and delete these files?</numerusform>
            <numerusform>Remove %n videos from the list and delete these files?</numerusform>
        </translation>
    </message>
</context>
</TS>

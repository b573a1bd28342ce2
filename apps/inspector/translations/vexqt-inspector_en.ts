<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>vexqt::inspector_app::AtomHeader</name>
    <message numerus="yes">
        <source>%n atom(s) in it</source>
        <translation>
            <numerusform>%n atom in it</numerusform>
            <numerusform>%n atoms in it</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>vexqt::inspector_app::MovieTab</name>
    <message numerus="yes">
        <source>%n row(s) exported to %1.</source>
        <translation>
            <numerusform>%n row exported to %1.</numerusform>
            <numerusform>%n rows exported to %1.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>vexqt::inspector_app::SaveSheet</name>
    <message numerus="yes">
        <source>%1 will be written, in %n place(s).</source>
        <translation>
            <numerusform>%1 will be written, in one place.</numerusform>
            <numerusform>%1 will be written, in %n places.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>words</name>
    <message numerus="yes">
        <source>%1 byte(s)</source>
        <translation>
            <numerusform>%1 byte</numerusform>
            <numerusform>%1 bytes</numerusform>
        </translation>
    </message>
</context>
</TS>

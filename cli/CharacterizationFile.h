#pragma once

#include <QString>

#include <zelkin/Characterization.h>

class OutputFiles;

// A characterization in the files the command line reads and writes: a ".zelc" stream, whose bone names live in
// the ".bones.xml" file beside it, or a characterization ".xml" file.
struct CharacterizationFile
{
    enum Format
    {
        Stream,
        Xml,
        Unknown
    };

    Characterization characterization;
    // False for a stream without its bones file: its nodes then stand in for the bone names.
    bool hasBoneNames = false;
    QString error; // one line, empty when the file was read

    // By extension, ignoring case.
    static Format FormatOf(const QString& path);
    static QString BonesFileFor(const QString& streamPath); // "hero.zelc" -> "hero.bones.xml"

    static CharacterizationFile Load(const QString& path);
    // Adds the files that store the characterization at `path` (a stream also gets its bones file, unless its
    // bone names are only stand-ins). An error line, empty on success.
    // The XML file has no place for the inverted-joint (limb) flags: a note naming those that would be lost,
    // empty when none is on.
    static QString LostInXml(const Characterization& characterization);
    static QString Render(const Characterization& characterization, bool withBoneNames, const QString& path,
                          bool bigEndian, OutputFiles& files);
};

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <zelkin/CharacterizationExport.h>

class Characterization;

// A characterization as the solver's ".zelc" byte stream. The stream names no bones: whoever reads one supplies the
// 212 bone names (a ".bones.xml" file, the host's list), empty for the nodes the stream does not use.
class ZELKIN_CHARACTERIZATION_EXPORT CharacterizationStream
{
public:
    // storedFlags false: bit 0 alone for each mapped node, so no node carries its full joint geometry.
    // Empty when the solver cannot build the character.
    static QByteArray Write(const Characterization& characterization, bool bigEndian, bool storedFlags);
    // Either byte order. On failure `out` is left alone and `reason` gets a phrase for the user ("truncated",
    // "not a characterization file", "made by a newer version", or a mismatch between names and used nodes).
    static bool Read(const QByteArray& stream, const QStringList& boneNames, Characterization& out,
                     QString* reason = nullptr);
};

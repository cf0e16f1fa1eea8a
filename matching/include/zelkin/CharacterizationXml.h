#pragma once

#include <QString>
#include <QStringList>

#include <zelkin/CharacterizationExport.h>

class Characterization;
class ConfigDocument;

// The readable characterization file: "name", "bone_correspondance" (212 bone names in node order), "bone_used"
// (212 decimal words: 1 or 0, or the whole node flag word in raw mode) and a "joints" section with one key per
// assigned node holding "Translate", "Rotate", "Scale", "MinRLimitEnable", "MaxRLimitEnable", for nodes whose
// flag word has its low three bits set also "PreRot", "PostRot", "MinRLimit", "MaxRLimit",
// "RotateParentOffset", and "RotationOrder".
//
// Vectors are three numbers separated by spaces, each in the shortest form that reads back as the same float,
// magnitudes below 1e-6 written as 0. Rotations are written as Euler angles in degrees in the joint's rotation
// order (see RotationConversion). The enable keys hold three flags, 0 or 1, for x, y and z.
class ZELKIN_CHARACTERIZATION_EXPORT CharacterizationXml
{
public:
    enum Mode
    {
        Normal,
        Raw
    };

    static QString FileFilter();     // "Xml Characterization File (*.xml)"
    static QString BonesFileFilter(); // "Bone correspondance file (*.bones.xml)"
    static QString BonesExtension(); // ".bones.xml"

    // Without rotation limits the enable keys are written as 0 0 0 and the limits are left out. False when a
    // name holds a character that XML cannot store.
    static bool ToDocument(const Characterization& characterization, ConfigDocument& document, Mode mode,
                           bool saveRotationLimits);
    // False, with a message, when the document is not a characterization or holds malformed values; the
    // characterization is then left unchanged.
    static bool FromDocument(const ConfigDocument& document, Characterization& characterization,
                             QString* error = nullptr);

    static bool Write(const Characterization& characterization, const QString& fileName, Mode mode,
                      bool saveRotationLimits, QString* error = nullptr);
    static bool Read(const QString& fileName, Characterization& characterization, QString* error = nullptr);

    // The 212 bone names of a bone correspondence file (or of a full characterization file), in node order.
    // Empty, with a message, when the file cannot be read.
    static QStringList ReadBoneCorrespondence(const QString& fileName, QString* error = nullptr);

    // The writer's number format.
    static QString FormatNumber(float value);
};

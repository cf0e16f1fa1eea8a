#include "CharacterizationFile.h"

#include <cstdlib>

#include <QFileInfo>

#include <zelkin/CharacterizationStream.h>
#include <zelkin/CharacterizationXml.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/ZELSolver.h>

#include "OutputFiles.h"
#include "StreamFile.h"

namespace
{
// Reader messages sometimes name the file already.
QString AboutFile(const QString& path, const QString& problem)
{
    return problem.contains(path) ? problem : QStringLiteral("%1: %2").arg(path, problem);
}

// Each used node named after itself, so a stream without its bones file can still be read and reported.
QStringList NodeNamesOfUsedNodes(const QByteArray& stream)
{
    ZELCharacterDefinition definition {};
    ZELCharacter* character = ZELCharacterizationStreamRead(&definition, stream.constData(),
                                                            static_cast<int32_t>(stream.size()), std::malloc,
                                                            std::free);
    if (character != nullptr)
        ZELCharacterDestroy(character, std::free);
    QStringList names;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        names.append((definition.mUsedNodes[nodeId] & 1u) ? QString::fromLatin1(ZELGetNodeNameFromId(nodeId))
                                                           : QString());
    return names;
}

CharacterizationFile LoadStream(const QString& path)
{
    CharacterizationFile file;
    const StreamFile stream = StreamFile::Load(path);
    if (!stream.error.isEmpty())
    {
        file.error = stream.error;
        return file;
    }
    // The bones file is read as a characterization file without joints: it gives the name as well as the bones.
    const QString bonesPath = CharacterizationFile::BonesFileFor(path);
    Characterization named(QFileInfo(path).completeBaseName());
    file.hasBoneNames = QFileInfo(bonesPath).isFile();
    QString problem;
    if (file.hasBoneNames && !CharacterizationXml::Read(bonesPath, named, &problem))
    {
        file.error = AboutFile(bonesPath, problem);
        return file;
    }
    const QStringList names = file.hasBoneNames ? named.GetBoneNames() : NodeNamesOfUsedNodes(stream.bytes);
    if (!CharacterizationStream::Read(stream.bytes, names, file.characterization, &problem))
    {
        file.error = file.hasBoneNames ? QStringLiteral("%1: %2 (bone names from %3)").arg(path, problem, bonesPath)
                                       : QStringLiteral("%1: %2").arg(path, problem);
        return file;
    }
    file.characterization.SetName(named.GetName());
    return file;
}

CharacterizationFile LoadXml(const QString& path)
{
    CharacterizationFile file;
    file.hasBoneNames = true;
    QString problem;
    if (!QFileInfo(path).isFile())
        file.error = QStringLiteral("%1: no such file").arg(path);
    else if (!CharacterizationXml::Read(path, file.characterization, &problem))
        file.error = AboutFile(path, problem);
    return file;
}

const char* const LimbNames[ZELLimbCount] = {"left leg", "right leg", "left arm", "right arm"};

QString CannotStore(const QString& path)
{
    return QStringLiteral("%1: a bone name holds a character that XML cannot store").arg(path);
}
} // namespace

CharacterizationFile::Format CharacterizationFile::FormatOf(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix();
    if (suffix.compare(QLatin1String("zelc"), Qt::CaseInsensitive) == 0)
        return Stream;
    if (suffix.compare(QLatin1String("xml"), Qt::CaseInsensitive) == 0)
        return Xml;
    return Unknown;
}

QString CharacterizationFile::BonesFileFor(const QString& streamPath)
{
    const QString suffix = QFileInfo(streamPath).suffix();
    const QString base = suffix.isEmpty() ? streamPath : streamPath.chopped(suffix.size() + 1);
    return base + CharacterizationXml::BonesExtension();
}

CharacterizationFile CharacterizationFile::Load(const QString& path)
{
    switch (FormatOf(path))
    {
    case Stream:
        return LoadStream(path);
    case Xml:
        return LoadXml(path);
    case Unknown:
        break;
    }
    CharacterizationFile file;
    file.error = QStringLiteral("%1: not a .zelc or .xml file").arg(path);
    return file;
}

QString CharacterizationFile::LostInXml(const Characterization& characterization)
{
    QStringList inverted;
    for (int limb = 0; limb < ZELLimbCount; ++limb)
    {
        if (characterization.IsInverted(limb))
            inverted.append(QLatin1String(LimbNames[limb]));
    }
    if (inverted.isEmpty())
        return QString();
    return QStringLiteral("note: an XML file cannot hold the inverted-joint flags; lost: %1")
        .arg(inverted.join(QStringLiteral(", ")));
}

QString CharacterizationFile::Render(const Characterization& characterization, bool withBoneNames,
                                     const QString& path, bool bigEndian, OutputFiles& files)
{
    ConfigDocument document;
    if (FormatOf(path) == Xml)
    {
        // Raw keeps whole flag words, so a joint's full geometry comes back as it was.
        if (!CharacterizationXml::ToDocument(characterization, document, CharacterizationXml::Raw, true))
            return CannotStore(path);
        files.Add(path, document.ToByteArray());
        return QString();
    }
    if (FormatOf(path) != Stream)
        return QStringLiteral("%1: the output must be a .zelc or .xml file").arg(path);
    const QByteArray stream = CharacterizationStream::Write(characterization, bigEndian, true);
    if (stream.isEmpty())
        return QStringLiteral("%1: the solver could not build the character").arg(path);
    files.Add(path, stream);
    if (!withBoneNames)
        return QString();
    const QString bonesPath = BonesFileFor(path);
    if (!document.WriteValue(QString(), QStringLiteral("name"), characterization.GetName()) ||
        !document.WriteList(QString(), QStringLiteral("bone_correspondance"), characterization.GetBoneNames()))
        return CannotStore(bonesPath);
    files.Add(bonesPath, document.ToByteArray());
    return QString();
}

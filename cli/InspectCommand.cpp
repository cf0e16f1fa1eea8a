#include "InspectCommand.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <zelkin/CharacterJointGeometry.h>
#include <zelkin/ZELSolver.h>

#include "CliError.h"
#include "CommandLine.h"
#include "StreamFile.h"

namespace
{
const char* const LimbNames[4] = {"left leg", "right leg", "left arm", "right arm"};

struct StreamContents
{
    ZELCharacterDefinition definition {};
    std::vector<CharacterJointGeometry> records = std::vector<CharacterJointGeometry>(ZELNodeCount);
    int32_t limbFlags[4] = {};
};

bool fullyDefined(uint32_t flags)
{
    return (flags & 7u) == 7u;
}

QJsonArray floats(const float* values, int count)
{
    QJsonArray array;
    for (int i = 0; i < count; ++i)
        array.append(double(values[i]));
    return array;
}

QString text(const float* values, int count)
{
    QStringList parts;
    for (int i = 0; i < count; ++i)
        parts << QString::number(values[i], 'g', 6);
    return QStringLiteral("(%1)").arg(parts.join(QStringLiteral(", ")));
}

QJsonObject nodeJson(int node, uint32_t flags, const CharacterJointGeometry& record)
{
    QJsonObject object {{"id", node},
                        {"name", ZELGetNodeNameFromId(node)},
                        {"flags", double(flags)},
                        {"translate", floats(record.GetTranslate(), 3)},
                        {"rotate", floats(record.GetRotateQ(), 4)},
                        {"scale", floats(record.GetScale(), 3)}};
    if (fullyDefined(flags))
    {
        object["preRotation"] = floats(record.GetPreRotQ(), 4);
        object["postRotation"] = floats(record.GetPostRotQ(), 4);
        object["minRotationLimit"] = floats(record.GetMinRLimit(), 3);
        object["maxRotationLimit"] = floats(record.GetMaxRLimit(), 3);
        object["limitEnableMask"] = record.GetLimitEnableMask();
        object["parentOffsetRotation"] = floats(record.GetParentOffsetRotateQ(), 4);
        object["rotationOrder"] = int(record.GetRotationOrder());
    }
    return object;
}

void printJson(const StreamFile& file, const StreamContents& contents)
{
    QJsonArray limbs;
    for (int32_t flag : contents.limbFlags)
        limbs.append(flag);
    QJsonArray nodes;
    for (int node = 0; node < ZELNodeCount; ++node)
    {
        const uint32_t flags = contents.definition.mUsedNodes[node];
        if (flags & 1u)
            nodes.append(nodeJson(node, flags, contents.records[node]));
    }
    const QJsonObject report {{"byteOrder", file.info.IsBigEndian() ? "big" : "little"},
                              {"version", file.info.GetVersion()},
                              {"usedNodes", file.info.GetUsedNodeCount()},
                              {"limbFlags", limbs},
                              {"nodes", nodes}};
    std::fputs(QJsonDocument(report).toJson(QJsonDocument::Indented).constData(), stdout);
}

void printNode(int node, uint32_t flags, const CharacterJointGeometry& r)
{
    std::printf("  %3d %-24s flags %u\n", node, ZELGetNodeNameFromId(node), flags);
    std::printf("      translate %s  rotate %s  scale %s\n", qPrintable(text(r.GetTranslate(), 3)),
                qPrintable(text(r.GetRotateQ(), 4)), qPrintable(text(r.GetScale(), 3)));
    if (!fullyDefined(flags))
        return;
    std::printf("      pre-rotation %s  post-rotation %s  parent offset %s\n", qPrintable(text(r.GetPreRotQ(), 4)),
                qPrintable(text(r.GetPostRotQ(), 4)), qPrintable(text(r.GetParentOffsetRotateQ(), 4)));
    std::printf("      limits min %s max %s  enabled 0x%02x  rotation order %d\n", qPrintable(text(r.GetMinRLimit(), 3)),
                qPrintable(text(r.GetMaxRLimit(), 3)), unsigned(r.GetLimitEnableMask()), int(r.GetRotationOrder()));
}

void printText(const QString& path, const StreamFile& file, const StreamContents& contents)
{
    std::printf("File: %s\n", qPrintable(path));
    std::printf("Byte order: %s-endian\n", file.info.IsBigEndian() ? "big" : "little");
    std::printf("Version: %d\n", file.info.GetVersion());
    std::printf("Used nodes: %d\n", file.info.GetUsedNodeCount());
    std::printf("Limb flags:");
    for (int limb = 0; limb < 4; ++limb)
        std::printf("%s %s %d", limb ? "," : "", LimbNames[limb], contents.limbFlags[limb]);
    std::printf("\n");
    for (int node = 0; node < ZELNodeCount; ++node)
    {
        const uint32_t flags = contents.definition.mUsedNodes[node];
        if (flags & 1u)
            printNode(node, flags, contents.records[node]);
    }
}
} // namespace

int runInspect(const QStringList& arguments)
{
    CommandLine parsed(QStringLiteral("zelkin inspect FILE.zelc [options]"),
                       QStringLiteral("Shows what a .zelc stream holds: its byte order, version, used nodes, limb "
                                      "flags and every node's record."),
                       {{{"json"}, "", "one JSON document instead of text"}});
    if (!parsed.Parse(arguments))
        return parsed.Refuse();
    if (parsed.Positionals().size() != 1)
        return fail(QStringLiteral("inspect takes one FILE.zelc (see zelkin inspect --help)"));
    const QString path = parsed.Positionals().first();
    const bool json = parsed.Has(QStringLiteral("json"));

    const StreamFile file = StreamFile::Load(path);
    if (!file.error.isEmpty())
        return fail(file.error);

    StreamContents contents;
    ZELCharacter* character = ZELCharacterizationStreamRead(&contents.definition, file.bytes.constData(),
                                                            static_cast<int32_t>(file.bytes.size()), std::malloc,
                                                            std::free);
    if (!character)
        return fail(QStringLiteral("%1: not a characterization file").arg(path));
    ZELCharacterGetJointGeometries(&contents.definition, character, contents.records.data(), ZELNodeCount,
                                   contents.limbFlags);
    ZELCharacterDestroy(character, std::free);

    if (json)
        printJson(file, contents);
    else
        printText(path, file, contents);
    return 0;
}

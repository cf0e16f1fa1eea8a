#include "BonesCommand.h"

#include <cstdio>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/SkeletonRecognizer.h>
#include <zelkin/TemplateLibrary.h>
#include <zelkin/UserConfiguration.h>

#include "CliError.h"
#include "CommandLine.h"
#include "Scene.h"
#include "SceneHub.h"
#include "SceneImporter.h"

namespace
{
struct Verdict
{
    int node = -1;
    double confidence = 0.0;
    int character = -1;
};

std::vector<Verdict> Verdicts(const SkeletonRecognizer::Result& result, int boneCount)
{
    std::vector<Verdict> verdicts(static_cast<size_t>(boneCount));
    for (size_t c = 0; c < result.characters.size(); ++c)
        for (const SkeletonRecognizer::NodeMatch& match : result.characters[c].nodes)
            verdicts[size_t(match.bone)] = {match.nodeId, match.confidence, int(c)};
    return verdicts;
}

QJsonArray Vector(const SkeletonRecognizer::Vector& v)
{
    return QJsonArray {v[0], v[1], v[2]};
}

QByteArray ToJson(const std::vector<SkeletonRecognizer::Bone>& bones, const SkeletonRecognizer::Result& result)
{
    const std::vector<Verdict> verdicts = Verdicts(result, int(bones.size()));
    QJsonArray list;
    for (size_t i = 0; i < bones.size(); ++i)
    {
        const SkeletonRecognizer::Bone& bone = bones[i];
        QJsonObject entry {{"name", bone.name},
                           {"parent", bone.parent >= 0 ? QJsonValue(bones[size_t(bone.parent)].name) : QJsonValue()},
                           {"position", Vector(bone.position)},
                           {"skinsMesh", bone.skinning == SkeletonRecognizer::Skinning::Skins}};
        const Verdict& verdict = verdicts[i];
        entry.insert("node", verdict.node >= 0 ? QJsonValue(BoneCatalogue::NodeName(verdict.node)) : QJsonValue());
        entry.insert("confidence", verdict.node >= 0 ? QJsonValue(verdict.confidence) : QJsonValue());
        list.append(entry);
    }
    QJsonArray characters;
    for (const SkeletonRecognizer::Character& character : result.characters)
        characters.append(QJsonObject {{"root", bones[size_t(character.root)].name},
                                       {"hips", bones[size_t(character.hips)].name},
                                       {"pose", SkeletonRecognizer::PoseKindName(character.pose)},
                                       {"up", Vector(character.frame.up)},
                                       {"facing", Vector(character.frame.facing)},
                                       {"left", Vector(character.frame.left)}});
    return QJsonDocument(QJsonObject {{"bones", list}, {"characters", characters}}).toJson(QJsonDocument::Indented);
}

QString ToText(const std::vector<SkeletonRecognizer::Bone>& bones, const SkeletonRecognizer::Result& result)
{
    const std::vector<Verdict> verdicts = Verdicts(result, int(bones.size()));
    std::vector<int> depth(bones.size(), 0);
    QString text;
    for (size_t i = 0; i < bones.size(); ++i)
    {
        const SkeletonRecognizer::Bone& bone = bones[i];
        depth[i] = bone.parent >= 0 ? depth[size_t(bone.parent)] + 1 : 0;
        QString line = QString(depth[i] * 2, QLatin1Char(' ')) + bone.name;
        line += QStringLiteral("  (%1, %2, %3)")
                    .arg(bone.position[0], 0, 'f', 3)
                    .arg(bone.position[1], 0, 'f', 3)
                    .arg(bone.position[2], 0, 'f', 3);
        if (bone.skinning == SkeletonRecognizer::Skinning::Skins)
            line += QStringLiteral("  skin");
        if (verdicts[i].node >= 0)
            line += QStringLiteral("  -> %1 %2%").arg(QLatin1String(BoneCatalogue::NodeName(verdicts[i].node)))
                        .arg(qRound(verdicts[i].confidence * 100.0));
        text += line + QLatin1Char('\n');
    }
    if (result.characters.empty())
        text += SkeletonRecognizer::NoHumanoidText(int(bones.size())) + QLatin1Char('\n');
    for (const SkeletonRecognizer::Character& character : result.characters)
        text += QStringLiteral("character \"%1\": hips \"%2\", %3, up (%4, %5, %6), facing (%7, %8, %9)\n")
                    .arg(bones[size_t(character.root)].name, bones[size_t(character.hips)].name,
                         SkeletonRecognizer::PoseKindName(character.pose))
                    .arg(character.frame.up[0], 0, 'f', 2).arg(character.frame.up[1], 0, 'f', 2)
                    .arg(character.frame.up[2], 0, 'f', 2).arg(character.frame.facing[0], 0, 'f', 2)
                    .arg(character.frame.facing[1], 0, 'f', 2).arg(character.frame.facing[2], 0, 'f', 2);
    return text;
}
} // namespace

int runBones(const QStringList& arguments)
{
    CommandLine parsed(QStringLiteral("zelkin bones SKELETON [options]"),
                       QStringLiteral("Shows the skeleton as the tool reads it: each bone under its parent, with its "
                                      "rest-pose position, whether it skins a mesh, and the node automatic "
                                      "characterization gives it with its confidence; then each character found."),
                       {{{"json"}, "", "one JSON document instead of text"}});
    if (!parsed.Parse(arguments))
        return parsed.Refuse();
    if (parsed.Positionals().size() != 1)
        return fail(QStringLiteral("bones takes one SKELETON (see zelkin bones --help)"));
    Scene scene;
    SceneImporter importer;
    if (!importer.Import(parsed.Positionals().first(), scene))
        return fail(importer.ErrorText());
    const SceneHub hub(scene);
    std::vector<SkeletonRecognizer::Bone> bones;
    hub.DescribeSkeleton(bones);
    const TemplateLibrary library(UserConfiguration::TemplateDirectory());
    const SkeletonRecognizer recognizer(library);
    const SkeletonRecognizer::Result result = recognizer.Recognize(bones);
    const QByteArray out = parsed.Has(QStringLiteral("json")) ? ToJson(bones, result) : ToText(bones, result).toUtf8();
    std::fwrite(out.constData(), 1, size_t(out.size()), stdout);
    return 0;
}

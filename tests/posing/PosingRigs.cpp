#include "PosingRigs.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMatrix4x4>

#include "SceneImporter.h"

namespace posingrigs
{
std::vector<Rig> CorpusRigs()
{
    const QString folder = QStringLiteral(ZELKIN_CORPUS_DIR "/");
    QFile file(folder + QStringLiteral("skeletons/truth.json"));
    std::vector<Rig> rigs;
    if (!file.open(QIODevice::ReadOnly))
        return rigs;
    const QJsonObject all = QJsonDocument::fromJson(file.readAll()).object();
    for (const QString& key : all.keys())
    {
        const QJsonObject entry = all.value(key).toObject();
        Rig rig;
        rig.id = key;
        SceneImporter importer;
        if (!importer.Import(folder + entry.value(QStringLiteral("file")).toString(), rig.scene))
            continue;
        const QJsonObject truth = entry.value(QStringLiteral("truth")).toObject();
        for (const QString& bone : truth.keys())
            rig.mapping.emplace_back(truth.value(bone).toInt(), bone);
        rigs.push_back(std::move(rig));
    }
    return rigs;
}

namespace
{
void TransformRoots(Scene& scene, const QMatrix4x4& transform)
{
    std::vector<std::pair<int, QMatrix4x4>> roots;
    for (int i = 0; i < scene.BoneCount(); ++i)
    {
        if (scene.Bone(i).parent < 0)
            roots.emplace_back(i, transform * scene.Bone(i).local);
    }
    scene.SetLocalTransforms(roots);
}
} // namespace

void TurnAll(Scene& scene, const QQuaternion& turn)
{
    QMatrix4x4 rotation;
    rotation.rotate(turn);
    TransformRoots(scene, rotation);
}

void ScaleAll(Scene& scene, float factor)
{
    QMatrix4x4 scale;
    scale.scale(factor);
    TransformRoots(scene, scale);
}

void TurnBone(Scene& scene, const QString& bone, const QVector3D& axis, float degrees)
{
    const int index = scene.IndexOf(bone);
    const SceneBone& turned = scene.Bone(index);
    const QVector3D joint = turned.global.column(3).toVector3D();
    QMatrix4x4 about;
    about.translate(joint);
    about.rotate(degrees, axis);
    about.translate(-joint);
    const QMatrix4x4 global = about * turned.global;
    const QMatrix4x4 parent = turned.parent < 0 ? QMatrix4x4() : scene.Bone(turned.parent).global;
    scene.SetLocalTransforms({{index, parent.inverted() * global}});
}

QString BoneOf(const Rig& rig, int nodeId)
{
    for (const auto& [node, bone] : rig.mapping)
    {
        if (node == nodeId)
            return bone;
    }
    return QString();
}

QVector3D Joint(const Scene& scene, const QString& bone)
{
    return scene.Find(bone)->global.column(3).toVector3D();
}
} // namespace posingrigs

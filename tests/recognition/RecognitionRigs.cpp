#include "RecognitionRigs.h"

#include <algorithm>
#include <cmath>

#include <Eigen/Geometry>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <zelkin/BoneCatalogue.h>

#include "Scene.h"
#include "SceneHub.h"
#include "SceneImporter.h"

namespace
{
QString NodeName(int node)
{
    return node >= 0 ? QString::fromLatin1(BoneCatalogue::NodeName(node)) : QStringLiteral("nothing");
}

TruthRig Renamed(const TruthRig& rig, const std::function<QString(int, const QString&)>& rename,
                 const QString& suffix)
{
    TruthRig renamed = rig;
    renamed.id = rig.id + suffix;
    renamed.truth.clear();
    renamed.optional.clear();
    for (size_t i = 0; i < rig.bones.size(); ++i)
    {
        const QString& old = rig.bones[i].name;
        const QString name = rename(int(i), old);
        renamed.bones[i].name = name;
        if (rig.truth.contains(old))
            renamed.truth.insert(name, rig.truth.value(old));
        if (rig.optional.contains(old))
            renamed.optional.insert(name);
    }
    return renamed;
}
} // namespace

QString RigScore::Describe() const
{
    return QStringLiteral("%1 of %2 truth bones right; wrong: [%3]; mapped but should not be: [%4]; required wrong: "
                          "[%5]; characters: %6")
        .arg(right)
        .arg(truthBones)
        .arg(wrong.join(QLatin1String(", ")), mappedExtras.join(QLatin1String(", ")),
             requiredWrong.join(QLatin1String(", ")))
        .arg(characters);
}

namespace rigs
{
std::vector<TruthRig> CorpusRigs()
{
    const QString folder = QStringLiteral(ZELKIN_CORPUS_DIR "/");
    QFile file(folder + QStringLiteral("skeletons/truth.json"));
    std::vector<TruthRig> loaded;
    if (!file.open(QIODevice::ReadOnly))
        return loaded;
    const QJsonObject all = QJsonDocument::fromJson(file.readAll()).object();
    for (const QString& key : all.keys())
    {
        const QJsonObject entry = all.value(key).toObject();
        Scene scene;
        SceneImporter importer;
        if (!importer.Import(folder + entry.value(QStringLiteral("file")).toString(), scene))
            continue;
        TruthRig rig;
        rig.id = key;
        SceneHub(scene).DescribeSkeleton(rig.bones);
        const QJsonObject truth = entry.value(QStringLiteral("truth")).toObject();
        for (const QString& bone : truth.keys())
            rig.truth.insert(bone, truth.value(bone).toInt());
        for (const auto& bone : entry.value(QStringLiteral("optional")).toArray())
            rig.optional.insert(bone.toString());
        loaded.push_back(rig);
    }
    return loaded;
}

TruthRig WithMeaninglessNames(const TruthRig& rig)
{
    return Renamed(rig, [](int index, const QString&) { return QStringLiteral("Bone.%1").arg(index, 3, 10, QLatin1Char('0')); },
                   QStringLiteral(" (meaningless names)"));
}

TruthRig Transformed(const TruthRig& rig,
                     const std::function<SkeletonRecognizer::Vector(const SkeletonRecognizer::Vector&)>& transform,
                     const QString& suffix)
{
    TruthRig moved = rig;
    moved.id = rig.id + suffix;
    for (SkeletonRecognizer::Bone& bone : moved.bones)
    {
        bone.position = transform(bone.position);
        bone.tip = transform(bone.tip);
    }
    return moved;
}

TruthRig ZUp(const TruthRig& rig)
{
    return Transformed(rig, [](const SkeletonRecognizer::Vector& v) { return SkeletonRecognizer::Vector {v[0], -v[2], v[1]}; },
                       QStringLiteral(" (Z up)"));
}

TruthRig FacingBack(const TruthRig& rig)
{
    return Transformed(rig, [](const SkeletonRecognizer::Vector& v) { return SkeletonRecognizer::Vector {-v[0], v[1], -v[2]}; },
                       QStringLiteral(" (facing -Z)"));
}

TruthRig FacingSide(const TruthRig& rig)
{
    using Vector = SkeletonRecognizer::Vector;
    return Transformed(rig, [](const Vector& v) { return Vector {v[2], v[1], -v[0]}; }, QStringLiteral(" (facing +X)"));
}

TruthRig Jittered(const TruthRig& rig, double fraction, unsigned seed)
{
    TruthRig uneven = rig;
    uneven.id = rig.id + QStringLiteral(" (uneven)");
    unsigned state = seed;
    const auto next = [&state] {
        state = state * 1664525u + 1013904223u;
        return double((state >> 8) % 2001) / 1000.0 - 1.0;
    };
    for (size_t i = 0; i < rig.bones.size(); ++i)
    {
        const SkeletonRecognizer::Bone& bone = rig.bones[i];
        if (bone.parent < 0)
            continue;
        const SkeletonRecognizer::Vector& from = rig.bones[size_t(bone.parent)].position;
        const double length =
            std::hypot(bone.position[0] - from[0], bone.position[1] - from[1], bone.position[2] - from[2]);
        for (int axis = 0; axis < 3; ++axis)
        {
            const double offset = fraction * length * next();
            uneven.bones[i].position[size_t(axis)] += offset;
            uneven.bones[i].tip[size_t(axis)] += offset;
        }
    }
    return uneven;
}

int BoneOf(const TruthRig& rig, const char* node)
{
    const int id = BoneCatalogue::NodeId(node);
    for (size_t i = 0; i < rig.bones.size(); ++i)
        if (rig.truth.value(rig.bones[i].name, -1) == id)
            return int(i);
    return -1;
}

Eigen::Vector3d Joint(const TruthRig& rig, int bone)
{
    const SkeletonRecognizer::Vector& v = rig.bones[size_t(bone)].position;
    return {v[0], v[1], v[2]};
}

Axes BodyAxes(const TruthRig& rig)
{
    Axes axes;
    const Eigen::Vector3d up = Joint(rig, BoneOf(rig, "Head")) - Joint(rig, BoneOf(rig, "Hips"));
    axes.size = up.norm();
    axes.up = up.normalized();
    axes.left = (Joint(rig, BoneOf(rig, "LeftUpLeg")) - Joint(rig, BoneOf(rig, "RightUpLeg"))).normalized();
    axes.facing = axes.left.cross(axes.up).normalized();
    return axes;
}

TruthRig Posed(const TruthRig& rig, const Pose& pose)
{
    TruthRig posed = rig;
    posed.id += QStringLiteral(" (posed)");
    const Axes axes = BodyAxes(rig);
    const Eigen::Vector3d& up = axes.up;
    const Eigen::Vector3d& left = axes.left;
    const Eigen::Vector3d& facing = axes.facing;
    const auto turn = [&](const char* node, const Eigen::Vector3d& axis, double degrees) {
        const int joint = BoneOf(rig, node);
        const Eigen::Matrix3d rotation = Eigen::AngleAxisd(degrees / 57.29578, axis).toRotationMatrix();
        const Eigen::Vector3d pivot = Joint(posed, joint);
        const auto turned = [&](SkeletonRecognizer::Vector& v) {
            const Eigen::Vector3d p = pivot + rotation * (Eigen::Vector3d(v[0], v[1], v[2]) - pivot);
            v = {p.x(), p.y(), p.z()};
        };
        for (size_t i = 0; i < posed.bones.size(); ++i)
            for (int above = int(i); above >= 0; above = posed.bones[size_t(above)].parent)
                if (above == joint)
                {
                    turned(posed.bones[i].position);
                    turned(posed.bones[i].tip);
                    break;
                }
    };
    // From the angle each arm has, shoulder to wrist, to the pose's.
    const auto below = [&](const char* shoulder, const char* wrist) {
        const Eigen::Vector3d arm = Joint(rig, BoneOf(rig, wrist)) - Joint(rig, BoneOf(rig, shoulder));
        return -std::asin(std::clamp(arm.normalized().dot(up), -1.0, 1.0)) * 57.29578;
    };
    turn("LeftArm", facing, below("LeftArm", "LeftHand") - pose.leftArm);
    turn("RightArm", facing, pose.rightArm - below("RightArm", "RightHand"));
    turn("LeftLeg", left, pose.leftKnee);
    turn("LeftFoot", left, -pose.leftKnee);
    turn("RightLeg", left, pose.rightKnee);
    turn("RightFoot", left, -pose.rightKnee);
    return posed;
}

TruthRig Scaled(const TruthRig& rig, double factor)
{
    return Transformed(rig,
                       [factor](const SkeletonRecognizer::Vector& v) {
                           return SkeletonRecognizer::Vector {v[0] * factor, v[1] * factor, v[2] * factor};
                       },
                       QStringLiteral(" (scaled by %1)").arg(factor));
}

TruthRig SidesSwappedInNames(const TruthRig& rig)
{
    // Whole words and the usual one-letter markers: Left/Right, left/right, leading l/r before a capital or as a
    // word of their own.
    static const QRegularExpression words(QStringLiteral(
        "Left|Right|left|right|(?<![A-Za-z])[lrLR](?=[A-Z_.\\-]|$)|^[lr](?=collar|shldr|forearm|hand|thigh|shin|foot|buttock)"));
    return Renamed(rig,
                   [](int, const QString& name) {
                       QString swapped;
                       int last = 0;
                       for (auto it = words.globalMatch(name); it.hasNext();)
                       {
                           const QRegularExpressionMatch match = it.next();
                           static const QHash<QString, QString> opposite {
                               {"Left", "Right"}, {"Right", "Left"}, {"left", "right"}, {"right", "left"},
                               {"l", "r"}, {"r", "l"}, {"L", "R"}, {"R", "L"}};
                           swapped += name.mid(last, match.capturedStart() - last) + opposite.value(match.captured());
                           last = match.capturedEnd();
                       }
                       return swapped + name.mid(last);
                   },
                   QStringLiteral(" (left and right names swapped)"));
}

TruthRig Merged(const std::vector<TruthRig>& parts, double spacing)
{
    TruthRig merged;
    merged.id = QStringLiteral("merged");
    SkeletonRecognizer::Bone root;
    root.name = QStringLiteral("Scene");
    merged.bones.push_back(root);
    for (size_t r = 0; r < parts.size(); ++r)
    {
        const QString prefix = QStringLiteral("rig%1:").arg(r);
        const int offset = int(merged.bones.size());
        for (SkeletonRecognizer::Bone bone : parts[r].bones)
        {
            bone.name = prefix + bone.name;
            bone.parent = bone.parent >= 0 ? bone.parent + offset : 0;
            bone.position[0] += spacing * double(r);
            bone.tip[0] += spacing * double(r);
            merged.bones.push_back(bone);
        }
        for (auto it = parts[r].truth.cbegin(); it != parts[r].truth.cend(); ++it)
            merged.truth.insert(prefix + it.key(), it.value());
        for (const QString& bone : parts[r].optional)
            merged.optional.insert(prefix + bone);
        merged.id += QLatin1Char(' ') + parts[r].id;
    }
    return merged;
}

RigScore Score(const TruthRig& rig, const SkeletonRecognizer::Result& result)
{
    RigScore score;
    score.characters = int(result.characters.size());
    QHash<QString, int> given;
    for (const SkeletonRecognizer::Character& character : result.characters)
        for (const SkeletonRecognizer::NodeMatch& match : character.nodes)
            given.insert(rig.bones[size_t(match.bone)].name, match.nodeId);
    // A node a truth bone should have, per character: merged rigs hold each node several times.
    QSet<QString> truthNodes;
    static const QRegularExpression mergedPrefix(QStringLiteral("^rig\\d+:"));
    const auto characterOf = [](const QString& bone) { return mergedPrefix.match(bone).captured(); };
    for (auto it = rig.truth.cbegin(); it != rig.truth.cend(); ++it)
        truthNodes.insert(characterOf(it.key()) + QString::number(it.value()));
    for (auto it = rig.truth.cbegin(); it != rig.truth.cend(); ++it)
    {
        ++score.truthBones;
        const int got = given.value(it.key(), -1);
        if (got == it.value())
            ++score.right;
        else
            score.wrong.append(QStringLiteral("%1: got %2, wants %3").arg(it.key(), NodeName(got), NodeName(it.value())));
        if (got != it.value() && BoneCatalogue::IsRequired(it.value()))
            score.requiredWrong.append(NodeName(it.value()));
    }
    for (auto it = given.cbegin(); it != given.cend(); ++it)
    {
        if (rig.truth.contains(it.key()))
            continue;
        const bool allowed = rig.optional.contains(it.key()) &&
                             !truthNodes.contains(characterOf(it.key()) + QString::number(it.value()));
        if (!allowed)
            score.mappedExtras.append(QStringLiteral("%1 as %2").arg(it.key(), NodeName(it.value())));
    }
    score.wrong.sort();
    score.mappedExtras.sort();
    return score;
}
} // namespace rigs

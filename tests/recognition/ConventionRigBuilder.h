#pragma once

#include <cmath>
#include <functional>

#include <QHash>
#include <QString>

#include <zelkin/BoneCatalogue.h>

#include "RecognitionRigs.h"

// What the convention rigs are built with: one body's joints, and a rig that names them.
namespace conventions::build
{
using V = SkeletonRecognizer::Vector;

// One body, 1.8 m, Y up, facing +Z with its left along +X, arms `drop` degrees below the horizontal: the joints
// every convention names in its own way.
inline QHash<QString, V> Body(double drop, double scale = 1.0)
{
    QHash<QString, V> j;
    j["root"] = {0, 0, 0};
    j["hips"] = {0, 1.0, 0};
    j["pelvis"] = {0, 0.98, 0};
    j["spine0"] = {0, 1.08, 0.01};
    j["spine1"] = {0, 1.18, 0};
    j["spine2"] = {0, 1.28, -0.01};
    j["spine3"] = {0, 1.36, -0.02};
    j["neck0"] = {0, 1.50, -0.03};
    j["neck1"] = {0, 1.54, -0.02};
    j["head"] = {0, 1.60, -0.01};
    j["headtop"] = {0, 1.80, 0.02};
    j["jaw"] = {0, 1.62, 0.04};
    const double d = drop / 57.29578;
    for (int s : {1, -1})
    {
        const QString side = s > 0 ? "L" : "R";
        // Out along the arm from the shoulder, dropped by the pose.
        const auto arm = [&](double out, double y, double z) {
            return V {s * (0.16 + out * std::cos(d)), y - out * std::sin(d), z};
        };
        j["eye" + side] = {s * 0.03, 1.68, 0.08};
        j["clav" + side] = {s * 0.03, 1.44, 0.0};
        j["uarm" + side] = arm(0, 1.44, -0.04);
        j["uarmMid" + side] = arm(0.14, 1.44, -0.045);
        j["farm" + side] = arm(0.28, 1.44, -0.05);
        j["farmMid" + side] = arm(0.42, 1.44, -0.045);
        j["hand" + side] = arm(0.55, 1.44, -0.04);
        const double across[] = {0.035, 0.02, 0.0, -0.02, -0.038};
        const double knuckle[] = {0.0, 0.09, 0.095, 0.09, 0.08};
        for (int f = 0; f < 5; ++f)
        {
            for (int k = 0; k < 5; ++k)
            {
                const V joint = f == 0 ? arm(0.57 + 0.03 * k, 1.43 - 0.015 * k, 0.0 + 0.015 * k)
                                       : arm(0.55 + (k == 0 ? 0.01 : knuckle[f] + 0.03 * (k - 1)), 1.44,
                                             -0.04 + across[f]);
                j[QStringLiteral("f%1_%2%3").arg(f).arg(k).arg(side)] = joint;
            }
        }
        j["thigh" + side] = {s * 0.09, 0.95, 0};
        j["thighMid" + side] = {s * 0.09, 0.73, 0.005};
        j["knee" + side] = {s * 0.09, 0.52, 0.015};
        j["kneeMid" + side] = {s * 0.09, 0.30, 0.0};
        j["ankle" + side] = {s * 0.09, 0.09, -0.02};
        j["mid" + side] = {s * 0.09, 0.04, 0.04};
        j["toe" + side] = {s * 0.09, 0.02, 0.10};
        j["toeEnd" + side] = {s * 0.09, 0.02, 0.17};
        for (int t = 0; t < 5; ++t)
            j[QStringLiteral("toe%1%2").arg(t).arg(side)] = {s * (0.065 + 0.012 * t), 0.02, 0.11 - 0.005 * t};
    }
    for (V& v : j)
        for (double& c : v)
            c *= scale;
    return j;
}

inline V Shift(const V& v, double dx, double dy, double dz)
{
    return {v[0] + dx, v[1] + dy, v[2] + dz};
}

// The point a fraction `t` of the way from a to b.
inline V Lerp(const V& a, const V& b, double t)
{
    return {a[0] + t * (b[0] - a[0]), a[1] + t * (b[1] - a[1]), a[2] + t * (b[2] - a[2])};
}

// A point given for the left side, on the side named by its letter.
inline V OnSide(const QString& side, const V& left)
{
    return {side == "L" ? left[0] : -left[0], left[1], left[2]};
}

inline V ZUpCentimetres(const V& v)
{
    return {100.0 * v[0], -100.0 * v[2], 100.0 * v[1]};
}

inline int N(const QString& node)
{
    return BoneCatalogue::NodeId(node.toLatin1().constData());
}

// "Left" or "Right" for a side letter.
inline QString Sided(const QString& side)
{
    return side == "L" ? QStringLiteral("Left") : QStringLiteral("Right");
}

inline int Finger(const QString& side, int digit, int phalanx)
{
    return (side == "L" ? 50 : 74) + 4 * digit + phalanx;
}

class Rig
{
public:
    Rig(const QString& id, QHash<QString, V> body, std::function<V(const V&)> transform = {})
        : mBody(std::move(body)), mTransform(std::move(transform))
    {
        mRig.id = id;
    }

    V At(const QString& joint) const { return mBody.value(joint); }

    QString Add(const QString& name, const QString& parent, const V& position, int node = -1, bool optional = false)
    {
        SkeletonRecognizer::Bone bone;
        bone.name = name;
        bone.parent = parent.isEmpty() ? -1 : mIndex.value(parent, -2);
        Q_ASSERT(bone.parent != -2);
        bone.position = mTransform ? mTransform(position) : position;
        mIndex.insert(name, int(mRig.bones.size()));
        mRig.bones.push_back(bone);
        if (node >= 0)
            mRig.truth.insert(name, node);
        if (optional)
            mRig.optional.insert(name);
        return name;
    }

    QString Add(const QString& name, const QString& parent, const char* joint, int node = -1, bool optional = false)
    {
        return Add(name, parent, At(joint), node, optional);
    }

    // A chain of digit joints f<digit>_<k><side> for k in [from, to), named by `name(i)`, each a node unless
    // `mapped` is false.
    QString Digit(const QString& parent, const QString& side, int digit, int from, int to,
                  const std::function<QString(int)>& name, bool feet = false, bool mapped = true)
    {
        QString at = parent;
        for (int k = from; k < to; ++k)
        {
            const int i = k - from;
            const int node = !mapped ? -1 : feet ? (side == "L" ? 98 : 122) + 4 * digit + i : Finger(side, digit, i);
            at = Add(name(i), at, At(QStringLiteral("f%1_%2%3").arg(digit).arg(k).arg(side)), node);
        }
        return at;
    }

    // Where a bone ends without a bone of its own (a BVH end site).
    void Tip(const QString& bone, const V& position)
    {
        SkeletonRecognizer::Bone& at = mRig.bones[size_t(mIndex.value(bone))];
        at.hasTip = true;
        at.tip = mTransform ? mTransform(position) : position;
    }

    // The bones `deforms` names skin a mesh; every other one skins none.
    void Skin(const std::function<bool(const QString&)>& deforms)
    {
        for (SkeletonRecognizer::Bone& bone : mRig.bones)
            bone.skinning = deforms(bone.name) ? SkeletonRecognizer::Skinning::Skins
                                               : SkeletonRecognizer::Skinning::DoesNotSkin;
    }

    TruthRig Done() const { return mRig; }

private:
    QHash<QString, V> mBody;
    std::function<V(const V&)> mTransform;
    QHash<QString, int> mIndex;
    TruthRig mRig;
};

// A figure tool's rigs: centimetres, arms 45 degrees down, the pelvis beside the abdomen, two neck bones.
inline Rig FigureToolTrunk(const QString& id)
{
    Rig r(id, Body(45), [](const V& v) { return V {100 * v[0], 100 * v[1], 100 * v[2]}; });
    r.Add("hip", "", "hips", N("Hips"));
    r.Add("pelvis", "hip", "pelvis", -1, true);
    r.Add("abdomenLower", "hip", "spine0", N("Spine"));
    r.Add("abdomenUpper", "abdomenLower", "spine1", N("Spine1"));
    r.Add("chestLower", "abdomenUpper", "spine2", N("Spine2"));
    r.Add("chestUpper", "chestLower", "spine3", N("Spine3"));
    r.Add("neckLower", "chestUpper", "neck0", N("Neck"));
    r.Add("neckUpper", "neckLower", "neck1", N("Neck1"));
    r.Add("head", "neckUpper", "head", N("Head"));
    return r;
}

// The engine mannequins' IK targets, which stand where the hands and feet are: never part of a limb.
inline void AddEngineIkBones(Rig& r)
{
    r.Add("ik_foot_root", "root", "root");
    r.Add("ik_foot_l", "ik_foot_root", "ankleL");
    r.Add("ik_foot_r", "ik_foot_root", "ankleR");
    r.Add("ik_hand_root", "root", "root");
    r.Add("ik_hand_gun", "ik_hand_root", "handR");
    r.Add("ik_hand_l", "ik_hand_gun", "handL");
    r.Add("ik_hand_r", "ik_hand_gun", "handR");
}

} // namespace conventions::build

#include "ConventionRigs.h"

#include "ConventionRigBuilder.h"

#include <cmath>

namespace conventions
{
using namespace build;

// A character-creator rig: the legs on a pelvis bone beside the waist under the hip, twist and share bones, toes
// under the toe base, centimetres.
TruthRig CharacterCreator()
{
    Rig r("character creator", Body(20), [](const V& v) { return V {100 * v[0], 100 * v[1], 100 * v[2]}; });
    const QString b = "CC_Base_";
    r.Add(b + "BoneRoot", "", r.At("root"));
    r.Add(b + "Hip", b + "BoneRoot", r.At("hips"), N("Hips"));
    r.Add(b + "Pelvis", b + "Hip", r.At("pelvis"), -1, true);
    r.Add(b + "Waist", b + "Hip", r.At("spine0"), N("Spine"));
    r.Add(b + "Spine01", b + "Waist", r.At("spine1"), N("Spine1"));
    r.Add(b + "Spine02", b + "Spine01", r.At("spine2"), N("Spine2"));
    r.Add(b + "NeckTwist01", b + "Spine02", r.At("neck0"), N("Neck"));
    r.Add(b + "NeckTwist02", b + "NeckTwist01", r.At("neck1"), N("Neck1"));
    r.Add(b + "Head", b + "NeckTwist02", r.At("head"), N("Head"));
    r.Add(b + "JawRoot", b + "Head", r.At("jaw"));
    r.Add(b + "L_Eye", b + "Head", r.At("eyeL"));
    r.Add(b + "R_Eye", b + "Head", r.At("eyeR"));
    const char* const names[] = {"Thumb", "Index", "Mid", "Ring", "Pinky"};
    const char* const toes[] = {"BigToe1", "IndexToe1", "MidToe1", "RingToe1", "PinkyToe1"};
    for (QString side : {"L", "R"})
    {
        const QString p = b + side + "_";
        const QString w = Sided(side);
        r.Add(p + "Clavicle", b + "Spine02", r.At("clav" + side), N(w + "Shoulder"));
        r.Add(p + "Upperarm", p + "Clavicle", r.At("uarm" + side), N(w + "Arm"));
        r.Add(p + "UpperarmTwist01", p + "Upperarm", r.At("uarmMid" + side), -1, true);
        r.Add(p + "Forearm", p + "Upperarm", r.At("farm" + side), N(w + "ForeArm"));
        r.Add(p + "ForearmTwist01", p + "Forearm", r.At("farmMid" + side), -1, true);
        r.Add(p + "ElbowShareBone", p + "Forearm", r.At("farm" + side), -1, true);
        r.Add(p + "Hand", p + "Forearm", r.At("hand" + side), N(w + "Hand"));
        for (int f = 0; f < 5; ++f)
            r.Digit(p + "Hand", side, f, f == 0 ? 0 : 1, f == 0 ? 3 : 4,
                    [&](int i) { return QStringLiteral("%1%2%3").arg(p, names[f]).arg(i + 1); });
        r.Add(p + "Thigh", b + "Pelvis", r.At("thigh" + side), N(w + "UpLeg"));
        r.Add(p + "ThighTwist01", p + "Thigh", r.At("thighMid" + side), -1, true);
        r.Add(p + "Calf", p + "Thigh", r.At("knee" + side), N(w + "Leg"));
        r.Add(p + "CalfTwist01", p + "Calf", r.At("kneeMid" + side), -1, true);
        r.Add(p + "KneeShareBone", p + "Calf", r.At("knee" + side), -1, true);
        r.Add(p + "Foot", p + "Calf", r.At("ankle" + side), N(w + "Foot"));
        r.Add(p + "ToeBase", p + "Foot", r.At("toe" + side), N(w + "ToeBase"));
        for (int t = 0; t < 5; ++t)
            r.Add(p + toes[t], p + "ToeBase", r.At(QStringLiteral("toe%1%2").arg(t).arg(side)),
                  (side == "L" ? 98 : 122) + 4 * t);
    }
    return r.Done();
}

// A figure tool's rig: bend and twist bones inside the limbs, carpal bones under the fingers, the legs on a
// pelvis beside the abdomen, arms 45 degrees down, centimetres.
TruthRig FigureTool()
{
    Rig r = FigureToolTrunk("figure tool");
    r.Add("lEye", "head", "eyeL");
    r.Add("rEye", "head", "eyeR");
    r.Add("lowerJaw", "head", "jaw");
    const char* const names[] = {"Thumb", "Index", "Mid", "Ring", "Pinky"};
    for (QString side : {"L", "R"})
    {
        const QString p = side.toLower();
        const QString w = Sided(side);
        r.Add(p + "Collar", "chestUpper", r.At("clav" + side), N(w + "Shoulder"));
        r.Add(p + "ShldrBend", p + "Collar", r.At("uarm" + side), N(w + "Arm"));
        r.Add(p + "ShldrTwist", p + "ShldrBend", r.At("uarmMid" + side), -1, true);
        r.Add(p + "ForearmBend", p + "ShldrTwist", r.At("farm" + side), N(w + "ForeArm"));
        r.Add(p + "ForearmTwist", p + "ForearmBend", r.At("farmMid" + side), -1, true);
        r.Add(p + "Hand", p + "ForearmTwist", r.At("hand" + side), N(w + "Hand"));
        for (int f = 0; f < 5; ++f)
        {
            const QString parent = f == 0 ? p + "Hand"
                                          : r.Add(QStringLiteral("%1Carpal%2").arg(p).arg(f), p + "Hand",
                                                  r.At("hand" + side), -1, true);
            r.Digit(parent, side, f, f == 0 ? 0 : 1, f == 0 ? 3 : 4,
                    [&](int i) { return QStringLiteral("%1%2%3").arg(p, names[f]).arg(i + 1); });
        }
        r.Add(p + "ThighBend", "pelvis", r.At("thigh" + side), N(w + "UpLeg"));
        r.Add(p + "ThighTwist", p + "ThighBend", r.At("thighMid" + side), -1, true);
        r.Add(p + "Shin", p + "ThighTwist", r.At("knee" + side), N(w + "Leg"));
        r.Add(p + "Foot", p + "Shin", r.At("ankle" + side), N(w + "Foot"));
        r.Add(p + "Metatarsals", p + "Foot", r.At("mid" + side), -1, true);
        r.Add(p + "Toe", p + "Metatarsals", r.At("toe" + side), N(w + "ToeBase"));
    }
    return r.Done();
}

// Capture files that name joints rather than bones: the "shoulder" is the upper arm, the "hip" the thigh. No
// mesh, centimetres, end sites at the tips.
TruthRig JointNames()
{
    Rig r("joint names", Body(0), [](const V& v) { return V {100 * v[0], 100 * v[1], 100 * v[2]}; });
    r.Add("Hips", "", "hips", N("Hips"));
    r.Add("Chest", "Hips", "spine1", N("Spine"));
    r.Add("Chest2", "Chest", "spine2", N("Spine1"));
    r.Add("Neck", "Chest2", "neck0", N("Neck"));
    r.Add("Head", "Neck", "head", N("Head"));
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        r.Add(w + "Collar", "Chest2", r.At("clav" + side), N(w + "Shoulder"));
        r.Add(w + "Shoulder", w + "Collar", r.At("uarm" + side), N(w + "Arm"));
        r.Add(w + "Elbow", w + "Shoulder", r.At("farm" + side), N(w + "ForeArm"));
        r.Add(w + "Wrist", w + "Elbow", r.At("hand" + side), N(w + "Hand"));
        r.Add(w + "Hip", "Hips", r.At("thigh" + side), N(w + "UpLeg"));
        r.Add(w + "Knee", w + "Hip", r.At("knee" + side), N(w + "Leg"));
        r.Add(w + "Ankle", w + "Knee", r.At("ankle" + side), N(w + "Foot"));
        r.Add(w + "Toe", w + "Ankle", r.At("toe" + side), N(w + "ToeBase"));
    }
    return r.Done();
}

// A capture dataset's skeleton: a hip joint bone before each thigh, two neck bones, a finger base and one thumb
// bone for each hand.
TruthRig CaptureDataset()
{
    Rig r("capture dataset", Body(0));
    r.Add("Hips", "", "hips", N("Hips"));
    r.Add("LowerBack", "Hips", "spine0", N("Spine"));
    r.Add("Spine", "LowerBack", "spine1", N("Spine1"));
    r.Add("Spine1", "Spine", "spine2", N("Spine2"));
    r.Add("Neck", "Spine1", "neck0", N("Neck"));
    r.Add("Neck1", "Neck", "neck1", N("Neck1"));
    r.Add("Head", "Neck1", "head", N("Head"));
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        r.Add(side + "HipJoint", "Hips", r.At("pelvis"), -1, true);
        r.Add(w + "UpLeg", side + "HipJoint", r.At("thigh" + side), N(w + "UpLeg"));
        r.Add(w + "Leg", w + "UpLeg", r.At("knee" + side), N(w + "Leg"));
        r.Add(w + "Foot", w + "Leg", r.At("ankle" + side), N(w + "Foot"));
        r.Add(w + "ToeBase", w + "Foot", r.At("toe" + side), N(w + "ToeBase"));
        r.Add(w + "Shoulder", "Spine1", r.At("clav" + side), N(w + "Shoulder"));
        r.Add(w + "Arm", w + "Shoulder", r.At("uarm" + side), N(w + "Arm"));
        r.Add(w + "ForeArm", w + "Arm", r.At("farm" + side), N(w + "ForeArm"));
        r.Add(w + "Hand", w + "ForeArm", r.At("hand" + side), N(w + "Hand"));
        r.Add(w + "FingerBase", w + "Hand", r.At(QStringLiteral("f2_0%1").arg(side)), N(w + "FingerBase"));
        r.Add(w + "HandIndex1", w + "FingerBase", r.At(QStringLiteral("f2_2%1").arg(side)), Finger(side, 1, 0));
        r.Add(side + "Thumb", w + "Hand", r.At(QStringLiteral("f0_1%1").arg(side)), Finger(side, 0, 0));
    }
    return r.Done();
}

// An avatar tool's rig: hair chains on the head, skirt and bust chains, T-pose, metres; facing +Z or turned to
// face -Z.
TruthRig Avatar(bool facingBack)
{
    Rig r(facingBack ? "avatar facing -Z" : "avatar", Body(0), [facingBack](const V& v) {
        return facingBack ? V {-v[0], v[1], -v[2]} : v;
    });
    r.Add("Root", "", "root");
    r.Add("J_Bip_C_Hips", "Root", "hips", N("Hips"));
    r.Add("J_Bip_C_Spine", "J_Bip_C_Hips", "spine0", N("Spine"));
    r.Add("J_Bip_C_Chest", "J_Bip_C_Spine", "spine1", N("Spine1"));
    r.Add("J_Bip_C_UpperChest", "J_Bip_C_Chest", "spine2", N("Spine2"));
    r.Add("J_Bip_C_Neck", "J_Bip_C_UpperChest", "neck0", N("Neck"));
    r.Add("J_Bip_C_Head", "J_Bip_C_Neck", "head", N("Head"));
    r.Add("J_Adj_L_FaceEye", "J_Bip_C_Head", "eyeL");
    r.Add("J_Adj_R_FaceEye", "J_Bip_C_Head", "eyeR");
    // Hair all round the head, hanging down to the shoulders and below.
    for (int chain = 0; chain < 10; ++chain)
    {
        const double angle = chain * 0.628;
        QString parent = "J_Bip_C_Head";
        for (int k = 0; k < 4; ++k)
            parent = r.Add(QStringLiteral("J_Sec_Hair%1_0%2").arg(chain + 1).arg(k + 1), parent,
                           V {0.09 * std::sin(angle), 1.72 - 0.1 * k, -0.02 + 0.09 * std::cos(angle) - 0.02 * k});
    }
    const char* const names[] = {"Thumb", "Index", "Middle", "Ring", "Little"};
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        const double s = side == "L" ? 1.0 : -1.0;
        const QString p = "J_Bip_" + side + "_";
        r.Add(p + "Shoulder", "J_Bip_C_UpperChest", r.At("clav" + side), N(w + "Shoulder"));
        r.Add(p + "UpperArm", p + "Shoulder", r.At("uarm" + side), N(w + "Arm"));
        r.Add(p + "LowerArm", p + "UpperArm", r.At("farm" + side), N(w + "ForeArm"));
        r.Add(p + "Hand", p + "LowerArm", r.At("hand" + side), N(w + "Hand"));
        for (int f = 0; f < 5; ++f)
            r.Digit(p + "Hand", side, f, f == 0 ? 0 : 1, f == 0 ? 3 : 4,
                    [&](int i) { return QStringLiteral("%1%2%3").arg(p, names[f]).arg(i + 1); });
        r.Add(p + "UpperLeg", "J_Bip_C_Hips", r.At("thigh" + side), N(w + "UpLeg"));
        r.Add(p + "LowerLeg", p + "UpperLeg", r.At("knee" + side), N(w + "Leg"));
        r.Add(p + "Foot", p + "LowerLeg", r.At("ankle" + side), N(w + "Foot"));
        r.Add(p + "ToeBase", p + "Foot", r.At("toe" + side), N(w + "ToeBase"));
        r.Add("J_Sec_" + side + "_Bust1", "J_Bip_C_UpperChest", V {s * 0.08, 1.3, 0.06});
        r.Add("J_Sec_" + side + "_Bust2", "J_Sec_" + side + "_Bust1", V {s * 0.08, 1.29, 0.11});
        for (int k = 0; k < 3; ++k)
        {
            QString parent = "J_Bip_C_Hips";
            for (int j = 0; j < 3; ++j)
                parent = r.Add(QStringLiteral("J_Sec_%1_Skirt%2_0%3").arg(side).arg(k).arg(j + 1), parent,
                               V {s * (0.1 + 0.02 * j), 0.95 - 0.12 * j, 0.1 - 0.1 * k});
        }
    }
    return r.Done();
}

// Exporter leftovers: a prefix and a number on every name, an armature and a body bone above the hips, no neck,
// no toes, three-fingered hands, a tail.
TruthRig OtherSeparators()
{
    Rig r("exporter numbers", Body(25));
    int number = 0;
    const auto n = [&number](const QString& name) { return QStringLiteral("Character1_%1_%2").arg(name).arg(number++); };
    const QString armature = r.Add("Armature", "", "root");
    const QString body = r.Add(n("Body"), armature, "hips");
    const QString hips = r.Add(n("Hips"), body, "hips", N("Hips"));
    const QString spine = r.Add(n("Spine"), hips, "spine0", N("Spine"));
    const QString chest = r.Add(n("Chest"), spine, "spine2", N("Spine1"));
    r.Add(n("Head"), chest, "head", N("Head"));
    QString tail = hips;
    for (int k = 0; k < 5; ++k)
        tail = r.Add(n("Tail"), tail, V {0, 0.95 - 0.05 * k, -0.12 - 0.1 * k});
    const char* const names[] = {"Thumb", "Index", "Middle"};
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        const QString clavicle = r.Add(n(w + "Shoulder"), chest, r.At("clav" + side), N(w + "Shoulder"));
        const QString arm = r.Add(n(w + "Arm"), clavicle, r.At("uarm" + side), N(w + "Arm"));
        const QString forearm = r.Add(n(w + "ForeArm"), arm, r.At("farm" + side), N(w + "ForeArm"));
        const QString hand = r.Add(n(w + "Hand"), forearm, r.At("hand" + side), N(w + "Hand"));
        for (int f = 0; f < 3; ++f)
            r.Digit(hand, side, f, f == 0 ? 0 : 1, f == 0 ? 3 : 4,
                    [&](int i) { return n(QStringLiteral("%1Hand%2%3").arg(w, names[f]).arg(i + 1)); });
        const QString thigh = r.Add(n(w + "UpLeg"), hips, r.At("thigh" + side), N(w + "UpLeg"));
        const QString knee = r.Add(n(w + "Leg"), thigh, r.At("knee" + side), N(w + "Leg"));
        r.Add(n(w + "Foot"), knee, r.At("ankle" + side), N(w + "Foot"));
    }
    return r.Done();
}

// A research body model's skeleton: joints named for the joint, not the bone ("left_hip" is the thigh,
// "left_shoulder" the upper arm, "left_foot" the ball of the foot), a lone hand joint past each wrist.
TruthRig BodyModel()
{
    Rig r("body model", Body(0));
    r.Add("pelvis", "", "hips", N("Hips"));
    r.Add("spine1", "pelvis", "spine0", N("Spine"));
    r.Add("spine2", "spine1", "spine1", N("Spine1"));
    r.Add("spine3", "spine2", "spine2", N("Spine2"));
    r.Add("neck", "spine3", "neck0", N("Neck"));
    r.Add("head", "neck", "head", N("Head"));
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        const QString p = side == "L" ? "left_" : "right_";
        r.Add(p + "hip", "pelvis", r.At("thigh" + side), N(w + "UpLeg"));
        r.Add(p + "knee", p + "hip", r.At("knee" + side), N(w + "Leg"));
        r.Add(p + "ankle", p + "knee", r.At("ankle" + side), N(w + "Foot"));
        r.Add(p + "foot", p + "ankle", r.At("toe" + side), N(w + "ToeBase"));
        r.Add(p + "collar", "spine3", r.At("clav" + side), N(w + "Shoulder"));
        r.Add(p + "shoulder", p + "collar", r.At("uarm" + side), N(w + "Arm"));
        r.Add(p + "elbow", p + "shoulder", r.At("farm" + side), N(w + "ForeArm"));
        r.Add(p + "wrist", p + "elbow", r.At("hand" + side), N(w + "Hand"));
        r.Add(p + "hand", p + "wrist", r.At(QStringLiteral("f2_2%1").arg(side)), -1, true);
    }
    return r.Done();
}

// A motion-capture suit's skeleton: vertebrae names ("L5" is no left bone), one neck bone, joints named for the
// limb, toes, no fingers.
TruthRig CaptureSuit()
{
    Rig r("capture suit", Body(0));
    r.Add("Pelvis", "", "hips", N("Hips"));
    r.Add("L5", "Pelvis", "spine0", N("Spine"));
    r.Add("L3", "L5", "spine1", N("Spine1"));
    r.Add("T12", "L3", "spine2", N("Spine2"));
    r.Add("T8", "T12", "spine3", N("Spine3"));
    r.Add("Neck", "T8", "neck0", N("Neck"));
    r.Add("Head", "Neck", "head", N("Head"));
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        r.Add(w + "UpperLeg", "Pelvis", r.At("thigh" + side), N(w + "UpLeg"));
        r.Add(w + "LowerLeg", w + "UpperLeg", r.At("knee" + side), N(w + "Leg"));
        r.Add(w + "Foot", w + "LowerLeg", r.At("ankle" + side), N(w + "Foot"));
        r.Add(w + "Toe", w + "Foot", r.At("toe" + side), N(w + "ToeBase"));
        r.Add(w + "Shoulder", "T8", r.At("clav" + side), N(w + "Shoulder"));
        r.Add(w + "UpperArm", w + "Shoulder", r.At("uarm" + side), N(w + "Arm"));
        r.Add(w + "ForeArm", w + "UpperArm", r.At("farm" + side), N(w + "ForeArm"));
        r.Add(w + "Hand", w + "ForeArm", r.At("hand" + side), N(w + "Hand"));
    }
    return r.Done();
}

// A generic game rig in nested namespaces: ".L" sides, "LowerArm" and "UpperLeg", hands without fingers.
TruthRig NamespacedGeneric()
{
    Rig r("namespaced generic", Body(0), [](const V& v) { return V {v[0], -v[2], v[1]}; });
    const auto n = [](const QString& name) { return "rig:char:" + name; };
    r.Add(n("Armature"), "", "root");
    r.Add(n("Hips"), n("Armature"), "hips", N("Hips"));
    r.Add(n("Spine"), n("Hips"), "spine0", N("Spine"));
    r.Add(n("Chest"), n("Spine"), "spine1", N("Spine1"));
    r.Add(n("UpperChest"), n("Chest"), "spine2", N("Spine2"));
    r.Add(n("Neck"), n("UpperChest"), "neck0", N("Neck"));
    r.Add(n("Head"), n("Neck"), "head", N("Head"));
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        r.Add(n("Shoulder." + side), n("UpperChest"), r.At("clav" + side), N(w + "Shoulder"));
        r.Add(n("UpperArm." + side), n("Shoulder." + side), r.At("uarm" + side), N(w + "Arm"));
        r.Add(n("LowerArm." + side), n("UpperArm." + side), r.At("farm" + side), N(w + "ForeArm"));
        r.Add(n("Hand." + side), n("LowerArm." + side), r.At("hand" + side), N(w + "Hand"));
        r.Add(n("UpperLeg." + side), n("Hips"), r.At("thigh" + side), N(w + "UpLeg"));
        r.Add(n("LowerLeg." + side), n("UpperLeg." + side), r.At("knee" + side), N(w + "Leg"));
        r.Add(n("Foot." + side), n("LowerLeg." + side), r.At("ankle" + side), N(w + "Foot"));
        r.Add(n("Toes." + side), n("Foot." + side), r.At("toe" + side), N(w + "ToeBase"));
    }
    return r.Done();
}
} // namespace conventions

// Capture skeletons, a virtual world's extended avatar, a figure tool's rig with paired carpals and a cartoon.
#include "ConventionRigs.h"

#include "ConventionRigBuilder.h"

namespace conventions
{
using namespace build;

// A capture library's BVH: joints as the asf skeleton places them, so the hip joints and the lower back start at
// the hips, the clavicles and the neck at the top of the spine, the finger base and the thumb at the wrist; legs
// splayed 20 degrees, T-pose, end sites at the tips, in the library's own units (a thigh some 7.5 long).
TruthRig CaptureLibrary()
{
    Rig r("capture library", {});
    r.Add("Hips", "", V {0, 17.0, 0}, N("Hips"));
    r.Add("LowerBack", "Hips", V {0, 17.0, 0}, N("Spine"));
    r.Add("Spine", "LowerBack", V {0.03, 19.06, -0.04}, N("Spine1"));
    r.Add("Spine1", "Spine", V {0.06, 21.1, -0.07}, N("Spine2"));
    r.Add("Neck", "Spine1", V {0.06, 21.1, -0.07}, N("Neck"));
    r.Add("Neck1", "Neck", V {0.02, 22.82, 0.04}, N("Neck1"));
    r.Add("Head", "Neck1", V {-0.02, 24.52, 0.24}, N("Head"));
    r.Tip("Head", {-0.01, 26.2, 0.3});
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        r.Add(side + "HipJoint", "Hips", V {0, 17.0, 0}, -1, true);
        r.Add(w + "UpLeg", side + "HipJoint", OnSide(side, {1.65, 15.2, 0.84}), N(w + "UpLeg"));
        r.Add(w + "Leg", w + "UpLeg", OnSide(side, {4.25, 8.06, 0.84}), N(w + "Leg"));
        r.Add(w + "Foot", w + "Leg", OnSide(side, {6.74, 1.22, 0.84}), N(w + "Foot"));
        r.Add(w + "ToeBase", w + "Foot", OnSide(side, {6.9, 0.78, 2.94}), N(w + "ToeBase"));
        r.Tip(w + "ToeBase", OnSide(side, {6.95, 0.75, 4.0}));
        r.Add(w + "Shoulder", "Spine1", V {0.06, 21.1, -0.07}, N(w + "Shoulder"));
        r.Add(w + "Arm", w + "Shoulder", OnSide(side, {3.42, 22.3, -0.37}), N(w + "Arm"));
        r.Add(w + "ForeArm", w + "Arm", OnSide(side, {8.42, 22.3, -0.37}), N(w + "ForeArm"));
        r.Add(w + "Hand", w + "ForeArm", OnSide(side, {11.82, 22.3, -0.37}), N(w + "Hand"));
        r.Add(w + "FingerBase", w + "Hand", OnSide(side, {11.82, 22.3, -0.37}), N(w + "FingerBase"));
        r.Add(w + "HandIndex1", w + "FingerBase", OnSide(side, {12.53, 22.3, -0.37}), N(w + "HandIndex1"));
        r.Tip(w + "HandIndex1", OnSide(side, {13.1, 22.3, -0.37}));
        r.Add(side + "Thumb", w + "Hand", OnSide(side, {11.82, 22.3, -0.37}), N(w + "HandThumb1"));
        r.Tip(side + "Thumb", OnSide(side, {12.16, 22.3, 0.11}));
    }
    return r.Done();
}

// A marker studio's skeleton: every name after the actor's ("Actor1_Hip"), short glued names ("Ab", "LUArm",
// "LFArm", "LShin"), end sites at the head, hands and toes. Metres, T-pose, facing +Z.
TruthRig MarkerStudio()
{
    Rig r("marker studio", Body(0));
    const auto n = [](const QString& bone) { return "Actor1_" + bone; };
    r.Add(n("Hip"), "", "hips", N("Hips"));
    r.Add(n("Ab"), n("Hip"), "spine1", N("Spine"));
    r.Add(n("Chest"), n("Ab"), "spine3", N("Spine1"));
    r.Add(n("Neck"), n("Chest"), "neck0", N("Neck"));
    r.Add(n("Head"), n("Neck"), "head", N("Head"));
    r.Tip(n("Head"), r.At("headtop"));
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        const auto at = [&](const QString& joint) { return r.At(joint + side); };
        const auto b = [&](const QString& bone) { return n(side + bone); };
        r.Add(b("Shoulder"), n("Chest"), at("clav"), N(w + "Shoulder"));
        r.Add(b("UArm"), b("Shoulder"), at("uarm"), N(w + "Arm"));
        r.Add(b("FArm"), b("UArm"), at("farm"), N(w + "ForeArm"));
        r.Add(b("Hand"), b("FArm"), at("hand"), N(w + "Hand"));
        r.Tip(b("Hand"), r.At("f2_4" + side));
        r.Add(b("Thigh"), n("Hip"), at("thigh"), N(w + "UpLeg"));
        r.Add(b("Shin"), b("Thigh"), at("knee"), N(w + "Leg"));
        r.Add(b("Foot"), b("Shin"), at("ankle"), N(w + "Foot"));
        r.Add(b("Toe"), b("Foot"), at("toe"), N(w + "ToeBase"));
        r.Tip(b("Toe"), at("toeEnd"));
    }
    return r.Done();
}

// A virtual world's avatar with its extended bones: Z up in metres facing +X; spine joints that fold back onto the
// pelvis and the torso; hind limbs behind the legs reaching the ground, wings from the chest, a tail, a groin,
// some forty face bones, three-jointed fingers, and the collision volumes ("L_UPPER_ARM", "PELVIS") as leaves on
// the bones they follow.
TruthRig ExtendedAvatar()
{
    Rig r("extended avatar", Body(0), [](const V& v) { return V {v[2], v[0], v[1]}; });
    r.Add("mPelvis", "", "hips", N("Hips"));
    r.Add("PELVIS", "mPelvis", Shift(r.At("hips"), 0, 0.02, 0), -1, true);
    r.Add("mSpine1", "mPelvis", "spine0", -1, true);
    r.Add("mSpine2", "mSpine1", "hips", -1, true);
    r.Add("mTorso", "mSpine2", "spine0", N("Spine"));
    r.Add("BELLY", "mTorso", Shift(r.At("spine0"), 0, 0.05, 0.05), -1, true);
    r.Add("mSpine3", "mTorso", "spine2", -1, true);
    r.Add("mSpine4", "mSpine3", "spine0", -1, true);
    r.Add("mChest", "mSpine4", "spine2", N("Spine1"));
    r.Add("CHEST", "mChest", Shift(r.At("spine2"), 0, 0.05, 0.06), -1, true);
    r.Add("mNeck", "mChest", "neck0", N("Neck"));
    r.Add("mHead", "mNeck", "head", N("Head"));
    r.Add("mSkull", "mHead", "headtop", -1, true);
    r.Add("mEyeLeft", "mHead", "eyeL");
    r.Add("mEyeRight", "mHead", "eyeR");
    r.Add("mFaceRoot", "mHead", "jaw");
    const char* const face[] = {"EyebrowOuter", "EyebrowCenter", "EyebrowInner", "EyeLidUpper", "EyeLidLower",
                                "EyeCornerInner", "Ear1", "Ear2", "NoseLeft", "CheekUpper", "CheekLower",
                                "LipCorner", "LipUpper", "LipLower", "Jaw", "Nostril", "Temple", "Forehead"};
    for (int i = 0; i < 18; ++i)
        for (QString side : {"Left", "Right"})
            r.Add(QStringLiteral("mFace%1%2").arg(face[i], side), "mFaceRoot",
                  OnSide(side == "Left" ? "L" : "R", {0.02 + 0.004 * i, 1.58 + 0.008 * i, 0.07 + 0.002 * i}));
    r.Add("mGroin", "mPelvis", V {0, 0.92, 0.07});
    r.Add("mTail1", "mPelvis", V {0, 1.0, -0.12});
    for (int k = 2; k <= 6; ++k)
        r.Add(QStringLiteral("mTail%1").arg(k), QStringLiteral("mTail%1").arg(k - 1),
              V {0, 1.0 - 0.04 * k, -0.1 - 0.09 * k});
    r.Add("mHindLimbsRoot", "mPelvis", V {0, 1.0, -0.2});
    r.Add("mWingsRoot", "mChest", V {0, 1.32, -0.1});
    const char* const fingers[] = {"Thumb", "Index", "Middle", "Ring", "Pinky"};
    for (QString side : {"L", "R"})
    {
        const QString w = side == "L" ? "Left" : "Right";
        const QString node = Sided(side);
        const auto at = [&](const QString& joint) { return r.At(joint + side); };
        const auto volume = [&](const QString& name, const QString& bone, const V& where) {
            r.Add(side + "_" + name, bone + w, where, -1, true);
        };
        r.Add("mCollar" + w, "mChest", at("clav"), N(node + "Shoulder"));
        volume("CLAVICLE", "mCollar", Lerp(at("clav"), at("uarm"), 0.5));
        r.Add("mShoulder" + w, "mCollar" + w, at("uarm"), N(node + "Arm"));
        volume("UPPER_ARM", "mShoulder", Lerp(at("uarm"), at("farm"), 0.5));
        r.Add("mElbow" + w, "mShoulder" + w, at("farm"), N(node + "ForeArm"));
        volume("LOWER_ARM", "mElbow", Lerp(at("farm"), at("hand"), 0.5));
        r.Add("mWrist" + w, "mElbow" + w, at("hand"), N(node + "Hand"));
        volume("HAND", "mWrist", Shift(at("hand"), OnSide(side, {0.05, 0, 0})[0], 0, 0));
        for (int f = 0; f < 5; ++f)
            r.Digit("mWrist" + w, side, f, f == 0 ? 0 : 1, f == 0 ? 3 : 4,
                    [&](int i) { return QStringLiteral("mHand%1%2%3").arg(fingers[f]).arg(i + 1).arg(w); });
        r.Add("mHip" + w, "mPelvis", at("thigh"), N(node + "UpLeg"));
        volume("UPPER_LEG", "mHip", Lerp(at("thigh"), at("knee"), 0.5));
        r.Add("mKnee" + w, "mHip" + w, at("knee"), N(node + "Leg"));
        volume("LOWER_LEG", "mKnee", Lerp(at("knee"), at("ankle"), 0.5));
        r.Add("mAnkle" + w, "mKnee" + w, at("ankle"), N(node + "Foot"));
        volume("FOOT", "mAnkle", Lerp(at("ankle"), at("toe"), 0.5));
        r.Add("mFoot" + w, "mAnkle" + w, at("toe"), N(node + "ToeBase"));
        r.Add("mToe" + w, "mFoot" + w, at("toeEnd"), -1, true);
        QString hind = "mHindLimbsRoot";
        const V hindJoints[] = {{0.1, 0.93, -0.25}, {0.1, 0.52, -0.22}, {0.1, 0.09, -0.27}, {0.1, 0.02, -0.16}};
        for (int k = 0; k < 4; ++k)
            hind = r.Add(QStringLiteral("mHindLimb%1%2").arg(k + 1).arg(w), hind, OnSide(side, hindJoints[k]));
        QString wing = "mWingsRoot";
        const V wingJoints[] = {{0.1, 1.4, -0.15}, {0.35, 1.45, -0.22}, {0.6, 1.38, -0.28}, {0.85, 1.28, -0.3}};
        for (int k = 0; k < 4; ++k)
            wing = r.Add(QStringLiteral("mWing%1%2").arg(k + 1).arg(w), wing, OnSide(side, wingJoints[k]));
        r.Add("mWing4Fan" + w, QStringLiteral("mWing3%1").arg(w), OnSide(side, {0.8, 1.2, -0.35}));
    }
    return r.Done();
}

// A figure tool's older rig: carpal bones that each carry two fingers, the big toe and four small toes on the
// toe, pectorals, upper and lower face rigs full of bones; A-pose, centimetres.
TruthRig FigureCarpalPairs()
{
    Rig r = FigureToolTrunk("figure tool, paired carpals");
    r.Add("upperFaceRig", "head", Shift(r.At("head"), 0, 0.08, 0.02));
    r.Add("lowerFaceRig", "head", Shift(r.At("head"), 0, 0.02, 0.02));
    r.Add("lowerJaw", "lowerFaceRig", "jaw");
    for (int k = 1; k <= 4; ++k)
        r.Add(QStringLiteral("tongue0%1").arg(k), k == 1 ? "lowerJaw" : QStringLiteral("tongue0%1").arg(k - 1),
              Shift(r.At("jaw"), 0, 0.0, 0.015 * k));
    const char* const upperFace[] = {"BrowInner", "BrowMid", "BrowOuter", "EyelidUpper", "EyelidLower", "Ear",
                                     "CheekUpper", "Nostril"};
    const char* const lowerFace[] = {"LipCorner", "LipBelow", "NasolabialLower", "CheekLower", "JawClench"};
    const char* const fingers[] = {"Thumb", "Index", "Mid", "Ring", "Pinky"};
    for (QString side : {"L", "R"})
    {
        const QString p = side.toLower();
        const QString w = Sided(side);
        const auto at = [&](const QString& joint) { return r.At(joint + side); };
        for (int i = 0; i < 8; ++i)
            r.Add(p + upperFace[i], "upperFaceRig", OnSide(side, {0.02 + 0.006 * i, 1.7 - 0.01 * i, 0.09}));
        for (int i = 0; i < 5; ++i)
            r.Add(p + lowerFace[i], "lowerFaceRig", OnSide(side, {0.015 + 0.006 * i, 1.63 - 0.005 * i, 0.09}));
        r.Add(p + "Eye", "head", at("eye"));
        r.Add(p + "Pectoral", "chestUpper", OnSide(side, {0.09, 1.3, 0.1}));
        r.Add(p + "Collar", "chestUpper", at("clav"), N(w + "Shoulder"));
        r.Add(p + "ShldrBend", p + "Collar", at("uarm"), N(w + "Arm"));
        r.Add(p + "ShldrTwist", p + "ShldrBend", at("uarmMid"), -1, true);
        r.Add(p + "ForearmBend", p + "ShldrTwist", at("farm"), N(w + "ForeArm"));
        r.Add(p + "ForearmTwist", p + "ForearmBend", at("farmMid"), -1, true);
        r.Add(p + "Hand", p + "ForearmTwist", at("hand"), N(w + "Hand"));
        r.Digit(p + "Hand", side, 0, 0, 3, [&](int i) { return QStringLiteral("%1Thumb%2").arg(p).arg(i + 1); });
        for (int carpal = 1; carpal <= 2; ++carpal)
        {
            const QString bone = QStringLiteral("%1Carpal%2").arg(p).arg(carpal);
            r.Add(bone, p + "Hand", Lerp(at("hand"), r.At(QStringLiteral("f%1_1%2").arg(2 * carpal).arg(side)), 0.4),
                  -1, true);
            for (int f = 2 * carpal - 1; f <= 2 * carpal; ++f)
                r.Digit(bone, side, f, 1, 4,
                        [&](int i) { return QStringLiteral("%1%2%3").arg(p, fingers[f]).arg(i + 1); });
        }
        r.Add(p + "ThighBend", "pelvis", at("thigh"), N(w + "UpLeg"));
        r.Add(p + "ThighTwist", p + "ThighBend", at("thighMid"), -1, true);
        r.Add(p + "Shin", p + "ThighTwist", at("knee"), N(w + "Leg"));
        r.Add(p + "Foot", p + "Shin", at("ankle"), N(w + "Foot"));
        r.Add(p + "Metatarsals", p + "Foot", at("mid"), -1, true);
        r.Add(p + "Toe", p + "Metatarsals", at("toe"), N(w + "ToeBase"));
        r.Add(p + "BigToe", p + "Toe", r.At("toe0" + side), N(w + "FootThumb1"));
        r.Add(p + "BigToe_2", p + "BigToe", Shift(r.At("toe0" + side), 0, 0, 0.03), N(w + "FootThumb2"));
        const char* const toes[] = {"Index", "Middle", "Ring", "Pinky"};
        for (int t = 1; t <= 4; ++t)
        {
            const V base = r.At(QStringLiteral("toe%1%2").arg(t).arg(side));
            const QString toe = QStringLiteral("%1SmallToe%2").arg(p).arg(t);
            r.Add(toe, p + "Toe", base, N(w + "Foot" + toes[t - 1] + "1"));
            r.Add(toe + "_2", toe, Shift(base, 0, 0, 0.02), N(w + "Foot" + toes[t - 1] + "2"));
        }
    }
    return r.Done();
}

// A cartoon character: a head as tall as its legs, short limbs, a thumb and three fingers on each hand, or mittens
// (a thumb and one chain for the other fingers); a production rig's names ("L_shoulder_jnt" for the upper arm, a
// "C_" middle), arms 15 degrees down, facing -Z.
TruthRig Cartoon(bool mittens)
{
    Rig r(mittens ? "cartoon with mittens" : "cartoon", {}, [](const V& v) { return V {-v[0], v[1], -v[2]}; });
    r.Add("C_root_jnt", "", V {0, 0, 0});
    r.Add("C_pelvis_jnt", "C_root_jnt", V {0, 0.34, 0}, N("Hips"));
    r.Add("C_spine_01_jnt", "C_pelvis_jnt", V {0, 0.4, -0.01}, N("Spine"));
    r.Add("C_spine_02_jnt", "C_spine_01_jnt", V {0, 0.47, -0.01}, N("Spine1"));
    r.Add("C_neck_jnt", "C_spine_02_jnt", V {0, 0.55, -0.01}, N("Neck"));
    r.Add("C_head_jnt", "C_neck_jnt", V {0, 0.59, 0}, N("Head"));
    r.Add("C_head_end_jnt", "C_head_jnt", V {0, 1.0, 0}, -1, true);
    r.Add("C_jaw_jnt", "C_head_jnt", V {0, 0.63, 0.08});
    const double drop = 15.0 / 57.29578;
    const char* const fingers[] = {"index", "middle", "pinky"};
    const char* const nodes[] = {"Index", "Middle", "Pinky"};
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        const auto b = [&](const QString& bone) { return side + "_" + bone + "_jnt"; };
        // Out along the arm from the shoulder, down by the pose's angle.
        const auto arm = [&](double out, double dy, double dz) {
            return OnSide(side, {0.09 + out * std::cos(drop), 0.52 - out * std::sin(drop) + dy, dz});
        };
        r.Add(b("eye"), "C_head_jnt", OnSide(side, {0.06, 0.75, 0.14}));
        r.Add(b("clavicle"), "C_spine_02_jnt", OnSide(side, {0.025, 0.52, 0.0}), N(w + "Shoulder"));
        r.Add(b("shoulder"), b("clavicle"), arm(0, 0, 0), N(w + "Arm"));
        r.Add(b("elbow"), b("shoulder"), arm(0.11, 0, -0.01), N(w + "ForeArm"));
        r.Add(b("wrist"), b("elbow"), arm(0.21, 0, 0), N(w + "Hand"));
        QString thumb = b("wrist");
        for (int k = 0; k < 2; ++k)
        {
            const V joint = arm(0.22 + 0.02 * k, -0.01, 0.02 + 0.015 * k);
            thumb = r.Add(b(QStringLiteral("thumb_0%1").arg(k + 1)), thumb, joint,
                          N(w + QStringLiteral("HandThumb%1").arg(k + 1)));
        }
        const int count = mittens ? 1 : 3;
        for (int f = 0; f < count; ++f)
        {
            QString finger = b("wrist");
            for (int k = 0; k < 2; ++k)
            {
                const V joint = arm(0.25 + 0.025 * k, 0, mittens ? -0.005 : 0.012 - 0.017 * f);
                finger = mittens ? r.Add(b(QStringLiteral("mitten_0%1").arg(k + 1)), finger, joint, -1, true)
                                 : r.Add(b(QStringLiteral("%1_0%2").arg(fingers[f]).arg(k + 1)), finger, joint,
                                         N(w + "Hand" + nodes[f] + QString::number(k + 1)));
            }
        }
        r.Add(b("hip"), "C_pelvis_jnt", OnSide(side, {0.06, 0.31, 0}), N(w + "UpLeg"));
        r.Add(b("knee"), b("hip"), OnSide(side, {0.06, 0.17, 0.01}), N(w + "Leg"));
        r.Add(b("ankle"), b("knee"), OnSide(side, {0.06, 0.04, -0.01}), N(w + "Foot"));
        r.Add(b("ball"), b("ankle"), OnSide(side, {0.06, 0.01, 0.06}), N(w + "ToeBase"));
        r.Add(b("toe"), b("ball"), OnSide(side, {0.06, 0.01, 0.1}), -1, true);
    }
    return r.Done();
}

// A social-platform avatar as a converter plug-in names it: words with spaces and a side first ("Left leg" the
// thigh, "Left knee", "Left ankle", "Left arm" the upper arm, "Left elbow", "Left wrist"), "Upper Chest",
// fingers "IndexFinger1_L" to "LittleFinger3_L", breasts, hair and a tail; A-pose, facing -Z, Blender's FBX
// leaf bones at the ends.
TruthRig PlatformAvatar()
{
    Rig r("platform avatar", Body(30), [](const V& v) { return V {-v[0], v[1], -v[2]}; });
    r.Add("Armature", "", "root");
    r.Add("Hips", "Armature", "hips", N("Hips"));
    r.Add("Spine", "Hips", "spine0", N("Spine"));
    r.Add("Chest", "Spine", "spine1", N("Spine1"));
    r.Add("Upper Chest", "Chest", "spine2", N("Spine2"));
    r.Add("Neck", "Upper Chest", "neck0", N("Neck"));
    r.Add("Head", "Neck", "head", N("Head"));
    r.Add("Head_end", "Head", "headtop", -1, true);
    for (int k = 0; k < 8; ++k)
    {
        const double angle = k * 0.785;
        QString parent = "Head";
        for (int j = 0; j < 3; ++j)
            parent = r.Add(QStringLiteral("Hair_%1_%2").arg(k).arg(j), parent,
                           V {0.08 * std::sin(angle), 1.7 - 0.08 * j, 0.08 * std::cos(angle) - 0.03});
    }
    QString tail = "Hips";
    for (int k = 0; k < 4; ++k)
        tail = r.Add(QStringLiteral("Tail_%1").arg(k), tail, V {0, 0.98 - 0.06 * k, -0.1 - 0.1 * k});
    const char* const fingers[] = {"Thumb", "IndexFinger", "MiddleFinger", "RingFinger", "LittleFinger"};
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        const auto at = [&](const QString& joint) { return r.At(joint + side); };
        r.Add("Breast_" + side, "Upper Chest", OnSide(side, {0.08, 1.3, 0.06}));
        r.Add("Breast_" + side + "_end", "Breast_" + side, OnSide(side, {0.09, 1.29, 0.13}));
        r.Add(w + " shoulder", "Upper Chest", at("clav"), N(w + "Shoulder"));
        r.Add(w + " arm", w + " shoulder", at("uarm"), N(w + "Arm"));
        r.Add(w + " elbow", w + " arm", at("farm"), N(w + "ForeArm"));
        r.Add(w + " wrist", w + " elbow", at("hand"), N(w + "Hand"));
        for (int f = 0; f < 5; ++f)
        {
            const QString last = r.Digit(w + " wrist", side, f, f == 0 ? 0 : 1, f == 0 ? 3 : 4, [&](int i) {
                return QStringLiteral("%1%2_%3").arg(fingers[f]).arg(i + 1).arg(side);
            });
            r.Add(last + "_end", last, r.At(QStringLiteral("f%1_%2%3").arg(f).arg(f == 0 ? 3 : 4).arg(side)), -1,
                  true);
        }
        r.Add(w + " leg", "Hips", at("thigh"), N(w + "UpLeg"));
        r.Add(w + " knee", w + " leg", at("knee"), N(w + "Leg"));
        r.Add(w + " ankle", w + " knee", at("ankle"), N(w + "Foot"));
        r.Add(w + " toe", w + " ankle", at("toe"), N(w + "ToeBase"));
        r.Add(w + " toe_end", w + " toe", at("toeEnd"), -1, true);
    }
    return r.Done();
}
} // namespace conventions

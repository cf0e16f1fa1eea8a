// Game rigs: engine mannequins, a rigging add-on's whole armature, low-poly and asset-pack characters, an older
// engine's biped and a rigging script's deform skeleton.
#include "ConventionRigs.h"

#include "ConventionRigBuilder.h"

namespace conventions
{
using namespace build;

namespace
{
const char* const kDigitNames[] = {"Thumb", "Index", "Middle", "Ring", "Pinky"};
} // namespace

// A newer game-engine mannequin: Z up in centimetres facing +Y, A-pose, five spine and two neck bones, two twist
// bones beside each limb bone, corrective bones around the joints, metacarpals, a weapon socket in each hand, and
// IK, interaction and centre-of-mass bones under the root.
TruthRig NewerMannequin()
{
    Rig r("newer mannequin", Body(45), [](const V& v) { return V {-100 * v[0], 100 * v[2], 100 * v[1]}; });
    r.Add("root", "", "root");
    r.Add("pelvis", "root", "hips", N("Hips"));
    r.Add("spine_01", "pelvis", "spine0", N("Spine"));
    r.Add("spine_02", "spine_01", "spine1", N("Spine1"));
    r.Add("spine_03", "spine_02", "spine2", N("Spine2"));
    r.Add("spine_04", "spine_03", "spine3", N("Spine3"));
    r.Add("spine_05", "spine_04", V {0, 1.43, -0.03}, N("Spine4"));
    r.Add("neck_01", "spine_05", "neck0", N("Neck"));
    r.Add("neck_02", "neck_01", "neck1", N("Neck1"));
    r.Add("head", "neck_02", "head", N("Head"));
    const char* const fingers[] = {"thumb", "index", "middle", "ring", "pinky"};
    for (QString side : {"L", "R"})
    {
        const QString s = "_" + side.toLower();
        const QString w = Sided(side);
        const auto at = [&](const QString& joint) { return r.At(joint + side); };
        // Bones that only shape the skin: twists along a limb bone, and correctives around a joint.
        const auto twists = [&](const QString& bone, const V& from, const V& to) {
            r.Add(bone + "_twist_01" + s, bone + s, Lerp(from, to, 0.33), -1, true);
            r.Add(bone + "_twist_02" + s, bone + s, Lerp(from, to, 0.66), -1, true);
        };
        const auto correctives = [&](const QString& bone, const V& joint, const QStringList& around) {
            const QString root = r.Add(bone + "_correctiveRoot" + s, bone + s, joint, -1, true);
            for (int i = 0; i < around.size(); ++i)
                r.Add(bone + "_" + around[i] + s, root,
                      Shift(joint, OnSide(side, {i % 2 ? 0.04 : -0.04, 0, 0})[0], 0.0, i < 2 ? 0.05 : -0.05), -1,
                      true);
        };
        r.Add("clavicle" + s, "spine_05", at("clav"), N(w + "Shoulder"));
        for (const char* helper : {"pec", "scap", "out"})
            r.Add(QStringLiteral("clavicle_%1%2").arg(helper, s), "clavicle" + s,
                  Shift(Lerp(at("clav"), at("uarm"), 0.5), 0, -0.03, helper[0] == 'p' ? 0.06 : -0.05), -1, true);
        r.Add("spine_04_latissimus" + s, "spine_04", OnSide(side, {0.1, 1.3, -0.08}), -1, true);
        r.Add("upperarm" + s, "clavicle" + s, at("uarm"), N(w + "Arm"));
        twists("upperarm", at("uarm"), at("farm"));
        correctives("upperarm", at("uarm"), {"fwd", "out", "bck", "in"});
        r.Add("lowerarm" + s, "upperarm" + s, at("farm"), N(w + "ForeArm"));
        twists("lowerarm", at("farm"), at("hand"));
        correctives("lowerarm", at("farm"), {"fwd", "out", "bck", "in"});
        r.Add("hand" + s, "lowerarm" + s, at("hand"), N(w + "Hand"));
        r.Digit("hand" + s, side, 0, 0, 3, [&](int i) { return QStringLiteral("thumb_0%1%2").arg(i + 1).arg(s); });
        for (int f = 1; f < 5; ++f)
        {
            const QString palm = r.Add(QStringLiteral("%1_metacarpal%2").arg(fingers[f], s), "hand" + s,
                                       r.At(QStringLiteral("f%1_0%2").arg(f).arg(side)),
                                       N(w + "InHand" + kDigitNames[f]));
            r.Digit(palm, side, f, 1, 4,
                    [&](int i) { return QStringLiteral("%1_0%2%3").arg(fingers[f]).arg(i + 1).arg(s); });
        }
        r.Add("weapon" + s, "hand" + s, Shift(at("hand"), 0, -0.04, 0.06));
        r.Add("thigh" + s, "pelvis", at("thigh"), N(w + "UpLeg"));
        twists("thigh", at("thigh"), at("knee"));
        correctives("thigh", at("thigh"), {"fwd", "out", "bck", "in", "bck_lwr", "fwd_lwr"});
        r.Add("calf" + s, "thigh" + s, at("knee"), N(w + "Leg"));
        twists("calf", at("knee"), at("ankle"));
        correctives("calf", at("knee"), {"knee", "kneeBack"});
        r.Add("foot" + s, "calf" + s, at("ankle"), N(w + "Foot"));
        r.Add("ankle_fwd" + s, "foot" + s, Shift(at("ankle"), 0, 0, 0.05), -1, true);
        r.Add("ankle_bck" + s, "foot" + s, Shift(at("ankle"), 0, 0, -0.05), -1, true);
        r.Add("ball" + s, "foot" + s, at("toe"), N(w + "ToeBase"));
    }
    r.Add("interaction", "root", V {0, 1.0, 0.4});
    r.Add("center_of_mass", "root", V {0, 1.05, 0});
    AddEngineIkBones(r);
    return r.Done();
}

// A rigging add-on's whole armature exported as it is: the deform bones ("DEF-") inside a copy of the original
// bones ("ORG-"), mechanism bones ("MCH-"), FK and IK controls at the very joints of the limbs, poles and tweaks.
// Only the deform bones skin the mesh, and only they map. Z up in metres, facing -Y, arms 30 degrees down.
TruthRig WholeRiggingArmature()
{
    Rig r("whole rigging armature", Body(30), [](const V& v) { return V {v[0], -v[2], v[1]}; });
    r.Add("root", "", "root");
    r.Add("MCH-torso.parent", "root", "hips");
    r.Add("torso", "MCH-torso.parent", "spine0");
    r.Add("hips", "torso", "hips");
    r.Add("chest", "torso", "spine2");
    r.Add("neck", "chest", "neck0");
    r.Add("head", "neck", "head");
    // The original bones, then the deform bones under them, each a whole skeleton of the same shape.
    for (const QString prefix : {"ORG-", "DEF-"})
    {
        const bool deform = prefix == "DEF-";
        const auto n = [&](const QString& bone) { return prefix + bone; };
        const auto node = [&](const QString& name) { return deform ? N(name) : -1; };
        const QString spine = n("spine");
        r.Add(spine, deform ? "ORG-spine" : "torso", "hips", node("Hips"));
        const char* const central[] = {"spine0", "spine1", "spine2", "neck0", "neck1", "head"};
        const char* const nodes[] = {"Spine", "Spine1", "Spine2", "Neck", "Neck1", "Head"};
        QString parent = spine;
        for (int i = 0; i < 6; ++i)
            parent = r.Add(QStringLiteral("%1.00%2").arg(spine).arg(i + 1), parent, central[i], node(nodes[i]));
        for (QString side : {"L", "R"})
        {
            const QString w = Sided(side);
            const auto b = [&](const QString& bone) { return n(bone + "." + side); };
            const auto at = [&](const QString& joint) { return r.At(joint + side); };
            r.Add(b("shoulder"), spine + ".003", at("clav"), node(w + "Shoulder"));
            r.Add(b("upper_arm"), b("shoulder"), at("uarm"), node(w + "Arm"));
            QString elbowParent = b("upper_arm");
            if (deform)
                elbowParent = r.Add(b("upper_arm") + ".001", b("upper_arm"), at("uarmMid"), -1, true);
            r.Add(b("forearm"), elbowParent, at("farm"), node(w + "ForeArm"));
            QString wristParent = b("forearm");
            if (deform)
                wristParent = r.Add(b("forearm") + ".001", b("forearm"), at("farmMid"), -1, true);
            r.Add(b("hand"), wristParent, at("hand"), node(w + "Hand"));
            const char* const names[] = {"thumb", "f_index", "f_middle", "f_ring", "f_pinky"};
            const auto palm = [&](int f) { return QStringLiteral("%1palm.0%2.%3").arg(prefix).arg(f).arg(side); };
            for (int f = 1; f < 5; ++f)
                r.Add(palm(f), b("hand"), r.At(QStringLiteral("f%1_0%2").arg(f).arg(side)), -1, deform);
            for (int f = 0; f < 5; ++f)
                r.Digit(palm(std::max(f, 1)), side, f, f == 0 ? 0 : 1, f == 0 ? 3 : 4, [&](int i) {
                    return QStringLiteral("%1%2.0%3.%4").arg(prefix, names[f]).arg(i + 1).arg(side);
                }, false, deform);
            r.Add(b("thigh"), spine, at("thigh"), node(w + "UpLeg"));
            QString kneeParent = b("thigh");
            if (deform)
                kneeParent = r.Add(b("thigh") + ".001", b("thigh"), at("thighMid"), -1, true);
            r.Add(b("shin"), kneeParent, at("knee"), node(w + "Leg"));
            QString ankleParent = b("shin");
            if (deform)
                ankleParent = r.Add(b("shin") + ".001", b("shin"), at("kneeMid"), -1, true);
            r.Add(b("foot"), ankleParent, at("ankle"), node(w + "Foot"));
            r.Add(b("toe"), b("foot"), at("toe"), node(w + "ToeBase"));
            if (!deform)
                r.Add(b("heel.02"), b("foot"), Shift(at("ankle"), 0, -0.07, -0.05));
            r.Add(b("pelvis"), spine, OnSide(side, {0.05, 1.02, 0.04}), -1, deform);
            r.Add(b("breast"), spine + ".003", OnSide(side, {0.09, 1.3, 0.1}));
        }
    }
    for (QString side : {"L", "R"})
    {
        const auto c = [&](const QString& bone) { return bone + "." + side; };
        const auto at = [&](const QString& joint) { return r.At(joint + side); };
        r.Add(c("shoulder"), "ORG-spine.003", at("clav"));
        r.Add(c("MCH-upper_arm_parent"), c("ORG-shoulder"), at("uarm"));
        r.Add(c("upper_arm_fk"), c("MCH-upper_arm_parent"), at("uarm"));
        r.Add(c("forearm_fk"), c("upper_arm_fk"), at("farm"));
        r.Add(c("hand_fk"), c("forearm_fk"), at("hand"));
        r.Add(c("MCH-hand_fk"), c("hand_fk"), at("hand"));
        r.Add(c("upper_arm_ik"), c("MCH-upper_arm_parent"), at("uarm"));
        r.Add(c("MCH-forearm_ik"), c("upper_arm_ik"), at("farm"));
        r.Add(c("MCH-upper_arm_ik_target"), c("MCH-forearm_ik"), at("hand"));
        r.Add(c("upper_arm_tweak"), c("ORG-upper_arm"), at("uarm"));
        r.Add(c("forearm_tweak"), c("ORG-forearm"), at("farm"));
        r.Add(c("hand_tweak"), c("ORG-hand"), at("hand"));
        r.Add(c("palm"), c("ORG-hand"), r.At("f2_0" + side));
        r.Add(c("hand_ik"), "root", at("hand"));
        r.Add(c("upper_arm_ik_target"), "root", Shift(at("farm"), 0, 0, -0.4));
        r.Add(c("MCH-thigh_parent"), "ORG-spine", at("thigh"));
        r.Add(c("thigh_fk"), c("MCH-thigh_parent"), at("thigh"));
        r.Add(c("shin_fk"), c("thigh_fk"), at("knee"));
        r.Add(c("foot_fk"), c("shin_fk"), at("ankle"));
        r.Add(c("toe_fk"), c("foot_fk"), at("toe"));
        r.Add(c("thigh_ik"), c("MCH-thigh_parent"), at("thigh"));
        r.Add(c("MCH-shin_ik"), c("thigh_ik"), at("knee"));
        r.Add(c("foot_ik"), "root", at("ankle"));
        r.Add(c("foot_heel_ik"), c("foot_ik"), Shift(at("ankle"), 0, -0.07, -0.05));
        r.Add(c("foot_spin_ik"), c("foot_heel_ik"), at("toe"));
        r.Add(c("thigh_ik_target"), "root", Shift(at("knee"), 0, 0, 0.5));
    }
    r.Skin([](const QString& bone) { return bone.startsWith("DEF-"); });
    return r.Done();
}

// A low-poly game avatar: lower and upper torso, upper and lower arms and legs, no clavicles, fingers or neck,
// arms hanging down, in the engine's own units, facing -Z; leaf bones mark where each chain ends.
TruthRig BlockAvatar()
{
    Rig r("block avatar", {}, [](const V& v) { return V {-v[0], v[1], -v[2]}; });
    r.Add("HumanoidRootPart", "", V {0, 3.0, 0});
    r.Add("LowerTorso", "HumanoidRootPart", V {0, 2.2, 0}, N("Hips"));
    r.Add("UpperTorso", "LowerTorso", V {0, 2.6, 0}, N("Spine"));
    r.Add("Head", "UpperTorso", V {0, 4.0, 0}, N("Head"));
    r.Add("Head_end", "Head", V {0, 5.2, 0}, -1, true);
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        const auto add = [&](const QString& bone, const QString& parent, const V& left, const QString& node) {
            return r.Add(w + bone, parent, OnSide(side, left), N(w + node));
        };
        add("UpperArm", "UpperTorso", {1.3, 3.7, 0}, "Arm");
        add("LowerArm", w + "UpperArm", {1.5, 2.95, 0.02}, "ForeArm");
        add("Hand", w + "LowerArm", {1.5, 2.25, 0}, "Hand");
        r.Add(w + "Hand_end", w + "Hand", OnSide(side, {1.5, 1.9, 0.05}), -1, true);
        add("UpperLeg", "LowerTorso", {0.5, 2.0, 0}, "UpLeg");
        add("LowerLeg", w + "UpperLeg", {0.5, 1.2, 0.03}, "Leg");
        add("Foot", w + "LowerLeg", {0.5, 0.35, 0}, "Foot");
        r.Add(w + "Foot_end", w + "Foot", OnSide(side, {0.5, 0.1, 0.45}), -1, true);
    }
    return r.Done();
}

// An older engine's biped: "ValveBiped.Bip01_L_Thigh", Z up in inches facing +X, four spine bones numbered with a
// gap, fingers numbered 0 to 4 with their joints after them, helper bones at and between the arm's joints, a
// weapon bone and hand attachments.
TruthRig EngineBiped()
{
    Rig r("engine biped", Body(0), [](const V& v) { return V {39.37 * v[2], 39.37 * v[0], 39.37 * v[1]}; });
    const auto n = [](const QString& bone) { return "ValveBiped.Bip01_" + bone; };
    r.Add(n("Pelvis"), "", "hips", N("Hips"));
    r.Add(n("Spine"), n("Pelvis"), "spine0", N("Spine"));
    r.Add(n("Spine1"), n("Spine"), "spine1", N("Spine1"));
    r.Add(n("Spine2"), n("Spine1"), "spine2", N("Spine2"));
    r.Add(n("Spine4"), n("Spine2"), "spine3", N("Spine3"));
    r.Add(n("Neck1"), n("Spine4"), "neck0", N("Neck"));
    r.Add(n("Head1"), n("Neck1"), "head", N("Head"));
    r.Add("ValveBiped.forward", n("Head1"), Shift(r.At("head"), 0, 0.05, 0.2));
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        const auto b = [&](const QString& bone) { return n(side + "_" + bone); };
        const auto at = [&](const QString& joint) { return r.At(joint + side); };
        r.Add(b("Clavicle"), n("Spine4"), at("clav"), N(w + "Shoulder"));
        r.Add(b("Trapezius"), b("Clavicle"), Shift(at("clav"), 0, 0.03, -0.03), -1, true);
        r.Add(b("UpperArm"), b("Clavicle"), at("uarm"), N(w + "Arm"));
        r.Add(b("Shoulder"), b("Clavicle"), at("uarm"), -1, true);
        r.Add(b("Bicep"), b("UpperArm"), Lerp(at("uarm"), at("farm"), 0.4), -1, true);
        r.Add(b("Elbow"), b("UpperArm"), at("farm"), -1, true);
        r.Add(b("Forearm"), b("UpperArm"), at("farm"), N(w + "ForeArm"));
        r.Add(b("Ulna"), b("Forearm"), at("farmMid"), -1, true);
        r.Add(b("Wrist"), b("Forearm"), at("hand"), -1, true);
        r.Add(b("Hand"), b("Forearm"), at("hand"), N(w + "Hand"));
        for (int f = 0; f < 5; ++f)
            r.Digit(b("Hand"), side, f, f == 0 ? 0 : 1, f == 0 ? 3 : 4, [&](int i) {
                return b(QStringLiteral("Finger%1%2").arg(f).arg(i == 0 ? QString() : QString::number(i)));
            });
        r.Add(QStringLiteral("ValveBiped.Anim_Attachment_%1H").arg(side), b("Hand"),
              Shift(at("hand"), OnSide(side, {0.06, 0, 0})[0], -0.03, 0.03));
        r.Add(b("Thigh"), n("Pelvis"), at("thigh"), N(w + "UpLeg"));
        r.Add(b("Calf"), b("Thigh"), at("knee"), N(w + "Leg"));
        r.Add(b("Foot"), b("Calf"), at("ankle"), N(w + "Foot"));
        r.Add(b("Toe0"), b("Foot"), at("toe"), N(w + "ToeBase"));
    }
    r.Add("ValveBiped.weapon_bone", n("R_Hand"), Shift(r.At("handR"), -0.08, -0.02, 0.04));
    return r.Done();
}

// An asset pack's characters: "UpperLeg_L", "Ankle_L" as the foot, "Ball_L" and a "Toes_L" end, "Shoulder_L" as
// the upper arm and "Elbow_L" as the forearm; a thumb, an index and one "Finger" chain for the other three.
// Centimetres, T-pose, eyes and eyebrows under the head.
TruthRig AssetPack()
{
    Rig r("asset pack", Body(0), [](const V& v) { return V {100 * v[0], 100 * v[1], 100 * v[2]}; });
    r.Add("Root", "", "root");
    r.Add("Hips", "Root", "hips", N("Hips"));
    r.Add("Spine_01", "Hips", "spine0", N("Spine"));
    r.Add("Spine_02", "Spine_01", "spine1", N("Spine1"));
    r.Add("Spine_03", "Spine_02", "spine2", N("Spine2"));
    r.Add("Neck", "Spine_03", "neck0", N("Neck"));
    r.Add("Head", "Neck", "head", N("Head"));
    r.Add("Eyebrows", "Head", Shift(r.At("head"), 0, 0.12, 0.09));
    r.Add("Eyes", "Head", Shift(r.At("head"), 0, 0.08, 0.08));
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        const auto at = [&](const QString& joint) { return r.At(joint + side); };
        const auto b = [&](const QString& bone) { return bone + "_" + side; };
        r.Add(b("Clavicle"), "Spine_03", at("clav"), N(w + "Shoulder"));
        r.Add(b("Shoulder"), b("Clavicle"), at("uarm"), N(w + "Arm"));
        r.Add(b("Elbow"), b("Shoulder"), at("farm"), N(w + "ForeArm"));
        r.Add(b("Hand"), b("Elbow"), at("hand"), N(w + "Hand"));
        r.Digit(b("Hand"), side, 0, 0, 3, [&](int i) { return b(QStringLiteral("Thumb_0%1").arg(i + 1)); });
        r.Digit(b("Hand"), side, 1, 1, 4, [&](int i) { return b(QStringLiteral("IndexFinger_0%1").arg(i + 1)); });
        QString finger = b("Hand");
        for (int k = 1; k < 4; ++k)
            finger = r.Add(b(QStringLiteral("Finger_0%1").arg(k)), finger,
                           Lerp(r.At(QStringLiteral("f2_%1%2").arg(k).arg(side)),
                                r.At(QStringLiteral("f3_%1%2").arg(k).arg(side)), 0.5),
                           -1, true);
        r.Add(b("UpperLeg"), "Hips", at("thigh"), N(w + "UpLeg"));
        r.Add(b("LowerLeg"), b("UpperLeg"), at("knee"), N(w + "Leg"));
        r.Add(b("Ankle"), b("LowerLeg"), at("ankle"), N(w + "Foot"));
        r.Add(b("Ball"), b("Ankle"), at("toe"), N(w + "ToeBase"));
        r.Add(b("Toes"), b("Ball"), at("toeEnd"), -1, true);
    }
    return r.Done();
}

// A rigging script's deform skeleton: "_M", "_L", "_R" suffixes, "Root_M" as the hips, joints named for the joint
// ("Hip_R" the thigh, "Shoulder_R" the upper arm, "Scapula_R" the clavicle), "Part" joints inside the limb bones,
// a cup bone carrying the ring and pinky fingers, centimetres, arms 20 degrees down.
TruthRig ScriptRig()
{
    Rig r("rigging script", Body(20), [](const V& v) { return V {100 * v[0], 100 * v[1], 100 * v[2]}; });
    r.Add("Root_M", "", "hips", N("Hips"));
    r.Add("Spine1_M", "Root_M", "spine0", N("Spine"));
    r.Add("Spine2_M", "Spine1_M", "spine1", N("Spine1"));
    r.Add("Chest_M", "Spine2_M", "spine2", N("Spine2"));
    r.Add("Neck_M", "Chest_M", "neck0", N("Neck"));
    r.Add("NeckPart1_M", "Neck_M", "neck1", -1, true);
    r.Add("Head_M", "NeckPart1_M", "head", N("Head"));
    r.Add("HeadEnd_M", "Head_M", "headtop", -1, true);
    r.Add("Jaw_M", "Head_M", "jaw");
    const char* const fingers[] = {"Thumb", "Index", "Middle", "Ring", "Pinky"};
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        const auto at = [&](const QString& joint) { return r.At(joint + side); };
        const auto b = [&](const QString& bone) { return bone + "_" + side; };
        r.Add(b("Eye"), "Head_M", at("eye"));
        r.Add(b("Hip"), "Root_M", at("thigh"), N(w + "UpLeg"));
        r.Add(b("HipPart1"), b("Hip"), at("thighMid"), -1, true);
        r.Add(b("Knee"), b("HipPart1"), at("knee"), N(w + "Leg"));
        r.Add(b("Ankle"), b("Knee"), at("ankle"), N(w + "Foot"));
        r.Add(b("Toes"), b("Ankle"), at("toe"), N(w + "ToeBase"));
        r.Add(b("ToesEnd"), b("Toes"), at("toeEnd"), -1, true);
        r.Add(b("Scapula"), "Chest_M", at("clav"), N(w + "Shoulder"));
        r.Add(b("Shoulder"), b("Scapula"), at("uarm"), N(w + "Arm"));
        r.Add(b("ShoulderPart1"), b("Shoulder"), at("uarmMid"), -1, true);
        r.Add(b("Elbow"), b("ShoulderPart1"), at("farm"), N(w + "ForeArm"));
        r.Add(b("ElbowPart1"), b("Elbow"), at("farmMid"), -1, true);
        r.Add(b("Wrist"), b("ElbowPart1"), at("hand"), N(w + "Hand"));
        r.Add(b("Cup"), b("Wrist"), Lerp(at("hand"), r.At("f3_1" + side), 0.3), -1, true);
        for (int f = 0; f < 5; ++f)
            r.Digit(f >= 3 ? b("Cup") : b("Wrist"), side, f, f == 0 ? 0 : 1, f == 0 ? 3 : 4,
                    [&](int i) { return b(QStringLiteral("%1Finger%2").arg(fingers[f]).arg(i + 1)); });
    }
    return r.Done();
}
} // namespace conventions

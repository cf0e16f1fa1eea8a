#include "ConventionRigs.h"

#include "ConventionRigBuilder.h"

namespace
{
using namespace conventions::build;

// A game-engine mannequin: Z up in centimetres, arms 45 degrees down, twist bones beside the limbs, metacarpals,
// IK targets under the root.
TruthRig Mannequin()
{
    Rig r("mannequin", Body(45), ZUpCentimetres);
    r.Add("root", "", "root");
    r.Add("pelvis", "root", "hips", N("Hips"));
    r.Add("spine_01", "pelvis", "spine0", N("Spine"));
    r.Add("spine_02", "spine_01", "spine1", N("Spine1"));
    r.Add("spine_03", "spine_02", "spine2", N("Spine2"));
    r.Add("neck_01", "spine_03", "neck0", N("Neck"));
    r.Add("head", "neck_01", "head", N("Head"));
    const char* const names[] = {"thumb", "index", "middle", "ring", "pinky"};
    for (QString side : {"L", "R"})
    {
        const QString s = side.toLower();
        const QString w = Sided(side);
        r.Add("clavicle_" + s, "spine_03", r.At("clav" + side), N(w + "Shoulder"));
        r.Add("upperarm_" + s, "clavicle_" + s, r.At("uarm" + side), N(w + "Arm"));
        r.Add("upperarm_twist_01_" + s, "upperarm_" + s, r.At("uarmMid" + side), -1, true);
        r.Add("lowerarm_" + s, "upperarm_" + s, r.At("farm" + side), N(w + "ForeArm"));
        r.Add("lowerarm_twist_01_" + s, "lowerarm_" + s, r.At("farmMid" + side), -1, true);
        r.Add("hand_" + s, "lowerarm_" + s, r.At("hand" + side), N(w + "Hand"));
        for (int f = 0; f < 5; ++f)
        {
            QString parent = "hand_" + s;
            if (f > 0)
                parent = r.Add(QStringLiteral("%1_metacarpal_%2").arg(names[f], s), parent, r.At("hand" + side),
                               (side == "L" ? 146 : 152) + f);
            r.Digit(parent, side, f, f == 0 ? 0 : 1, f == 0 ? 3 : 4,
                    [&](int i) { return QStringLiteral("%1_0%2_%3").arg(names[f]).arg(i + 1).arg(s); });
        }
        r.Add("thigh_" + s, "pelvis", r.At("thigh" + side), N(w + "UpLeg"));
        r.Add("thigh_twist_01_" + s, "thigh_" + s, r.At("thighMid" + side), -1, true);
        r.Add("calf_" + s, "thigh_" + s, r.At("knee" + side), N(w + "Leg"));
        r.Add("calf_twist_01_" + s, "calf_" + s, r.At("kneeMid" + side), -1, true);
        r.Add("foot_" + s, "calf_" + s, r.At("ankle" + side), N(w + "Foot"));
        r.Add("ball_" + s, "foot_" + s, r.At("toe" + side), N(w + "ToeBase"));
    }
    AddEngineIkBones(r);
    return r.Done();
}

// A 3-D-package biped: names with a separator, legs from the first spine bone, clavicles from the neck, Z up in
// centimetres, "Nub" ends.
TruthRig Biped(const QString& separator)
{
    Rig r(separator == " " ? "biped with spaces" : "biped with underscores", Body(0), ZUpCentimetres);
    const auto n = [&](const QStringList& words) { return (QStringList {"Bip01"} + words).join(separator); };
    r.Add("Bip01", "", "hips");
    r.Add(n({"Footsteps"}), "Bip01", "root");
    r.Add(n({"Pelvis"}), "Bip01", "hips", N("Hips"));
    r.Add(n({"Spine"}), n({"Pelvis"}), "spine0", N("Spine"));
    r.Add(n({"Spine1"}), n({"Spine"}), "spine1", N("Spine1"));
    r.Add(n({"Spine2"}), n({"Spine1"}), "spine2", N("Spine2"));
    r.Add(n({"Neck"}), n({"Spine2"}), "neck0", N("Neck"));
    r.Add(n({"Head"}), n({"Neck"}), "head", N("Head"));
    r.Add(n({"HeadNub"}), n({"Head"}), "headtop", -1, true);
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        r.Add(n({side, "Clavicle"}), n({"Neck"}), r.At("clav" + side), N(w + "Shoulder"));
        r.Add(n({side, "UpperArm"}), n({side, "Clavicle"}), r.At("uarm" + side), N(w + "Arm"));
        r.Add(n({side, "Forearm"}), n({side, "UpperArm"}), r.At("farm" + side), N(w + "ForeArm"));
        r.Add(n({side, "Hand"}), n({side, "Forearm"}), r.At("hand" + side), N(w + "Hand"));
        for (int f = 0; f < 5; ++f)
        {
            const QString last = r.Digit(n({side, "Hand"}), side, f, f == 0 ? 0 : 1, f == 0 ? 3 : 4, [&](int i) {
                return n({side, QStringLiteral("Finger%1%2").arg(f).arg(i == 0 ? QString() : QString::number(i))});
            });
            r.Add(n({side, QStringLiteral("Finger%1Nub").arg(f)}), last,
                  r.At(QStringLiteral("f%1_%2%3").arg(f).arg(f == 0 ? 3 : 4).arg(side)), -1, true);
        }
        r.Add(n({side, "Thigh"}), n({"Spine"}), r.At("thigh" + side), N(w + "UpLeg"));
        r.Add(n({side, "Calf"}), n({side, "Thigh"}), r.At("knee" + side), N(w + "Leg"));
        r.Add(n({side, "Foot"}), n({side, "Calf"}), r.At("ankle" + side), N(w + "Foot"));
        r.Add(n({side, "Toe0"}), n({side, "Foot"}), r.At("toe" + side), N(w + "ToeBase"));
        r.Add(n({side, "Toe0Nub"}), n({side, "Toe0"}), r.At("toeEnd" + side), -1, true);
    }
    return r.Done();
}

// A MikuMikuDance model: Japanese names with full-width digits, arms 35 degrees down, some 20 units tall, the
// lower and upper body beside each other under the waist, deform copies of the legs, twist, parent and cancel
// bones, and IK bones under the root.
TruthRig Mmd()
{
    Rig r("MikuMikuDance, Japanese", Body(35, 20.0 / 1.8));
    const auto at = [&](const char* joint, double dy) {
        V v = r.At(joint);
        v[1] += dy;
        return v;
    };
    r.Add("全ての親", "", "root");
    r.Add("センター", "全ての親", V {0, 8.0, 0});
    r.Add("グルーブ", "センター", V {0, 8.2, 0});
    r.Add("腰", "グルーブ", V {0, 10.8, 0.6});
    r.Add("上半身", "腰", "spine0", N("Spine"));
    r.Add("上半身2", "上半身", "spine2", N("Spine1"));
    r.Add("首", "上半身2", "neck0", N("Neck"));
    r.Add("頭", "首", "head", N("Head"));
    r.Add("両目", "頭", "eyeL");
    r.Add("左目", "頭", "eyeL");
    r.Add("右目", "頭", "eyeR");
    r.Add("下半身", "腰", at("hips", 0.3), N("Hips"));
    const char* const fingers[] = {"親指", "人指", "中指", "薬指", "小指"};
    for (QString side : {"L", "R"})
    {
        const QString jp = side == "L" ? "左" : "右";
        const QString w = Sided(side);
        r.Add(jp + "肩P", "上半身2", r.At("clav" + side));
        r.Add(jp + "肩", jp + "肩P", r.At("clav" + side), N(w + "Shoulder"));
        r.Add(jp + "肩C", jp + "肩", r.At("uarm" + side));
        r.Add(jp + "腕", jp + "肩C", r.At("uarm" + side), N(w + "Arm"));
        r.Add(jp + "腕捩", jp + "腕", r.At("uarmMid" + side), -1, true);
        r.Add(jp + "ひじ", jp + "腕捩", r.At("farm" + side), N(w + "ForeArm"));
        r.Add(jp + "手捩", jp + "ひじ", r.At("farmMid" + side), -1, true);
        // Twist helpers along both twist bones, leaves of their own.
        for (int k = 1; k <= 3; ++k)
        {
            const QString n = QString::number(k);
            r.Add(jp + "腕捩" + n, jp + "腕捩", Lerp(r.At("uarm" + side), r.At("farm" + side), 0.25 * k), -1, true);
            r.Add(jp + "手捩" + n, jp + "手捩", Lerp(r.At("farm" + side), r.At("hand" + side), 0.25 * k), -1, true);
        }
        r.Add(jp + "手首", jp + "手捩", r.At("hand" + side), N(w + "Hand"));
        r.Add(jp + "ダミー", jp + "手首", r.At("hand" + side));
        for (int f = 0; f < 5; ++f)
        {
            const QString last = r.Digit(jp + "手首", side, f, f == 0 ? 0 : 1, f == 0 ? 3 : 4, [&](int i) {
                return jp + fingers[f] + QString(QChar(0xFF10 + (f == 0 ? i : i + 1))); // full-width digits
            });
            r.Add(jp + fingers[f] + "先", last, r.At(QStringLiteral("f%1_%2%3").arg(f).arg(f == 0 ? 3 : 4).arg(side)),
                  -1, true);
        }
        r.Add(jp + "足", "下半身", r.At("thigh" + side), N(w + "UpLeg"));
        r.Add(jp + "ひざ", jp + "足", r.At("knee" + side), N(w + "Leg"));
        r.Add(jp + "足首", jp + "ひざ", r.At("ankle" + side), N(w + "Foot"));
        r.Add(jp + "つま先", jp + "足首", r.At("toe" + side), N(w + "ToeBase"));
        r.Add("腰キャンセル" + jp, "下半身", r.At("thigh" + side));
        r.Add(jp + "足D", "腰キャンセル" + jp, r.At("thigh" + side));
        r.Add(jp + "ひざD", jp + "足D", r.At("knee" + side));
        r.Add(jp + "足首D", jp + "ひざD", r.At("ankle" + side));
        r.Add(jp + "足先EX", jp + "足首D", r.At("toe" + side));
        r.Add(jp + "足IK親", "全ての親", at(("ankle" + side).toLatin1().constData(), -1.0));
        r.Add(jp + "足ＩＫ", jp + "足IK親", r.At("ankle" + side));
        r.Add(jp + "つま先ＩＫ", jp + "足ＩＫ", r.At("toe" + side));
    }
    return r.Done();
}

// A deform rig of a 3-D package: "DEF-" names with ".L" and ".R", the spine's six bones up to the head, twist
// bones inside the limbs, fingers on palm bones, a face under the head, Z up in metres.
TruthRig DeformRig()
{
    Rig r("deform rig", Body(10), [](const V& v) { return V {v[0], -v[2], v[1]}; });
    r.Add("root", "", "root");
    r.Add("DEF-spine", "root", "hips", N("Hips"));
    r.Add("DEF-spine.001", "DEF-spine", "spine0", N("Spine"));
    r.Add("DEF-spine.002", "DEF-spine.001", "spine1", N("Spine1"));
    r.Add("DEF-spine.003", "DEF-spine.002", "spine2", N("Spine2"));
    r.Add("DEF-spine.004", "DEF-spine.003", "neck0", N("Neck"));
    r.Add("DEF-spine.005", "DEF-spine.004", "neck1", N("Neck1"));
    r.Add("DEF-spine.006", "DEF-spine.005", "head", N("Head"));
    r.Add("DEF-jaw", "DEF-spine.006", "jaw");
    r.Add("DEF-eye.L", "DEF-spine.006", "eyeL");
    r.Add("DEF-eye.R", "DEF-spine.006", "eyeR");
    r.Add("DEF-nose", "DEF-spine.006", V {0, 1.65, 0.1});
    const char* const names[] = {"thumb", "f_index", "f_middle", "f_ring", "f_pinky"};
    for (QString side : {"L", "R"})
    {
        const QString w = Sided(side);
        const auto n = [&](const QString& bone) { return QStringLiteral("DEF-%1.%2").arg(bone, side); };
        r.Add(n("shoulder"), "DEF-spine.003", r.At("clav" + side), N(w + "Shoulder"));
        r.Add(n("upper_arm"), n("shoulder"), r.At("uarm" + side), N(w + "Arm"));
        r.Add(n("upper_arm") + ".001", n("upper_arm"), r.At("uarmMid" + side), -1, true);
        r.Add(n("forearm"), n("upper_arm") + ".001", r.At("farm" + side), N(w + "ForeArm"));
        r.Add(n("forearm") + ".001", n("forearm"), r.At("farmMid" + side), -1, true);
        r.Add(n("hand"), n("forearm") + ".001", r.At("hand" + side), N(w + "Hand"));
        for (int f = 1; f < 5; ++f)
        {
            const QString palm = r.Add(QStringLiteral("DEF-palm.0%1.%2").arg(f).arg(side), n("hand"),
                                       r.At("hand" + side), -1, true);
            r.Digit(palm, side, f, 1, 4,
                    [&](int i) { return QStringLiteral("DEF-%1.0%2.%3").arg(names[f]).arg(i + 1).arg(side); });
        }
        r.Digit(QStringLiteral("DEF-palm.01.%1").arg(side), side, 0, 0, 3,
                [&](int i) { return QStringLiteral("DEF-thumb.0%1.%2").arg(i + 1).arg(side); });
        r.Add(n("thigh"), "DEF-spine", r.At("thigh" + side), N(w + "UpLeg"));
        r.Add(n("thigh") + ".001", n("thigh"), r.At("thighMid" + side), -1, true);
        r.Add(n("shin"), n("thigh") + ".001", r.At("knee" + side), N(w + "Leg"));
        r.Add(n("shin") + ".001", n("shin"), r.At("kneeMid" + side), -1, true);
        r.Add(n("foot"), n("shin") + ".001", r.At("ankle" + side), N(w + "Foot"));
        r.Add(n("toe"), n("foot"), r.At("toe" + side), N(w + "ToeBase"));
        r.Add(n("pelvis"), "DEF-spine", V {side == "L" ? 0.05 : -0.05, 1.02, 0.04}, -1, true);
        r.Add(n("breast"), "DEF-spine.003", V {side == "L" ? 0.09 : -0.09, 1.3, 0.1});
    }
    return r.Done();
}
} // namespace

namespace conventions
{
TruthRig CharacterCreator();
TruthRig FigureTool();
TruthRig JointNames();
TruthRig CaptureDataset();
TruthRig Avatar(bool facingBack);
TruthRig OtherSeparators();
TruthRig NamespacedGeneric();
TruthRig BodyModel();
TruthRig CaptureSuit();
TruthRig NewerMannequin();
TruthRig WholeRiggingArmature();
TruthRig BlockAvatar();
TruthRig EngineBiped();
TruthRig AssetPack();
TruthRig ScriptRig();
TruthRig CaptureLibrary();
TruthRig MarkerStudio();
TruthRig ExtendedAvatar();
TruthRig FigureCarpalPairs();
TruthRig Cartoon(bool mittens);
TruthRig PlatformAvatar();

std::vector<TruthRig> All()
{
    return {Mannequin(),          Biped(" "),        Biped("_"),        Mmd(),          DeformRig(),
            CharacterCreator(),   FigureTool(),      JointNames(),      CaptureDataset(), Avatar(false),
            Avatar(true),         OtherSeparators(), NamespacedGeneric(), BodyModel(),
            CaptureSuit(),        NewerMannequin(),  WholeRiggingArmature(), BlockAvatar(), EngineBiped(),
            AssetPack(),          ScriptRig(),       CaptureLibrary(),  MarkerStudio(),  ExtendedAvatar(),
            FigureCarpalPairs(),  Cartoon(false),    Cartoon(true),     PlatformAvatar()};
}
} // namespace conventions

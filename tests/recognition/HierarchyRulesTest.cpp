// Each hierarchy rule on small skeletons made here: where the hips are when a pelvis, a centre bone or the first
// spine bone holds the legs; twist, IK and end bones; hands with few fingers; necks and heads; sides from the
// geometry; poses; and skeletons that are no humanoid.
#include <cmath>

#include <QHash>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/SkeletonRecognizer.h>

namespace
{
using Bones = std::vector<SkeletonRecognizer::Bone>;

struct Options
{
    enum Hips
    {
        Plain,           // the legs and the spine hang from the hips
        PelvisBelow,     // Hips -> Pelvis -> thighs, Hips -> Spine
        FromFirstSpine,  // Pelvis -> Spine -> thighs and Spine1
        BesideSpine      // Centre -> LowerBody -> thighs, Centre -> UpperBody
    };
    Hips hips = Plain;
    bool inlineTwists = false;
    bool leafTwists = false;
    bool ikTargets = false;
    bool detachedFeet = false; // the feet hang from the root, not from the shins
    bool weapon = false;       // a long sword held in the right hand
    bool neck = true;
    bool head = true;
    int fingers = 5; // with the thumb; 0 for none
    double armDrop = 0.0; // degrees below the horizontal
    enum Palm
    {
        NoPalm,
        PalmBones,    // each finger but the thumb on a palm bone starting near the wrist
        OneFingerBase // a one-joint thumb, and a bone at the wrist carrying a one-joint finger that stands for all
                      // four, as capture rigs have
    };
    Palm palm = NoPalm;
    double wrist = 0.55;            // how far out from the shoulder the wrist is: 0.48 makes a short forearm
    bool chestAtClavicles = false;  // the chest that holds the clavicles a hair below them
    bool featureLeaves = false;     // the head ends in its eyes alone, no end bone or jaw
    bool skirt = false;             // eight mirrored chains round the hips, shorter than the legs
    bool unevenKnee = false;        // the left knee 3 cm further out than the right
    bool toesFromFoot = false;      // five toes hang from the foot itself, no ball of the foot between
    enum Copy
    {
        NoCopy,
        FkCopy,        // an FK control copy of each leg, named so
        UnskinnedCopy  // a copy that skins nothing while the legs do, and mirrors better than they do
    };
    Copy legCopy = NoCopy;          // hanging beside the legs at their joints, before them in bone order
};

// A humanoid of 1.8 m standing Y up, facing +Z, and the node each body bone must get.
class Builder
{
public:
    Bones bones;
    QHash<QString, int> expected;

    int Add(const QString& name, int parent, double x, double y, double z, int node = -1)
    {
        SkeletonRecognizer::Bone bone;
        bone.name = name;
        bone.parent = parent;
        bone.position = {x, y, z};
        bones.push_back(bone);
        if (node >= 0)
            expected.insert(name, node);
        return int(bones.size()) - 1;
    }

    void Humanoid(const Options& options)
    {
        const int root = Add("Root", -1, 0, 0, 0);
        int hips = -1;
        int legParent = -1;
        int spineParent = -1;
        switch (options.hips)
        {
        case Options::Plain:
            hips = legParent = spineParent = Add("Hips", root, 0, 1.0, 0, 1);
            break;
        case Options::PelvisBelow:
            hips = spineParent = Add("Hips", root, 0, 1.0, 0, 1);
            legParent = Add("Pelvis", hips, 0, 0.98, 0);
            break;
        case Options::FromFirstSpine:
            hips = Add("Pelvis", root, 0, 0.97, 0, 1);
            legParent = spineParent = Add("Spine", hips, 0, 1.06, 0, 8);
            break;
        case Options::BesideSpine:
            hips = Add("Center", root, 0, 0.75, 0);
            legParent = Add("LowerBody", hips, 0, 1.05, 0, 1);
            spineParent = hips;
            break;
        }
        const int spine0 = options.hips == Options::FromFirstSpine
                               ? spineParent
                               : Add(options.hips == Options::BesideSpine ? "UpperBody" : "Spine", spineParent, 0,
                                     1.1, 0, 8);
        const int spine1 = Add("Spine1", spine0, 0, 1.22, 0, 23);
        const int chest = Add("Chest", spine1, 0, options.chestAtClavicles ? 1.44 : 1.33, 0, 24);
        int top = chest;
        if (options.neck)
            top = Add("Neck", chest, 0, 1.5, 0, 20);
        if (options.head)
        {
            const int head = Add("Head", top, 0, 1.6, 0.01, 15);
            if (!options.featureLeaves)
                Add("HeadTop_End", head, 0, 1.8, 0.02);
            Add("Eye_L", head, 0.03, 1.68, 0.08);
            Add("Eye_R", head, -0.03, 1.68, 0.08);
            if (!options.featureLeaves)
                Add("Jaw", head, 0, 1.58, 0.05);
        }
        for (int side = 0; side < 2; ++side)
        {
            if (options.legCopy != Options::NoCopy)
                Leg(side, legParent, options, options.legCopy == Options::FkCopy ? "_FK" : "Copy");
            Leg(side, legParent, options);
            Arm(side, chest, options);
        }
        if (options.skirt)
            Skirt(legParent);

        if (options.legCopy == Options::UnskinnedCopy)
            for (SkeletonRecognizer::Bone& bone : bones)
                bone.skinning = bone.name.contains("Copy") ? SkeletonRecognizer::Skinning::DoesNotSkin
                                                           : SkeletonRecognizer::Skinning::Skins;
        if (options.ikTargets)
        {
            Add("ik_foot_l", root, 0.09, 0.09, -0.02);
            Add("ik_foot_r", root, -0.09, 0.09, -0.02);
            Add("ik_hand_l", root, 0.7, 1.45, 0);
            Add("ik_hand_r", root, -0.7, 1.45, 0);
        }
    }

private:
    // Eight chains round the hips, mirrored, down to the knees.
    void Skirt(int parent)
    {
        for (int k = 0; k < 8; ++k)
        {
            const double angle = (k + 0.5) * 3.14159265 / 4.0;
            int at = parent;
            for (int j = 1; j <= 3; ++j)
                at = Add(QStringLiteral("Skirt%1_%2").arg(k).arg(j), at, (0.12 + 0.02 * j) * std::cos(angle),
                         1.0 - 0.13 * j, (0.12 + 0.02 * j) * std::sin(angle));
        }
    }

    // The leg's joints, each a node; a copy (`copy` in every name) maps to none and mirrors the other side exactly.
    void Leg(int side, int parent, const Options& options, const QString& copy = QString())
    {
        const double s = side == 0 ? 1.0 : -1.0;
        const QString p = copy + "_" + (side == 0 ? "L" : "R");
        const auto node = [&copy](int id) { return copy.isEmpty() ? id : -1; };
        const double kneeOut = options.unevenKnee && side == 0 && copy.isEmpty() ? 0.03 : 0.0;
        const int thigh = Add("Thigh" + p, parent, s * 0.09, 0.95, 0, node(side == 0 ? 2 : 5));
        int kneeParent = thigh;
        if (options.inlineTwists)
            kneeParent = Add("ThighTwist" + p, thigh, s * 0.09, 0.735, 0.005, node(side == 0 ? 41 : 43));
        if (options.leafTwists)
            Add("ThighTwist" + p, thigh, s * 0.09, 0.8, 0.003, node(side == 0 ? 172 : 174));
        const int knee = Add("Calf" + p, kneeParent, s * (0.09 + kneeOut), 0.52, 0.01, node(side == 0 ? 3 : 6));
        const int foot =
            Add("Foot" + p, options.detachedFeet ? 0 : knee, s * 0.09, 0.09, -0.02, node(side == 0 ? 4 : 7));
        if (options.toesFromFoot)
        {
            for (int t = 0; t < 5; ++t)
                Add(QStringLiteral("Toe%1").arg(t) + p, foot, s * (0.065 + 0.012 * t), 0.0, 0.11 - 0.005 * t,
                    node((side == 0 ? 98 : 122) + 4 * t));
            return;
        }
        const int toe = Add("Toe" + p, foot, s * 0.09, 0.0, 0.09, node(side == 0 ? 16 : 17));
        Add("Toe_End" + p, toe, s * 0.09, 0.0, 0.17);
    }

    void Arm(int side, int parent, const Options& options)
    {
        const double s = side == 0 ? 1.0 : -1.0;
        const QString p = side == 0 ? "L" : "R";
        const double drop = options.armDrop / 57.29578;
        // Out from the shoulder, dropped by the pose's angle.
        const auto at = [&](double out, double y, double z) {
            return std::array<double, 3> {s * (0.15 + out * std::cos(drop)), y - out * std::sin(drop), z};
        };
        const int clavicle = Add("Clavicle_" + p, parent, s * 0.04, 1.45, 0.01, side == 0 ? 18 : 19);
        const int upper = Add("UpperArm_" + p, clavicle, s * 0.15, 1.45, 0, side == 0 ? 9 : 12);
        int elbowParent = upper;
        if (options.inlineTwists)
        {
            const auto mid = at(0.14, 1.45, -0.005);
            elbowParent = Add("UpperArmTwist_" + p, upper, mid[0], mid[1], mid[2], side == 0 ? 45 : 47);
        }
        if (options.leafTwists)
        {
            const auto mid = at(0.1, 1.45, -0.003);
            Add("UpperArmTwist_" + p, upper, mid[0], mid[1], mid[2], side == 0 ? 176 : 178);
        }
        const auto e = at(0.28, 1.45, -0.01);
        const int elbow = Add("ForeArm_" + p, elbowParent, e[0], e[1], e[2], side == 0 ? 10 : 13);
        const double out = options.wrist;
        const auto w = at(out, 1.45, 0);
        const int wrist = Add("Hand_" + p, elbow, w[0], w[1], w[2], side == 0 ? 11 : 14);
        if (options.weapon && side == 1)
        {
            const int grip = Add("Weapon_R", wrist, w[0] - 0.05, w[1], w[2] + 0.05);
            Add("Weapon_R_Tip", grip, w[0] - 0.05, w[1], w[2] + 1.2);
        }
        // Thumb, index, middle, ring, pinky: bases across the palm from the front.
        static const double across[] = {0.035, 0.02, 0.0, -0.02, -0.04};
        static const char* const names[] = {"Thumb", "Index", "Middle", "Ring", "Pinky"};
        const int digits[] = {0, 1, 2, 4};
        const int count = options.palm == Options::OneFingerBase ? 2 : options.fingers;
        for (int f = 0; f < count; ++f)
        {
            const int digit = count == 4 ? digits[f] : f;
            const double inward = digit == 0 ? 0.02 : 0.08;
            int at_ = wrist;
            if (digit > 0 && options.palm == Options::PalmBones)
            {
                // Starting a little out from the wrist, toward its finger, and running to the knuckle.
                const auto base = at(out + 0.03, 1.45, 0.6 * across[digit]);
                at_ = Add(QStringLiteral("Palm%1_%2").arg(digit).arg(p), wrist, base[0], base[1], base[2],
                          (side == 0 ? 146 : 152) + digit);
            }
            else if (digit > 0 && options.palm == Options::OneFingerBase)
            {
                at_ = Add("FingerBase_" + p, wrist, w[0], w[1], w[2], side == 0 ? 21 : 22);
            }
            const int phalanges = options.palm == Options::OneFingerBase ? 1 : 3;
            for (int k = 0; k < phalanges; ++k)
            {
                const auto j = at(out + inward + 0.03 * k, 1.45 - (digit == 0 ? 0.015 * (k + 1) : 0.0),
                                  across[digit] + (digit == 0 ? 0.02 * k : 0.0));
                const int node = (side == 0 ? 50 : 74) + 4 * digit + k;
                at_ = Add(QStringLiteral("%1%2_%3").arg(names[digit]).arg(k + 1).arg(p), at_, j[0], j[1], j[2], node);
            }
            // The one-joint fingers of capture files end in end sites.
            if (phalanges == 1)
            {
                const double thumb = digit == 0 ? 0.03 : 0.0;
                const auto tip = at(out + inward + 0.05, 1.45 - thumb, across[digit] + thumb);
                bones.back().hasTip = true;
                bones.back().tip = {tip[0], tip[1], tip[2]};
            }
        }
    }
};

class HierarchyRulesTest : public testing::Test
{
protected:
    // Every expected node on its bone, and nothing else mapped.
    static void Check(const Builder& built, const SkeletonRecognizer::Result& result, const QString& what)
    {
        ASSERT_EQ(result.characters.size(), 1u) << what.toStdString();
        QHash<QString, int> got;
        for (const SkeletonRecognizer::NodeMatch& match : result.characters[0].nodes)
            got.insert(built.bones[size_t(match.bone)].name, match.nodeId);
        for (auto it = built.expected.cbegin(); it != built.expected.cend(); ++it)
            EXPECT_STREQ(BoneCatalogue::NodeName(got.value(it.key(), 0)), BoneCatalogue::NodeName(it.value()))
                << what.toStdString() << ": " << it.key().toStdString();
        for (auto it = got.cbegin(); it != got.cend(); ++it)
            EXPECT_TRUE(built.expected.contains(it.key()))
                << what.toStdString() << ": " << it.key().toStdString() << " got " << BoneCatalogue::NodeName(it.value());
    }

    static SkeletonRecognizer::Result Recognize(const Builder& built)
    {
        return SkeletonRecognizer().Recognize(built.bones);
    }

    static Builder Made(const Options& options)
    {
        Builder built;
        built.Humanoid(options);
        return built;
    }

    // The same skeleton with names that say nothing ("Bone.007"), so that only its shape speaks.
    static Builder Meaningless(const Builder& built)
    {
        Builder renamed = built;
        renamed.expected.clear();
        for (size_t i = 0; i < built.bones.size(); ++i)
        {
            renamed.bones[i].name = QStringLiteral("Bone.%1").arg(i, 3, 10, QLatin1Char('0'));
            if (built.expected.contains(built.bones[i].name))
                renamed.expected.insert(renamed.bones[i].name, built.expected.value(built.bones[i].name));
        }
        return renamed;
    }

    static SkeletonRecognizer::LeftOut ReasonFor(const Builder& built, const SkeletonRecognizer::Result& result,
                                                 const QString& bone)
    {
        for (const SkeletonRecognizer::UnmappedBone& unmapped : result.characters.at(0).unmapped)
            if (built.bones[size_t(unmapped.bone)].name == bone)
                return unmapped.reason;
        ADD_FAILURE() << bone.toStdString() << " is not among the unmapped bones";
        return SkeletonRecognizer::LeftOut::WeakEvidence;
    }
};

TEST_F(HierarchyRulesTest, TheHipsAreWhereTheThighsStartWhateverHoldsTheLegs)
{
    for (Options::Hips hips : {Options::Plain, Options::PelvisBelow, Options::FromFirstSpine, Options::BesideSpine})
    {
        Options options;
        options.hips = hips;
        const Builder built = Made(options);
        const SkeletonRecognizer::Result result = Recognize(built);
        Check(built, result, QStringLiteral("hips layout %1").arg(hips));
    }
    const Builder pelvis = Made({Options::PelvisBelow});
    EXPECT_EQ(ReasonFor(pelvis, Recognize(pelvis), "Pelvis"), SkeletonRecognizer::LeftOut::ExtraInChain);
    const Builder centre = Made({Options::BesideSpine});
    EXPECT_EQ(ReasonFor(centre, Recognize(centre), "Center"), SkeletonRecognizer::LeftOut::AboveHips);
}

TEST_F(HierarchyRulesTest, TwistBonesInsideAndBesideTheLimbsBecomeRollBones)
{
    Options inside;
    inside.inlineTwists = true;
    Check(Made(inside), Recognize(Made(inside)), "inline twists");
    Options beside;
    beside.leafTwists = true;
    Check(Made(beside), Recognize(Made(beside)), "leaf twists");
}

TEST_F(HierarchyRulesTest, FeetParentedElsewhereAreFoundWhereTheShinsEnd)
{
    Options options;
    options.detachedFeet = true;
    options.ikTargets = true; // IK targets stand at the ankles too, but are no feet
    Check(Made(options), Recognize(Made(options)), "detached feet");
}

TEST_F(HierarchyRulesTest, TargetsEndsFaceAndRootsStayUnmapped)
{
    Options options;
    options.ikTargets = true;
    options.weapon = true;
    const Builder built = Made(options);
    const SkeletonRecognizer::Result result = Recognize(built);
    Check(built, result, "IK targets and a sword");
    EXPECT_EQ(ReasonFor(built, result, "Weapon_R"), SkeletonRecognizer::LeftOut::Prop);
    using LeftOut = SkeletonRecognizer::LeftOut;
    EXPECT_EQ(ReasonFor(built, result, "ik_foot_l"), LeftOut::Helper);
    EXPECT_EQ(ReasonFor(built, result, "HeadTop_End"), LeftOut::EndMarker);
    EXPECT_EQ(ReasonFor(built, result, "Toe_End_L"), LeftOut::EndMarker);
    EXPECT_EQ(ReasonFor(built, result, "Jaw"), LeftOut::FaceOrHair);
    EXPECT_EQ(ReasonFor(built, result, "Root"), LeftOut::AboveHips);
    EXPECT_EQ(result.characters[0].root, 0);
}

TEST_F(HierarchyRulesTest, HandsWithFewFingersOrNone)
{
    for (int fingers : {0, 3, 4, 5})
    {
        Options options;
        options.fingers = fingers;
        Check(Made(options), Recognize(Made(options)), QStringLiteral("%1 fingers").arg(fingers));
    }
}

TEST_F(HierarchyRulesTest, NecksAndHeads)
{
    Options noNeck;
    noNeck.neck = false;
    Check(Made(noNeck), Recognize(Made(noNeck)), "no neck");
    // A neck that ends the body's middle is a neck, not a head.
    Options noHead;
    noHead.head = false;
    Check(Made(noHead), Recognize(Made(noHead)), "no head");
}

TEST_F(HierarchyRulesTest, TheNeckStartsAboveTheClaviclesAndTheHeadEndsInItsFeatures)
{
    // The chest bone that holds the clavicles is spine even a hair below them; a head whose only children are its
    // eyes is the head, not the eyes. The names say nothing.
    Options chest;
    chest.chestAtClavicles = true;
    Check(Meaningless(Made(chest)), Recognize(Meaningless(Made(chest))), "chest at the clavicles");
    Options eyes;
    eyes.featureLeaves = true;
    Check(Meaningless(Made(eyes)), Recognize(Meaningless(Made(eyes))), "a head ending in its eyes");
}

TEST_F(HierarchyRulesTest, PalmBonesAndTheBaseOfTheFingers)
{
    // Palm bones that start near the wrist are metacarpals; a bone at the wrist before the one finger that stands
    // for all four is the base of the fingers, also on an arm whose forearm is short for its upper arm. The names
    // say nothing.
    Options palms;
    palms.palm = Options::PalmBones;
    Check(Meaningless(Made(palms)), Recognize(Meaningless(Made(palms))), "palm bones");
    Options base;
    base.palm = Options::OneFingerBase;
    for (double wrist : {0.55, 0.45})
    {
        base.wrist = wrist;
        const Builder built = Meaningless(Made(base));
        Check(built, Recognize(built), QStringLiteral("finger base, wrist %1").arg(wrist));
    }
}

TEST_F(HierarchyRulesTest, TheLegsWinOverWhatMirrorsThemBetter)
{
    // A skirt's chains mirror each other better than legs placed by hand; a control copy of each leg named so, or
    // one that skins nothing, stands at the leg's joints, before it in bone order.
    Options skirt;
    skirt.skirt = true;
    skirt.unevenKnee = true;
    Check(Meaningless(Made(skirt)), Recognize(Meaningless(Made(skirt))), "skirt");
    Options fk;
    fk.legCopy = Options::FkCopy;
    Check(Made(fk), Recognize(Made(fk)), "FK copies of the legs");
    Options unskinned;
    unskinned.legCopy = Options::UnskinnedCopy;
    unskinned.unevenKnee = true;
    Check(Meaningless(Made(unskinned)), Recognize(Meaningless(Made(unskinned))), "copies that skin nothing");
}

TEST_F(HierarchyRulesTest, ToesHangingFromTheFootLeaveItNoBallOfTheFoot)
{
    Options toes;
    toes.toesFromFoot = true;
    Check(Made(toes), Recognize(Made(toes)), "toes from the foot");
    Check(Meaningless(Made(toes)), Recognize(Meaningless(Made(toes))), "toes from the foot, names that say nothing");
}

TEST_F(HierarchyRulesTest, APropInOneHandLeavesTheArmAnArm)
{
    // A sword longer than the arm leads the right arm's longest chain away from its fingers; with names that say
    // nothing only the shape tells the arm's path from the sword's.
    Options sword;
    sword.weapon = true;
    Check(Meaningless(Made(sword)), Recognize(Meaningless(Made(sword))), "a sword in the right hand");
}

TEST_F(HierarchyRulesTest, PosesFromTheArmsAngle)
{
    const struct
    {
        double drop;
        SkeletonRecognizer::PoseKind pose;
    } cases[] = {{0.0, SkeletonRecognizer::PoseKind::TPose},
                 {10.0, SkeletonRecognizer::PoseKind::TPose},
                 {40.0, SkeletonRecognizer::PoseKind::APose},
                 {80.0, SkeletonRecognizer::PoseKind::ArmsDown}};
    for (const auto& c : cases)
    {
        Options options;
        options.armDrop = c.drop;
        const Builder built = Made(options);
        const SkeletonRecognizer::Result result = Recognize(built);
        Check(built, result, QStringLiteral("arms %1 degrees down").arg(c.drop));
        EXPECT_EQ(result.characters[0].pose, c.pose) << c.drop;
    }
}

TEST_F(HierarchyRulesTest, SidesComeFromTheFeetNotFromX)
{
    // Mirrored through X the skeleton still faces +Z, so its left is still +X: the bones named L now stand on its
    // right, and the names are the ones mirrored.
    Builder built = Made({});
    for (SkeletonRecognizer::Bone& bone : built.bones)
        bone.position[0] = -bone.position[0];
    const SkeletonRecognizer::Result result = Recognize(built);
    ASSERT_EQ(result.characters.size(), 1u);
    int handL = -1;
    for (const SkeletonRecognizer::NodeMatch& match : result.characters[0].nodes)
        handL = built.bones[size_t(match.bone)].name == "Hand_L" ? match.nodeId : handL;
    EXPECT_EQ(handL, 14);
    EXPECT_TRUE(result.characters[0].frame.namesMirrored);
    EXPECT_GT(result.characters[0].frame.left[0], 0.99);
}

Bones Chain(int count)
{
    Bones bones;
    for (int i = 0; i < count; ++i)
    {
        SkeletonRecognizer::Bone bone;
        bone.name = QStringLiteral("Joint%1").arg(i);
        bone.parent = i - 1;
        bone.position = {0.0, 0.1 * i, 0.0};
        bones.push_back(bone);
    }
    return bones;
}

// Four legs down from a level spine, a neck and head in front, a tail behind.
Bones Quadruped()
{
    Builder built;
    const int pelvis = built.Add("pelvis", -1, 0, 0.8, -0.5);
    int at = pelvis;
    for (int i = 1; i <= 4; ++i)
        at = built.Add(QStringLiteral("spine%1").arg(i), at, 0, 0.82, -0.5 + 0.25 * i);
    const int chest = at;
    const int neck = built.Add("neck", chest, 0, 1.0, 0.65);
    built.Add("head", neck, 0, 1.15, 0.8);
    int tail = pelvis;
    for (int i = 1; i <= 4; ++i)
        tail = built.Add(QStringLiteral("tail%1").arg(i), tail, 0, 0.8 - 0.05 * i, -0.5 - 0.15 * i);
    for (int side = 0; side < 2; ++side)
    {
        for (int end = 0; end < 2; ++end)
        {
            const double s = side == 0 ? 0.15 : -0.15;
            const double z = end == 0 ? -0.5 : 0.5;
            const int parent = end == 0 ? pelvis : chest;
            const QString name = QStringLiteral("leg_%1_%2_").arg(end == 0 ? "back" : "front", side == 0 ? "l" : "r");
            int bone = built.Add(name + "1", parent, s, 0.75, z);
            bone = built.Add(name + "2", bone, s, 0.45, z + 0.05);
            bone = built.Add(name + "3", bone, s, 0.12, z - 0.05);
            built.Add(name + "4", bone, s, 0.0, z + 0.05);
        }
    }
    return built.bones;
}

Bones RandomTree(unsigned seed, int count)
{
    Bones bones;
    unsigned state = seed;
    const auto next = [&state] {
        state = state * 1664525u + 1013904223u;
        return state >> 8;
    };
    for (int i = 0; i < count; ++i)
    {
        SkeletonRecognizer::Bone bone;
        bone.name = QStringLiteral("node%1").arg(i);
        bone.parent = i == 0 ? -1 : int(next() % unsigned(i));
        bone.position = {(next() % 2000) / 1000.0 - 1.0, (next() % 2000) / 1000.0, (next() % 2000) / 1000.0 - 1.0};
        bones.push_back(bone);
    }
    return bones;
}

TEST_F(HierarchyRulesTest, SkeletonsThatAreNoHumanoidAreRefused)
{
    const SkeletonRecognizer recognizer;
    EXPECT_TRUE(recognizer.Recognize(Chain(40)).characters.empty());
    EXPECT_TRUE(recognizer.Recognize(Quadruped()).characters.empty());
    for (unsigned seed : {1u, 7u, 42u, 1234u})
        EXPECT_TRUE(recognizer.Recognize(RandomTree(seed, 120)).characters.empty()) << seed;
    // Large random trees hold branches that mirror each other a little by chance, and chains of every shape: no
    // pair that mirrors this poorly is a pair of limbs.
    for (unsigned seed = 1; seed <= 100; ++seed)
        EXPECT_TRUE(recognizer.Recognize(RandomTree(seed, 400)).characters.empty()) << seed;
    const SkeletonRecognizer::Result nothing = recognizer.Recognize(Chain(5));
    EXPECT_EQ(nothing.outside.size(), 5u);
}

TEST_F(HierarchyRulesTest, DamagedInputNeverBreaksIt)
{
    const SkeletonRecognizer recognizer;
    EXPECT_TRUE(recognizer.Recognize({}).characters.empty());
    // Every joint at the origin, parents out of range or pointing forward, and numbers that are not numbers.
    Builder built = Made({});
    Bones flat = built.bones;
    for (SkeletonRecognizer::Bone& bone : flat)
        bone.position = {0.0, 0.0, 0.0};
    EXPECT_TRUE(recognizer.Recognize(flat).characters.empty());
    Bones broken = built.bones;
    broken[3].parent = 1000;
    broken[5].parent = 9;
    broken[7].position = {NAN, INFINITY, 0.0};
    broken[8].tip = {NAN, 0.0, 0.0};
    broken[8].hasTip = true;
    const SkeletonRecognizer::Result result = recognizer.Recognize(broken);
    EXPECT_LE(result.characters.size(), 1u);
}
} // namespace

// The T-pose on the corpus rigs, as they come and with their rest pose changed in the test: turned Z up, facing -Z
// or lying askew, the arms in an A-pose or hanging, the spine leaning, the pelvis tilted, knees bent and fingers
// curled.
#include <cmath>
#include <functional>

#include <QtMath>

#include <gtest/gtest.h>

#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationModel.h>

#include "PosingRigs.h"
#include "SceneHub.h"
#include "SceneTPose.h"

using namespace posingrigs;

namespace
{
constexpr int kHips = 1, kSpine = 8, kHead = 15;
constexpr int kUpLeg[] = {2, 5}, kLeg[] = {3, 6}, kFoot[] = {4, 7}, kToeBase[] = {16, 17};
constexpr int kShoulder[] = {18, 19}, kArm[] = {9, 12}, kForeArm[] = {10, 13}, kHand[] = {11, 14};
constexpr int kCentralChain[] = {8, 23, 24, 25, 26, 27, 28, 29, 30, 31, 20, 32, 33, 34, 35, 36, 37, 38, 39, 40, 15};
constexpr float kSide[] = {1.0f, -1.0f};
// Thumb, index and pinky base joints of each hand.
constexpr int kThumb1[] = {50, 74}, kIndex1[] = {54, 78}, kMiddle1[] = {58, 82}, kPinky1[] = {66, 90};
// Straight means straight: what float transforms leave of an exact alignment.
constexpr double kAligned = 0.05; // degrees

double Degrees(const QVector3D& a, const QVector3D& b)
{
    const double cosine = QVector3D::dotProduct(a.normalized(), b.normalized());
    return qRadiansToDegrees(std::acos(std::clamp(cosine, -1.0, 1.0)));
}

// The size the length tolerance is measured against.
float Height(const Scene& scene)
{
    QVector3D low = Joint(scene, scene.Bone(0).name), high = low;
    for (int i = 0; i < scene.BoneCount(); ++i)
    {
        const QVector3D joint = scene.Bone(i).global.column(3).toVector3D();
        low = QVector3D(std::min(low.x(), joint.x()), std::min(low.y(), joint.y()), std::min(low.z(), joint.z()));
        high = QVector3D(std::max(high.x(), joint.x()), std::max(high.y(), joint.y()), std::max(high.z(), joint.z()));
    }
    const QVector3D extent = high - low;
    return std::max({extent.x(), extent.y(), extent.z()});
}

void SwingArms(Rig& rig, float degrees)
{
    for (int side = 0; side < 2; ++side)
        TurnBone(rig.scene, BoneOf(rig, kArm[side]), {0, 0, 1}, -kSide[side] * degrees);
}

void CurlFingers(Rig& rig)
{
    for (int side = 0; side < 2; ++side)
    {
        for (int node = kIndex1[side]; node < kIndex1[side] + 16; ++node)
        {
            if (!BoneOf(rig, node).isEmpty() && (node - kIndex1[side]) % 4 < 2)
                TurnBone(rig.scene, BoneOf(rig, node), {0, 0, 1}, -kSide[side] * 25.0f);
        }
        if (!BoneOf(rig, kThumb1[side] + 1).isEmpty())
            TurnBone(rig.scene, BoneOf(rig, kThumb1[side] + 1), {0, 1, 0}, 20.0f);
    }
}

// Everything a rest pose can be bent by, on a rig standing Y up and facing +Z.
void Slouch(Rig& rig)
{
    SwingArms(rig, 40.0f);
    TurnBone(rig.scene, BoneOf(rig, kHips), {0, 0, 1}, 4.0f);
    TurnBone(rig.scene, BoneOf(rig, kSpine), {1, 0, 0}, 12.0f);
    TurnBone(rig.scene, BoneOf(rig, kShoulder[0]), {0, 0, 1}, 10.0f);
    for (int side = 0; side < 2; ++side)
    {
        TurnBone(rig.scene, BoneOf(rig, kUpLeg[side]), {1, 0, 0}, -15.0f);
        TurnBone(rig.scene, BoneOf(rig, kLeg[side]), {1, 0, 0}, 25.0f);
        TurnBone(rig.scene, BoneOf(rig, kUpLeg[side]), {0, 0, 1}, kSide[side] * 6.0f);
        TurnBone(rig.scene, BoneOf(rig, kForeArm[side]), {0, 1, 0}, 20.0f);
    }
    CurlFingers(rig);
}

struct Variant
{
    const char* name;
    std::function<void(Rig&)> change;
};

std::vector<Variant> Variants()
{
    const auto turned = [](float x, float y, float z, float degrees) {
        return [=](Rig& rig) { TurnAll(rig.scene, QQuaternion::fromAxisAndAngle(x, y, z, degrees)); };
    };
    return {{"as it comes", [](Rig&) {}},
            {"Z up", turned(1, 0, 0, 90)},
            {"facing -Z", turned(0, 1, 0, 180)},
            {"lying askew", turned(0.3f, -0.5f, 0.8f, 110)},
            {"A-pose", [](Rig& rig) { SwingArms(rig, 45.0f); }},
            {"A-pose, a thousandth the size", [](Rig& rig) {
                 SwingArms(rig, 45.0f);
                 ScaleAll(rig.scene, 0.001f);
             }},
            {"arms down, Z up", [turned](Rig& rig) {
                 SwingArms(rig, 85.0f);
                 turned(1, 0, 0, 90)(rig);
             }},
            {"slouching, facing -Z", [turned](Rig& rig) {
                 Slouch(rig);
                 turned(0, 1, 0, 180)(rig);
             }}};
}

// A rig mapped as its truth says, in a model over the scene's hub, as the programs hold one.
struct Mapped
{
    explicit Mapped(Rig& rig)
        : hub(rig.scene)
        , model(&hub)
    {
        model.AssignBones(rig.mapping);
    }

    const Characterization& Current() const { return *model.GetCurrentCharacterization(); }

    SceneHub hub;
    CharacterizationModel model;
};

QVector3D Along(const Rig& rig, int fromNode, int toNode)
{
    return Joint(rig.scene, BoneOf(rig, toNode)) - Joint(rig.scene, BoneOf(rig, fromNode));
}

void ExpectValidPose(const Rig& rig, const CharacterizationModel& model)
{
    // The pose rules' findings all speak of an axis; a rig without a head misses a required bone, no more.
    for (int node = 0; node < ZELNodeCount; ++node)
        EXPECT_EQ(model.GetNodeMessage(node).find("axis"), std::string::npos) << model.GetNodeMessage(node);
    EXPECT_EQ(model.GetValidationMessage().find("axis"), std::string::npos) << model.GetValidationMessage();
    EXPECT_LT(Degrees(Along(rig, kUpLeg[1], kUpLeg[0]), {1, 0, 0}), kAligned);
    int below = -1;
    for (int node : kCentralChain)
    {
        if (BoneOf(rig, node).isEmpty())
            continue;
        if (below >= 0)
        {
            EXPECT_LT(Degrees(Along(rig, below, node), {0, 1, 0}), kAligned) << node;
        }
        below = node;
    }
    if (!BoneOf(rig, kHead).isEmpty())
    {
        EXPECT_LT(Degrees(Along(rig, kSpine, kHead), {0, 1, 0}), 5.0);
    }
    for (int side = 0; side < 2; ++side)
    {
        EXPECT_LT(Degrees(Along(rig, kUpLeg[side], kLeg[side]), {0, -1, 0}), kAligned);
        EXPECT_LT(Degrees(Along(rig, kLeg[side], kFoot[side]), {0, -1, 0}), kAligned);
        EXPECT_LT(Degrees(Along(rig, kArm[side], kForeArm[side]), {kSide[side], 0, 0}), kAligned);
        EXPECT_LT(Degrees(Along(rig, kForeArm[side], kHand[side]), {kSide[side], 0, 0}), kAligned);
        if (!BoneOf(rig, kToeBase[side]).isEmpty())
        {
            QVector3D foot = Along(rig, kFoot[side], kToeBase[side]);
            foot.setY(0.0f);
            EXPECT_LT(Degrees(foot, {0, 0, 1}), kAligned);
        }
    }
}

void ExpectSameBones(const Scene& rest, const Scene& posed, float tolerance)
{
    ASSERT_EQ(posed.BoneCount(), rest.BoneCount());
    for (int i = 0; i < rest.BoneCount(); ++i)
    {
        EXPECT_EQ(posed.Bone(i).name, rest.Bone(i).name);
        EXPECT_EQ(posed.Bone(i).parent, rest.Bone(i).parent);
        const int parent = rest.Bone(i).parent;
        if (parent < 0)
            continue;
        const float length = (Joint(rest, rest.Bone(i).name) - Joint(rest, rest.Bone(parent).name)).length();
        const float posedLength = (Joint(posed, rest.Bone(i).name) - Joint(posed, rest.Bone(parent).name)).length();
        EXPECT_NEAR(posedLength, length, tolerance) << rest.Bone(i).name.toStdString();
    }
}

// The hips keep their place in the character's own frame.
void ExpectHipsKeptInFrame(const Rig& rest, const Rig& posed, const TPoseBuilder::Result& result, float tolerance)
{
    const QVector3D before = Joint(rest.scene, BoneOf(rest, kHips));
    const QVector3D after = Joint(posed.scene, BoneOf(posed, kHips));
    const auto along = [](const TPoseBuilder::Vector& axis) { return QVector3D(axis[0], axis[1], axis[2]); };
    EXPECT_NEAR(after.x(), QVector3D::dotProduct(before, along(result.left)), tolerance);
    EXPECT_NEAR(after.y(), QVector3D::dotProduct(before, along(result.up)), tolerance);
    EXPECT_NEAR(after.z(), QVector3D::dotProduct(before, along(result.facing)), tolerance);
}

// Feet point forward at the pitch they had above the character's own ground.
void ExpectFeetKeepTheirPitch(const Rig& rest, const Rig& posed, const TPoseBuilder::Result& result)
{
    const QVector3D up(result.up[0], result.up[1], result.up[2]);
    for (int side = 0; side < 2; ++side)
    {
        if (BoneOf(rest, kToeBase[side]).isEmpty())
            continue;
        EXPECT_NEAR(Degrees(Along(posed, kFoot[side], kToeBase[side]), {0, 1, 0}),
                    Degrees(Along(rest, kFoot[side], kToeBase[side]), up), kAligned);
    }
}

TEST(TPoseCorpusTest, EveryRigInEveryRestPoseEndsInTheSolversTPose)
{
    const std::vector<Rig> rigs = CorpusRigs();
    ASSERT_EQ(rigs.size(), 2u);
    for (const Rig& corpusRig : rigs)
    {
        for (const Variant& variant : Variants())
        {
            SCOPED_TRACE(corpusRig.id.toStdString() + ", " + variant.name);
            Rig rig = corpusRig;
            variant.change(rig);
            const Rig rest = rig;
            const float tolerance = 1e-4f * Height(rest.scene);
            Mapped mapped(rig);
            const SceneTPose tpose(rig.scene, mapped.Current());
            ASSERT_TRUE(tpose.GetResult().IsPosed()) << tpose.GetResult().error.toStdString();
            mapped.hub.SetLocalTransforms(tpose.GetLocals());

            ExpectValidPose(rig, mapped.model);
            ExpectSameBones(rest.scene, rig.scene, tolerance);
            ExpectHipsKeptInFrame(rest, rig, tpose.GetResult(), tolerance);
            ExpectFeetKeepTheirPitch(rest, rig, tpose.GetResult());
            // Posing a T-pose again changes nothing at all.
            const SceneTPose again(rig.scene, mapped.Current());
            EXPECT_TRUE(again.GetLocals().empty());
            EXPECT_FALSE(again.GetResult().Changed()) << again.GetResult().turns.size();
        }
    }
}
Rig Mixamo()
{
    for (Rig& rig : CorpusRigs())
    {
        if (rig.id == "mixamo_xbot")
            return rig;
    }
    ADD_FAILURE() << "no mixamo_xbot in the corpus";
    return Rig();
}

QVector3D PalmNormal(const Rig& rig, int side)
{
    const QVector3D along = Along(rig, kHand[side], kMiddle1[side]);
    return QVector3D::crossProduct(along, Along(rig, kPinky1[side], kIndex1[side])).normalized();
}

QVector3D Phalanx(const Rig& rig, int firstJoint, int joint)
{
    return Along(rig, firstJoint + joint, firstJoint + joint + 1);
}

TEST(TPoseHandTest, CurledFingersStraightenInTheFlatPalmAndTheThumbKeepsItsAngle)
{
    Rig rig = Mixamo();
    Slouch(rig);
    const Rig rest = rig;
    Mapped mapped(rig);
    mapped.hub.SetLocalTransforms(SceneTPose(rig.scene, mapped.Current()).GetLocals());
    for (int side = 0; side < 2; ++side)
    {
        SCOPED_TRACE(side == 0 ? "left" : "right");
        // Palm down on either hand.
        const QVector3D palm = PalmNormal(rig, side);
        EXPECT_LT(Degrees(palm, {0, -kSide[side], 0}), kAligned);
        for (int first = kIndex1[side]; first <= kPinky1[side]; first += 4)
        {
            for (int joint = 0; joint < 3; ++joint)
            {
                EXPECT_NEAR(Degrees(Phalanx(rig, first, joint), palm), 90.0, kAligned) << first + joint;
                EXPECT_LT(Degrees(Phalanx(rig, first, joint), Phalanx(rig, first, 0)), kAligned) << first + joint;
            }
        }
        // The curled finger kept its spread: seen from above the palm, it points as its first bone did.
        EXPECT_NEAR(Degrees(Phalanx(rig, kIndex1[side], 0), Along(rig, kHand[side], kMiddle1[side])),
                    Degrees(Phalanx(rest, kIndex1[side], 0) - QVector3D::dotProduct(Phalanx(rest, kIndex1[side], 0),
                                                                                    PalmNormal(rest, side)) *
                                                                  PalmNormal(rest, side),
                            Along(rest, kHand[side], kMiddle1[side])),
                    0.1);
        for (int joint = 1; joint < 3; ++joint)
            EXPECT_LT(Degrees(Phalanx(rig, kThumb1[side], joint), Phalanx(rig, kThumb1[side], 0)), kAligned);
        EXPECT_NEAR(Degrees(Phalanx(rig, kThumb1[side], 0), palm),
                    Degrees(Phalanx(rest, kThumb1[side], 0), PalmNormal(rest, side)), kAligned);
    }
}

TEST(TPoseRideAlongTest, TwistBonesRideTheirLimbAndClaviclesKeepTheirPlaceInTheFrame)
{
    Rig rig = Mixamo();
    // A twist bone halfway down the forearm, rolled about it, that no node holds.
    const int forearm = rig.scene.IndexOf(BoneOf(rig, kForeArm[0]));
    SceneBone twist;
    twist.name = "LeftForeArmTwist";
    twist.parent = forearm;
    twist.local.translate(0.5f * rig.scene.Find(BoneOf(rig, kHand[0]))->local.column(3).toVector3D());
    twist.local.rotate(30.0f, 1, 0, 0);
    ASSERT_GE(rig.scene.AddBone(twist), 0);
    Slouch(rig);
    TurnAll(rig.scene, QQuaternion::fromAxisAndAngle(1, 0, 0, 90));
    const Rig rest = rig;
    Mapped mapped(rig);
    const SceneTPose tpose(rig.scene, mapped.Current());
    mapped.hub.SetLocalTransforms(tpose.GetLocals());

    EXPECT_EQ(rig.scene.Find("LeftForeArmTwist")->local, rest.scene.Find("LeftForeArmTwist")->local);
    const QVector3D forearmLine = Along(rig, kForeArm[0], kHand[0]);
    const QVector3D toTwist = Joint(rig.scene, "LeftForeArmTwist") - Joint(rig.scene, BoneOf(rig, kForeArm[0]));
    EXPECT_LT(QVector3D::crossProduct(forearmLine.normalized(), toTwist).length(), 1e-4f * Height(rig.scene));
    for (const TPoseBuilder::Turn& turn : tpose.GetResult().turns)
        EXPECT_NE(turn.nodeId, -1) << rig.scene.Bone(turn.bone).name.toStdString();

    // Z up to Y up is a quarter turn about X; the clavicle only takes that.
    const QMatrix4x4 quarter = [] {
        QMatrix4x4 m;
        m.rotate(-90.0f, 1, 0, 0);
        return m;
    }();
    for (int side = 0; side < 2; ++side)
    {
        const QMatrix4x4 before = quarter * rest.scene.Find(BoneOf(rig, kShoulder[side]))->global;
        const QMatrix4x4 after = rig.scene.Find(BoneOf(rig, kShoulder[side]))->global;
        for (int column = 0; column < 3; ++column)
            EXPECT_LT((before.column(column) - after.column(column)).length(), 1e-5f) << side;
    }
}

TEST(TPoseBuilderTest, TooLittleMappedIsRefusedWithTheReason)
{
    Rig rig = Mixamo();
    const auto tposed = [&rig](const std::vector<int>& nodes) {
        Characterization characterization;
        for (int node : nodes)
            characterization.SetBone(node, BoneOf(rig, node));
        return SceneTPose(rig.scene, characterization);
    };
    const SceneTPose nothing = tposed({});
    EXPECT_TRUE(nothing.GetResult().error.startsWith("No bone is mapped")) << nothing.GetResult().error.toStdString();
    EXPECT_TRUE(nothing.GetLocals().empty());
    EXPECT_TRUE(nothing.GetResult().locals.empty());
    for (const std::vector<int>& nodes : std::vector<std::vector<int>> {{kHips, kSpine, kHead},
                                                                       {kUpLeg[0], kUpLeg[1], kFoot[0], kFoot[1]},
                                                                       {kHips, kUpLeg[0], kUpLeg[1]}})
    {
        const SceneTPose few = tposed(nodes);
        EXPECT_TRUE(few.GetResult().error.startsWith("A T-pose needs the hips")) << few.GetResult().error.toStdString();
        EXPECT_TRUE(few.GetLocals().empty());
    }
    // Enough to stand: the hips, the thighs and a leg; the arms stay as they are, unmapped.
    const SceneTPose legs = tposed({kHips, kUpLeg[0], kUpLeg[1], kLeg[0], kLeg[1]});
    EXPECT_TRUE(legs.GetResult().IsPosed());
}
} // namespace

// The recognizer on rigs of the conventions users bring, as they come and with names that say nothing.
#include <cmath>
#include <iostream>

#include <Eigen/Core>
#include <Eigen/Geometry>
#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>

#include <zelkin/TemplateLibrary.h>

#include "ConventionRigs.h"
#include "RecognizerSuite.h"

namespace
{
// The rig with a cape hanging from the arms' trunk bone behind the back down to the knees, two chains of six, and
// hair hanging from the head to the waist all round, twelve chains of six; placed in the rig's own frame and size.
TruthRig WithCapeAndLongHair(const TruthRig& rig)
{
    TruthRig dressed = rig;
    dressed.id += QStringLiteral(" (cape and long hair)");
    const int head = rigs::BoneOf(rig, "Head");
    // The trunk bone both arms hang from.
    int armsFrom = rigs::BoneOf(rig, "LeftArm");
    for (bool holds = false; !holds && armsFrom >= 0;)
    {
        armsFrom = rig.bones[size_t(armsFrom)].parent;
        for (int at = rigs::BoneOf(rig, "RightArm"); at >= 0 && !holds; at = rig.bones[size_t(at)].parent)
            holds = at == armsFrom;
    }
    const rigs::Axes axes = rigs::BodyAxes(rig);
    const double size = axes.size;
    const Eigen::Vector3d& left = axes.left;
    const Eigen::Vector3d& facing = axes.facing;
    const auto chain = [&](int parent, const QString& name, const Eigen::Vector3d& start, const Eigen::Vector3d& step) {
        int at = parent;
        for (int k = 0; k < 6; ++k)
        {
            SkeletonRecognizer::Bone bone;
            bone.name = QStringLiteral("%1_%2").arg(name).arg(k);
            bone.parent = at;
            const Eigen::Vector3d p = start + double(k) * step;
            bone.position = {p.x(), p.y(), p.z()};
            dressed.bones.push_back(bone);
            at = int(dressed.bones.size()) - 1;
        }
    };
    const Eigen::Vector3d down = -axes.up;
    for (double s : {1.0, -1.0})
        chain(armsFrom, s > 0 ? "CapeL" : "CapeR", rigs::Joint(rig, armsFrom) + size * (0.2 * s * left - 0.2 * facing),
              size * (0.22 * down + 0.02 * s * left - 0.02 * facing));
    for (int c = 0; c < 12; ++c)
    {
        const double angle = 3.14159265 * (c + 0.5) / 12.0;
        const Eigen::Vector3d round = std::cos(angle) * left - std::sin(angle) * facing;
        chain(head, QStringLiteral("Hair%1").arg(c), rigs::Joint(rig, head) + size * 0.15 * round,
              size * (0.14 * down + 0.02 * round));
    }
    return dressed;
}

class ConventionRecognitionTest : public RecognizerSuite
{
protected:
    static RigScore Run(const TruthRig& rig)
    {
        const RigScore score = rigs::Score(rig, sRecognizer->Recognize(rig.bones));
        std::cout << "  " << rig.id.toStdString() << ": " << score.right << "/" << score.truthBones << "\n";
        return score;
    }

    static void ExpectRight(const TruthRig& rig)
    {
        const RigScore score = Run(rig);
        const std::string what = rig.id.toStdString() + ": " + score.Describe().toStdString();
        EXPECT_EQ(score.characters, 1) << what;
        EXPECT_GE(score.Share(), 0.98) << what;
        EXPECT_TRUE(score.mappedExtras.isEmpty()) << what;
        EXPECT_TRUE(score.requiredWrong.isEmpty()) << what;
    }
};

TEST_F(ConventionRecognitionTest, EveryConventionAsItComes)
{
    const std::vector<TruthRig> all = conventions::All();
    ASSERT_GE(all.size(), 12u);
    for (const TruthRig& rig : all)
        ExpectRight(rig);
}

TEST_F(ConventionRecognitionTest, TurnedUnevenAndWithSidesSwappedInTheirNames)
{
    // Files stand characters along other axes, rigs placed by hand are never quite symmetric, and some name their
    // sides the other way round: the geometry decides, and a name's side only counts against a bone when the
    // names are not mirrored as a whole.
    unsigned seed = 1;
    for (const TruthRig& rig : conventions::All())
    {
        ExpectRight(rigs::ZUp(rigs::FacingSide(rig)));
        ExpectRight(rigs::SidesSwappedInNames(rig));
        for (double fraction : {0.02, 0.05})
            ExpectRight(rigs::Jittered(rig, fraction, seed++));
    }
}

TEST_F(ConventionRecognitionTest, EveryConventionInAnUnevenPose)
{
    // A file saved with the character in a pose of its own: one arm raised 30 degrees above the horizontal, the
    // other hanging 70 below it, one knee bent.
    for (const TruthRig& rig : conventions::All())
        ExpectRight(rigs::Posed(rig, {-30.0, 70.0, 25.0, 0.0}));
}

TEST_F(ConventionRecognitionTest, ACapeAndLongHairAsLongAsTheLimbs)
{
    // Mirrored chains from the chest and the head that reach the knees and the waist. With names that say
    // nothing, only the shape tells them from the limbs: the legs carry the body and the hands split into fingers
    // (without fingers, a cape as long as the arms is theirs to be taken for).
    for (const TruthRig& rig : conventions::All())
    {
        const TruthRig dressed = WithCapeAndLongHair(rig);
        ExpectRight(dressed);
        if (rigs::BoneOf(rig, "LeftHandIndex1") < 0 && rigs::BoneOf(rig, "LeftHandThumb1") < 0)
            continue;
        // Dressed, it does as well as without them.
        const RigScore plain = Run(rigs::WithMeaninglessNames(rig));
        const RigScore score = Run(rigs::WithMeaninglessNames(dressed));
        EXPECT_EQ(score.right, plain.right) << score.Describe().toStdString();
        EXPECT_EQ(score.mappedExtras, plain.mappedExtras) << score.Describe().toStdString();
    }
}

TEST_F(ConventionRecognitionTest, NamesThatSayNothingLeaveTheShapeToSpeak)
{
    int right = 0;
    int total = 0;
    for (const TruthRig& rig : conventions::All())
    {
        const TruthRig renamed = rigs::WithMeaninglessNames(rig);
        for (const TruthRig& variant : {renamed, rigs::ZUp(rigs::FacingSide(renamed))})
        {
            const RigScore score = Run(variant);
            EXPECT_EQ(score.characters, 1) << variant.id.toStdString();
            EXPECT_GE(score.Share(), 0.85) << variant.id.toStdString() << ": " << score.Describe().toStdString();
            right += score.right;
            total += score.truthBones;
        }
    }
    EXPECT_GE(double(right) / total, 0.9);
}
} // namespace

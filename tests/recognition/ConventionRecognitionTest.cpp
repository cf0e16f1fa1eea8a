// The recognizer on rigs of the conventions users bring, as they come and with names that say nothing.
#include <cmath>
#include <iostream>

#include <gtest/gtest.h>

#include <zelkin/TemplateLibrary.h>

#include "ConventionRigs.h"

namespace
{
class ConventionRecognitionTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        sLibrary = new TemplateLibrary(QString());
        sRecognizer = new SkeletonRecognizer(*sLibrary);
    }

    static void TearDownTestSuite()
    {
        delete sRecognizer;
        delete sLibrary;
    }

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

    static TemplateLibrary* sLibrary;
    static SkeletonRecognizer* sRecognizer;
};

TemplateLibrary* ConventionRecognitionTest::sLibrary = nullptr;
SkeletonRecognizer* ConventionRecognitionTest::sRecognizer = nullptr;

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

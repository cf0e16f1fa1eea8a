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
    {
        const RigScore score = Run(rig);
        EXPECT_EQ(score.characters, 1) << rig.id.toStdString();
        EXPECT_GE(score.Share(), 0.98) << rig.id.toStdString() << ": " << score.Describe().toStdString();
        EXPECT_TRUE(score.mappedExtras.isEmpty()) << rig.id.toStdString() << ": " << score.Describe().toStdString();
        EXPECT_TRUE(score.requiredWrong.isEmpty()) << rig.id.toStdString() << ": " << score.Describe().toStdString();
    }
}

TEST_F(ConventionRecognitionTest, NamesThatSayNothingLeaveTheShapeToSpeak)
{
    int right = 0;
    int total = 0;
    for (const TruthRig& rig : conventions::All())
    {
        const RigScore score = Run(rigs::WithMeaninglessNames(rig));
        EXPECT_EQ(score.characters, 1) << rig.id.toStdString();
        EXPECT_GE(score.Share(), 0.85) << rig.id.toStdString() << ": " << score.Describe().toStdString();
        right += score.right;
        total += score.truthBones;
    }
    EXPECT_GE(double(right) / total, 0.9);
}
} // namespace

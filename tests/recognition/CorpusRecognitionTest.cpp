// The recognizer on real skeletons made outside the project, and on the same skeletons renamed, turned, scaled,
// mirrored in their names and merged into one scene.
#include <cmath>
#include <iostream>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/NameMatcher.h>
#include <zelkin/TemplateChooser.h>
#include <zelkin/TemplateLibrary.h>
#include <zelkin/UserConfiguration.h>

#include "RecognitionRigs.h"
#include "RecognizerSuite.h"

namespace
{
class CorpusRecognitionTest : public RecognizerSuite
{
protected:
    void SetUp() override { ASSERT_GE(sRigs->size(), 2u) << "the corpus could not be read"; }

    static void SetUpTestSuite()
    {
        sRigs = new std::vector<TruthRig>(rigs::CorpusRigs());
        RecognizerSuite::SetUpTestSuite();
    }

    static void TearDownTestSuite()
    {
        RecognizerSuite::TearDownTestSuite();
        delete sRigs;
    }

    static RigScore Run(const TruthRig& rig)
    {
        const RigScore score = rigs::Score(rig, sRecognizer->Recognize(rig.bones));
        std::cout << "  " << rig.id.toStdString() << ": " << score.right << "/" << score.truthBones << " ("
                  << std::lround(100.0 * score.Share()) << "%)\n";
        return score;
    }

    static void ExpectFlawless(const TruthRig& rig, double bar)
    {
        const RigScore score = Run(rig);
        EXPECT_GE(score.Share(), bar) << rig.id.toStdString() << ": " << score.Describe().toStdString();
        EXPECT_TRUE(score.mappedExtras.isEmpty()) << rig.id.toStdString() << ": " << score.Describe().toStdString();
        EXPECT_TRUE(score.requiredWrong.isEmpty()) << rig.id.toStdString() << ": " << score.Describe().toStdString();
        EXPECT_EQ(score.characters, 1) << rig.id.toStdString();
    }

    static std::vector<TruthRig>* sRigs;
};

std::vector<TruthRig>* CorpusRecognitionTest::sRigs = nullptr;

TEST_F(CorpusRecognitionTest, EveryRigAsItCame)
{
    int right = 0;
    int total = 0;
    for (const TruthRig& rig : *sRigs)
    {
        ExpectFlawless(rig, 0.98);
        const RigScore score = rigs::Score(rig, sRecognizer->Recognize(rig.bones));
        right += score.right;
        total += score.truthBones;
    }
    EXPECT_GE(double(right) / total, 0.98);
}

TEST_F(CorpusRecognitionTest, TurnedScaledAndCentimetreRigsGiveTheSameBones)
{
    for (const TruthRig& rig : *sRigs)
    {
        ExpectFlawless(rigs::ZUp(rig), 0.98);
        ExpectFlawless(rigs::FacingBack(rig), 0.98);
        ExpectFlawless(rigs::Scaled(rig, 100.0), 0.98);
        ExpectFlawless(rigs::ZUp(rigs::FacingBack(rigs::Scaled(rig, 0.01))), 0.98);
    }
}

TEST_F(CorpusRecognitionTest, TheFrameIsTheCharactersOwn)
{
    for (const TruthRig& rig : *sRigs)
    {
        const TruthRig turned = rigs::ZUp(rigs::FacingBack(rig));
        const SkeletonRecognizer::Result result = sRecognizer->Recognize(turned.bones);
        ASSERT_EQ(result.characters.size(), 1u) << rig.id.toStdString();
        // Both corpus rigs stand Y up facing +Z with their left along +X. Turned half round they face -Z with
        // their left along -X; stood Z up, they face +Y.
        const SkeletonRecognizer::Frame& frame = result.characters[0].frame;
        EXPECT_NEAR(frame.up[2], 1.0, 1e-6) << rig.id.toStdString();
        EXPECT_GT(frame.facing[1], 0.9) << rig.id.toStdString();
        EXPECT_LT(frame.left[0], -0.9) << rig.id.toStdString();
        EXPECT_FALSE(frame.namesMirrored);
    }
}

TEST_F(CorpusRecognitionTest, NamesThatSayNothingStillGiveNinetyPercent)
{
    int right = 0;
    int total = 0;
    for (const TruthRig& rig : *sRigs)
    {
        for (const TruthRig& variant : {rigs::WithMeaninglessNames(rig), rigs::ZUp(rigs::WithMeaninglessNames(rig))})
        {
            const RigScore score = Run(variant);
            EXPECT_TRUE(score.mappedExtras.isEmpty()) << variant.id.toStdString() << score.Describe().toStdString();
            EXPECT_GE(score.Share(), 0.9) << variant.id.toStdString() << score.Describe().toStdString();
            right += score.right;
            total += score.truthBones;
        }
    }
    EXPECT_GE(double(right) / total, 0.9);
}

TEST_F(CorpusRecognitionTest, SwappedSideNamesLoseToTheGeometry)
{
    for (const TruthRig& rig : *sRigs)
    {
        const TruthRig swapped = rigs::SidesSwappedInNames(rig);
        int moved = 0;
        for (auto it = rig.truth.cbegin(); it != rig.truth.cend(); ++it)
            moved += swapped.truth.value(it.key(), -1) != it.value() ? 1 : 0;
        ASSERT_GT(moved, 4) << rig.id.toStdString() << " has no side names to swap";
        ExpectFlawless(swapped, 0.98);
        const SkeletonRecognizer::Result result = sRecognizer->Recognize(swapped.bones);
        ASSERT_EQ(result.characters.size(), 1u);
        EXPECT_TRUE(result.characters[0].frame.namesMirrored) << rig.id.toStdString();
    }
}

TEST_F(CorpusRecognitionTest, SeveralCharactersInOneSceneEachGetTheirOwnNodes)
{
    // The corpus rigs are in metres and centimetres; bring them to one size so that they stand side by side.
    std::vector<TruthRig> parts;
    for (const TruthRig& rig : *sRigs)
        parts.push_back(rig.id.contains(QLatin1String("poser")) ? rigs::Scaled(rig, 0.012) : rig);
    parts.push_back(rigs::WithMeaninglessNames(parts.front()));
    const TruthRig merged = rigs::Merged(parts, 2.5);
    const SkeletonRecognizer::Result result = sRecognizer->Recognize(merged.bones);
    ASSERT_EQ(result.characters.size(), parts.size());
    const RigScore score = rigs::Score(merged, result);
    EXPECT_GE(score.Share(), 0.95) << score.Describe().toStdString();
    EXPECT_TRUE(score.mappedExtras.isEmpty()) << score.Describe().toStdString();
    for (const SkeletonRecognizer::Character& character : result.characters)
    {
        // Each character's root is its own, below the scene's root.
        EXPECT_NE(character.root, 0);
        EXPECT_EQ(merged.bones[size_t(character.root)].parent, 0);
    }
}

TEST_F(CorpusRecognitionTest, NeverWorseThanTheBestShippedTemplate)
{
    const TemplateChooser chooser(*sLibrary, NameMatcher::Suffix, UserConfiguration::BuiltInDelimiters());
    for (const TruthRig& rig : *sRigs)
    {
        QStringList names;
        QSet<QString> leaves;
        std::vector<bool> parent(rig.bones.size(), false);
        for (const SkeletonRecognizer::Bone& bone : rig.bones)
        {
            names.append(bone.name);
            if (bone.parent >= 0)
                parent[size_t(bone.parent)] = true;
        }
        for (size_t i = 0; i < rig.bones.size(); ++i)
            if (!parent[i])
                leaves.insert(rig.bones[i].name);
        int templateRight = 0;
        for (const NameMatcher::Assignment& assignment : chooser.Choose(names, leaves).assignments)
            templateRight += rig.truth.value(assignment.bone, -1) == assignment.nodeId ? 1 : 0;
        const RigScore score = rigs::Score(rig, sRecognizer->Recognize(rig.bones));
        EXPECT_GE(score.right, templateRight) << rig.id.toStdString();
    }
}
} // namespace

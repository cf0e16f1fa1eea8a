// Automatic characterization in Zelkin Studio: every character of a new file, and the Character menu's commands as
// steps the user can undo.
#include <QAction>
#include <QFile>

#include <zelkin/BoneCatalogue.h>

#include "ModalAnswerer.h"
#include "StudioFixture.h"
#include "TwoCharacterBvh.h"

namespace
{
const int kHips = BoneCatalogue::NodeId("Hips");
const int kLeftHand = BoneCatalogue::NodeId("LeftHand");

class AutoCharacterizeTest : public StudioFixture
{
protected:
    QString WritePair()
    {
        const QString path = files.filePath("pair.bvh");
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write(TwoCharacterBvh());
        return path;
    }

    QTemporaryDir files;
};

TEST_F(AutoCharacterizeTest, EachCharacterOfANewFileGetsItsOwnCharacterization)
{
    ASSERT_TRUE(window->OpenSkeleton(WritePair()));
    EXPECT_EQ(Model().GetCharacterizationNames(), QStringList({"A_Hips", "B_Hips"}));
    EXPECT_EQ(Current().GetName(), "A_Hips");
    EXPECT_EQ(Current().GetBone(kLeftHand), "A_LeftHand");
    EXPECT_EQ(Model().FindCharacterization("B_Hips")->GetBone(kLeftHand), "B_LeftHand");
    EXPECT_EQ(Model().FindCharacterization("B_Hips")->AssignedCount(), 53);
    EXPECT_EQ(Model().GetValidationState(), Valid) << Model().GetValidationMessage();
    EXPECT_TRUE(Hub().GetScene().HasCharacter("A_Hips"));
    EXPECT_FALSE(Session().IsModified());
}

TEST_F(AutoCharacterizeTest, AutoCharacterizeMapsAfreshInOneStepThatUndoes)
{
    ASSERT_TRUE(window->OpenSkeleton(Sample()));
    const QStringList found = Current().GetBoneNames();
    Model().AssignBones({{kHips, QString()}, {kLeftHand, "Spine"}});
    const QStringList edited = Current().GetBoneNames();
    const int steps = Session().GetUndoStack().count();

    window->GetAutoCharacterizeAction(false)->trigger();
    EXPECT_EQ(Current().GetBoneNames(), found);
    EXPECT_EQ(Session().GetUndoStack().count(), steps + 1);
    EXPECT_EQ(Model().GetValidationState(), Valid);
    window->OnUndo();
    EXPECT_EQ(Current().GetBoneNames(), edited);
    window->OnRedo();
    EXPECT_EQ(Current().GetBoneNames(), found);
}

TEST_F(AutoCharacterizeTest, TheSelectedCharacterOnlyAndRefusalsSayWhy)
{
    ASSERT_TRUE(window->OpenSkeleton(WritePair()));
    EXPECT_FALSE(window->GetAutoCharacterizeAction(true)->isEnabled()) << "nothing is selected";
    {
        ModalAnswerer boxes(QMessageBox::Ok);
        window->OnAutoCharacterize(true);
        EXPECT_EQ(boxes.texts, QStringList({"Select a bone of the character to characterize first."}));
    }
    // The first characterization takes the second character's bones.
    ASSERT_TRUE(Hub().SelectBones({"B_LeftForeArm"}));
    window->GetAutoCharacterizeAction(true)->trigger();
    EXPECT_EQ(Current().GetName(), "A_Hips");
    EXPECT_EQ(Current().GetBone(kLeftHand), "B_LeftHand");
    window->OnUndo();
    EXPECT_EQ(Current().GetBone(kLeftHand), "A_LeftHand");

    // Selecting the root above both characters holds neither.
    ASSERT_TRUE(Hub().SelectBones({"Stage"}));
    ModalAnswerer boxes(QMessageBox::Ok);
    window->OnAutoCharacterize(true);
    EXPECT_EQ(boxes.texts, QStringList({"The selected bones belong to no character found in the skeleton."}));
    EXPECT_EQ(Current().GetBone(kLeftHand), "A_LeftHand");

    // A locked characterization is left alone.
    Model().SetEditMode(true);
    window->OnAutoCharacterize(false);
    EXPECT_EQ(boxes.texts.last(), "The current characterization is locked: unlock it to characterize it again.");
}
} // namespace

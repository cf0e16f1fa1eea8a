#include <QAction>
#include <QTreeWidgetItem>

#include <zelkin/BoneCatalogue.h>

#include "BoneTreeWidget.h"
#include "StudioFixture.h"

namespace
{
const int kLeftArm = BoneCatalogue::NodeId("LeftArm");
const int kLeftHand = BoneCatalogue::NodeId("LeftHand");
const int kLeftToeBase = BoneCatalogue::NodeId("LeftToeBase");

QVector3D Position(const Scene& scene, const QString& bone)
{
    return scene.Find(bone)->global.column(3).toVector3D();
}

class StudioUndoTest : public StudioFixture
{
protected:
    void SetUp() override
    {
        StudioFixture::SetUp();
        ASSERT_TRUE(window->OpenSkeleton(Sample()));
        matched = Current().GetBoneNames();
    }

    int AttachCount(const QString& bone) { return GetScene().Find(bone)->attachCount; }
    void MakeCurrent(const QString& name) { ASSERT_TRUE(Model().SetCurrentCharacterization(Model().IndexOf(name))); }

    QStringList matched;
};

TEST_F(StudioUndoTest, AssignmentsGoBackAndForthThroughTheHost)
{
    ASSERT_TRUE(Model().ClearNode(kLeftArm));
    ASSERT_TRUE(Model().AssignBone(kLeftArm, "Spine2"));
    const QStringList assigned = Current().GetBoneNames();
    EXPECT_EQ(Session().GetUndoStack().count(), 2);
    EXPECT_EQ(window->GetUndoAction()->text(), "&Undo Map LeftArm");
    EXPECT_EQ(AttachCount("Spine2"), 2);

    window->OnUndo();
    EXPECT_TRUE(Current().GetBone(kLeftArm).isEmpty());
    EXPECT_EQ(AttachCount("Spine2"), 1);
    window->OnUndo();
    EXPECT_EQ(Current().GetBoneNames(), matched);
    EXPECT_EQ(AttachCount("LeftArm"), 1);
    EXPECT_EQ(Model().GetValidationState(), Valid);
    EXPECT_FALSE(window->GetUndoAction()->isEnabled());

    window->OnRedo();
    window->OnRedo();
    EXPECT_EQ(Current().GetBoneNames(), assigned);
    EXPECT_EQ(AttachCount("LeftArm"), 0);
    EXPECT_EQ(Session().GetUndoStack().count(), 2);

    // Clearing everything is one step, undone as one.
    window->OnUndo();
    window->OnUndo();
    Model().ClearAll();
    EXPECT_EQ(Current().AssignedCount(), 0);
    window->OnUndo();
    EXPECT_EQ(Current().GetBoneNames(), matched);
    EXPECT_EQ(AttachCount("Hips"), 1);
}

TEST_F(StudioUndoTest, LockedCharacterizationWaitsForUnlocking)
{
    ASSERT_TRUE(Model().ClearNode(kLeftHand));
    window->OnUndo();
    Hub().Lock(true);
    ASSERT_TRUE(Model().IsLocked());
    EXPECT_FALSE(window->GetRedoAction()->isEnabled());
    window->OnRedo();
    EXPECT_EQ(Current().GetBoneNames(), matched);
    Hub().Lock(false);
    window->OnRedo();
    EXPECT_TRUE(Current().GetBone(kLeftHand).isEmpty());
}

TEST_F(StudioUndoTest, StepOfAnotherCharacterizationMakesItCurrentAgain)
{
    const auto first = Model().GetCurrentCharacterization();
    ASSERT_TRUE(Model().ClearNode(kLeftArm));
    ASSERT_TRUE(window->GetTool()->CreateCharacterization("Other"));
    EXPECT_EQ(Session().GetUndoStack().count(), 1);
    window->OnUndo();
    EXPECT_EQ(Model().GetCurrentCharacterization(), first);
    EXPECT_EQ(first->GetBoneNames(), matched);
    EXPECT_EQ(Model().FindCharacterization("Other")->AssignedCount(), 0);
}

TEST_F(StudioUndoTest, RenameGoesBackToTheExactName)
{
    // As if the file had named it so: the hub's sanitizer would not let a rename produce the space.
    ASSERT_TRUE(Session().ApplyRename("LeftArm", "Left Arm"));
    ASSERT_EQ(Current().GetBone(kLeftArm), "Left Arm");
    ASSERT_TRUE(window->RenameBone("Left Arm", "L_Arm"));
    ASSERT_TRUE(Model().ClearNode(kLeftHand));
    EXPECT_EQ(Session().GetEdits().size(), 1);

    window->OnUndo();
    EXPECT_EQ(Current().GetBone(kLeftHand), "LeftHand");
    EXPECT_EQ(Current().GetBone(kLeftArm), "L_Arm");
    window->OnUndo();
    EXPECT_EQ(Current().GetBone(kLeftArm), "Left Arm");
    EXPECT_GE(GetScene().IndexOf("Left Arm"), 0);
    EXPECT_LT(GetScene().IndexOf("L_Arm"), 0);
    EXPECT_NE(window->GetBoneTree()->FindItem("Left Arm"), nullptr);
    EXPECT_TRUE(Session().GetEdits().isEmpty());

    window->OnRedo();
    EXPECT_EQ(Current().GetBone(kLeftArm), "L_Arm");
    EXPECT_EQ(AttachCount("L_Arm"), 1);
    ASSERT_EQ(Session().GetEdits().size(), 1);
    EXPECT_EQ(Session().GetEdits().front().newName, "L_Arm");
}

TEST_F(StudioUndoTest, DeletedBoneComesBackInPlaceWithItsCharacterizations)
{
    ASSERT_TRUE(Hub().RenameCharacterObject(Characterization::DefaultName(), "Hero"));
    Hub().Lock(true);
    ASSERT_TRUE(Model().IsLocked());
    ASSERT_TRUE(window->GetTool()->CreateCharacterization("Second"));
    Model().AutoMatch();
    const Characterization hero = *Model().FindCharacterization("Hero");
    const Characterization second = Current();
    const int index = GetScene().IndexOf("LeftHand");
    const QVector3D thumb = Position(GetScene(), "LeftHandThumb1");
    ASSERT_EQ(AttachCount("LeftHand"), 2);
    const int steps = Session().GetUndoStack().count();

    ASSERT_TRUE(window->DeleteBones({"LeftHand"}));
    EXPECT_LT(GetScene().IndexOf("LeftHand"), 0);
    EXPECT_EQ(Hub().GetBoneParent("LeftHandThumb1"), "LeftForeArm");
    EXPECT_LT((Position(GetScene(), "LeftHandThumb1") - thumb).length(), 1e-4f);
    EXPECT_FALSE(Model().FindCharacterization("Hero")->IsLocked());
    EXPECT_FALSE(Model().FindCharacterization("Hero")->IsAssigned(kLeftHand));
    EXPECT_FALSE(Current().IsAssigned(kLeftHand));
    EXPECT_EQ(Session().GetUndoStack().count(), steps + 1);

    window->OnUndo();
    EXPECT_EQ(GetScene().IndexOf("LeftHand"), index);
    EXPECT_EQ(Hub().GetBoneParent("LeftHand"), "LeftForeArm");
    EXPECT_EQ(Hub().GetBoneParent("LeftHandThumb1"), "LeftHand");
    EXPECT_LT((Position(GetScene(), "LeftHandThumb1") - thumb).length(), 1e-4f);
    EXPECT_EQ(AttachCount("LeftHand"), 2);
    EXPECT_TRUE(*Model().FindCharacterization("Hero") == hero);
    // The current one's geometry is read again from the rebuilt scene; its mapping is what matters.
    EXPECT_EQ(Current().GetBoneNames(), second.GetBoneNames());
    EXPECT_EQ(Model().GetValidationState(), Valid);
    EXPECT_EQ(window->GetBoneTree()->FindItem("LeftHand")->parent()->text(BoneTreeWidget::BoneColumn),
              "LeftForeArm");
    EXPECT_TRUE(Session().GetEdits().isEmpty());

    window->OnRedo();
    EXPECT_LT(GetScene().IndexOf("LeftHand"), 0);
    EXPECT_EQ(Session().GetEdits().size(), 1);
}

TEST_F(StudioUndoTest, RenamedBoneStaysMappedInEveryCharacterization)
{
    ASSERT_TRUE(Hub().RenameCharacterObject(Characterization::DefaultName(), "Hero"));
    Hub().Lock(true);
    ASSERT_TRUE(window->GetTool()->CreateCharacterization("Second"));
    Model().AutoMatch();
    MakeCurrent("Hero");
    ASSERT_TRUE(Model().IsLocked());

    // The locked current one and the other one both keep the joint under its new name.
    ASSERT_TRUE(window->RenameBone("LeftArm", "armL"));
    const auto hero = Model().FindCharacterization("Hero");
    const auto second = Model().FindCharacterization("Second");
    EXPECT_EQ(hero->GetBone(kLeftArm), "armL");
    EXPECT_TRUE(hero->IsLocked());
    EXPECT_EQ(second->GetBone(kLeftArm), "armL");
    EXPECT_EQ(AttachCount("armL"), 2);
    EXPECT_EQ(Model().GetValidationState(), Valid);

    MakeCurrent("Second");
    window->OnUndo();
    EXPECT_EQ(hero->GetBone(kLeftArm), "LeftArm");
    EXPECT_EQ(second->GetBone(kLeftArm), "LeftArm");
    EXPECT_TRUE(hero->IsLocked());
    EXPECT_EQ(AttachCount("LeftArm"), 2);
}

TEST_F(StudioUndoTest, UndoneDeleteGivesTheBoneBackOnlyWhereItWasTaken)
{
    ASSERT_TRUE(Hub().RenameCharacterObject(Characterization::DefaultName(), "Hero"));
    ASSERT_TRUE(window->GetTool()->CreateCharacterization("Second"));
    Model().AutoMatch();
    ASSERT_TRUE(window->DeleteBones({"LeftToeBase"}));
    // Locked again since, Hero keeps what it was locked with.
    MakeCurrent("Hero");
    Hub().Lock(true);
    ASSERT_TRUE(Model().IsLocked());
    const QStringList locked = Current().GetBoneNames();
    MakeCurrent("Second");
    window->OnUndo();
    EXPECT_EQ(Model().FindCharacterization("Hero")->GetBoneNames(), locked);
    EXPECT_TRUE(Model().FindCharacterization("Hero")->IsLocked());
    EXPECT_EQ(Current().GetBone(kLeftToeBase), "LeftToeBase");
    EXPECT_EQ(AttachCount("LeftToeBase"), 1);

    // A characterization deleted since gets nothing back, and the bone is not counted as held by it.
    window->OnRedo();
    ASSERT_TRUE(Hub().DeleteCharacter("Second", false));
    MakeCurrent("Hero");
    Hub().Lock(false);
    window->OnUndo();
    ASSERT_GE(GetScene().IndexOf("LeftToeBase"), 0);
    EXPECT_EQ(AttachCount("LeftToeBase"), 0);
}

} // namespace

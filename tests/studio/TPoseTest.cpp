// Character > Set T-Pose in Zelkin Studio: one step that undoes exactly, kept by the project, refused with a reason.
#include <QAction>
#include <QDir>
#include <QStatusBar>

#include <zelkin/BoneCatalogue.h>

#include "StudioFixture.h"

namespace
{
struct Transforms
{
    std::vector<QMatrix4x4> locals;
    std::vector<QMatrix4x4> globals;

    bool operator==(const Transforms& other) const { return locals == other.locals && globals == other.globals; }
};

Transforms TransformsOf(const Scene& scene)
{
    Transforms transforms;
    for (int i = 0; i < scene.BoneCount(); ++i)
    {
        transforms.locals.push_back(scene.Bone(i).local);
        transforms.globals.push_back(scene.Bone(i).global);
    }
    return transforms;
}

class TPoseTest : public StudioFixture
{
protected:
    static QString APose() { return QStringLiteral(ZELKIN_SOURCE_DIR "/examples/sample_humanoid_apose.bvh"); }

    // No pose rule warns: the hips, both arms.
    void ExpectNoAxisWarning()
    {
        for (const char* node : {"LeftUpLeg", "RightUpLeg", "LeftArm", "RightArm", "LeftHand", "RightHand"})
            EXPECT_EQ(Model().GetNodeMessage(BoneCatalogue::NodeId(node)).find("axis"), std::string::npos) << node;
    }

    CharacterJointGeometry GeometryOf(const char* node)
    {
        return Current().GetJointGeometry(BoneCatalogue::NodeId(node));
    }

    QTemporaryDir files;
};

TEST_F(TPoseTest, SetTPoseIsOneStepThatUndoesExactly)
{
    ASSERT_TRUE(window->OpenSkeleton(APose()));
    const Transforms rest = TransformsOf(GetScene());
    const CharacterJointGeometry restHand = GeometryOf("LeftHand");
    EXPECT_NE(Model().GetNodeMessage(BoneCatalogue::NodeId("LeftArm")).find("axis"), std::string::npos);
    ASSERT_TRUE(window->GetTPoseAction()->isEnabled());

    window->GetTPoseAction()->trigger();
    ASSERT_EQ(Session().GetUndoStack().count(), 1);
    const QString status = window->statusBar()->currentMessage();
    EXPECT_TRUE(status.startsWith("Set T-Pose: 30 bones turned, ") && status.endsWith("Arm the most, by 45.0 degrees."))
        << status.toStdString();
    EXPECT_EQ(window->GetUndoAction()->text(), "&Undo Set T-Pose");
    ExpectNoAxisWarning();
    EXPECT_EQ(Model().GetValidationState(), Valid) << Model().GetValidationMessage();
    // The panel's geometry is the new rest pose's, as the hub hands it over.
    CharacterJointGeometry hostHand;
    ASSERT_TRUE(Hub().GetBoneReferenceGeometry("LeftHand", hostHand));
    EXPECT_EQ(GeometryOf("LeftHand"), hostHand);
    EXPECT_NE(GeometryOf("LeftHand"), restHand);
    const Transforms posed = TransformsOf(GetScene());
    EXPECT_TRUE(Session().IsModified());

    window->OnUndo();
    EXPECT_TRUE(TransformsOf(GetScene()) == rest);
    EXPECT_EQ(GeometryOf("LeftHand"), restHand);
    EXPECT_FALSE(Session().IsModified());
    window->OnRedo();
    EXPECT_TRUE(TransformsOf(GetScene()) == posed);
    ExpectNoAxisWarning();

    // A T-pose set again finds nothing to turn and makes no step.
    QString message;
    EXPECT_TRUE(Session().SetTPose(message));
    EXPECT_TRUE(message.contains("already")) << message.toStdString();
    EXPECT_EQ(Session().GetUndoStack().count(), 1);
}

TEST_F(TPoseTest, TheProjectKeepsTheTPose)
{
    ASSERT_TRUE(window->OpenSkeleton(APose()));
    QString message;
    ASSERT_TRUE(Session().SetTPose(message)) << message.toStdString();
    ASSERT_TRUE(Session().RenameBone("LeftHand", "hand_l"));
    const Transforms posed = TransformsOf(GetScene());
    const QString project = QDir(files.path()).filePath("posed.zelproj");
    ASSERT_TRUE(window->SaveProject(project));

    ASSERT_TRUE(window->OpenSkeleton(APose()));
    EXPECT_FALSE(TransformsOf(GetScene()) == posed);
    ASSERT_TRUE(window->OpenProject(project));
    EXPECT_TRUE(TransformsOf(GetScene()) == posed);
    EXPECT_EQ(Current().GetBone(BoneCatalogue::NodeId("LeftHand")), "hand_l");
    ExpectNoAxisWarning();
    EXPECT_FALSE(Session().IsModified());
}

TEST_F(TPoseTest, WithoutAMappingOrUnlockedCharacterizationNothingHappens)
{
    QString message;
    EXPECT_FALSE(Session().SetTPose(message));
    EXPECT_TRUE(message.contains("open one first")) << message.toStdString();
    EXPECT_FALSE(window->GetTPoseAction()->isEnabled());

    ASSERT_TRUE(window->OpenSkeleton(APose()));
    const Transforms rest = TransformsOf(GetScene());
    Hub().Lock(true);
    ASSERT_TRUE(Model().IsLocked());
    EXPECT_FALSE(window->GetTPoseAction()->isEnabled());
    EXPECT_FALSE(Session().SetTPose(message));
    EXPECT_TRUE(message.contains("locked")) << message.toStdString();
    Hub().Lock(false);

    Model().ClearAll();
    const int steps = Session().GetUndoStack().count();
    EXPECT_FALSE(Session().SetTPose(message));
    EXPECT_TRUE(message.startsWith("No bone is mapped")) << message.toStdString();
    EXPECT_EQ(Session().GetUndoStack().count(), steps);
    EXPECT_TRUE(TransformsOf(GetScene()) == rest);
}
} // namespace

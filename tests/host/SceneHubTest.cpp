#include <QSignalSpy>

#include <gtest/gtest.h>

#include <zelkin/CharacterizationModel.h>

#include "Scene.h"
#include "SceneHub.h"
#include "SceneImporter.h"

namespace {

const int kLeftArm = ZELGetNodeIdFromName("LeftArm");
const int kLeftForeArm = ZELGetNodeIdFromName("LeftForeArm");

class SceneHubTest : public testing::Test
{
protected:
    void SetUp() override
    {
        SceneImporter importer;
        ASSERT_TRUE(importer.Import(QStringLiteral(ZELKIN_CORPUS_DIR "/skeletons/mixamo_xbot.glb"), scene));
    }

    Scene scene;
    SceneHub hub {scene};
};

TEST_F(SceneHubTest, ReferenceGeometryIsTheGlobalTransform)
{
    CharacterJointGeometry geometry;
    geometry.SetPostRotQ(1, 0, 0, 0);
    ASSERT_TRUE(hub.GetBoneReferenceGeometry("mixamorig:LeftHand", geometry));
    EXPECT_NEAR(geometry.GetTranslate()[0], 0.713f, 2e-3f);
    EXPECT_NEAR(geometry.GetTranslate()[1], 1.441f, 2e-3f);
    EXPECT_NEAR(geometry.GetScale()[1], 0.01f, 1e-6f);
    const float* q = geometry.GetRotateQ();
    EXPECT_NEAR(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3], 1.0f, 1e-5f);
    EXPECT_EQ(geometry.GetPostRotQ()[3], 1.0f);
    EXPECT_EQ(geometry.GetPreRotQ()[3], 1.0f);
    EXPECT_FALSE(hub.GetBoneReferenceGeometry("mixamorig:Tail", geometry));
}

TEST_F(SceneHubTest, ModelFollowsRenamedAndDeletedBones)
{
    CharacterizationModel model(&hub);
    QSignalSpy renamed(&hub, &IDCCHub::NameChanged);
    QSignalSpy removed(&hub, &IDCCHub::NodeRemoved);
    ASSERT_TRUE(model.AssignBone(kLeftArm, "mixamorig:LeftArm"));
    ASSERT_TRUE(model.AssignBone(kLeftForeArm, "mixamorig:LeftForeArm"));
    hub.SelectBones({"mixamorig:LeftArm"});
    SceneBone* arm = scene.Find("mixamorig:LeftArm");
    EXPECT_EQ(arm->attachCount, 1);
    EXPECT_EQ(arm->node, kLeftArm);

    ASSERT_TRUE(hub.RenameBone("mixamorig:LeftArm", "arm L|1"));
    ASSERT_EQ(renamed.count(), 1);
    EXPECT_EQ(renamed.at(0), QVariantList({"armL1", "mixamorig:LeftArm"}));
    EXPECT_EQ(model.GetAssignedBone(kLeftArm), "armL1");
    EXPECT_EQ(scene.Find("armL1"), arm);
    EXPECT_EQ(arm->attachCount, 1);
    EXPECT_EQ(scene.Selection(), QStringList({"armL1"}));
    EXPECT_FALSE(hub.RenameBone("armL1", "mixamorig:Hips"));
    EXPECT_FALSE(hub.RenameBone("armL1", "???"));
    EXPECT_EQ(renamed.count(), 1);

    ASSERT_TRUE(hub.DeleteBone("mixamorig:LeftForeArm"));
    EXPECT_EQ(removed.at(0), QVariantList({"mixamorig:LeftForeArm"}));
    EXPECT_EQ(model.GetAssignedBone(kLeftForeArm), "");
    EXPECT_EQ(model.GetAssignedBone(kLeftArm), "armL1");
    EXPECT_EQ(hub.GetBoneParent("mixamorig:LeftHand"), "armL1");
    QStringList bones;
    hub.GetSceneBones(bones);
    EXPECT_EQ(bones.size(), 64);
    for (const QString& bone : bones)
        EXPECT_LT(bones.indexOf(hub.GetBoneParent(bone)), bones.indexOf(bone));
    EXPECT_FALSE(hub.DeleteBone("mixamorig:LeftForeArm"));
    EXPECT_EQ(removed.count(), 1);
}

TEST_F(SceneHubTest, AttachCountsFollowTheModel)
{
    CharacterizationModel model(&hub);
    model.AssignBone(kLeftArm, "mixamorig:LeftArm");
    model.AssignBone(kLeftForeArm, "mixamorig:LeftArm");
    model.AssignBone(kLeftArm, "mixamorig:RightArm");
    EXPECT_EQ(hub.GetAttachCount("mixamorig:LeftArm"), 1);
    EXPECT_EQ(hub.GetAttachCount("mixamorig:RightArm"), 1);
    model.ClearAll();
    EXPECT_EQ(hub.GetAttachCount("mixamorig:LeftArm"), 0);
    EXPECT_EQ(scene.Find("mixamorig:LeftArm")->node, -1);
    EXPECT_FALSE(hub.DetachHostBone("mixamorig:LeftArm"));
}

TEST_F(SceneHubTest, DroppedCharacterizationsLetGoOfTheirBones)
{
    CharacterizationModel model(&hub);
    ASSERT_TRUE(model.CreateCharacterization("Hero"));
    model.AssignBone(kLeftArm, "mixamorig:LeftArm");
    ASSERT_TRUE(model.CreateCharacterization("Villain"));
    model.AssignBone(kLeftArm, "mixamorig:LeftArm");
    model.AssignBone(kLeftForeArm, "mixamorig:LeftForeArm");
    ASSERT_EQ(hub.GetAttachCount("mixamorig:LeftArm"), 2);

    ASSERT_TRUE(hub.DeleteCharacterObject("Villain"));
    EXPECT_EQ(hub.GetAttachCount("mixamorig:LeftArm"), 1);
    EXPECT_EQ(hub.GetAttachCount("mixamorig:LeftForeArm"), 0);
    ASSERT_TRUE(model.DeleteCharacterization(model.IndexOf("Hero")));
    EXPECT_EQ(hub.GetAttachCount("mixamorig:LeftArm"), 0);
}

TEST_F(SceneHubTest, ModelFollowsCharacterObjects)
{
    CharacterizationModel model(&hub);
    QSignalSpy renamed(&hub, &IDCCHub::CharacterizationNameChanged);
    QSignalSpy removed(&hub, &IDCCHub::CharacterizationNodeRemoved);
    ASSERT_TRUE(model.CreateCharacterization("Hero"));
    EXPECT_TRUE(scene.HasCharacter("Hero"));

    ASSERT_TRUE(hub.RenameCharacterObject("Hero", "Villain"));
    EXPECT_EQ(renamed.at(0), QVariantList({"Villain", "Hero"}));
    EXPECT_GE(model.IndexOf("Villain"), 0);
    EXPECT_EQ(model.IndexOf("Hero"), -1);

    ASSERT_TRUE(hub.DeleteCharacterObject("Villain"));
    EXPECT_EQ(removed.at(0), QVariantList({"Villain"}));
    EXPECT_EQ(model.IndexOf("Villain"), -1);
    EXPECT_FALSE(scene.HasCharacter("Villain"));
}

TEST_F(SceneHubTest, SelectionChangesAreAnnounced)
{
    QSignalSpy changed(&hub, &IDCCHub::selectionChanged);
    EXPECT_TRUE(hub.SelectBones({"mixamorig:Head", "mixamorig:Neck"}));
    EXPECT_TRUE(hub.SelectBones({"mixamorig:Head", "mixamorig:Neck"}));
    EXPECT_FALSE(hub.SelectBones({"mixamorig:Tail"}));
    EXPECT_EQ(changed.count(), 1);
    hub.DeleteBone("mixamorig:Neck");
    EXPECT_EQ(changed.count(), 2);
    QStringList selected;
    hub.GetSelectedBones(selected);
    EXPECT_EQ(selected, QStringList({"mixamorig:Head"}));
}

TEST(SceneHubScaleTest, MappedBonesWithNonUniformScaleAreWarnedAbout)
{
    Scene scene;
    SceneBone bone;
    bone.name = "stretched";
    bone.local.translate(20, 150, 0);
    bone.local.scale(1, 1.001f, 1);
    scene.AddBone(bone);
    bone.name = "fine";
    bone.local = QMatrix4x4();
    bone.local.translate(50, 150, 0);
    bone.local.scale(3, 3.0001f, 3);
    scene.AddBone(bone);
    SceneHub hub(scene);
    CharacterizationModel model(&hub);

    ValidationLog unmapped;
    hub.CharacterizationDCCValidate(unmapped);
    EXPECT_EQ(unmapped.GetValidationState(), Valid);

    model.AssignBone(kLeftArm, "stretched");
    model.AssignBone(kLeftForeArm, "fine");
    ValidationLog log;
    hub.CharacterizationDCCValidate(log);
    EXPECT_EQ(log.GetValidationState(), Warning);
    ASSERT_EQ(log.GetNbErrorInfo(), 1);
    EXPECT_EQ(log.GetErrorInfo(0).GetNodeId(), kLeftArm);
    EXPECT_EQ(log.GetErrorInfo(0).GetMessage(),
              "Bone stretched has a non-uniform scale (1.000000, 1.001000, 1.000000); its reference pose may be "
              "distorted.");
    model.Validate();
    EXPECT_EQ(model.GetNodeMessage(kLeftArm), log.GetErrorInfo(0).GetMessage());
}

TEST(SceneHubNameTest, SanitizingKeepsNamespacesAndNumbering)
{
    Scene scene;
    const SceneHub hub(scene);
    EXPECT_EQ(hub.SanitizeBoneName("rig:Left_Arm.001-b"), "rig:Left_Arm.001-b");
    EXPECT_EQ(hub.SanitizeBoneName(" Épaule gauche|(copy) #2"), "Épaulegauchecopy2");
}

} // namespace

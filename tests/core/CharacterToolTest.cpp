#include <cstdlib>
#include <cstring>

#include <QSignalSpy>
#include <QWidget>

#include <gtest/gtest.h>

#include <zelkin/CharacterTool.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/IDCCHub.h>

#include "ModalAnswerer.h"
#include "PrivateAppData.h"
#include "TestHub.h"
#include "TestScenes.h"

namespace {

testing::Environment* const gAppData = testing::AddGlobalTestEnvironment(new PrivateAppData);

const QString kDefault = QStringLiteral("New Characterization");

struct Panel : testing::Test
{
    void SetUp() override
    {
        mapping = testscenes::AddHandMadeTPose(hub);
        tool = new CharacterTool(false, "", "", &host, &hub);
        model = tool->GetModel();
    }

    void MapAll()
    {
        for (const auto& [nodeId, bone] : mapping)
            model->AssignBone(nodeId, bone);
    }

    TestHub hub;
    QWidget host;
    CharacterTool* tool = nullptr;
    CharacterizationModel* model = nullptr;
    std::vector<std::pair<int, QString>> mapping;
};

TEST(CharacterToolIdentity, NamesAndVersion)
{
    EXPECT_EQ(CharacterTool::GetToolName(), QStringLiteral("Zelkin Characterization Tool Component"));
    EXPECT_EQ(CharacterTool::GetCompactName(), QStringLiteral("ZELCharacterizationTool6"));
    EXPECT_EQ(CharacterTool::GetToolVersion(), 6.0);
}

TEST(CharacterToolEmpty, WithoutParentItBuildsNothingAndIgnoresCommands)
{
    TestHub hub;
    CharacterTool tool(false, "", "", nullptr, &hub);
    EXPECT_EQ(tool.GetModel(), nullptr);
    EXPECT_EQ(tool.GetCharacterization(), nullptr);
    EXPECT_EQ(hub.GetCharacterTool(), nullptr);
    ModalAnswerer answerer(QMessageBox::Yes);
    tool.OnDelete();
    tool.ToggleEditMode();
    tool.ToggleMirrorMode();
    tool.ClearCharacterization();
    EXPECT_FALSE(tool.CreateCharacterization(QStringLiteral("A")));
    EXPECT_FALSE(tool.SetCharacterization(0));
    EXPECT_EQ(tool.DeprecateInlineRollBones(), 0);
    void* buffer = nullptr;
    int32_t length = 0;
    QStringList names;
    EXPECT_FALSE(tool.GetCharacterizationStream(buffer, length, names, false));
    EXPECT_FALSE(tool.SetCharacterizationFromStream("x", 1, names));
    EXPECT_EQ(answerer.Count(), 0);
    EXPECT_TRUE(hub.journal.isEmpty());
}

TEST_F(Panel, RegistersOwnsTheModelAndSynchronisesOnIt)
{
    EXPECT_EQ(hub.GetCharacterTool(), tool);
    EXPECT_EQ(model->parent(), tool);
    EXPECT_EQ(tool->GetDCCHub(), &hub);
    EXPECT_EQ(tool->windowTitle(), kDefault); // the model spoke once at the end of construction
    emit hub.CharacterizationNameChanged(QStringLiteral("Hero"), kDefault);
    EXPECT_EQ(tool->windowTitle(), QStringLiteral("Hero"));
    MapAll();
    EXPECT_EQ(tool->statusTip(), QStringLiteral("Assigned node: rig:RightHand"));

    delete tool;
    EXPECT_EQ(hub.GetCharacterTool(), nullptr);
    EXPECT_FALSE(hub.IsCharacterCreated(QStringLiteral("Hero")));
}

TEST_F(Panel, LockingAnInvalidCharacterizationWarnsExactlyOnce)
{
    ModalAnswerer answerer(QMessageBox::Ok);
    tool->ToggleEditMode();
    EXPECT_FALSE(model->IsLocked());
    ASSERT_EQ(answerer.Count(), 1);
    EXPECT_EQ(answerer.titles[0], QStringLiteral("Validation Warning"));
    EXPECT_EQ(answerer.texts[0],
              QStringLiteral("Your characterization is not yet valid.\nOnly valid characterizations can be locked."));
}

TEST_F(Panel, LockingWithLostBonesAsksBeforeClearingThem)
{
    MapAll();
    hub.RemoveSceneBone(QStringLiteral("rig:LeftToeBase"), false);
    const Characterization before = *tool->GetCharacterization();
    {
        ModalAnswerer answerer(QMessageBox::Cancel);
        EXPECT_FALSE(tool->DoToggleEditMode(true));
        ASSERT_EQ(answerer.Count(), 1);
        EXPECT_EQ(answerer.texts[0], QStringLiteral("One or more bones in the current characterization cannot be found "
                                                     "in the skeleton.\nAll invalid nodes will be cleared from the "
                                                     "characterization."));
    }
    EXPECT_EQ(*tool->GetCharacterization(), before);
    {
        ModalAnswerer answerer(QMessageBox::Ok);
        tool->ToggleEditMode();
        EXPECT_EQ(answerer.Count(), 1);
    }
    EXPECT_TRUE(model->IsLocked());
    EXPECT_FALSE(tool->GetCharacterization()->IsAssigned(16));
    EXPECT_EQ(tool->GetCharacterization()->AssignedCount(), before.AssignedCount() - 1);

    tool->ToggleEditMode(); // unlocking never asks
    EXPECT_FALSE(model->IsLocked());
}

TEST_F(Panel, ClearingALockedCharacterizationIsRefusedOnceWhereTheModelWouldClearIt)
{
    MapAll();
    ModalAnswerer answerer(QMessageBox::Ok);
    ASSERT_TRUE(tool->DoToggleEditMode(true));
    tool->ClearCharacterization();
    EXPECT_EQ(answerer.titles, QStringList({"Characterization Locked"}));
    EXPECT_EQ(tool->GetCharacterization()->AssignedCount(), static_cast<int>(mapping.size()));
    tool->DoToggleEditMode(false);
    tool->ClearCharacterization();
    EXPECT_EQ(tool->GetCharacterization()->AssignedCount(), 0);
    EXPECT_EQ(answerer.Count(), 1);
}

TEST_F(Panel, DeletingTheOnlyCharacterizationLeavesAnEmptyOne)
{
    MapAll();
    const Characterization before = *tool->GetCharacterization();
    {
        ModalAnswerer answerer(QMessageBox::No);
        tool->OnDelete();
        ASSERT_EQ(answerer.Count(), 1);
        EXPECT_EQ(answerer.titles[0], QStringLiteral("Delete Skeleton Definition"));
        EXPECT_EQ(answerer.texts[0], QStringLiteral("Are you sure you want to delete the current Skeleton Definition?"));
    }
    EXPECT_EQ(*tool->GetCharacterization(), before);
    {
        ModalAnswerer answerer(QMessageBox::Yes);
        tool->OnDelete();
        EXPECT_EQ(answerer.Count(), 1);
    }
    ASSERT_EQ(model->GetCharacterizations().size(), 1u);
    EXPECT_EQ(tool->GetCharacterization()->GetName(), kDefault);
    EXPECT_EQ(tool->GetCharacterization()->AssignedCount(), 0);
    EXPECT_EQ(hub.journal.filter(QStringLiteral("Delete:")), QStringList({"Delete:" + kDefault}));
}

TEST_F(Panel, InlineRollBonesMoveToFreeLeafNodes)
{
    hub.AddBone(QStringLiteral("twist"), QString(), 30, 145, 0);
    hub.AddBone(QStringLiteral("foreTwist"), QString(), 55, 145, 0);
    hub.AddBone(QStringLiteral("leaf"), QString(), 56, 145, 0);
    model->AssignBones({{45, "twist"}, {46, "foreTwist"}, {177, "leaf"}});
    EXPECT_EQ(tool->DeprecateInlineRollBones(), 2);
    const Characterization* current = tool->GetCharacterization();
    EXPECT_FALSE(current->IsAssigned(45));
    EXPECT_FALSE(current->IsAssigned(46));
    EXPECT_EQ(current->GetBone(176), QStringLiteral("twist"));
    EXPECT_EQ(current->GetBone(177), QStringLiteral("leaf"));
    EXPECT_EQ(current->FindNode(QStringLiteral("foreTwist")), -1);
    EXPECT_EQ(tool->DeprecateInlineRollBones(), 0);
}

struct StreamRoundTrip : Panel, testing::WithParamInterface<bool>
{
};

TEST_P(StreamRoundTrip, RebuildsTheSameCharacterization)
{
    const bool bigEndian = GetParam();
    void* buffer = nullptr;
    int32_t length = 0;
    QStringList names;
    ASSERT_TRUE(tool->GetCharacterizationStream(buffer, length, names, bigEndian));
    EXPECT_EQ(length, 872); // nothing mapped yet
    std::free(buffer);

    MapAll();
    CharacterJointGeometry knee = tool->GetCharacterization()->GetJointGeometry(3);
    knee.SetPreRotQ(0.0f, 0.38268343f, 0.0f, 0.9238795f);
    knee.SetMinRLimit(-10.0f, 0.0f, 0.0f);
    knee.SetMaxRLimit(120.0f, 0.0f, 0.0f);
    knee.SetMinRLimitEnable(true, false, false);
    knee.SetMaxRLimitEnable(true, false, false);
    knee.SetRotationOrder(ZELEulerZXY);
    tool->GetCharacterization()->SetJointGeometry(3, knee);
    tool->GetCharacterization()->SetInverted(ZELLimbRightArm, true);
    const Characterization original = *tool->GetCharacterization();

    ASSERT_TRUE(tool->GetCharacterizationStream(buffer, length, names, bigEndian));
    EXPECT_EQ(length, 872 + 120 * original.AssignedCount());
    const unsigned char little[] = {0x89, 0x27, 0x02, 0x24};
    const unsigned char big[] = {0x24, 0x02, 0x27, 0x89};
    EXPECT_EQ(std::memcmp(buffer, bigEndian ? big : little, 4), 0);
    EXPECT_EQ(names, original.GetBoneNames());

    // Into a second panel whose host knows nothing yet.
    TestHub otherHub;
    QWidget otherHost;
    CharacterTool other(false, "", "", &otherHost, &otherHub);
    ASSERT_TRUE(other.SetCharacterizationFromStream(buffer, length, names));
    Characterization restored = *other.GetCharacterization();
    restored.SetName(original.GetName());
    EXPECT_EQ(restored, original);
    EXPECT_EQ(other.GetModel()->GetValidationState(), Valid);
    EXPECT_TRUE(otherHub.journal.isEmpty());
    std::free(buffer);
}

INSTANTIATE_TEST_SUITE_P(ByteOrders, StreamRoundTrip, testing::Values(false, true),
                         [](const testing::TestParamInfo<bool>& info) {
                             return std::string(info.param ? "BigEndian" : "LittleEndian");
                         });

TEST_F(Panel, ARejectedStreamChangesNothingAndSaysSoOnce)
{
    MapAll();
    void* buffer = nullptr;
    int32_t length = 0;
    QStringList names;
    ASSERT_TRUE(tool->GetCharacterizationStream(buffer, length, names, false));
    ASSERT_TRUE(tool->CreateCharacterization(QStringLiteral("Target")));
    model->AssignBone(15, QStringLiteral("rig:Head"));
    const Characterization before = *tool->GetCharacterization();

    const int32_t cuts[] = {0, 7, 8, 855, length - 17, length - 1};
    for (int32_t cut : cuts)
    {
        ModalAnswerer answerer(QMessageBox::Ok);
        EXPECT_FALSE(tool->SetCharacterizationFromStream(buffer, cut, names)) << cut;
        EXPECT_EQ(answerer.Count(), 1) << cut;
        EXPECT_EQ(answerer.titles.value(0), QStringLiteral("Load Error"));
    }
    QStringList shifted = names;
    shifted.move(0, 211); // node 0 is unmapped: the names no longer line up with the used nodes
    ModalAnswerer answerer(QMessageBox::Ok);
    EXPECT_FALSE(tool->SetCharacterizationFromStream(buffer, length, shifted));
    EXPECT_FALSE(tool->SetCharacterizationFromStream(buffer, length, names.mid(0, 100)));
    static_cast<unsigned char*>(buffer)[0] ^= 0xff;
    EXPECT_FALSE(tool->SetCharacterizationFromStream(buffer, length, names));
    EXPECT_EQ(answerer.Count(), 3);
    EXPECT_TRUE(answerer.texts.value(2).contains(QStringLiteral("not a characterization file")));

    EXPECT_EQ(*tool->GetCharacterization(), before);
    std::free(buffer);
}

int gWarnings = 0;
void CountWarnings(QtMsgType type, const QMessageLogContext&, const QString&)
{
    gWarnings += type == QtWarningMsg ? 1 : 0;
}

TEST(CharacterToolBatch, RefusesWithoutOpeningABox)
{
    TestHub hub;
    QWidget host;
    CharacterTool tool(true, "", "", &host, &hub);
    EXPECT_TRUE(tool.IsBatchMode());
    ModalAnswerer answerer(QMessageBox::Ok);
    const QtMessageHandler previous = qInstallMessageHandler(CountWarnings);
    gWarnings = 0;
    EXPECT_FALSE(tool.DoToggleEditMode(true));
    EXPECT_TRUE(tool.DoDelete(true)); // no one to ask
    qInstallMessageHandler(previous);
    EXPECT_EQ(gWarnings, 2);
    EXPECT_EQ(answerer.Count(), 0);
}

} // namespace

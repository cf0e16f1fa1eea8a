#include <cstdint>
#include <cstring>

#include <QSignalSpy>
#include <QWidget>

#include <gtest/gtest.h>

#include <zelkin/CharacterTool.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/IDCCHub.h>

#include "TestHub.h"
#include "TestScenes.h"

namespace {

const QString kDefault = QStringLiteral("New Characterization");

// Hosts are compiled against the virtual table: the index of each operation in it is fixed.
template <typename Member>
std::ptrdiff_t VirtualIndex(Member member)
{
    struct
    {
        std::uintptr_t pointer; // a virtual member's pointer is 1 + its byte offset in the table
        std::ptrdiff_t adjustment;
    } raw;
    static_assert(sizeof(member) == sizeof(raw), "two-word member pointers");
    std::memcpy(&raw, &member, sizeof(raw));
    return static_cast<std::ptrdiff_t>((raw.pointer - 1) / sizeof(void*));
}

struct SlotProbe : TestHub
{
    static std::ptrdiff_t LastQObjectSlot() { return VirtualIndex(&SlotProbe::disconnectNotify); }
};

TEST(DCCHubInterface, VirtualOperationsFollowQObjectsInTheirFixedOrder)
{
    const std::ptrdiff_t base = SlotProbe::LastQObjectSlot();
    const std::ptrdiff_t indices[] = {
        VirtualIndex(&IDCCHub::GetSelectedBones),
        VirtualIndex(&IDCCHub::SelectBones),
        VirtualIndex(&IDCCHub::GetSceneBones),
        VirtualIndex(&IDCCHub::BoneExists),
        VirtualIndex(&IDCCHub::GetBoneReferenceGeometry),
        VirtualIndex(&IDCCHub::AttachHostBone),
        VirtualIndex(&IDCCHub::DetachHostBone),
        VirtualIndex(&IDCCHub::GetBoneParent),
        VirtualIndex(&IDCCHub::CreateDccCharacter),
        VirtualIndex(&IDCCHub::CharacterizationDCCValidate),
        VirtualIndex(&IDCCHub::CheckSelectedNodeForRollBone),
        VirtualIndex(&IDCCHub::UpdateDccCharacterSkeleton),
        VirtualIndex(&IDCCHub::UpdateDccDeleteCharacter),
        VirtualIndex(&IDCCHub::UpdateDccCharacterUI),
        VirtualIndex(&IDCCHub::RegisterCharacterizationNode),
        VirtualIndex(&IDCCHub::UnregisterCharacterizationNode),
        VirtualIndex(&IDCCHub::UpdateDccBoneInvertedState),
        VirtualIndex(&IDCCHub::PostCharacterUpdate),
        VirtualIndex(&IDCCHub::SanitizeBoneName),
        VirtualIndex(&IDCCHub::SetCharacterState),
    };
    for (std::ptrdiff_t i = 0; i < 20; ++i)
        EXPECT_EQ(indices[i], base + 1 + i) << "operation " << i + 1;
}

TEST(DCCHubWithoutTool, EveryOperationDoesNothing)
{
    TestHub hub;
    hub.AddBone(QStringLiteral("b"), QString(), 0, 0, 0);
    QString bone = QStringLiteral("untouched");
    bool inverted = true;
    QList<QString> names {QStringLiteral("stale")};
    EXPECT_FALSE(hub.AssignCharacterBone(kDefault, 1, QStringLiteral("b"), true));
    EXPECT_FALSE(hub.GetNodeAssignedToCharacterBone(kDefault, 1, bone));
    EXPECT_EQ(bone, QStringLiteral("untouched"));
    EXPECT_FALSE(hub.GetBoneInvertedState(kDefault, IDCCHub::LeftKnee, inverted));
    EXPECT_FALSE(inverted);
    EXPECT_FALSE(hub.SetBoneInvertedState(kDefault, IDCCHub::LeftKnee, true));
    hub.Lock(true);
    EXPECT_FALSE(hub.IsLocked());
    hub.MirrorMatching();
    EXPECT_FALSE(hub.IsMirrorToggle());
    EXPECT_FALSE(hub.GetCharacterList(names));
    EXPECT_TRUE(names.isEmpty());
    hub.UpdateCharacterList({QStringLiteral("A")});
    EXPECT_FALSE(hub.SetCurrentCharacter(kDefault));
    EXPECT_FALSE(hub.IsCharacterCreated(kDefault));
    EXPECT_FALSE(hub.DeleteCharacter(kDefault, false));
    EXPECT_FALSE(hub.DeleteAllCharacters(false));
    hub.DeleteCurrentCharacter();
    EXPECT_TRUE(hub.GetCurrentCharacterNodeName().isEmpty());
    EXPECT_TRUE(hub.GetDefaultCharacterNodeName().isEmpty());
    EXPECT_EQ(hub.CurrentCharacterizationState(true), IDCCHub::CharacterizationInvalid);
    EXPECT_TRUE(hub.journal.isEmpty());

    // An empty panel (no parent) has no model: the hub stays as lost as before.
    CharacterTool empty(false, "", "", nullptr, &hub);
    hub.setCharacterTool(&empty);
    EXPECT_FALSE(hub.IsCharacterCreated(kDefault));
    EXPECT_FALSE(hub.AssignCharacterBone(kDefault, 1, QStringLiteral("b"), false));
    hub.setCharacterTool(nullptr);
}

struct HubWithPanel : testing::Test
{
    void SetUp() override
    {
        mapping = testscenes::AddHandMadeTPose(hub);
        tool = new CharacterTool(false, "", "", &host, &hub);
        model = tool->GetModel();
        tool->SetDeleteConfirmation(false);
        hub.journal.clear();
    }

    void MapAll()
    {
        for (const auto& [nodeId, bone] : mapping)
            model->AssignBone(nodeId, bone);
        hub.journal.clear();
    }

    TestHub hub;
    QWidget host;
    CharacterTool* tool = nullptr;
    CharacterizationModel* model = nullptr;
    std::vector<std::pair<int, QString>> mapping;
};

TEST_F(HubWithPanel, AssignCharacterBoneTouchesOnlyTheNamedCharacter)
{
    EXPECT_EQ(hub.GetCharacterTool(), tool);
    EXPECT_FALSE(hub.AssignCharacterBone(QStringLiteral("Nobody"), 15, QStringLiteral("rig:Head"), true));
    EXPECT_FALSE(hub.AssignCharacterBone(QString(), 15, QStringLiteral("rig:Head"), false));
    EXPECT_FALSE(hub.AssignCharacterBone(kDefault, 212, QStringLiteral("rig:Head"), false));
    EXPECT_TRUE(hub.journal.isEmpty());

    // Through the model's own assignment: the views hear of it at once, locked or not.
    QSignalSpy changes(model, &CharacterizationModel::ModelChanged);
    EXPECT_TRUE(hub.AssignCharacterBone(kDefault, 15, QStringLiteral("rig:Head"), false));
    tool->GetCharacterization()->SetLocked(true);
    EXPECT_TRUE(hub.AssignCharacterBone(kDefault, 15, QStringLiteral("rig:Neck"), false));
    EXPECT_EQ(changes.count(), 2);
    EXPECT_EQ(model->GetNodeState(15), 1);
    EXPECT_EQ(hub.journal, QStringList({"Attach:rig:Head", "Skeleton:|rig:Head|" + kDefault + "|15|0",
                                        "Detach:rig:Head", "Attach:rig:Neck",
                                        "Skeleton:rig:Head|rig:Neck|" + kDefault + "|15|0"}));
    QString bone;
    EXPECT_TRUE(hub.GetNodeAssignedToCharacterBone(kDefault, 15, bone));
    EXPECT_EQ(bone, QStringLiteral("rig:Neck"));

    hub.journal.clear();
    EXPECT_TRUE(hub.AssignCharacterBone(kDefault, 15, QString(), false));
    EXPECT_EQ(hub.journal, QStringList({"Detach:rig:Neck", "Skeleton:rig:Neck||" + kDefault + "|15|0"}));
    EXPECT_TRUE(hub.GetNodeAssignedToCharacterBone(kDefault, 15, bone));
    EXPECT_TRUE(bone.isEmpty());
    EXPECT_EQ(model->GetNodeState(15), 0);

    // Another characterization changes without disturbing the current one's findings or its views.
    model->CreateCharacterization(QStringLiteral("B"));
    model->SetCurrentCharacterization(0);
    changes.clear();
    EXPECT_TRUE(hub.AssignCharacterBone(QStringLiteral("B"), 15, QStringLiteral("rig:Head"), false));
    EXPECT_EQ(model->FindCharacterization(QStringLiteral("B"))->GetBone(15), QStringLiteral("rig:Head"));
    EXPECT_EQ(changes.count(), 0);
    EXPECT_EQ(model->GetNodeState(15), 0);
}

TEST_F(HubWithPanel, InvertedStatesAreTheFourLimbFlags)
{
    model->CreateCharacterization(QStringLiteral("B"));
    EXPECT_TRUE(hub.SetBoneInvertedState(kDefault, IDCCHub::RightElbow, true));
    bool inverted = false;
    EXPECT_TRUE(hub.GetBoneInvertedState(kDefault, IDCCHub::RightElbow, inverted));
    EXPECT_TRUE(inverted);
    EXPECT_TRUE(hub.GetBoneInvertedState(QStringLiteral("B"), IDCCHub::RightElbow, inverted));
    EXPECT_FALSE(inverted);
    EXPECT_TRUE(model->FindCharacterization(kDefault)->IsInverted(ZELLimbRightArm));
    EXPECT_FALSE(hub.GetBoneInvertedState(kDefault, static_cast<IDCCHub::InvertibleBone>(4), inverted));
    EXPECT_FALSE(hub.SetBoneInvertedState(QStringLiteral("C"), IDCCHub::LeftKnee, true));

    // Flipped from the panel, the host hears of it.
    ASSERT_TRUE(model->SetInverted(IDCCHub::LeftKnee, true));
    EXPECT_EQ(hub.journal, QStringList({"Register:B", "Create:B", "Inverted:0|1"}));
    EXPECT_TRUE(model->GetCurrentCharacterization()->IsInverted(ZELLimbLeftLeg));
}

TEST_F(HubWithPanel, StateMovesBetweenInvalidUnlockedAndLocked)
{
    EXPECT_EQ(hub.CurrentCharacterizationState(true), IDCCHub::CharacterizationInvalid);
    MapAll();
    EXPECT_EQ(hub.CurrentCharacterizationState(false), IDCCHub::CharacterizationUnlocked);
    hub.Lock(true);
    EXPECT_TRUE(hub.IsLocked());
    EXPECT_EQ(hub.CurrentCharacterizationState(true), IDCCHub::CharacterizationLocked);
    hub.Lock(false);
    EXPECT_EQ(hub.CurrentCharacterizationState(true), IDCCHub::CharacterizationUnlocked);

    hub.MirrorMatching();
    EXPECT_TRUE(hub.IsMirrorToggle());
    hub.MirrorMatching();
    EXPECT_FALSE(hub.IsMirrorToggle());
}

TEST_F(HubWithPanel, CharacterListFollowsTheHost)
{
    // The panel's working characterization is no character of the host: it goes by the host's default name.
    EXPECT_EQ(hub.GetDefaultCharacterNodeName(), kDefault + QStringLiteral(" 2"));
    EXPECT_EQ(hub.GetCurrentCharacterNodeName(), hub.GetDefaultCharacterNodeName());

    hub.UpdateCharacterList({QStringLiteral("B"), QStringLiteral("A"), QStringLiteral("B")});
    QList<QString> names;
    ASSERT_TRUE(hub.GetCharacterList(names));
    EXPECT_EQ(names, QList<QString>({"B", "A"}));
    EXPECT_EQ(hub.GetCurrentCharacterNodeName(), QStringLiteral("B"));
    EXPECT_EQ(hub.journal, QStringList({"Unregister:" + kDefault, "Register:B", "Register:A"}));

    EXPECT_TRUE(hub.SetCurrentCharacter(QStringLiteral("A")));
    EXPECT_FALSE(hub.SetCurrentCharacter(QStringLiteral("a")));
    EXPECT_EQ(tool->GetCharacterization()->GetName(), QStringLiteral("A"));
    EXPECT_EQ(tool->windowTitle(), QStringLiteral("A"));
}

TEST_F(HubWithPanel, DeletingGoesThroughThePanel)
{
    model->CreateCharacterization(QStringLiteral("A"));
    model->CreateCharacterization(QStringLiteral("B"));
    hub.journal.clear();
    EXPECT_TRUE(hub.DeleteCharacter(QStringLiteral("A"), true));
    EXPECT_FALSE(hub.DeleteCharacter(QStringLiteral("A"), true));
    EXPECT_EQ(hub.journal, QStringList({"Unregister:A", "Delete:A"}));
    EXPECT_EQ(tool->GetCharacterization()->GetName(), kDefault);

    EXPECT_TRUE(hub.DeleteAllCharacters(false));
    QList<QString> names;
    hub.GetCharacterList(names);
    EXPECT_EQ(names, QList<QString>({kDefault}));
    EXPECT_EQ(tool->GetCharacterization()->AssignedCount(), 0);

    hub.DeleteCurrentCharacter();
    EXPECT_EQ(hub.journal.filter("Delete:").size(), 4);
}

} // namespace

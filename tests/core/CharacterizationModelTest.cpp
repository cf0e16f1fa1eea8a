#include <functional>

#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/CharacterizationModel.h>

#include "TestHub.h"
#include "TestScenes.h"

namespace {

const QString kDefault = QStringLiteral("New Characterization");

struct HandMadeModel : testing::Test
{
    void SetUp() override
    {
        mapping = testscenes::AddHandMadeTPose(hub);
        for (const auto& [nodeId, bone] : mapping)
            ASSERT_TRUE(model.AssignBone(nodeId, bone));
        hub.journal.clear();
    }

    int Node(const char* name) const { return BoneCatalogue::NodeId(name); }

    TestHub hub;
    CharacterizationModel model {&hub};
    std::vector<std::pair<int, QString>> mapping;
};

TEST(CharacterizationModelMeta, SignalsAndSlotsKeepTheirInvocationIndices)
{
    const QMetaObject& meta = CharacterizationModel::staticMetaObject;
    const char* expected[] = {"ModelChanged",   "EditedPartChanged",  "RenameBone",
                              "RemoveBone",     "RemoveCharacterizationNode", "RenameCharacterization",
                              "ClearAll",       "AutoMatch",          "SetCurrentCharacterization",
                              "SetEditMode",    "SetEditMode",        "SetMirrorMode",
                              "CreateNewCharacterization", "CheckGeometry"};
    for (int i = 0; i < 14; ++i)
        EXPECT_EQ(meta.method(meta.methodOffset() + i).name(), QByteArray(expected[i])) << i;
    EXPECT_EQ(meta.method(meta.methodOffset() + 9).parameterCount(), 2);
    EXPECT_EQ(meta.method(meta.methodOffset() + 10).parameterCount(), 1);
    EXPECT_EQ(meta.method(meta.methodOffset() + 1).parameterCount(), 3);
}

TEST(CharacterizationModelTimer, RunsOnlyWithAHubAndPicksUpHostSideAssignments)
{
    CharacterizationModel alone(nullptr);
    EXPECT_FALSE(alone.GetGeometryTimer()->isActive());
    EXPECT_EQ(alone.GetLastOperationText(), QStringLiteral("No previous operation."));

    TestHub hub;
    hub.AddBone(QStringLiteral("head"), QString(), 0, 160, 0);
    CharacterizationModel model(&hub);
    QTimer* timer = model.GetGeometryTimer();
    EXPECT_EQ(timer->parent(), &model);
    EXPECT_TRUE(timer->isActive());
    EXPECT_FALSE(timer->isSingleShot());
    EXPECT_EQ(timer->interval(), 1000);

    // The host maps a bone on its own: no validation happens until the next geometry check notices it.
    model.GetCurrentCharacterization()->SetBone(15, QStringLiteral("head"));
    QSignalSpy spy(&model, &CharacterizationModel::ModelChanged);
    EXPECT_TRUE(QTest::qWaitFor([&] { return spy.count() > 0; }, 2500));
    EXPECT_EQ(model.GetNodeState(15), 1);
    EXPECT_EQ(model.GetValidationMessage(), "Missing required bones.");
}

TEST_F(HandMadeModel, AssignmentAndClearingTalkToTheHostInOrder)
{
    const int arm = Node("LeftArm");
    ASSERT_TRUE(model.AssignBone(arm, QStringLiteral("rig:LeftForeArm")));
    EXPECT_EQ(hub.journal, QStringList({"Detach:rig:LeftArm", "Attach:rig:LeftForeArm",
                                        "Skeleton:rig:LeftArm|rig:LeftForeArm|" + kDefault + "|9|0"}));
    EXPECT_EQ(model.GetLastOperationText(), QStringLiteral("Assigned node: rig:LeftForeArm"));

    hub.journal.clear();
    ASSERT_TRUE(model.ClearNode(arm));
    EXPECT_EQ(hub.journal, QStringList({"Detach:rig:LeftForeArm", "Skeleton:rig:LeftForeArm||" + kDefault + "|9|0"}));
    EXPECT_EQ(model.GetLastOperationText(), QStringLiteral("Unregistered node: rig:LeftForeArm"));
    EXPECT_EQ(model.GetNodeState(arm), 0);
    EXPECT_TRUE(model.GetAssignedBone(arm).isEmpty());

    ASSERT_TRUE(model.ClearNodes({Node("LeftHand"), Node("Head")}));
    EXPECT_EQ(model.GetLastOperationText(), QStringLiteral("Cleared one or more nodes."));
    EXPECT_EQ(model.GetCurrentCharacterization()->AssignedCount(), static_cast<int>(mapping.size()) - 3);

    hub.journal.clear();
    model.ClearAll();
    EXPECT_EQ(model.GetLastOperationText(), QStringLiteral("Cleared all nodes."));
    EXPECT_EQ(hub.journal.filter(QStringLiteral("Skeleton:")).size(), 212);
    EXPECT_EQ(hub.journal.filter(QStringLiteral("Detach:")).size(), static_cast<int>(mapping.size()) - 3);
    EXPECT_EQ(model.GetCurrentCharacterization()->AssignedCount(), 0);
}

TEST_F(HandMadeModel, ALockedCharacterizationTakesTheModelsOwnEditsButNoHostRename)
{
    model.SetEditMode(true);
    ASSERT_TRUE(model.IsLocked());
    QSignalSpy changes(&model, &CharacterizationModel::ModelChanged);
    EXPECT_TRUE(model.ClearNode(Node("Head")));
    EXPECT_TRUE(model.AssignBone(Node("Neck1"), QStringLiteral("rig:Head")));
    EXPECT_TRUE(model.SetInverted(0, true));
    EXPECT_EQ(hub.journal, QStringList({"Detach:rig:Head", "Skeleton:rig:Head||" + kDefault + "|15|0",
                                        "Attach:rig:Head", "Skeleton:|rig:Head|" + kDefault + "|32|0",
                                        "Inverted:0|1"}));
    // The locked branch of the update only announces the change: the findings stay those of the locking.
    EXPECT_EQ(changes.count(), 3);
    EXPECT_EQ(model.GetValidationState(), Valid);
    EXPECT_TRUE(model.IsLocked());

    const Characterization before = *model.GetCurrentCharacterization();
    hub.RenameSceneBone(QStringLiteral("rig:Hips"), QStringLiteral("rig:Pelvis"));
    EXPECT_EQ(*model.GetCurrentCharacterization(), before);

    model.ClearAll();
    EXPECT_EQ(model.GetCurrentCharacterization()->AssignedCount(), 0);
    EXPECT_EQ(model.GetLastOperationText(), QStringLiteral("Cleared all nodes."));
    EXPECT_TRUE(model.IsLocked());
}

TEST_F(HandMadeModel, HostRenamesFollowTheCurrentCharacterizationOnly)
{
    model.AssignBone(Node("Neck1"), QStringLiteral("rig:Neck")); // one bone on two nodes
    auto current = model.GetCurrentCharacterization();
    auto other = model.CreateCharacterization(QStringLiteral("Other"));
    other->SetBone(Node("Neck"), QStringLiteral("rig:Neck"));
    model.SetCurrentCharacterization(model.IndexOf(current.get()));

    hub.RenameSceneBone(QStringLiteral("rig:Neck"), QStringLiteral("rig:NeckRenamed"));
    EXPECT_EQ(current->GetBone(Node("Neck")), QStringLiteral("rig:NeckRenamed"));
    EXPECT_EQ(current->GetBone(Node("Neck1")), QStringLiteral("rig:NeckRenamed"));
    EXPECT_EQ(other->GetBone(Node("Neck")), QStringLiteral("rig:Neck"));
    EXPECT_TRUE(model.GetUnsyncNodes().empty());

    model.SetCurrentCharacterization(model.IndexOf(other.get()));
    EXPECT_EQ(model.GetUnsyncNodes(), std::vector<int>({Node("Neck")}));
}

TEST_F(HandMadeModel, EmptyNamesInAHostRenameFollowTheSameRule)
{
    QSignalSpy changes(&model, &CharacterizationModel::ModelChanged);
    // No node holds an empty bone name, so nothing is renamed; the update runs as for any name.
    emit hub.NameChanged(QStringLiteral("rig:Ghost"), QString());
    EXPECT_EQ(model.GetCurrentCharacterization()->FindNode(QStringLiteral("rig:Ghost")), -1);
    EXPECT_EQ(model.GetCurrentCharacterization()->AssignedCount(), static_cast<int>(mapping.size()));
    EXPECT_EQ(changes.count(), 1);

    // A bone renamed to nothing leaves its node with an empty name, which is no bone.
    emit hub.NameChanged(QString(), QStringLiteral("rig:Head"));
    EXPECT_FALSE(model.GetCurrentCharacterization()->IsAssigned(Node("Head")));
    EXPECT_EQ(changes.count(), 2);
    EXPECT_EQ(model.GetValidationMessage(), "Missing required bones.");
}

// The name of the current characterization each time the model announces a change.
QStringList CurrentAtEachChange(CharacterizationModel& model, const std::function<void()>& action)
{
    QStringList names;
    const QMetaObject::Connection connection = QObject::connect(&model, &CharacterizationModel::ModelChanged, [&] {
        const auto current = model.GetCurrentCharacterization();
        names.append(current ? current->GetName() : QStringLiteral("(none)"));
    });
    action();
    QObject::disconnect(connection);
    return names;
}

TEST_F(HandMadeModel, HostRemovalsVisitEveryCharacterizationInTurnAndUnlock)
{
    auto current = model.GetCurrentCharacterization();
    auto other = model.CreateCharacterization(QStringLiteral("Other"));
    other->SetBone(Node("Head"), QStringLiteral("rig:Head"));
    other->SetLocked(true);
    auto without = model.CreateCharacterization(QStringLiteral("Without"));
    without->SetLocked(true);
    model.SetCurrentCharacterization(model.IndexOf(current.get()));
    model.SetEditedPart(Node("LeftArm"), false);
    hub.journal.clear();

    // Each is current while its nodes let go of the bone and its update runs; the user's one comes back last.
    const QStringList visited = CurrentAtEachChange(model, [&] { hub.RemoveSceneBone(QStringLiteral("rig:Head")); });
    EXPECT_EQ(visited, QStringList({kDefault, "Other", "Without", kDefault}));
    EXPECT_FALSE(current->IsAssigned(Node("Head")));
    EXPECT_FALSE(other->IsAssigned(Node("Head")));
    EXPECT_FALSE(other->IsLocked());
    EXPECT_TRUE(without->IsLocked()); // it held no such bone
    EXPECT_EQ(model.GetCurrentCharacterization(), current);
    EXPECT_EQ(model.GetEditedPart(), Node("LeftArm"));
    EXPECT_EQ(hub.journal, QStringList({"Detach:rig:Head", "Skeleton:rig:Head||" + kDefault + "|15|1",
                                        "Detach:rig:Head", "Skeleton:rig:Head||Other|15|1"}));
    EXPECT_EQ(model.GetValidationMessage(), "Missing required bones.");
    EXPECT_EQ(model.GetNodeState(Node("Head")), 0);
    EXPECT_EQ(model.GetNodeState(Node("LeftArm")), 1);

    // A locked current one, visited last, still shows its own findings afterwards.
    without->SetBone(Node("LeftArm"), QStringLiteral("rig:LeftArm"));
    model.SetCurrentCharacterization(model.IndexOf(without.get()));
    ASSERT_EQ(model.GetNodeState(Node("LeftArm")), 1);
    hub.RemoveSceneBone(QStringLiteral("rig:Neck"));
    EXPECT_EQ(model.GetCurrentCharacterization(), without);
    EXPECT_EQ(model.GetNodeState(Node("LeftArm")), 1);
}

TEST_F(HandMadeModel, CharacterizationNodesFollowTheHost)
{
    model.CreateCharacterization(QStringLiteral("A"));
    model.CreateCharacterization(QStringLiteral("B"));
    model.SetCurrentCharacterization(model.IndexOf(QStringLiteral("A")));
    emit hub.CharacterizationNameChanged(QStringLiteral("A2"), QStringLiteral("A"));
    EXPECT_EQ(model.GetCharacterizationNames(), QStringList({kDefault, "A2", "B"}));

    // A dropped characterization lets go of its bones before the host drops its object.
    QStringList detached;
    for (const QString& bone : model.FindCharacterization(kDefault)->GetBoneNames())
    {
        if (!bone.isEmpty())
            detached.append("Detach:" + bone);
    }
    ASSERT_FALSE(detached.isEmpty());
    hub.journal.clear();
    ASSERT_TRUE(model.AssignBone(Node("Head"), QStringLiteral("rig:Head")));
    hub.journal.clear();
    // The removed one is current while it goes; the one before it is current again afterwards, with its findings.
    EXPECT_EQ(CurrentAtEachChange(model, [&] { emit hub.CharacterizationNodeRemoved(QStringLiteral("B")); }),
              QStringList({"B", "A2"}));
    EXPECT_EQ(model.GetCurrentCharacterization()->GetName(), QStringLiteral("A2"));
    EXPECT_EQ(model.GetNodeState(Node("Head")), 1);
    EXPECT_EQ(model.GetValidationMessage(), "Missing required bones.");
    emit hub.CharacterizationNodeRemoved(QStringLiteral("A2"));
    EXPECT_EQ(model.GetCurrentCharacterization()->GetName(), kDefault);
    emit hub.CharacterizationNodeRemoved(kDefault);
    ASSERT_EQ(model.GetCharacterizations().size(), 1u);
    EXPECT_EQ(model.GetCurrentCharacterization()->GetName(), kDefault);
    EXPECT_EQ(model.GetCurrentCharacterization()->AssignedCount(), 0);
    EXPECT_EQ(hub.journal, QStringList({"Unregister:B", "UI", "Detach:rig:Head", "Unregister:A2", "UI"}) + detached +
                               QStringList({"Unregister:" + kDefault, "Register:" + kDefault, "Create:" + kDefault,
                                            "UI"}));
}

TEST_F(HandMadeModel, TheLastOperationTextBelongsToTheCurrentCharacterization)
{
    ASSERT_TRUE(model.ClearNode(Node("Head")));
    const auto first = model.GetCurrentCharacterization();
    EXPECT_EQ(model.GetLastOperationText(), QStringLiteral("Unregistered node: rig:Head"));
    model.CreateCharacterization(QStringLiteral("B"));
    EXPECT_EQ(model.GetLastOperationText(), QStringLiteral("No previous operation."));
    ASSERT_TRUE(model.AssignBone(Node("Head"), QStringLiteral("rig:Head")));
    EXPECT_EQ(model.GetLastOperationText(), QStringLiteral("Assigned node: rig:Head"));

    model.SetCurrentCharacterization(model.IndexOf(first.get()));
    EXPECT_EQ(model.GetLastOperationText(), QStringLiteral("Unregistered node: rig:Head"));
    // What the host does to another characterization is that one's.
    ASSERT_TRUE(model.AssignCharacterizationBone(QStringLiteral("B"), Node("Neck"), QStringLiteral("rig:Neck")));
    EXPECT_EQ(model.GetLastOperationText(), QStringLiteral("Unregistered node: rig:Head"));
    model.SetCurrentCharacterization(model.IndexOf(QStringLiteral("B")));
    EXPECT_EQ(model.GetLastOperationText(), QStringLiteral("Assigned node: rig:Neck"));
    model.ClearAll();
    EXPECT_EQ(model.GetLastOperationText(), QStringLiteral("Cleared all nodes."));

    // A characterization that goes and comes back by the same name starts afresh.
    emit hub.CharacterizationNodeRemoved(QStringLiteral("B"));
    model.CreateCharacterization(QStringLiteral("B"));
    EXPECT_EQ(model.GetLastOperationText(), QStringLiteral("No previous operation."));
}

TEST_F(HandMadeModel, EditedPartAndModesAreAnnounced)
{
    QSignalSpy parts(&model, &CharacterizationModel::EditedPartChanged);
    model.SetEditedPart(Node("LeftArm"), true);
    EXPECT_EQ(hub.selection, QStringList({"rig:LeftArm"}));
    model.SetEditedPart(Node("Neck1"), true); // unassigned: the host selection stays
    EXPECT_EQ(hub.selection, QStringList({"rig:LeftArm"}));
    model.SetEditMode(true);
    model.SetEditMode(false);
    ASSERT_EQ(parts.count(), 4);
    EXPECT_EQ(parts[0], QVariantList({-1, 9, true}));
    EXPECT_EQ(parts[1], QVariantList({9, 32, true}));
    EXPECT_EQ(parts[2], QVariantList({32, 32, false}));
    EXPECT_EQ(parts[3], QVariantList({32, 32, true}));

    model.SetCurrentCharacterization(model.IndexOf(model.CreateCharacterization("B").get()));
    EXPECT_EQ(model.GetEditedPart(), CharacterizationModel::NoPart);
    model.SetMirrorMode(true);
    EXPECT_TRUE(model.IsMirrorMode());
}

// Each kind of finding, reached through the model from a clean hand-made T-pose.
struct Finding
{
    const char* name;
    std::function<void(HandMadeModel&)> change;
    ValidationState state;
    std::string message;
    std::vector<std::pair<int, int>> marks;
    std::string nodeMessage; // of the first marked node; a trailing "..." compares the beginning only
};

class HandMadeFindings : public HandMadeModel, public testing::WithParamInterface<Finding>
{
};

TEST_F(HandMadeModel, IsValidAsMapped)
{
    EXPECT_EQ(model.GetValidationState(), Valid) << model.GetValidationMessage();
    for (const auto& entry : mapping)
        EXPECT_EQ(model.GetNodeState(entry.first), 1);
    EXPECT_EQ(model.GetNodeState(Node("Neck1")), 0);
}

TEST_P(HandMadeFindings, ReachTheModelWithTheirMarks)
{
    const Finding& finding = GetParam();
    finding.change(*this);
    model.CheckGeometry();
    EXPECT_EQ(model.GetValidationState(), finding.state);
    EXPECT_EQ(model.GetValidationMessage(), finding.message);
    for (const auto& [nodeId, mark] : finding.marks)
        EXPECT_EQ(model.GetNodeState(nodeId), mark) << BoneCatalogue::NodeName(nodeId);
    if (finding.marks.empty())
        return;
    const std::string message = model.GetNodeMessage(finding.marks.front().first);
    const std::string& expected = finding.nodeMessage;
    const size_t dots = expected.rfind("...");
    if (dots != std::string::npos && dots + 3 == expected.size())
        EXPECT_EQ(message.substr(0, dots), expected.substr(0, dots));
    else
        EXPECT_EQ(message, expected);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, HandMadeFindings,
    testing::Values(
        Finding {"MissingHead", [](HandMadeModel& t) { t.model.ClearNode(15); }, Error, "Missing required bones.",
                 {{15, 0}, {1, 1}}, ""},
        Finding {"SpineHole", [](HandMadeModel& t) { t.model.AssignBone(24, "rig:Spine1"); t.model.ClearNode(23); },
                 Error, "One or more nodes are missing in the spine", {{24, 3}, {23, 0}},
                 "One or more nodes are missing in the spine. Node Spine2 is set but not node Spine1"},
        Finding {"MixedRoll",
                 [](HandMadeModel& t) {
                     t.hub.AddBone("rig:twist", "", 30, 145, 0);
                     t.hub.AddBone("rig:leaf", "", 35, 145, 0);
                     t.model.AssignBones({{45, "rig:twist"}, {192, "rig:leaf"}});
                 },
                 Error, "\n Mixed roll bone at LeftArmRoll.", {{45, 3}, {176, 3}, {192, 1}},
                 "Mixing In-Line and Leaf roll bone is not allowed."},
        Finding {"HipsTurned", [](HandMadeModel& t) { t.hub.MoveBone("rig:LeftUpLeg", 10, 95, 5); }, Warning,
                 "The hips don't seem to be facing the positive direction of the Z axis.", {{2, 2}, {5, 2}},
                 "The hips don't seem to be facing the positive direction of the Z axis. There is a difference of "
                 "14.03..."},
        Finding {"RightArmRaised", [](HandMadeModel& t) { t.hub.MoveBone("rig:RightHand", -68, 198, 0); }, Warning,
                 "The right arm doesn't seem to be parallel to the X axis.", {{14, 2}, {12, 2}, {9, 1}},
                 "The right arm doesn't seem to be parallel to the X axis. There is a difference of 45.00..."},
        Finding {"WristOnElbow", [](HandMadeModel& t) { t.hub.MoveBone("rig:LeftHand", 43, 145, 0); }, Error,
                 "Some nodes are at the same position.", {{10, 3}, {11, 3}},
                 "Node LeftForeArm is at the same position as node LeftHand"},
        Finding {"SpineOnHips", [](HandMadeModel& t) { t.hub.MoveBone("rig:Spine", 0, 100, 0); }, Warning,
                 "Some nodes are almost at the same position.", {{1, 2}, {8, 2}},
                 "Node Hips is at the same position as node Spine"},
        Finding {"HostFinding",
                 [](HandMadeModel& t) {
                     t.hub.hostValidation = [](ValidationLog& log) {
                         log.LogError(15, "Head is not skinned");
                         log.LogError(32, "never shown: unassigned");
                         log.SetValidationState(Error, "Host says no.");
                     };
                 },
                 Error, "Host says no.", {{15, 3}, {32, 0}}, "Head is not skinned"}),
    [](const testing::TestParamInfo<Finding>& info) { return std::string(info.param.name); });

TEST(CharacterizationModelMixamo, ValidatesCleanWhenMappedByNameAndAutoMatchAgrees)
{
    TestHub hub;
    QString error;
    ASSERT_TRUE(testscenes::LoadSkeleton(QStringLiteral(ZELKIN_CORPUS_DIR "/skeletons/mixamo_xbot.glb"), hub, error))
        << error.toStdString();
    QStringList bones;
    hub.GetSceneBones(bones);
    ASSERT_EQ(bones.size(), 65);
    EXPECT_TRUE(hub.GetBoneParent(QStringLiteral("mixamorig:Hips")).isEmpty());
    EXPECT_EQ(hub.GetBoneParent(QStringLiteral("mixamorig:LeftHandThumb2")), QStringLiteral("mixamorig:LeftHandThumb1"));

    CharacterizationModel model(&hub);
    int mapped = 0;
    for (const QString& bone : bones)
    {
        const int nodeId = BoneCatalogue::NodeId(bone.mid(bone.indexOf(':') + 1).toLatin1().constData());
        if (nodeId != BoneCatalogue::NoNode)
            mapped += model.AssignBone(nodeId, bone) ? 1 : 0;
    }
    EXPECT_EQ(mapped, 62);
    EXPECT_EQ(model.GetValidationState(), Valid) << model.GetValidationMessage();
    const Characterization byName = *model.GetCurrentCharacterization();
    const float* hand = byName.GetJointGeometry(11).GetTranslate();
    EXPECT_NEAR(hand[0], 0.713f, 1e-3f);
    EXPECT_NEAR(hand[1], 1.441f, 1e-3f);

    model.CreateNewCharacterization();
    model.AutoMatch();
    EXPECT_EQ(model.GetCurrentCharacterization()->GetBoneNames(), byName.GetBoneNames());
    EXPECT_EQ(model.GetValidationState(), Valid);

    // Drop the left hand 30 degrees below the shoulder line: only the left arm rule speaks up.
    hub.MoveBone(QStringLiteral("mixamorig:LeftHand"), 0.152f + 0.561f * 0.8660254f, 1.441f - 0.561f * 0.5f, -0.055f);
    model.CheckGeometry();
    EXPECT_EQ(model.GetValidationState(), Warning);
    EXPECT_EQ(model.GetValidationMessage(), "The left arm doesn't seem to be parallel to the X axis.");
    EXPECT_EQ(model.GetNodeState(11), 2);
    EXPECT_EQ(model.GetNodeState(9), 2);
    EXPECT_EQ(model.GetNodeState(10), 1);
}

} // namespace

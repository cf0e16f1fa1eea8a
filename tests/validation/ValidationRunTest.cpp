#include <functional>
#include <string>
#include <typeinfo>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>

#include "AtLeastOneBoneValidator.h"
#include "HipsXAxisValidator.h"
#include "HoleValidator.h"
#include "LeftArmsXAxisValidator.h"
#include "PoseCharacter.h"
#include "RequiredBoneValidator.h"
#include "RightArmsXAxisValidator.h"
#include "SameGeometryValidator.h"
#include "ValidationRun.h"

namespace {

const std::string kMixed = "Mixing In-Line and Leaf roll bone is not allowed.";

class ValidationRunTest : public testing::Test
{
protected:
    ValidationRunTest()
    {
        for (int id = 172; id < 212; ++id) // without leaf rolls the T-pose is complete and clean
            flags[id] = 0u;
    }

    ValidationOutcome Run(const std::function<void(ValidationLog&)>& host = {}) const
    {
        const PoseCharacter character(flags.data(), pose);
        return run.Run(flags.data(), character.Get(), host);
    }

    void ExpectMark(const ValidationOutcome& outcome, int id, int mark, const std::string& message)
    {
        EXPECT_EQ(outcome.marks[id], mark) << id;
        EXPECT_EQ(outcome.nodeMessages[id], message) << id;
    }

    const ValidationRun run;
    tpose::Pose pose = tpose::Make();
    tpose::AssignedFlags flags = tpose::AllAssigned();
};

template <typename T>
bool Is(const std::shared_ptr<CharacterizationValidator>& validator)
{
    if (!validator)
        return false;
    const CharacterizationValidator& object = *validator;
    return typeid(object) == typeid(T);
}

void ExpectHoleGroup(const std::shared_ptr<CharacterizationValidator>& validator, const std::string& name, int first,
                     int count)
{
    ASSERT_TRUE(Is<HoleValidator>(validator)) << name;
    const auto& hole = static_cast<const HoleValidator&>(*validator);
    EXPECT_EQ(hole.GroupName(), name);
    ASSERT_EQ(hole.Nodes().size(), static_cast<size_t>(count)) << name;
    for (int i = 0; i < count; ++i)
        EXPECT_EQ(hole.Nodes()[i], first + i) << name;
}

} // namespace

TEST_F(ValidationRunTest, BuildsTheDefaultListInItsFixedOrder)
{
    const auto& list = run.Validators();
    ASSERT_EQ(list.size(), 32u);
    EXPECT_TRUE(Is<AtLeastOneBoneValidator>(list[0]));
    EXPECT_TRUE(Is<RequiredBoneValidator>(list[1]));
    ExpectHoleGroup(list[2], "spine", 23, 9);
    ASSERT_TRUE(Is<HoleValidator>(list[3]));
    EXPECT_EQ(static_cast<const HoleValidator&>(*list[3]).Nodes(),
              (std::vector<int32_t> {20, 32, 33, 34, 35, 36, 37, 38, 39, 40}));
    for (int i = 0; i < BoneCatalogue::ChainCount; ++i)
        ExpectHoleGroup(list[4 + i], BoneCatalogue::Chains()[i].label, BoneCatalogue::Chains()[i].first, 4);
    EXPECT_TRUE(Is<HipsXAxisValidator>(list[28]));
    EXPECT_TRUE(Is<RightArmsXAxisValidator>(list[29]));
    EXPECT_TRUE(Is<LeftArmsXAxisValidator>(list[30]));
    EXPECT_TRUE(Is<SameGeometryValidator>(list[31]));
}

TEST_F(ValidationRunTest, EmptyCharacterizationMissesRequiredBones)
{
    flags = tpose::NoneAssigned();
    const auto hostSaysValid = [](ValidationLog& log) { log.SetValidationState(Valid, std::string()); };
    for (const ValidationOutcome& outcome : {run.Run(flags.data(), nullptr, {}), run.Run(flags.data(), nullptr, hostSaysValid)}) {
        EXPECT_EQ(outcome.state, Error);
        EXPECT_EQ(outcome.message, "Missing required bones.");
        EXPECT_EQ(outcome.marks, (std::array<int32_t, 212> {}));
    }
}

TEST_F(ValidationRunTest, CleanTPoseIsValidAndMarksExactlyTheAssignedNodes)
{
    flags[16] = 0u;
    const ValidationOutcome outcome = Run([](ValidationLog& log) { log.SetValidationState(Valid, "unused"); });
    EXPECT_EQ(outcome.state, Valid);
    EXPECT_TRUE(outcome.message.empty());
    for (int id = 0; id < 212; ++id)
        ExpectMark(outcome, id, (flags[id] & 1u) ? 1 : 0, "");
}

TEST_F(ValidationRunTest, JoinsTheMessagesOfFailingRulesInListOrder)
{
    flags[15] = 0u; // Head
    flags[51] = 0u; // hole at LeftHandThumb3
    flags[75] = 0u; // hole at RightHandThumb3
    std::swap(pose[2], pose[5]);
    pose[11] = pose[10];
    const ValidationOutcome outcome = Run();
    EXPECT_EQ(outcome.state, Error);
    EXPECT_EQ(outcome.message, "Missing required bones.\n"
                               "One or more nodes are missing in the right hand thumb\n"
                               "One or more nodes are missing in the left hand thumb\n"
                               "The hips don't seem to be facing the positive direction of the Z axis.\n"
                               "Some nodes are at the same position.");
    ExpectMark(outcome, 52, 3, "One or more nodes are missing in the left hand thumb. Node LeftHandThumb3 is set "
                               "but not node LeftHandThumb2");
    EXPECT_EQ(outcome.marks[76], 3);
    EXPECT_EQ(outcome.marks[2], 2);
    EXPECT_EQ(outcome.marks[11], 3);
    ExpectMark(outcome, 51, 0, "");
}

TEST_F(ValidationRunTest, MergeNeverDowngradesAnErrorNorMarksUnassignedNodes)
{
    flags[16] = 0u;
    flags[24] = 0u;      // spine hole: error on Spine3 from an earlier log
    pose[20] = pose[15]; // Head on Neck: earlier warnings on both
    const ValidationOutcome outcome = Run([](ValidationLog& log) {
        log.LogError(25, "late error");
        log.LogError(15, "first");
        log.LogError(15, "second");
        log.LogWarning(15, "third");
        log.LogWarning(8, "warned once");
        log.LogWarning(8, "warned twice");
        log.LogError(16, "unassigned");
        log.LogError(-1, "nowhere");
        log.LogError(212, "past the end");
        log.SetValidationState(Warning, "host says");
    });
    EXPECT_EQ(outcome.state, Error);
    EXPECT_EQ(outcome.message, "One or more nodes are missing in the spine\nSome nodes are almost at the same "
                               "position.\nhost says");
    ExpectMark(outcome, 25, 3, "One or more nodes are missing in the spine. Node Spine3 is set but not node Spine2");
    ExpectMark(outcome, 15, 3, "first");
    ExpectMark(outcome, 20, 2, "Node Head is at the same position as node Neck");
    ExpectMark(outcome, 8, 2, "warned twice");
    ExpectMark(outcome, 16, 0, "");
}

TEST_F(ValidationRunTest, HostFindingsCountOnlyWhenItsStateSaysSo)
{
    const ValidationOutcome outcome = Run([](ValidationLog& log) {
        log.LogError(1, "ignored");
        log.SetValidationState(Valid, "also ignored");
    });
    EXPECT_EQ(outcome.state, Valid);
    EXPECT_TRUE(outcome.message.empty());
    EXPECT_EQ(outcome.marks[1], 1);
}

TEST_F(ValidationRunTest, InlineRollMixedWithAnyLeafLevelFailsOnTheLevelOneLeaf)
{
    flags[192] = 1u; // LeafLeftArmRoll3 beside LeftArmRoll
    const ValidationOutcome outcome = Run();
    EXPECT_EQ(outcome.state, Error);
    EXPECT_EQ(outcome.message, "\n Mixed roll bone at LeftArmRoll.");
    ExpectMark(outcome, 45, 3, kMixed);
    ExpectMark(outcome, 176, 3, kMixed); // even though LeafLeftArmRoll1 itself is unassigned
    ExpectMark(outcome, 192, 1, "");
}

TEST_F(ValidationRunTest, RollMixingChecksRightArmButNeverRightForeArm)
{
    flags[179] = 1u; // LeafRightForeArmRoll1 beside RightForeArmRoll: accepted on purpose
    EXPECT_EQ(Run().state, Valid);

    flags = tpose::AllAssigned();
    flags[55] = 0u;
    const ValidationOutcome outcome = Run();
    EXPECT_EQ(outcome.state, Error);
    EXPECT_EQ(outcome.message, "One or more nodes are missing in the left hand index finger"
                               "\n Mixed roll bone at LeftUpLegRoll.\n Mixed roll bone at LeftLegRoll."
                               "\n Mixed roll bone at RightUpLegRoll.\n Mixed roll bone at RightLegRoll."
                               "\n Mixed roll bone at LeftArmRoll.\n Mixed roll bone at LeftForeArmRoll."
                               "\n Mixed roll bone at RightArmRoll.");
    for (int id = 172; id <= 178; ++id)
        ExpectMark(outcome, id, 3, kMixed);
    ExpectMark(outcome, 47, 3, kMixed);
    ExpectMark(outcome, 48, 1, "");
    ExpectMark(outcome, 179, 1, "");
}

TEST_F(ValidationRunTest, MissingCharacterOnlySkipsThePoseRules)
{
    std::swap(pose[2], pose[5]);
    flags[24] = 0u;
    const ValidationOutcome outcome = run.Run(flags.data(), nullptr, {});
    EXPECT_EQ(outcome.state, Error);
    EXPECT_EQ(outcome.message, "One or more nodes are missing in the spine");
}

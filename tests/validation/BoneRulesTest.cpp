#include <initializer_list>

#include <gtest/gtest.h>

#include "AtLeastOneBoneValidator.h"
#include "HoleValidator.h"
#include "RequiredBoneValidator.h"
#include "TPose.h"
#include "ValidationRun.h"

namespace {

tpose::AssignedFlags Assigned(std::initializer_list<int> ids)
{
    tpose::AssignedFlags flags = tpose::NoneAssigned();
    for (int id : ids)
        flags[id] = 1u;
    return flags;
}

ValidationLog Check(const CharacterizationValidator& validator, const tpose::AssignedFlags& flags)
{
    ValidationLog log;
    validator.Validate(flags.data(), nullptr, log);
    return log;
}

void ExpectHole(const ValidationLog& log, const std::string& group, int node, const std::string& set,
                const std::string& missing)
{
    const std::string lead = "One or more nodes are missing in the " + group;
    EXPECT_EQ(log.GetValidationState(), Error);
    EXPECT_EQ(log.GetValidationMessage(), lead);
    ASSERT_EQ(log.GetNbErrorInfo(), 1);
    EXPECT_EQ(log.GetErrorInfo(0).GetNodeId(), node);
    EXPECT_TRUE(log.GetErrorInfo(0).IsError());
    EXPECT_EQ(log.GetErrorInfo(0).GetMessage(), lead + ". Node " + set + " is set but not node " + missing);
}

} // namespace

TEST(BoneRules, AtLeastOneBoneAppliesToAnyAssignedNodeAndNeverComplains)
{
    const AtLeastOneBoneValidator validator;
    tpose::AssignedFlags flags = tpose::NoneAssigned();
    flags[3] = 6u; // only bit 0 means "assigned"
    EXPECT_FALSE(validator.IsApplicable(flags.data()));
    flags[211] = 1u;
    ASSERT_TRUE(validator.IsApplicable(flags.data()));
    const ValidationLog log = Check(validator, flags);
    EXPECT_EQ(log.GetValidationState(), Valid);
    EXPECT_EQ(log.GetNbErrorInfo(), 0);
}

TEST(BoneRules, EachOfTheFifteenRequiredNodesIsNeeded)
{
    const RequiredBoneValidator validator;
    EXPECT_TRUE(validator.IsApplicable(tpose::NoneAssigned().data()));
    EXPECT_EQ(Check(validator, Assigned({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15})).GetValidationState(),
              Valid);
    for (int missing = 1; missing <= 15; ++missing) {
        tpose::AssignedFlags flags = tpose::AllAssigned();
        flags[missing] = 0u;
        const ValidationLog log = Check(validator, flags);
        EXPECT_EQ(log.GetValidationState(), Error) << missing;
        EXPECT_EQ(log.GetValidationMessage(), "Missing required bones.");
        EXPECT_EQ(log.GetNbErrorInfo(), 0);
    }
}

TEST(BoneRules, HoleReportsOnlyTheFirstGapIncludingAMissingHead)
{
    const HoleValidator thumb("left hand thumb", {50, 51, 52, 53});
    EXPECT_FALSE(thumb.IsApplicable(Assigned({49, 54}).data()));
    ExpectHole(Check(thumb, Assigned({50, 52})), "left hand thumb", 52, "LeftHandThumb3", "LeftHandThumb2");
    ExpectHole(Check(thumb, Assigned({51, 53})), "left hand thumb", 51, "LeftHandThumb2", "LeftHandThumb1");
    for (const auto& flags : {Assigned({50}), Assigned({50, 51}), Assigned({50, 51, 52, 53})}) {
        const ValidationLog log = Check(thumb, flags);
        EXPECT_EQ(log.GetValidationState(), Valid) << "a chain may end early";
        EXPECT_EQ(log.GetNbErrorInfo(), 0);
    }
}

TEST(BoneRules, SpineChainStartsAtSpine1WhileNeckChainStartsAtNeck)
{
    const ValidationRun run;
    const auto& spine = dynamic_cast<const HoleValidator&>(*run.Validators().at(2));
    const auto& neck = dynamic_cast<const HoleValidator&>(*run.Validators().at(3));
    EXPECT_EQ(Check(spine, Assigned({23, 24})).GetValidationState(), Valid);
    ExpectHole(Check(spine, Assigned({8, 23, 25})), "spine", 25, "Spine3", "Spine2");
    ExpectHole(Check(neck, Assigned({32})), "neck", 32, "Neck1", "Neck");
}

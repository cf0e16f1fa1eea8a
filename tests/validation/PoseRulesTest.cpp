#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HipsXAxisValidator.h"
#include "LeftArmsXAxisValidator.h"
#include "PoseCharacter.h"
#include "RightArmsXAxisValidator.h"
#include "SameGeometryValidator.h"
#include "SpineYAxisValidator.h"

namespace {

struct AxisCase
{
    std::shared_ptr<AxisValidator> validator;
    int first;
    int second;
    std::string leadIn;
    std::string middle;
    std::string shortMessage;
    std::string threshold;
    double degreesBelow; // a tilt that must pass, and its mirror just above the threshold must warn
};

const std::vector<AxisCase>& AxisCases()
{
    static const std::vector<AxisCase> cases = {
        {std::make_shared<HipsXAxisValidator>(), 2, 5,
         "The hips don't seem to be facing the positive direction of the Z axis. There is a difference of ",
         " degrees between them and the X axis. This difference should be less than ",
         "The hips don't seem to be facing the positive direction of the Z axis.", "2.000000", 1.9},
        {std::make_shared<RightArmsXAxisValidator>(), 14, 12,
         "The right arm doesn't seem to be parallel to the X axis. There is a difference of ",
         " degrees between it and the X axis. This difference should be less than ",
         "The right arm doesn't seem to be parallel to the X axis.", "2.000000", 1.9},
        {std::make_shared<LeftArmsXAxisValidator>(), 11, 9,
         "The left arm doesn't seem to be parallel to the X axis. There is a difference of ",
         " degrees between it and the X axis. This difference should be less than ",
         "The left arm doesn't seem to be parallel to the X axis.", "2.000000", 1.9},
        {std::make_shared<SpineYAxisValidator>(), 15, 8,
         "The spine doesn't seem to be parallel to the Y axis. There is a difference of ",
         " degrees between it and the Y axis. This difference should be less than ",
         "The spine doesn't seem to be parallel to the Y axis.", "5.000000", 4.9},
    };
    return cases;
}

class PoseRules : public testing::Test
{
protected:
    ValidationLog Validate(const CharacterizationValidator& validator) const
    {
        const PoseCharacter character(flags.data(), pose);
        ValidationLog log;
        validator.Validate(flags.data(), character.Get(), log);
        return log;
    }

    // Swings `moving` around `pivot` in the XY plane, keeping its distance.
    void Swing(int moving, int pivot, double degrees)
    {
        const double dx = pose[moving][0] - pose[pivot][0];
        const double dy = pose[moving][1] - pose[pivot][1];
        const double angle = std::atan2(dy, dx) + degrees * 3.14159265358979323846 / 180.0;
        pose[moving][0] = pose[pivot][0] + static_cast<float>(std::hypot(dx, dy) * std::cos(angle));
        pose[moving][1] = pose[pivot][1] + static_cast<float>(std::hypot(dx, dy) * std::sin(angle));
    }

    void ExpectPairs(const ValidationLog& log, const std::vector<std::pair<int, int>>& pairs,
                     const std::vector<ValidationState>& severities, const std::vector<std::string>& messages)
    {
        ASSERT_EQ(log.GetNbErrorInfo(), static_cast<int>(2 * pairs.size()));
        for (size_t p = 0; p < pairs.size(); ++p) {
            for (int k = 0; k < 2; ++k) {
                const ValidationLog::ErrorInfo& info = log.GetErrorInfo(static_cast<int>(2 * p) + k);
                EXPECT_EQ(info.GetNodeId(), k == 0 ? pairs[p].first : pairs[p].second);
                EXPECT_EQ(info.GetSeverity(), severities[p]);
                EXPECT_EQ(info.GetMessage(), messages[p]);
            }
        }
    }

    void ExpectAxisWarning(const AxisCase& rule, const std::string& angle)
    {
        const ValidationLog log = Validate(*rule.validator);
        EXPECT_EQ(log.GetValidationState(), Warning);
        EXPECT_EQ(log.GetValidationMessage(), rule.shortMessage);
        ExpectPairs(log, {{rule.first, rule.second}}, {Warning},
                    {rule.leadIn + angle + rule.middle + rule.threshold + " degrees."});
    }

    tpose::Pose pose = tpose::Make();
    tpose::AssignedFlags flags = tpose::AllAssigned();
};

} // namespace

TEST_F(PoseRules, CleanTPosePassesEveryRule)
{
    for (const AxisCase& rule : AxisCases())
        EXPECT_EQ(Validate(*rule.validator).GetValidationState(), Valid) << rule.shortMessage;
    const ValidationLog log = Validate(SameGeometryValidator());
    EXPECT_EQ(log.GetValidationState(), Valid);
    EXPECT_EQ(log.GetNbErrorInfo(), 0);
}

TEST_F(PoseRules, AxisRulesWarnAboveTheirThresholdWithExactTexts)
{
    for (const AxisCase& rule : AxisCases()) {
        SCOPED_TRACE(rule.shortMessage);
        pose = tpose::Make();
        for (int k = 0; k < 3; ++k) // reverse the segment
            pose[rule.first][k] = 2.0f * pose[rule.second][k] - pose[rule.first][k];
        ExpectAxisWarning(rule, "180.000000");

        pose = tpose::Make();
        Swing(rule.first, rule.second, rule.degreesBelow);
        EXPECT_EQ(Validate(*rule.validator).GetValidationState(), Valid);
        pose = tpose::Make();
        Swing(rule.first, rule.second, -(rule.degreesBelow + 0.2));
        EXPECT_EQ(Validate(*rule.validator).GetValidationState(), Warning);

        tpose::AssignedFlags partial = flags;
        partial[rule.second] = 0u;
        EXPECT_FALSE(rule.validator->IsApplicable(partial.data()));
    }
    pose = tpose::Make();
    pose[2] = pose[5]; // a zero segment is not normalised: 90 degrees
    ExpectAxisWarning(AxisCases()[0], "90.000000");
}

TEST_F(PoseRules, CoincidentLimbJointsAreErrorsOtherPairsWarnings)
{
    pose[11] = pose[10]; // wrist on elbow
    pose[20] = pose[15]; // neck on head
    pose[32] = pose[15];
    const ValidationLog log = Validate(SameGeometryValidator());
    EXPECT_EQ(log.GetValidationState(), Error);
    EXPECT_EQ(log.GetValidationMessage(), "Some nodes are at the same position.");
    ExpectPairs(log, {{10, 11}, {15, 20}, {15, 32}, {20, 32}}, {Error, Warning, Warning, Warning},
                {"Node LeftForeArm is at the same position as node LeftHand",
                 "Node Head is at the same position as node Neck", "Node Head is at the same position as node Neck1",
                 "Node Neck is at the same position as node Neck1"});

    const int limbPairs[6][2] = {{10, 11}, {13, 14}, {10, 9}, {13, 12}, {3, 4}, {6, 7}};
    for (const auto& pair : limbPairs) {
        pose = tpose::Make();
        pose[pair[1]] = pose[pair[0]];
        EXPECT_EQ(Validate(SameGeometryValidator()).GetValidationState(), Error) << pair[0] << "," << pair[1];
    }
}

TEST_F(PoseRules, ExactCoincidenceOutsideTheLimbsUsesTheAlmostSummary)
{
    pose[8] = pose[1];
    const ValidationLog log = Validate(SameGeometryValidator());
    EXPECT_EQ(log.GetValidationState(), Warning);
    EXPECT_EQ(log.GetValidationMessage(), "Some nodes are almost at the same position.");
    ExpectPairs(log, {{1, 8}}, {Warning}, {"Node Hips is at the same position as node Spine"});
}

TEST_F(PoseRules, AlmostMeansStrictlyCloserThanAMillionthOnEveryAxis)
{
    // Near the origin a millionth is exactly representable, so the boundary itself is tested.
    pose[0] = {500.0f, 0.0f, 0.0f};
    pose[1] = {0.0f, 0.0f, 0.0f};
    pose[8] = {0.0f, 5e-7f, 0.0f};
    const ValidationLog log = Validate(SameGeometryValidator());
    EXPECT_EQ(log.GetValidationState(), Warning);
    ExpectPairs(log, {{1, 8}}, {Warning}, {"Node Hips is almost at the same position as node Spine"});
    for (const tpose::Position& apart : {tpose::Position {1e-6f, 0.0f, 0.0f}, tpose::Position {5e-7f, 5e-7f, 1e-6f}}) {
        pose[8] = apart;
        EXPECT_EQ(Validate(SameGeometryValidator()).GetNbErrorInfo(), 0);
    }
}

TEST_F(PoseRules, RollBonesAndUnassignedNodesMayShareAPosition)
{
    pose[41] = pose[2];
    pose[172] = pose[2];
    pose[16] = pose[4];
    flags[16] = 0u;
    EXPECT_EQ(Validate(SameGeometryValidator()).GetValidationState(), Valid);
    tpose::AssignedFlags one = tpose::NoneAssigned();
    one[211] = 1u;
    EXPECT_FALSE(SameGeometryValidator().IsApplicable(one.data()));
}

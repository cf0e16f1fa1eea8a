#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zelkin/ZELSolver.h>

namespace {

const char* const kDigits[] = {"Thumb", "Index", "Middle", "Ring", "Pinky", "ExtraFinger"};
const char* const kRollSegments[] = {"LeftUpLeg", "LeftLeg", "RightUpLeg", "RightLeg",
                                     "LeftArm",   "LeftForeArm", "RightArm", "RightForeArm"};
const char* const kLimbs[] = {"LeftHand", "RightHand", "LeftFoot", "RightFoot"};

// The tables are literals; rebuilding them from the naming rules catches a typo or a shifted entry anywhere.
std::vector<std::string> nodeNamesByRule()
{
    std::vector<std::string> names = {"Reference", "Hips", "LeftUpLeg", "LeftLeg", "LeftFoot", "RightUpLeg",
                                      "RightLeg", "RightFoot", "Spine", "LeftArm", "LeftForeArm", "LeftHand",
                                      "RightArm", "RightForeArm", "RightHand", "Head", "LeftToeBase", "RightToeBase",
                                      "LeftShoulder", "RightShoulder", "Neck", "LeftFingerBase", "RightFingerBase"};
    for (int i = 1; i <= 9; ++i)
        names.push_back("Spine" + std::to_string(i));
    for (int i = 1; i <= 9; ++i)
        names.push_back("Neck" + std::to_string(i));
    for (const char* segment : kRollSegments)
        names.push_back(std::string(segment) + "Roll");
    names.push_back("HipsTranslation");
    for (const char* limb : kLimbs)
        for (const char* digit : kDigits)
            for (int phalanx = 1; phalanx <= 4; ++phalanx)
                names.push_back(std::string(limb) + digit + std::to_string(phalanx));
    for (const char* block : {"LeftInHand", "RightInHand", "LeftInFoot", "RightInFoot"})
        for (const char* digit : kDigits)
            names.push_back(std::string(block) + digit);
    names.push_back("LeftShoulderExtra");
    names.push_back("RightShoulderExtra");
    for (int level = 1; level <= 5; ++level)
        for (const char* segment : kRollSegments)
            names.push_back("Leaf" + std::string(segment) + "Roll" + std::to_string(level));
    return names;
}

std::vector<std::string> effectorNamesByRule()
{
    std::vector<std::string> names = {
        "HipsEffector",         "LeftAnkleEffector",     "RightAnkleEffector", "LeftWristEffector",
        "RightWristEffector",   "LeftKneeEffector",      "RightKneeEffector",  "LeftElbowEffector",
        "RightElbowEffector",   "ChestOriginEffector",   "ChestEndEffector",   "LeftFootEffector",
        "RightFootEffector",    "LeftShoulderEffector",  "RightShoulderEffector", "HeadEffector",
        "LeftHipEffector",      "RightHipEffector",      "LeftHandEffector",   "RightHandEffector"};
    for (const char* limb : kLimbs)
        for (const char* digit : kDigits)
            names.push_back(std::string(limb) + digit + "Effector");
    return names;
}

TEST(NodeNames, TableFollowsTheNamingRulesAndEachNameLeadsBack)
{
    const std::vector<std::string> expected = nodeNamesByRule();
    ASSERT_EQ(expected.size(), static_cast<size_t>(ZELNodeCount));
    for (int id = 0; id < ZELNodeCount; ++id) {
        ASSERT_STREQ(ZELGetNodeNameFromId(id), expected[id].c_str()) << "node " << id;
        EXPECT_EQ(ZELGetNodeIdFromName(expected[id].c_str()), id) << expected[id];
    }
}

// Names are matched whole and byte for byte: no case folding, no prefixes, no trailing blanks.
TEST(NodeNames, OnlyExactNamesMatch)
{
    for (const char* name : {"hips", "HIPS", "", "Hips ", " Hips", "Hip", "HipsT", "Spine10", "LeftHandThumb",
                             "LeafRightForeArmRoll6", "HipsEffector"})
        EXPECT_EQ(ZELGetNodeIdFromName(name), -1) << '"' << name << '"';
    EXPECT_EQ(ZELGetNodeIdFromName(nullptr), -1);
    EXPECT_EQ(ZELGetNodeIdFromName("Hips"), 1);
    EXPECT_EQ(ZELGetNodeIdFromName("LeafRightForeArmRoll5"), 211);
}

TEST(NodeNames, IdentifiersOutsideTheTableHaveNoName)
{
    EXPECT_EQ(ZELGetNodeNameFromId(-1), nullptr);
    EXPECT_EQ(ZELGetNodeNameFromId(ZELNodeCount), nullptr);
    EXPECT_STREQ(ZELGetNodeNameFromId(ZELNodeCount - 1), "LeafRightForeArmRoll5");
}

TEST(EffectorNames, TableFollowsTheNamingRulesAndEachNameLeadsBack)
{
    const std::vector<std::string> expected = effectorNamesByRule();
    ASSERT_EQ(expected.size(), static_cast<size_t>(ZELEffectorCount));
    for (int id = 0; id < ZELEffectorCount; ++id) {
        ASSERT_STREQ(ZELGetEffectorNameFromId(id), expected[id].c_str()) << "effector " << id;
        EXPECT_EQ(ZELGetEffectorIdFromName(expected[id].c_str()), id) << expected[id];
    }
}

TEST(EffectorNames, NodeNamesAndNearMissesAreNotEffectors)
{
    for (const char* name : {"Hips", "hipsEffector", "", "HipsEffector ", "LeftHandThumb1Effector"})
        EXPECT_EQ(ZELGetEffectorIdFromName(name), -1) << '"' << name << '"';
    EXPECT_EQ(ZELGetEffectorIdFromName(nullptr), -1);
    EXPECT_EQ(ZELGetEffectorNameFromId(-1), nullptr);
    EXPECT_EQ(ZELGetEffectorNameFromId(ZELEffectorCount), nullptr);
}

} // namespace

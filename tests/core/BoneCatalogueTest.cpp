#include <set>
#include <string>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>

TEST(BoneCatalogue, NamesAndIdentifiersMatchBothWays)
{
    const struct
    {
        int id;
        const char* name;
    } anchors[] = {{0, "Reference"},         {1, "Hips"},           {15, "Head"},
                   {20, "Neck"},             {23, "Spine1"},        {40, "Neck9"},
                   {41, "LeftUpLegRoll"},    {49, "HipsTranslation"}, {50, "LeftHandThumb1"},
                   {97, "RightHandExtraFinger4"}, {145, "RightFootExtraFinger4"}, {147, "LeftInHandIndex"},
                   {171, "RightShoulderExtra"}, {172, "LeafLeftUpLegRoll1"}, {211, "LeafRightForeArmRoll5"}};
    for (const auto& anchor : anchors) {
        EXPECT_STREQ(BoneCatalogue::NodeName(anchor.id), anchor.name);
        EXPECT_EQ(BoneCatalogue::NodeId(anchor.name), anchor.id);
    }
    for (int id = 0; id < BoneCatalogue::NodeCount; ++id)
        EXPECT_EQ(BoneCatalogue::NodeId(BoneCatalogue::NodeName(id)), id) << "names are unique";
    for (int id : {-1, 212, 1000}) {
        EXPECT_FALSE(BoneCatalogue::IsValidNode(id));
        EXPECT_EQ(BoneCatalogue::NodeName(id), nullptr);
        EXPECT_EQ(BoneCatalogue::Counterpart(id), BoneCatalogue::NoNode);
    }
    for (const char* name : {"hips", "", "Hips ", "Spine10", static_cast<const char*>(nullptr)})
        EXPECT_EQ(BoneCatalogue::NodeId(name), BoneCatalogue::NoNode);
}

TEST(BoneCatalogue, CounterpartSwapsSidesAndIsItsOwnInverse)
{
    const int pairs[][2] = {{170, 171}, {192, 194}, {50, 74}, {121, 145}, {41, 43}, {2, 5}};
    for (const auto& pair : pairs) {
        EXPECT_EQ(BoneCatalogue::Counterpart(pair[0]), pair[1]);
        EXPECT_EQ(BoneCatalogue::Counterpart(pair[1]), pair[0]);
    }
    for (int id = 0; id < BoneCatalogue::NodeCount; ++id) {
        const std::string name = BoneCatalogue::NodeName(id);
        const bool sided = name.find("Left") != std::string::npos || name.find("Right") != std::string::npos;
        EXPECT_EQ(BoneCatalogue::Counterpart(id) != id, sided) << name;
        EXPECT_EQ(BoneCatalogue::Counterpart(BoneCatalogue::Counterpart(id)), id) << name;
    }
}

TEST(BoneCatalogue, RequiredAndRollSetsAreExactlyTheListedNodes)
{
    for (int i = 0; i < BoneCatalogue::RequiredCount; ++i)
        EXPECT_EQ(BoneCatalogue::RequiredNodes()[i], i + 1);
    const std::set<int> rolls(BoneCatalogue::RollBones().begin(), BoneCatalogue::RollBones().end());
    EXPECT_EQ(rolls.size(), static_cast<size_t>(BoneCatalogue::RollBoneCount));
    for (int id = -1; id <= BoneCatalogue::NodeCount; ++id) {
        const bool roll = (id >= 41 && id <= 48) || (id >= 172 && id <= 211);
        EXPECT_EQ(BoneCatalogue::IsRequired(id), id >= 1 && id <= 15) << id;
        EXPECT_EQ(BoneCatalogue::IsRollBone(id), roll) << id;
        EXPECT_EQ(rolls.count(id) == 1, roll) << id;
    }
}

TEST(BoneCatalogue, ChainsComeRightHandLeftHandRightFootLeftFoot)
{
    const char* limbs[] = {"right hand", "left hand", "right foot", "left foot"};
    const int blocks[] = {74, 50, 122, 98};
    const char* digits[] = {"thumb", "index finger", "middle finger", "ring finger", "pinky finger", "extra finger"};
    for (int i = 0; i < BoneCatalogue::ChainCount; ++i) {
        const BoneCatalogue::Chain& chain = BoneCatalogue::Chains()[i];
        EXPECT_EQ(chain.label, std::string(limbs[i / 6]) + " " + digits[i % 6]);
        EXPECT_EQ(chain.first, blocks[i / 6] + 4 * (i % 6)) << chain.label;
    }
}

TEST(BoneCatalogue, GroupsFollowTheIdentifierRangesAndHaveDistinctNames)
{
    EXPECT_EQ(BoneCatalogue::NodeGroup(0), BoneCatalogue::ReferenceGroup);
    EXPECT_EQ(BoneCatalogue::NodeGroup(49), BoneCatalogue::TrunkGroup);
    EXPECT_EQ(BoneCatalogue::NodeGroup(7), BoneCatalogue::RightLegGroup);
    EXPECT_EQ(BoneCatalogue::NodeGroup(171), BoneCatalogue::ShouldersGroup);
    EXPECT_EQ(BoneCatalogue::NodeGroup(73), BoneCatalogue::LeftHandGroup);
    EXPECT_EQ(BoneCatalogue::NodeGroup(74), BoneCatalogue::RightHandGroup);
    EXPECT_EQ(BoneCatalogue::NodeGroup(169), BoneCatalogue::RightInFootGroup);
    EXPECT_EQ(BoneCatalogue::NodeGroup(211), BoneCatalogue::LeafRollGroup);
    std::set<std::string> names;
    for (int g = BoneCatalogue::ReferenceGroup; g <= BoneCatalogue::LeafRollGroup; ++g)
        names.insert(BoneCatalogue::GroupName(static_cast<BoneCatalogue::Group>(g)));
    EXPECT_EQ(names.size(), static_cast<size_t>(BoneCatalogue::LeafRollGroup + 1));
    EXPECT_EQ(names.count(""), 0u);
}

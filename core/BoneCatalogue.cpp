#include <zelkin/BoneCatalogue.h>

#include <string>

#include <zelkin/ZELSolver.h>

namespace {

constexpr std::array<int, BoneCatalogue::RequiredCount> kRequired = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

// Kept as an explicit list: the roll bones are two disjoint blocks, and callers walk them as one set.
constexpr std::array<int, BoneCatalogue::RollBoneCount> kRollBones = {
    41,  42,  43,  44,  45,  46,  47,  48,  172, 173, 174, 175, 176, 177, 178, 179,
    180, 181, 182, 183, 184, 185, 186, 187, 188, 189, 190, 191, 192, 193, 194, 195,
    196, 197, 198, 199, 200, 201, 202, 203, 204, 205, 206, 207, 208, 209, 210, 211};

constexpr std::array<BoneCatalogue::Chain, BoneCatalogue::ChainCount> kChains = {{
    {"right hand thumb", 74},         {"right hand index finger", 78},  {"right hand middle finger", 82},
    {"right hand ring finger", 86},   {"right hand pinky finger", 90},  {"right hand extra finger", 94},
    {"left hand thumb", 50},          {"left hand index finger", 54},   {"left hand middle finger", 58},
    {"left hand ring finger", 62},    {"left hand pinky finger", 66},   {"left hand extra finger", 70},
    {"right foot thumb", 122},        {"right foot index finger", 126}, {"right foot middle finger", 130},
    {"right foot ring finger", 134},  {"right foot pinky finger", 138}, {"right foot extra finger", 142},
    {"left foot thumb", 98},          {"left foot index finger", 102},  {"left foot middle finger", 106},
    {"left foot ring finger", 110},   {"left foot pinky finger", 114},  {"left foot extra finger", 118},
}};

// Indexed by BoneCatalogue::Group.
constexpr const char* kGroupNames[] = {
    "reference",   "trunk",      "left leg",          "right leg",    "left arm",      "right arm",
    "feet",        "shoulders",  "hands",             "extra spine",  "extra neck",    "inline roll bones",
    "left hand",   "right hand", "left foot",         "right foot",   "left in-hand",  "right in-hand",
    "left in-foot", "right in-foot", "leaf roll bones"};
static_assert(sizeof(kGroupNames) / sizeof(kGroupNames[0]) == BoneCatalogue::LeafRollGroup + 1, "one name per group");

struct GroupRange
{
    int last; // inclusive; ranges are contiguous from 0
    BoneCatalogue::Group group;
};

constexpr GroupRange kGroupRanges[] = {
    {0, BoneCatalogue::ReferenceGroup},    {1, BoneCatalogue::TrunkGroup},         {4, BoneCatalogue::LeftLegGroup},
    {7, BoneCatalogue::RightLegGroup},     {8, BoneCatalogue::TrunkGroup},         {11, BoneCatalogue::LeftArmGroup},
    {14, BoneCatalogue::RightArmGroup},    {15, BoneCatalogue::TrunkGroup},        {17, BoneCatalogue::FeetGroup},
    {19, BoneCatalogue::ShouldersGroup},   {20, BoneCatalogue::TrunkGroup},        {22, BoneCatalogue::HandsGroup},
    {31, BoneCatalogue::ExtraSpineGroup},  {40, BoneCatalogue::ExtraNeckGroup},    {48, BoneCatalogue::InlineRollGroup},
    {49, BoneCatalogue::TrunkGroup},       {73, BoneCatalogue::LeftHandGroup},     {97, BoneCatalogue::RightHandGroup},
    {121, BoneCatalogue::LeftFootGroup},   {145, BoneCatalogue::RightFootGroup},   {151, BoneCatalogue::LeftInHandGroup},
    {157, BoneCatalogue::RightInHandGroup}, {163, BoneCatalogue::LeftInFootGroup}, {169, BoneCatalogue::RightInFootGroup},
    {171, BoneCatalogue::ShouldersGroup},  {211, BoneCatalogue::LeafRollGroup}};

template <size_t N>
bool Contains(const std::array<int, N>& list, int nodeId)
{
    for (int id : list)
        if (id == nodeId)
            return true;
    return false;
}

void ReplaceAll(std::string& text, const std::string& from, const std::string& to)
{
    for (size_t pos = text.find(from); pos != std::string::npos; pos = text.find(from, pos + to.size()))
        text.replace(pos, from.size(), to);
}

int ComputeCounterpart(int nodeId)
{
    std::string name = BoneCatalogue::NodeName(nodeId);
    if (name.find("Right") != std::string::npos)
        ReplaceAll(name, "Right", "Left");
    else if (name.find("Left") != std::string::npos)
        ReplaceAll(name, "Left", "Right");
    else
        return nodeId;
    return BoneCatalogue::NodeId(name.c_str());
}

} // namespace

bool BoneCatalogue::IsValidNode(int nodeId)
{
    return nodeId >= 0 && nodeId < NodeCount;
}

const char* BoneCatalogue::NodeName(int nodeId)
{
    return IsValidNode(nodeId) ? ZELGetNodeNameFromId(nodeId) : nullptr;
}

int BoneCatalogue::NodeId(const char* name)
{
    if (name == nullptr)
        return NoNode;
    const int id = ZELGetNodeIdFromName(name);
    return IsValidNode(id) ? id : NoNode;
}

BoneCatalogue::Group BoneCatalogue::NodeGroup(int nodeId)
{
    // Out-of-range identifiers name no node; the root group is the harmless answer.
    if (!IsValidNode(nodeId))
        return ReferenceGroup;
    for (const GroupRange& range : kGroupRanges)
        if (nodeId <= range.last)
            return range.group;
    return ReferenceGroup;
}

const char* BoneCatalogue::GroupName(Group group)
{
    const int index = static_cast<int>(group);
    if (index < 0 || index >= static_cast<int>(sizeof(kGroupNames) / sizeof(kGroupNames[0])))
        return "";
    return kGroupNames[index];
}

int BoneCatalogue::Counterpart(int nodeId)
{
    if (!IsValidNode(nodeId))
        return NoNode;
    // Mirroring asks for counterparts node by node; work the names out once.
    static const std::array<int, NodeCount> table = [] {
        std::array<int, NodeCount> result {};
        for (int id = 0; id < NodeCount; ++id)
            result[id] = ComputeCounterpart(id);
        return result;
    }();
    return table[nodeId];
}

bool BoneCatalogue::IsRequired(int nodeId)
{
    return Contains(kRequired, nodeId);
}

const std::array<int, BoneCatalogue::RequiredCount>& BoneCatalogue::RequiredNodes()
{
    return kRequired;
}

bool BoneCatalogue::IsRollBone(int nodeId)
{
    return Contains(kRollBones, nodeId);
}

const std::array<int, BoneCatalogue::RollBoneCount>& BoneCatalogue::RollBones()
{
    return kRollBones;
}

const std::array<BoneCatalogue::Chain, BoneCatalogue::ChainCount>& BoneCatalogue::Chains()
{
    return kChains;
}

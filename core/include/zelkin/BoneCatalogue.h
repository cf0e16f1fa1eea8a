#pragma once

#include <array>
#include <cstdint>

#include <zelkin/CharacterizationExport.h>

// The standard node set: identifiers, names, groups, the required and roll-bone sets, sides and chain labels.
// Names come from the solver's own table, so the two can never disagree.
class ZELKIN_CHARACTERIZATION_EXPORT BoneCatalogue
{
public:
    static constexpr int NodeCount = 212;
    static constexpr int NoNode = -1;
    static constexpr int RequiredCount = 15;
    static constexpr int RollBoneCount = 48;
    static constexpr int ChainCount = 24;

    enum Group
    {
        ReferenceGroup,
        TrunkGroup,
        LeftLegGroup,
        RightLegGroup,
        LeftArmGroup,
        RightArmGroup,
        FeetGroup,
        ShouldersGroup,
        HandsGroup,
        ExtraSpineGroup,
        ExtraNeckGroup,
        InlineRollGroup,
        LeftHandGroup,
        RightHandGroup,
        LeftFootGroup,
        RightFootGroup,
        LeftInHandGroup,
        RightInHandGroup,
        LeftInFootGroup,
        RightInFootGroup,
        LeafRollGroup
    };

    struct Chain
    {
        const char* label;
        int first;
    };

    static bool IsValidNode(int nodeId);
    // Null for an identifier outside 0 to 211.
    static const char* NodeName(int nodeId);
    // Exact, case-sensitive; NoNode when the name is not a node.
    static int NodeId(const char* name);
    static Group NodeGroup(int nodeId);
    static const char* GroupName(Group group);
    // The opposite-side node; a node without a side is its own counterpart.
    static int Counterpart(int nodeId);

    static bool IsRequired(int nodeId);
    static const std::array<int, RequiredCount>& RequiredNodes();
    static bool IsRollBone(int nodeId);
    static const std::array<int, RollBoneCount>& RollBones();
    // In registration order: right hand, left hand, right foot, left foot.
    static const std::array<Chain, ChainCount>& Chains();
};

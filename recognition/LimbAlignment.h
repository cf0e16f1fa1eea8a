#pragma once

#include "Body.h"

class NameEvidence;
class SkeletonGraph;

// Decides which joints of a limb's main path are the shoulder, elbow and wrist (or hip, knee, ankle and toe).
// Every choice is scored whole: the two long bones about as long as each other and as long as a human's for the
// body's size, the hand where the fingers fan out, the foot near the floor with the toe running forward; names
// add their word. Joints left between the chosen ones are extras, twist bones when they lie on the bone's line.
class LimbAlignment
{
public:
    LimbAlignment(const SkeletonGraph& graph, const NameEvidence& names, const Body& body);

    void AlignArm(Limb& arm) const;
    void AlignLeg(Limb& leg) const;

private:
    // Penalty for the joints strictly between two chosen ones.
    double SkipCost(const std::vector<int>& path, int from, int to) const;
    // The first joint strictly between two chosen ones that lies on their line or is named a twist; -1 if none.
    int RollBetween(const std::vector<int>& path, int from, int to) const;
    double NameSupport(int bone, Role role) const;
    bool FansOut(int bone) const;
    // Two or more of its branches go somewhere, as fingers do.
    bool SplitsIntoFingers(int bone) const;
    // The limb's joints worth choosing: its path without end markers, at most a dozen.
    std::vector<int> Joints(const Limb& limb) const;

    const SkeletonGraph& mGraph;
    const NameEvidence& mNames;
    const Body& mBody;
};

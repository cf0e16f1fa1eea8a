#pragma once

#include <vector>

#include <zelkin/SkeletonRecognizer.h>

#include "Body.h"

class NameEvidence;
class SkeletonGraph;

// Turns a body into what the recognizer reports: each node with its bone, confidence and evidence, and each other
// bone of the character with the reason it was left out. A node whose evidence is too weak stays empty, unless
// the solver cannot do without it.
class CharacterReport
{
public:
    CharacterReport(const SkeletonGraph& graph, const NameEvidence& names, const Body& body);

    SkeletonRecognizer::Character Make(int root, SkeletonRecognizer::PoseKind pose) const;

private:
    std::vector<Placement> Placements() const;
    void AddTrunk(std::vector<Placement>& placements) const;
    void AddLimbs(std::vector<Placement>& placements) const;
    void AddLeafRolls(std::vector<Placement>& placements) const;
    Placement Make(int node, int bone, double hierarchy, double geometry) const;
    SkeletonRecognizer::LeftOut ReasonFor(int bone, const std::vector<bool>& inLimbOrSpine) const;

    const SkeletonGraph& mGraph;
    const NameEvidence& mNames;
    const Body& mBody;
    double mTrunk; // how sure the trunk is, 0 to 1
};

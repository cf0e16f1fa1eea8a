#pragma once

#include <vector>

#include "Body.h"

class NameEvidence;
class SkeletonGraph;

// The body's middle once its limbs are known: which bone is the hips, which run up as the spine and the neck,
// and which is the head. The hips stand where the thighs start; the neck starts at the shoulders' height; the
// head sits well above them, below the top of the skull.
class CentralChain
{
public:
    CentralChain(const SkeletonGraph& graph, const NameEvidence& names, Body& body);

    void Find();

private:
    void ChooseHips();
    // The bones from above the arms' trunk bone up to the head, going up the body's middle.
    std::vector<int> RiseAboveArms() const;
    // The path without joints that only step away from a joint's place and back.
    std::vector<int> WithoutDetours(const std::vector<int>& path) const;
    std::vector<int> FollowUp(int from) const;
    void ChooseHead(std::vector<int>& rise);
    void SplitSpineAndNeck(const std::vector<int>& central, int mostSpine);
    // Height above the shoulders, in the body's scale.
    double AboveShoulders(int bone) const;
    bool IsPassThrough(int bone, int child) const;

    const SkeletonGraph& mGraph;
    const NameEvidence& mNames;
    Body& mBody;
    Vec3 mThighs;
    Vec3 mShoulders;
    Vec3 mArmRoots;
};

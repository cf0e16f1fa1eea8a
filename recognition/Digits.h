#pragma once

#include <vector>

#include "Body.h"

class NameEvidence;
class SkeletonGraph;

// Fingers and toes: the chains that fan out of a hand or a foot. The thumb is the chain that leaves the line of
// the forearm most and sits toward the front; the others follow across the palm from it. Toes run from the big toe,
// the one nearest the body's middle, outward. Joints are counted from the root of each finger; a first joint that
// starts at the wrist is the metacarpal.
class Digits
{
public:
    Digits(const SkeletonGraph& graph, const NameEvidence& names, Body& body);

    void ReadHand(const Limb& arm);
    void ReadFoot(const Limb& leg);

private:
    struct Chain
    {
        std::vector<int> bones;
        bool metacarpal = false; // the first bone runs through the palm; the finger starts at the second
        Vec3 base;               // where the finger starts
        Vec3 centre;             // of the finger's joints: orders fingers more surely than their bases alone
        Vec3 direction;          // from its start to its end
        int digit = -1;          // 0 thumb to 5 extra finger
    };

    // The finger-like chains below a bone; a bone near it that carries several of them is taken through.
    std::vector<Chain> ChainsBelow(int bone, double reach, int& carrier) const;
    Chain MakeChain(int first, int wrist) const;
    // Which chain is the thumb (-1: none), and how sure.
    int FindThumb(const std::vector<Chain>& chains, const Vec3& wrist, const Vec3& along, double& margin) const;
    // Orders the chains across the hand from `first`'s side; names override when they tell every finger apart.
    bool NamedDigits(std::vector<Chain>& chains) const;
    void Place(const Chain& chain, bool hand, Side side, double certainty, bool soleFinger = false);

    const SkeletonGraph& mGraph;
    const NameEvidence& mNames;
    Body& mBody;
};

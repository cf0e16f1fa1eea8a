#pragma once

#include <vector>

#include "Body.h"

class NameEvidence;
class SkeletonGraph;

// Finds humanoid trunks: two legs and two arms, each a pair of limbs that mirror each other, the legs pointing
// down from below the arms and the arms hanging from a spine that stands on the legs. Hierarchies differ in where
// the limbs hang (an extra pelvis, legs from the first spine bone, hips beside the spine), so each pair is taken
// where it is and the trunk is whatever holds both.
class TrunkSearch
{
public:
    TrunkSearch(const SkeletonGraph& graph, const NameEvidence& names);

    // The humanoids, best first, no two sharing a bone; none for a skeleton that is no humanoid.
    std::vector<Body> Find() const;

private:
    struct Pair
    {
        Limb a;
        Limb b;
        double likeness = 0.0;
    };

    std::vector<Pair> FindPairs() const;
    std::vector<Limb> Branches(int parent) const;
    double Likeness(const Limb& a, const Limb& b) const;
    // How alike two limbs are whatever their pose: bones of the same lengths in the same order, starting at
    // mirrored places.
    double LengthLikeness(const Limb& a, const Limb& b) const;
    // The limb led along another branch where its path splits, the one that brings its length nearest `length`:
    // a prop held in one hand leads that arm's longest chain away from the fingers. The limb itself when no
    // other branch comes nearer.
    Limb Rerouted(const Limb& limb, double length) const;
    // Some joint past the limb's first two splits into two or more branches that go on, as a hand into fingers.
    bool EndsInFingers(const Limb& limb) const;
    // A trunk with these legs and arms, or a negative score when they make no humanoid.
    Body Assemble(const Pair& legs, const Pair& arms) const;
    double NameFit(const Limb& limb, std::initializer_list<Role> roles) const;
    double SkinFit(const Limb& limb) const;

    const SkeletonGraph& mGraph;
    const NameEvidence& mNames;
};

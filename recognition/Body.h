#pragma once

#include <array>
#include <vector>

#include "BoneName.h"
#include "SkeletonGraph.h"

// Within 20 degrees of an axis, the axis: exporters stand characters along one.
inline Vec3 SnappedToAxis(const Vec3& direction)
{
    int axis = 0;
    direction.cwiseAbs().maxCoeff(&axis);
    Vec3 snapped = Vec3::Zero();
    snapped[axis] = direction[axis] < 0.0 ? -1.0 : 1.0;
    return direction.dot(snapped) > 0.9396926 ? snapped : direction; // cos 20 degrees
}

// One limb hanging from the trunk: the bones of its main path and, once aligned, which of them play which part.
struct Limb
{
    int parent = -1;        // the trunk bone it hangs from
    std::vector<int> path;  // its main path, from its first bone down
    double length = 0.0;    // from the parent's joint to the path's end
    Vec3 end = Vec3::Zero(); // where the path ends

    // Filled by the alignment: an arm's clavicle, upper arm, forearm and hand, or a leg's (none), thigh, shin,
    // foot and toe; -1 for none.
    int girdle = -1;
    int upper = -1;
    int lower = -1;
    int extremity = -1;
    int toe = -1;
    int upperRoll = -1;
    int lowerRoll = -1;
    double fit = 0.0; // how well the lengths and bends fit a human limb, 0 to 1
    double names = 0.0; // how well the names agree, -1 to 1
    Side side = Side::None;
};

// A node given to a bone, with each source's support for it (see SkeletonRecognizer::Evidence).
struct Placement
{
    int node = -1;
    int bone = -1;
    double hierarchy = 0.0;
    double geometry = 0.0;
    double name = 0.0;
};

// A humanoid found in the skeleton, filled step by step.
struct Body
{
    std::array<Limb, 2> legs;
    std::array<Limb, 2> arms; // arms[i] on the same side as legs[i]
    int top = -1;             // the lowest bone that holds both the legs and the arms
    double score = 0.0;       // how humanoid the trunk looks
    double margin = 0.0;      // its lead over the best rival reading of the same bones
    double scale = 1.0;       // from the hips down to the feet: the unit of every length test

    int hips = -1;
    std::vector<int> spine;   // Spine, Spine1, ...
    std::vector<int> neck;    // Neck, Neck1, ...
    int head = -1;
    double hipsConfidence = 0.0;
    double headConfidence = 0.0;

    Vec3 up = Vec3::UnitY();
    Vec3 facing = Vec3::UnitZ();
    Vec3 left = Vec3::UnitX();
    double sideConfidence = 0.0;
    bool namesMirrored = false;

    std::vector<Placement> digits;  // fingers, toes and what carries them
    std::vector<int> extraDigits;   // finger or toe joints past the fourth

    // The side names give the bones on the body's `side`: the other one when they are mirrored.
    Side NamedSide(Side side) const
    {
        if (!namesMirrored || side == Side::None)
            return side;
        return side == Side::Left ? Side::Right : Side::Left;
    }
};

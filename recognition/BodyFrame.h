#pragma once

#include <zelkin/SkeletonRecognizer.h>

#include "Body.h"

class NameEvidence;
class SkeletonGraph;

// The character's own axes, found from the skeleton: up from the feet through the hips to the shoulders, facing
// where the toes point (then where the knees bend, the elbows do not, and the eyes look), left across. Names only
// break a tie the geometry leaves; when most disagree with it, the names are mirrored, not the body.
class BodyFrame
{
public:
    BodyFrame(const SkeletonGraph& graph, const NameEvidence& names, Body& body);

    // Sets up, facing, left and which limbs are the left ones.
    void Orient();
    // From how far the arms hang below the horizontal, once the body is oriented.
    static SkeletonRecognizer::PoseKind Pose(const SkeletonGraph& graph, const Body& body);

private:
    Vec3 Up() const;
    // Positive when the body faces along `facing`, from its geometry alone.
    double GeometryVote(const Vec3& facing) const;
    // Positive when the names put side 0 of the limbs on the left.
    double NameVote() const;
    double BendVote(const Limb& limb, const Vec3& facing, double weight) const;

    const SkeletonGraph& mGraph;
    const NameEvidence& mNames;
    Body& mBody;
};

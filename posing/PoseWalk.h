#pragma once

#include <vector>

#include "AimPlan.h"

// Turns the skeleton bone by bone, parents first, as the plan asks: each bone's turn (a rotation about its joint,
// in the skeleton's frame) starts from its parent's and adds its own aim. The character's root takes the turn into
// the solver's frame, about the origin, so the hips keep their translation in the character's frame; roots of
// other trees stay where they are. A bone whose own turn is below TPoseBuilder::NoTurnDegrees takes exactly its
// parent's, so that posing a T-pose again changes nothing.
class PoseWalk
{
public:
    PoseWalk(const RestSkeleton& skeleton, const AimPlan& plan, int characterRoot, const Eigen::Quaterniond& toSolver);

    // From the rest pose to the T-pose.
    const Eigen::Quaterniond& Turn(int bone) const { return mTurns[size_t(bone)]; }
    // What the bone turns with: its parent's turn, or for a root the turn into the solver's frame or none.
    const Eigen::Quaterniond& Inherited(int bone) const { return mInherited[size_t(bone)]; }
    // True when the bone's turn is exactly the one it inherits.
    bool Rides(int bone) const { return mRides[size_t(bone)]; }
    // The joint in the T-pose.
    const Vec3& Joint(int bone) const { return mJoints[size_t(bone)]; }

private:
    Eigen::Quaterniond Aimed(const BoneAim& aim, const Eigen::Quaterniond& inherited) const;

    std::vector<Eigen::Quaterniond> mTurns;
    std::vector<Eigen::Quaterniond> mInherited;
    std::vector<bool> mRides;
    std::vector<Vec3> mJoints;
};

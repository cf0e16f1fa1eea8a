// Hands and fingers: what "straight along the hand" means when the rest pose curls them.
#include "AimPlan.h"

#include <vector>

#include "PoseNodes.h"

using namespace posenodes;

namespace
{
// Below this share of its length left in the palm's plane, a finger points too far out of it to say where.
constexpr double kInPalmShare = 0.25;
} // namespace

void AimPlan::PlanHand(int side)
{
    const int hand = mSkeleton.BoneOf(Hand[side]);
    if (hand < 0)
        return;
    // Each finger's base: its first mapped joint below the hand, thumb left out.
    std::vector<Vec3> knuckles;
    Vec3 middle = Vec3::Zero();
    bool hasMiddle = false;
    for (int finger = Index; finger < FingerCount; ++finger)
    {
        for (int joint = 0; joint < JointsPerFinger; ++joint)
        {
            const int bone = mSkeleton.BoneOf(FingerJoint(side, finger, joint));
            if (bone < 0 || !mSkeleton.IsBelow(bone, hand))
                continue;
            knuckles.push_back(mSkeleton.Joint(bone));
            hasMiddle = hasMiddle || finger == Middle;
            middle = finger == Middle ? mSkeleton.Joint(bone) : middle;
            break;
        }
    }
    Vec3 end = Vec3::Zero();
    if (hasMiddle)
        end = middle;
    else if (!knuckles.empty())
    {
        for (const Vec3& knuckle : knuckles)
            end += knuckle / double(knuckles.size());
    }
    else if (!EndOf(Hand[side], {FingerBase[side]}, end))
        return;
    const Vec3 joint = mSkeleton.Joint(hand);
    if ((end - joint).norm() <= mSkeleton.Tolerance())
        return;
    Aim(Hand[side], end, side == 0 ? CharacterAxes::SolverLeft() : -CharacterAxes::SolverLeft());

    // The palm lies flat, palm down: from the pinky's side to the index's points forward on either hand.
    const Vec3 along = (end - joint).normalized();
    Vec3 palmNormal = Vec3::Zero();
    BoneAim* aim = AimOf(Hand[side]);
    if (aim != nullptr && knuckles.size() >= 2)
    {
        const Vec3 across = knuckles.front() - knuckles.back();
        const Vec3 normal = along.cross(across);
        if (normal.norm() > 0.1 * across.norm())
        {
            aim->twist = true;
            aim->twistFrom = across;
            aim->twistTarget = CharacterAxes::SolverFacing();
            palmNormal = normal.normalized();
        }
    }
    PlanFingers(side, along, palmNormal);
}

void AimPlan::PlanFingers(int side, const Vec3& along, const Vec3& palmNormal)
{
    const int hand = mSkeleton.BoneOf(Hand[side]);
    for (int finger = 0; finger < FingerCount; ++finger)
    {
        std::vector<int> joints;
        for (int joint = 0; joint < JointsPerFinger; ++joint)
        {
            const int node = FingerJoint(side, finger, joint);
            if (mSkeleton.IsMapped(node) && mSkeleton.IsBelow(mSkeleton.BoneOf(node), hand))
                joints.push_back(node);
        }
        if (joints.empty())
            continue;
        Vec3 end;
        if (!EndOf(joints.front(), {joints.size() > 1 ? joints[1] : -1}, end))
            continue;
        // The finger's first bone says where it points; its curl out of the palm goes, its spread stays. The thumb
        // keeps its first bone's angle to the palm whole.
        Vec3 direction = end - mSkeleton.NodeJoint(joints.front());
        if (finger != Thumb)
        {
            const Vec3 inPalm = direction - direction.dot(palmNormal) * palmNormal;
            direction = palmNormal.isZero() || inPalm.norm() < kInPalmShare * direction.norm() ? along : inPalm;
        }
        for (size_t k = 0; k < joints.size(); ++k)
        {
            if (!EndOf(joints[k], {k + 1 < joints.size() ? joints[k + 1] : -1}, end))
                continue;
            Aim(joints[k], end, direction.normalized());
            if (BoneAim* aim = AimOf(joints[k]))
                aim->targetBone = hand;
        }
    }
}

#include "AimPlan.h"

#include <algorithm>
#include <cmath>

#include "PoseNodes.h"

using namespace posenodes;

AimPlan::AimPlan(const RestSkeleton& skeleton, const CharacterAxes& axes)
    : mSkeleton(skeleton)
    , mAxes(axes)
    , mAims(size_t(skeleton.BoneCount()))
{
    PlanTrunk();
    for (int side = 0; side < 2; ++side)
    {
        PlanLeg(side);
        PlanArm(side);
        PlanHand(side);
    }
}

void AimPlan::PlanTrunk()
{
    // Levelling the thighs turns the hips about the facing axis (and about up when they are not square to it).
    if (mSkeleton.IsMapped(Hips) && mSkeleton.IsMapped(UpLeg[0]) && mSkeleton.IsMapped(UpLeg[1]) &&
        mSkeleton.IsBelow(mSkeleton.BoneOf(UpLeg[0]), mSkeleton.BoneOf(Hips)) &&
        mSkeleton.IsBelow(mSkeleton.BoneOf(UpLeg[1]), mSkeleton.BoneOf(Hips)))
    {
        const Vec3 across = mSkeleton.NodeJoint(UpLeg[0]) - mSkeleton.NodeJoint(UpLeg[1]);
        Aim(Hips, mSkeleton.NodeJoint(Hips) + across, CharacterAxes::SolverLeft());
    }
    const int count = int(std::size(CentralChain));
    for (int k = 0; k + 1 < count; ++k)
    {
        const int node = CentralChain[k];
        if (!mSkeleton.IsMapped(node))
            continue;
        // Up to the next mapped bone of the chain, whichever it is.
        int next = -1;
        for (int above = k + 1; above < count && next < 0; ++above)
            next = mSkeleton.IsMapped(CentralChain[above]) ? CentralChain[above] : -1;
        Vec3 end;
        if (EndOf(node, {next}, end))
            Aim(node, end, CharacterAxes::SolverUp());
    }
    KeepInFrame(Head);
}

void AimPlan::PlanLeg(int side)
{
    Vec3 end;
    if (EndOf(UpLeg[side], {Leg[side], Foot[side]}, end))
        Aim(UpLeg[side], end, -CharacterAxes::SolverUp());
    if (EndOf(Leg[side], {Foot[side]}, end))
        Aim(Leg[side], end, -CharacterAxes::SolverUp());
    if (EndOf(Foot[side], {ToeBase[side]}, end))
        AimForward(Foot[side], end);
    if (EndOf(ToeBase[side], {}, end))
        AimForward(ToeBase[side], end);
}

void AimPlan::PlanArm(int side)
{
    // A T-pose aligns the upper arm and leaves the clavicle as it is.
    KeepInFrame(Shoulder[side]);
    const Vec3 out = side == 0 ? CharacterAxes::SolverLeft() : -CharacterAxes::SolverLeft();
    Vec3 end;
    if (EndOf(Arm[side], {ForeArm[side], Hand[side]}, end))
        Aim(Arm[side], end, out);
    if (EndOf(ForeArm[side], {Hand[side]}, end))
        Aim(ForeArm[side], end, out);
}

bool AimPlan::EndOf(int nodeId, std::initializer_list<int> next, Vec3& end) const
{
    const int bone = mSkeleton.BoneOf(nodeId);
    if (bone < 0)
        return false;
    for (int node : next)
    {
        const int below = mSkeleton.BoneOf(node);
        if (below < 0 || !mSkeleton.IsBelow(below, bone))
            continue;
        end = mSkeleton.Joint(below);
        if ((end - mSkeleton.Joint(bone)).norm() > mSkeleton.Tolerance())
            return true;
    }
    return mSkeleton.End(bone, end);
}

BoneAim* AimPlan::AimOf(int nodeId)
{
    const int bone = mSkeleton.BoneOf(nodeId);
    return bone >= 0 && mSkeleton.NodeOf(bone) == nodeId ? &mAims[size_t(bone)] : nullptr;
}

void AimPlan::Aim(int nodeId, const Vec3& end, const Vec3& target)
{
    BoneAim* aim = AimOf(nodeId);
    if (aim == nullptr)
        return;
    aim->kind = BoneAim::Kind::Aim;
    aim->from = end - mSkeleton.NodeJoint(nodeId);
    aim->target = target;
}

void AimPlan::KeepInFrame(int nodeId)
{
    if (BoneAim* aim = AimOf(nodeId))
        aim->kind = BoneAim::Kind::KeepInFrame;
}

void AimPlan::AimForward(int nodeId, const Vec3& end)
{
    const Vec3 along = (end - mSkeleton.NodeJoint(nodeId)).normalized();
    const double rise = std::clamp(along.dot(mAxes.Up()), -1.0, 1.0);
    Aim(nodeId, end, std::sqrt(1.0 - rise * rise) * CharacterAxes::SolverFacing() + rise * CharacterAxes::SolverUp());
}

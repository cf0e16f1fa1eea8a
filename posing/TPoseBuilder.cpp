#include <zelkin/TPoseBuilder.h>

#include <cmath>

#include "AimPlan.h"
#include "CharacterAxes.h"
#include "PoseNodes.h"
#include "PoseWalk.h"
#include "RestSkeleton.h"

namespace
{
constexpr double kDegrees = 57.29577951308232;

TPoseBuilder::Vector ToVector(const Vec3& v)
{
    return {v.x(), v.y(), v.z()};
}

TPoseBuilder::Matrix ToMatrix(const Eigen::Affine3d& affine)
{
    TPoseBuilder::Matrix matrix;
    Eigen::Map<Eigen::Matrix4d>(matrix.data()) = affine.matrix();
    return matrix;
}

Eigen::Affine3d ToAffine(const TPoseBuilder::Matrix& matrix)
{
    Eigen::Affine3d affine;
    affine.matrix() = Eigen::Map<const Eigen::Matrix4d>(matrix.data());
    return affine;
}

bool IsIdentity(const Eigen::Quaterniond& turn)
{
    return turn.w() == 1.0 && turn.vec().isZero(0.0);
}

// The bone's local transform once it and its parent have turned. Only the rotation part changes: its joint stays
// where its parent's frame had it, so bone lengths and the hips' place in the character are kept.
TPoseBuilder::Matrix PosedLocal(const TPoseBuilder::Bone& bone, const RestSkeleton& skeleton, const PoseWalk& walk,
                                int index)
{
    const int parent = skeleton.Parent(index);
    if (parent < 0)
    {
        if (walk.Rides(index) && IsIdentity(walk.Inherited(index)))
            return bone.local;
        Eigen::Affine3d posed = skeleton.Global(index);
        posed.linear() = walk.Turn(index).toRotationMatrix() * posed.linear();
        posed.translation() = walk.Joint(index);
        return ToMatrix(posed);
    }
    const Eigen::Matrix3d parentLinear = skeleton.Global(parent).linear();
    // A parent scaled flat has no frame to turn the bone in; its size sets what counts as flat.
    const double size = parentLinear.norm();
    if (walk.Rides(index) || std::abs(parentLinear.determinant()) <= 1e-9 * size * size * size)
        return bone.local;
    const Eigen::Matrix3d own = (walk.Inherited(index).conjugate() * walk.Turn(index)).toRotationMatrix();
    Eigen::Affine3d local = ToAffine(bone.local);
    local.linear() = parentLinear.inverse() * own * parentLinear * local.linear();
    return ToMatrix(local);
}
} // namespace

TPoseBuilder::Result TPoseBuilder::Build(const std::vector<Bone>& bones, const Characterization& characterization)
{
    Result result;
    const RestSkeleton skeleton(bones, characterization);
    const CharacterAxes axes(skeleton);
    result.error = axes.Problem();
    if (!result.IsPosed())
        return result;
    result.up = ToVector(axes.Up());
    result.facing = ToVector(axes.Facing());
    result.left = ToVector(axes.Left());
    result.frameDegrees = axes.ToSolver().angularDistance(Eigen::Quaterniond::Identity()) * kDegrees;

    const AimPlan plan(skeleton, axes);
    const int characterRoot = skeleton.Root(skeleton.BoneOf(posenodes::Hips));
    const PoseWalk walk(skeleton, plan, characterRoot, axes.ToSolver());
    result.locals.reserve(bones.size());
    for (int bone = 0; bone < skeleton.BoneCount(); ++bone)
    {
        result.locals.push_back(PosedLocal(bones[size_t(bone)], skeleton, walk, bone));
        const Eigen::Quaterniond& from = skeleton.Parent(bone) < 0 ? Eigen::Quaterniond::Identity()
                                                                   : walk.Inherited(bone);
        const double degrees = from.angularDistance(walk.Turn(bone)) * kDegrees;
        if (degrees >= NoTurnDegrees)
            result.turns.push_back({bone, skeleton.NodeOf(bone), degrees});
    }
    return result;
}

#include "CharacterAxes.h"

#include <cmath>

#include <QCoreApplication>

#include "PoseNodes.h"

namespace
{
constexpr double kSnapCosine = 0.98480775; // cos 10 degrees
constexpr double kDegrees = 57.29577951308232;

Vec3 Snapped(const Vec3& direction)
{
    int axis = 0;
    direction.cwiseAbs().maxCoeff(&axis);
    Vec3 snapped = Vec3::Zero();
    snapped[axis] = direction[axis] < 0.0 ? -1.0 : 1.0;
    return direction.dot(snapped) >= kSnapCosine ? snapped : direction;
}

QString Text(const char* text)
{
    return QCoreApplication::translate("TPoseBuilder", text);
}
} // namespace

CharacterAxes::CharacterAxes(const RestSkeleton& skeleton)
    : mSkeleton(skeleton)
{
    using namespace posenodes;
    if (skeleton.MappedCount() == 0)
    {
        mProblem = Text("No bone is mapped yet: a T-pose is worked out from the mapped bones, so map the skeleton "
                        "first (automatically, with a template or by hand).");
        return;
    }
    const Vec3 upEvidence = UpEvidence();
    const Vec3 across = Across();
    if (!skeleton.IsMapped(Hips) || upEvidence.norm() < 1e-9 || across.norm() <= skeleton.Tolerance())
    {
        mProblem = Text("A T-pose needs the hips, both thighs (or both upper arms) and a leg or the spine mapped, to "
                        "tell which way the character stands.");
        return;
    }
    mUp = Snapped(upEvidence.normalized());
    const Vec3 level = across - across.dot(mUp) * mUp;
    if (level.norm() < 0.1 * across.norm())
    {
        mProblem = Text("The mapped bones do not tell which way the character stands: its left and right lie along "
                        "its spine.");
        return;
    }
    // A tilted body can leave its left near an axis that is not quite square to its up.
    const Vec3 left = Snapped(level.normalized());
    mLeft = (left - left.dot(mUp) * mUp).normalized();
    mFacing = mLeft.cross(mUp);
    Eigen::Matrix3d toSolver;
    toSolver.row(0) = mLeft;
    toSolver.row(1) = mUp;
    toSolver.row(2) = mFacing;
    mToSolver = Eigen::Quaterniond(toSolver).normalized();
    if (mToSolver.angularDistance(Eigen::Quaterniond::Identity()) * kDegrees < TPoseBuilder::NoTurnDegrees)
        mToSolver = Eigen::Quaterniond::Identity();
}

Vec3 CharacterAxes::UpEvidence() const
{
    using namespace posenodes;
    Vec3 up = Vec3::Zero();
    const auto add = [&](int fromNode, int toNode) {
        const Vec3 along = mSkeleton.NodeJoint(toNode) - mSkeleton.NodeJoint(fromNode);
        if (along.norm() > mSkeleton.Tolerance())
            up += along.normalized();
    };
    for (int side = 0; side < 2; ++side)
    {
        const int lowest = mSkeleton.IsMapped(Foot[side]) ? Foot[side] : Leg[side];
        if (mSkeleton.IsMapped(UpLeg[side]) && mSkeleton.IsMapped(lowest))
            add(lowest, UpLeg[side]);
    }
    // From the first spine bone to the highest mapped one above it; the hips only when there is no spine bone.
    const int bottom = mSkeleton.IsMapped(Spine) ? Spine : Hips;
    int top = -1;
    for (int node : CentralChain)
    {
        if (node != Spine && mSkeleton.IsMapped(node))
            top = node;
    }
    if (mSkeleton.IsMapped(bottom) && top >= 0)
        add(bottom, top);
    return up;
}

Vec3 CharacterAxes::Across() const
{
    using namespace posenodes;
    for (const auto& pair : {UpLeg, Arm, Shoulder})
    {
        if (mSkeleton.IsMapped(pair[0]) && mSkeleton.IsMapped(pair[1]))
            return mSkeleton.NodeJoint(pair[0]) - mSkeleton.NodeJoint(pair[1]);
    }
    return Vec3::Zero();
}

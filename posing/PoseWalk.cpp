#include "PoseWalk.h"

#include <cmath>

#include <zelkin/TPoseBuilder.h>

namespace
{
constexpr double kDegrees = 57.29577951308232;

// The turn about `axis` (a unit vector) that brings `from` nearest `to`, both seen across the axis; none when
// either lies along it.
Eigen::Quaterniond TwistAbout(const Vec3& axis, const Vec3& from, const Vec3& to)
{
    const Vec3 a = from - from.dot(axis) * axis;
    const Vec3 b = to - to.dot(axis) * axis;
    if (a.norm() < 1e-6 * from.norm() || b.norm() < 1e-6 * to.norm())
        return Eigen::Quaterniond::Identity();
    const double angle = std::atan2(a.cross(b).dot(axis), a.dot(b));
    return Eigen::Quaterniond(Eigen::AngleAxisd(angle, axis));
}
} // namespace

PoseWalk::PoseWalk(const RestSkeleton& skeleton, const AimPlan& plan, int characterRoot,
                   const Eigen::Quaterniond& toSolver)
{
    const size_t count = size_t(skeleton.BoneCount());
    mTurns.resize(count);
    mInherited.resize(count);
    mRides.assign(count, true);
    mJoints.resize(count);
    for (int bone = 0; bone < int(count); ++bone)
    {
        const int parent = skeleton.Parent(bone);
        const Eigen::Quaterniond inherited = parent >= 0          ? mTurns[size_t(parent)]
                                             : bone == characterRoot ? toSolver
                                                                     : Eigen::Quaterniond::Identity();
        mInherited[size_t(bone)] = inherited;
        mJoints[size_t(bone)] = parent < 0 ? Vec3(inherited * skeleton.Joint(bone))
                                           : Vec3(mJoints[size_t(parent)] +
                                                  inherited * (skeleton.Joint(bone) - skeleton.Joint(parent)));
        const BoneAim& aim = plan.For(bone);
        Eigen::Quaterniond turn = inherited;
        if (aim.kind == BoneAim::Kind::KeepInFrame)
            turn = toSolver;
        else if (aim.kind == BoneAim::Kind::Aim)
            turn = Aimed(aim, inherited);
        const bool own = turn.angularDistance(inherited) * kDegrees >= TPoseBuilder::NoTurnDegrees;
        mRides[size_t(bone)] = !own;
        mTurns[size_t(bone)] = own ? turn.normalized() : inherited;
    }
}

Eigen::Quaterniond PoseWalk::Aimed(const BoneAim& aim, const Eigen::Quaterniond& inherited) const
{
    const Vec3 target = (aim.targetBone >= 0 ? Vec3(mTurns[size_t(aim.targetBone)] * aim.target) : aim.target)
                            .normalized();
    const Eigen::Quaterniond swing = Eigen::Quaterniond::FromTwoVectors(inherited * aim.from, target) * inherited;
    if (!aim.twist)
        return swing;
    return TwistAbout(target, swing * aim.twistFrom, aim.twistTarget) * swing;
}

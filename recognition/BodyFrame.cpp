#include "BodyFrame.h"

#include <algorithm>
#include <cmath>

#include "NameEvidence.h"
#include "SkeletonGraph.h"

namespace
{
constexpr double kDegrees = 57.29577951308232;

Vec3 Horizontal(const Vec3& vector, const Vec3& up)
{
    return vector - vector.dot(up) * up;
}
} // namespace

BodyFrame::BodyFrame(const SkeletonGraph& graph, const NameEvidence& names, Body& body)
    : mGraph(graph), mNames(names), mBody(body)
{
}

Vec3 BodyFrame::Up() const
{
    const auto middle = [this](int a, int b) { return 0.5 * (mGraph.Position(a) + mGraph.Position(b)); };
    const Vec3 ankles = middle(mBody.legs[0].extremity, mBody.legs[1].extremity);
    const Vec3 thighs = middle(mBody.legs[0].upper, mBody.legs[1].upper);
    const Vec3 shoulders = middle(mBody.arms[0].upper, mBody.arms[1].upper);
    const Vec3 up = (thighs - ankles).normalized() + (shoulders - thighs).normalized();
    return up.norm() > 1e-9 ? SnappedToAxis(up.normalized()) : mBody.up;
}

double BodyFrame::BendVote(const Limb& limb, const Vec3& facing, double weight) const
{
    const Vec3 from = mGraph.Position(limb.upper);
    const Vec3 to = mGraph.Position(limb.extremity);
    const Vec3 joint = mGraph.Position(limb.lower);
    const Vec3 line = to - from;
    const double length = line.squaredNorm();
    if (length <= 0.0)
        return 0.0;
    const Vec3 offset = joint - (from + line * ((joint - from).dot(line) / length));
    return weight * std::clamp(offset.dot(facing) / (0.02 * mBody.scale), -1.0, 1.0);
}

double BodyFrame::GeometryVote(const Vec3& facing) const
{
    double vote = 0.0;
    for (const Limb& leg : mBody.legs)
    {
        // The toes point forward: from the foot to its toe, or to where the foot ends.
        const int foot = leg.extremity;
        const Vec3 toward = leg.toe >= 0 ? mGraph.Position(leg.toe) : mGraph.End(foot);
        const Vec3 step = Horizontal(toward - mGraph.Position(foot), mBody.up);
        if (step.norm() > 0.3 * (toward - mGraph.Position(foot)).norm() && step.norm() > 1e-9)
            vote += 3.0 * step.normalized().dot(facing);
        // Knees bend forward.
        vote += BendVote(leg, facing, 1.0);
    }
    // Elbows bend backward.
    for (const Limb& arm : mBody.arms)
        vote -= BendVote(arm, facing, 0.5);
    // Eyes and jaws sit in front of the head.
    if (mBody.head >= 0)
        for (int child : mGraph.Children(mBody.head))
            if (mNames[child].Of(Role::Face) >= 0.8f)
            {
                const Vec3 step = Horizontal(mGraph.Position(child) - mGraph.Position(mBody.head), mBody.up);
                if (step.norm() > 1e-9)
                    vote += 1.0 * step.normalized().dot(facing);
            }
    return vote;
}

double BodyFrame::NameVote() const
{
    double vote = 0.0;
    for (int side = 0; side < 2; ++side)
    {
        const double sign = side == 0 ? 1.0 : -1.0;
        for (const Limb* limb : {&mBody.legs[side], &mBody.arms[side]})
            for (int bone : limb->path)
            {
                const Side named = mNames[bone].side;
                vote += named == Side::Left ? sign : (named == Side::Right ? -sign : 0.0);
            }
    }
    return vote;
}

void BodyFrame::Orient()
{
    mBody.up = Up();
    const auto across = [this](const Limb& a, const Limb& b) {
        return mGraph.Position(a.upper) - mGraph.Position(b.upper);
    };
    Vec3 lateral = Horizontal(across(mBody.legs[0], mBody.legs[1]) + across(mBody.arms[0], mBody.arms[1]), mBody.up);
    if (lateral.norm() <= 1e-9)
        lateral = mBody.up.unitOrthogonal();
    lateral.normalize();
    // Facing if side 0 is the left: left = up x facing, so facing = left x up.
    const Vec3 facingIfLeft = lateral.cross(mBody.up);
    const double geometry = GeometryVote(facingIfLeft);
    const double names = NameVote();
    double vote = geometry;
    if (std::abs(geometry) >= 0.5)
        mBody.sideConfidence = std::tanh(std::abs(geometry) / 2.0);
    else if (names != 0.0)
    {
        vote = names;
        mBody.sideConfidence = 0.5;
    }
    else
    {
        // Nothing to go by: most exporters face the character along +Z.
        vote = facingIfLeft.z() >= 0.0 ? 1.0 : -1.0;
        mBody.sideConfidence = 0.2;
    }
    if (vote < 0.0)
    {
        std::swap(mBody.legs[0], mBody.legs[1]);
        std::swap(mBody.arms[0], mBody.arms[1]);
    }
    mBody.facing = SnappedToAxis(vote < 0.0 ? -facingIfLeft : facingIfLeft);
    if (std::abs(mBody.facing.dot(mBody.up)) > 1e-9)
        mBody.facing = (vote < 0.0 ? -facingIfLeft : facingIfLeft);
    mBody.left = mBody.up.cross(mBody.facing);
    mBody.legs[0].side = mBody.arms[0].side = Side::Left;
    mBody.legs[1].side = mBody.arms[1].side = Side::Right;
    // Names that put most of their sides on the wrong limbs are mirrored.
    const double agreement = NameVote();
    mBody.namesMirrored = agreement <= -3.0;
}

SkeletonRecognizer::PoseKind BodyFrame::Pose(const SkeletonGraph& graph, const Body& body)
{
    double elevation = 0.0;
    for (const Limb& arm : body.arms)
    {
        const Vec3 direction = (graph.Position(arm.extremity) - graph.Position(arm.upper)).normalized();
        elevation += 0.5 * std::asin(std::clamp(direction.dot(body.up), -1.0, 1.0)) * kDegrees;
    }
    using PoseKind = SkeletonRecognizer::PoseKind;
    if (elevation > 30.0)
        return PoseKind::Unknown;
    if (elevation > -20.0)
        return PoseKind::TPose;
    return elevation > -65.0 ? PoseKind::APose : PoseKind::ArmsDown;
}

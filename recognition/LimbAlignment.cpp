#include "LimbAlignment.h"

#include <algorithm>
#include <cmath>

#include "NameEvidence.h"
#include "SkeletonGraph.h"

namespace
{
constexpr int kJointLimit = 12;
// Human proportions, as ratios the scores aim at: upper arm to forearm, thigh to shin, both arm bones to the leg's
// reach, thigh and shin to the hip joint's height.
constexpr double kArmRatio = 1.1;
constexpr double kLegRatio = 1.0;
constexpr double kArmToReach = 0.57;
constexpr double kLegToHipHeight = 0.92;
constexpr double kNameWeight = 0.6;

double LogMiss(double value, double ideal)
{
    return value > 0.0 && ideal > 0.0 ? std::abs(std::log(value / ideal)) : 5.0;
}

// A joint between two chosen ones that lies on their line, well inside it, as a twist bone does: one near either
// end is a joint of its own (a buttock bone above the thigh).
bool Inline(const Vec3& point, const Vec3& from, const Vec3& to)
{
    const Vec3 line = to - from;
    const double length = line.norm();
    if (length <= 0.0)
        return false;
    const double along = (point - from).dot(line) / (length * length);
    return line.cross(point - from).norm() / length < 0.05 * length && along > 0.15 && along < 0.85;
}
} // namespace

LimbAlignment::LimbAlignment(const SkeletonGraph& graph, const NameEvidence& names, const Body& body)
    : mGraph(graph), mNames(names), mBody(body)
{
}

std::vector<int> LimbAlignment::Joints(const Limb& limb) const
{
    std::vector<int> joints;
    for (int bone : limb.path)
    {
        if (mNames.IsEndMarker(bone))
            continue;
        // A helper parent or cancel bone that only passes on to a joint at its own place: the joint plays the part.
        if (!joints.empty() && mGraph.Children(joints.back()).size() == 1 &&
            (mGraph.Position(bone) - mGraph.Position(joints.back())).norm() < 0.005 * mBody.scale)
            joints.pop_back();
        if (int(joints.size()) < kJointLimit)
            joints.push_back(bone);
    }
    return joints;
}

double LimbAlignment::NameSupport(int bone, Role role) const
{
    const NameReading& reading = mNames[bone];
    const float accessory = reading.Accessory();
    return reading.Support(role) - (accessory >= 0.8f ? accessory : 0.0f);
}

bool LimbAlignment::FansOut(int bone) const
{
    int branches = 0;
    for (int child : mGraph.Children(bone))
        branches += mNames.IsEndMarker(child) ? 0 : 1;
    return branches >= 2;
}

bool LimbAlignment::SplitsIntoFingers(int bone) const
{
    // Leaves without a tip beside a chain are helpers (twist bones hanging from a twist bone), not fingers.
    int fingers = 0;
    for (int child : mGraph.Children(bone))
    {
        const bool somewhere = !mGraph.Children(child).empty() || mGraph.HasTip(child);
        fingers += somewhere && !mNames.IsEndMarker(child) && !mNames.IsAccessory(child) ? 1 : 0;
    }
    return fingers >= 2;
}

double LimbAlignment::SkipCost(const std::vector<int>& path, int from, int to) const
{
    double cost = 0.0;
    const double span = (mGraph.Position(path[to]) - mGraph.Position(path[from])).norm();
    for (int i = from + 1; i < to; ++i)
    {
        const Vec3 at = mGraph.Position(path[i]);
        const bool onLine = Inline(at, mGraph.Position(path[from]), mGraph.Position(path[to]));
        // A helper standing on a chosen joint (a parent or cancel bone) only repeats it.
        const bool onJoint = std::min((at - mGraph.Position(path[from])).norm(),
                                      (at - mGraph.Position(path[to])).norm()) < 0.02 * span;
        const NameReading& reading = mNames[path[i]];
        if (onJoint || reading.Of(Role::Twist) >= 0.6f || reading.Of(Role::Helper) >= 0.8f)
            cost += 0.05;
        else
            cost += onLine ? 0.15 : 0.6;
    }
    return cost;
}

int LimbAlignment::RollBetween(const std::vector<int>& path, int from, int to) const
{
    for (int i = from + 1; i < to; ++i)
    {
        const bool onLine = Inline(mGraph.Position(path[i]), mGraph.Position(path[from]), mGraph.Position(path[to]));
        const NameReading& reading = mNames[path[i]];
        if (reading.Of(Role::Twist) >= 0.6f || (onLine && reading.Of(Role::Helper) < 0.8f))
            return path[i];
    }
    return -1;
}

void LimbAlignment::AlignArm(Limb& arm) const
{
    const std::vector<int> joints = Joints(arm);
    const int n = int(joints.size());
    const auto at = [this, &joints](int i) { return mGraph.Position(joints[i]); };
    std::vector<bool> fans(size_t(n), false);
    std::vector<bool> fingers(size_t(n), false);
    for (int i = 0; i < n; ++i)
    {
        fans[size_t(i)] = FansOut(joints[i]);
        fingers[size_t(i)] = SplitsIntoFingers(joints[i]);
    }
    double best = -1e300;
    for (int u = 0; u < n; ++u)
    {
        for (int f = u + 1; f < n; ++f)
        {
            for (int h = f + 1; h < n; ++h)
            {
                // The wrist is never past where the fingers split off.
                if (std::find(fingers.begin() + f + 1, fingers.begin() + h, true) != fingers.begin() + h)
                    continue;
                const double upper = (at(f) - at(u)).norm();
                const double fore = (at(h) - at(f)).norm();
                const double geometry = -2.0 * LogMiss(upper / fore, kArmRatio) -
                                        2.0 * LogMiss((upper + fore) / mBody.scale, kArmToReach);
                // The wrist is where the fingers fan out, or, when the hand has none, the last joint or the one
                // before a lone leaf that only marks where the hand ends.
                const bool handEnd = h == n - 2 && mGraph.Children(joints[n - 1]).empty();
                const double wrist = fans[size_t(h)] ? 1.0 : (h == n - 1 || handEnd ? 0.7 : 0.0);
                const double names = NameSupport(joints[u], Role::UpperArm) +
                                     NameSupport(joints[f], Role::ForeArm) + NameSupport(joints[h], Role::Hand);
                const double base = geometry + wrist + kNameWeight * names - SkipCost(joints, u, f) -
                                    SkipCost(joints, f, h);
                // The clavicle, if any, is a short bone before the upper arm; bones before it are extras.
                for (int c = -1; c < u; ++c)
                {
                    double score = base;
                    if (c >= 0)
                    {
                        const double clavicle = (at(u) - at(c)).norm();
                        score += clavicle < 0.8 * upper && clavicle > 0.1 * upper ? 0.3 : -1.0;
                        score += kNameWeight * NameSupport(joints[c], Role::Clavicle) - SkipCost(joints, c, u);
                    }
                    for (int i = 0; i < (c >= 0 ? c : u); ++i)
                        score -= mNames[joints[i]].Accessory() >= 0.8f ? 0.05 : 0.3;
                    if (score > best)
                    {
                        best = score;
                        arm.girdle = c >= 0 ? joints[c] : -1;
                        arm.upper = joints[u];
                        arm.lower = joints[f];
                        arm.extremity = joints[h];
                        arm.upperRoll = RollBetween(joints, u, f);
                        arm.lowerRoll = RollBetween(joints, f, h);
                        arm.fit = std::exp(0.5 * geometry);
                        arm.names = names / 3.0;
                    }
                }
            }
        }
    }
}

void LimbAlignment::AlignLeg(Limb& leg) const
{
    const std::vector<int> joints = Joints(leg);
    const int n = int(joints.size());
    const auto at = [this, &joints](int i) { return mGraph.Position(joints[i]); };
    double floor = leg.end.dot(mBody.up);
    for (int bone : joints)
        floor = std::min(floor, mGraph.Position(bone).dot(mBody.up));
    const auto height = [this, floor](const Vec3& point) { return point.dot(mBody.up) - floor; };
    double lowestJoint = 1e300;
    for (int bone : joints)
        lowestJoint = std::min(lowestJoint, height(mGraph.Position(bone)));
    // Where three or more toes split off, on the floor (bones around the ankle that shape the skin are no toes).
    const double toeHeight = lowestJoint + 0.04 * (height(at(0)) - lowestJoint);
    std::vector<bool> toes(size_t(n), false);
    for (int i = 0; i < n; ++i)
    {
        int count = 0;
        for (int child : mGraph.Children(joints[i]))
            count += !mNames.IsEndMarker(child) && !mNames.IsAccessory(child) &&
                             height(mGraph.Position(child)) < toeHeight ? 1 : 0;
        toes[size_t(i)] = count >= 3;
    }
    double best = -1e300;
    for (int u = 0; u < n; ++u)
    {
        // Bones above the thigh (a buttock, a hip joint bone) are extras; short ones cost little.
        double leading = 0.0;
        for (int i = 0; i < u; ++i)
            leading += (at(u) - at(i)).norm() < 0.3 * mBody.scale ? 0.15 : 0.5;
        for (int k = u + 1; k < n; ++k)
        {
            for (int f = k + 1; f < n; ++f)
            {
                const double thigh = (at(k) - at(u)).norm();
                const double shin = (at(f) - at(k)).norm();
                const double hipHeight = height(at(u));
                const double geometry = -2.0 * LogMiss(thigh / shin, kLegRatio) -
                                        2.0 * LogMiss((thigh + shin) / hipHeight, kLegToHipHeight);
                const auto onFloor = [&](int i) { return height(at(i)) < lowestJoint + 0.015 * hipHeight; };
                const double ankle = height(at(f)) <= 0.15 * hipHeight ? 0.5 : -0.5;
                const double names = NameSupport(joints[u], Role::Thigh) + NameSupport(joints[k], Role::Shin) +
                                     NameSupport(joints[f], Role::Foot);
                const double base = geometry + ankle + kNameWeight * names - leading - SkipCost(joints, u, k) -
                                    SkipCost(joints, k, f);
                // The toe, if any, runs forward along the floor from the foot; none is past where the toes split
                // off (toes that hang from the foot itself leave it none).
                for (int t = f; t < n; ++t)
                {
                    if (t > f && std::find(toes.begin() + f, toes.begin() + t, true) != toes.begin() + t)
                        break;
                    double score = base;
                    if (t > f)
                    {
                        // The toe's joint is the ball of the foot, on the floor in front of the ankle.
                        const Vec3 step = at(t) - at(f);
                        score += std::abs(step.dot(mBody.up)) < 0.8 * step.norm() ? 0.3 : -0.5;
                        score += onFloor(t) ? 0.8 : 0.0;
                        // The ankle stands above the floor the foot goes on along.
                        score -= onFloor(f) ? 0.5 : 0.0;
                        // A bare leaf past the ball of the foot, along the floor, only marks where the toes end.
                        const Vec3 along = at(t) - at(t - 1);
                        const bool bareLeaf = mGraph.Children(joints[t]).empty() && !mGraph.HasTip(joints[t]);
                        if (t == n - 1 && t > f + 1 && bareLeaf && std::abs(along.dot(mBody.up)) < 0.2 * along.norm() &&
                            height(at(t - 1)) - lowestJoint < 0.5 * (height(at(f)) - lowestJoint))
                            score -= 0.8;
                        score += kNameWeight * NameSupport(joints[t], Role::Toe) - SkipCost(joints, f, t);
                    }
                    else if (f + 1 < n)
                    {
                        score -= 0.3;
                    }
                    if (score > best)
                    {
                        best = score;
                        leg.upper = joints[u];
                        leg.lower = joints[k];
                        leg.extremity = joints[f];
                        leg.toe = t > f ? joints[t] : -1;
                        leg.upperRoll = RollBetween(joints, u, k);
                        leg.lowerRoll = RollBetween(joints, k, f);
                        leg.fit = std::exp(0.5 * geometry);
                        leg.names = names / 3.0;
                    }
                }
            }
        }
    }
}

#include "CentralChain.h"

#include <algorithm>
#include <cmath>

#include "NameEvidence.h"
#include "SkeletonGraph.h"

namespace
{
constexpr int kMaxSpine = 10; // Spine and Spine1 to Spine9
constexpr int kMaxNeck = 10;  // Neck and Neck1 to Neck9
// In the body's scale (hips to feet): how far a hips joint may stand from the thighs' start, where a neck joint
// starts relative to where the arms start (the clavicles' joints), how high a head joint stands at least above
// the shoulders, and where the top of the skull is.
constexpr double kHipsReach = 0.12;
constexpr double kNeckStart = 0.01;
constexpr double kHeadLow = 0.08;
constexpr double kSkullTop = 0.3;
constexpr double kSamePlace = 0.02;

double Clamp(double value)
{
    return std::clamp(value, -1.0, 1.0);
}
} // namespace

CentralChain::CentralChain(const SkeletonGraph& graph, const NameEvidence& names, Body& body)
    : mGraph(graph), mNames(names), mBody(body)
{
    mThighs = 0.5 * (mGraph.Position(body.legs[0].upper) + mGraph.Position(body.legs[1].upper));
    mShoulders = 0.5 * (mGraph.Position(body.arms[0].upper) + mGraph.Position(body.arms[1].upper));
    const auto root = [&](const Limb& arm) { return mGraph.Position(arm.girdle >= 0 ? arm.girdle : arm.upper); };
    mArmRoots = 0.5 * (root(body.arms[0]) + root(body.arms[1]));
}

void CentralChain::Find()
{
    ChooseHips();
    std::vector<int> rise = RiseAboveArms();
    ChooseHead(rise);
    const int armParent = mBody.arms[0].parent;
    // Up from the hips to the arms' trunk bone; a trunk bone left below the hips (a centre bone above legs that
    // hang beside the spine) is no part of it.
    const int start = mGraph.IsAncestorOrSelf(mBody.hips, armParent) ? mBody.hips : mBody.top;
    std::vector<int> central = WithoutDetours(mGraph.PathDown(start, armParent));
    if (!central.empty())
        central.erase(central.begin());
    // The rise above the arms is never spine.
    const int mostSpine = int(central.size());
    central.insert(central.end(), rise.begin(), rise.end());
    SplitSpineAndNeck(central, mostSpine);
}

std::vector<int> CentralChain::WithoutDetours(const std::vector<int>& path) const
{
    // Extra joints that step away and then back onto a joint's place (as spine joints that fold back onto the
    // pelvis, there only for animation, do) make a detour no spine bone stands for. A joint right on the one
    // before it (a lower back starting at the hips) is no detour.
    std::vector<int> kept;
    for (int bone : path)
    {
        const auto last = kept.empty() ? kept.end() : kept.end() - 1;
        const auto back = std::find_if(kept.begin(), last, [&](int earlier) {
            return (mGraph.Position(bone) - mGraph.Position(earlier)).norm() < kSamePlace * mBody.scale;
        });
        if (back != last)
            kept.erase(back + 1, kept.end());
        else
            kept.push_back(bone);
    }
    return kept;
}

bool CentralChain::IsPassThrough(int bone, int child) const
{
    for (int other : mGraph.Children(bone))
        if (other != child && mGraph.SubtreeSize(other) > 2)
            return false;
    return true;
}

void CentralChain::ChooseHips()
{
    const int legParent = mBody.legs[0].parent;
    const auto fromThighs = [this](int bone) { return (mGraph.Position(bone) - mThighs).norm() / mBody.scale; };
    // The bone that holds legs and arms, or a pass-through bone above it that stands nearer the thighs (legs that
    // hang from the first spine bone leave the hips one or two bones up).
    int holder = mBody.top;
    std::vector<int> candidates = {mBody.top};
    for (int at = mBody.top, up = 0; up < 2 && mGraph.Parent(at) >= 0 && IsPassThrough(mGraph.Parent(at), at); ++up)
    {
        at = mGraph.Parent(at);
        candidates.push_back(at);
        if (fromThighs(at) < fromThighs(holder) - 0.03)
            holder = at;
    }
    if (legParent != mBody.top)
        candidates.push_back(legParent);
    double best = -1e300;
    double second = -1e300;
    for (int candidate : candidates)
    {
        double score = -3.0 * std::max(0.0, fromThighs(candidate) - kHipsReach) + mNames[candidate].Support(Role::Hips);
        if (candidate == holder)
            score += 0.5;
        else if (candidate == legParent)
            score += fromThighs(holder) > kHipsReach ? 0.3 : 0.0;
        if (score > best)
        {
            second = best;
            best = score;
            mBody.hips = candidate;
        }
        else
        {
            second = std::max(second, score);
        }
    }
    mBody.hipsConfidence = candidates.size() == 1 ? 1.0 : 1.0 / (1.0 + std::exp(-2.0 * (best - second)));
}

double CentralChain::AboveShoulders(int bone) const
{
    return (mGraph.Position(bone) - mShoulders).dot(mBody.up) / mBody.scale;
}

std::vector<int> CentralChain::FollowUp(int from) const
{
    std::vector<int> chain;
    const Vec3 axis = mGraph.Position(mBody.hips);
    for (int at = from; at >= 0;)
    {
        chain.push_back(at);
        int next = -1;
        int branches = 0;
        int leaves = 0;
        double rise = 0.0;
        for (int child : mGraph.Children(at))
        {
            if (mNames.IsEndMarker(child))
                continue;
            ++branches;
            leaves += mGraph.Children(child).empty() ? 1 : 0;
            const Vec3 step = mGraph.Position(child) - mGraph.Position(at);
            const Vec3 offset = mGraph.Position(child) - axis;
            const double lateral = (offset - offset.dot(mBody.up) * mBody.up).norm();
            if (mNames.IsAccessory(child) || step.dot(mBody.up) < 0.3 * step.norm() || lateral > 0.2 * mBody.scale)
                continue;
            if (step.dot(mBody.up) > rise)
            {
                rise = step.dot(mBody.up);
                next = child;
            }
        }
        // Where many branches fan out (eyes, jaw, hair), or only features end (eyes and brows), the head has been
        // reached.
        at = branches >= 3 || (branches >= 2 && leaves == branches) ? -1 : next;
    }
    return chain;
}

std::vector<int> CentralChain::RiseAboveArms() const
{
    const int armParent = mBody.arms[0].parent;
    std::vector<int> best;
    double bestScore = 0.0;
    for (int child : mGraph.Children(armParent))
    {
        if (child == mBody.arms[0].path.front() || child == mBody.arms[1].path.front() || mNames.IsEndMarker(child))
            continue;
        const Vec3 step = mGraph.Position(child) - mGraph.Position(armParent);
        if (step.dot(mBody.up) < -kSamePlace * mBody.scale || mNames.IsAccessory(child))
            continue;
        const std::vector<int> chain = FollowUp(child);
        const double top = (mGraph.Position(chain.back()) - mGraph.Position(armParent)).dot(mBody.up);
        const double score = top / mBody.scale + 0.3 * std::max(mNames[child].Support({Role::Neck, Role::Head}), 0.0f);
        if (score > bestScore)
        {
            bestScore = score;
            best = chain;
        }
    }
    return best;
}

void CentralChain::ChooseHead(std::vector<int>& rise)
{
    // A leaf high above the shoulders is the top of the skull, not a joint.
    if (!rise.empty() && mGraph.Children(rise.back()).empty() && AboveShoulders(rise.back()) > kSkullTop &&
        mNames[rise.back()].Support(Role::Head) <= 0.5f)
        rise.pop_back();
    if (rise.empty())
        return;
    const int last = rise.back();
    const NameReading& name = mNames[last];
    const double score = 2.0 * Clamp((AboveShoulders(last) - kHeadLow) / 0.06) + 1.5 * name.Support(Role::Head) -
                         std::max(0.0f, name.Support(Role::Neck));
    mBody.headConfidence = 1.0 / (1.0 + std::exp(-std::abs(score)));
    if (score > 0.0)
    {
        mBody.head = last;
        rise.pop_back();
    }
}

void CentralChain::SplitSpineAndNeck(const std::vector<int>& central, int mostSpine)
{
    const int count = int(central.size());
    // neckness > 0: the bone looks like a neck bone.
    std::vector<double> neckness(count);
    for (int i = 0; i < count; ++i)
    {
        const NameReading& name = mNames[central[i]];
        const double aboveArms = (mGraph.Position(central[i]) - mArmRoots).dot(mBody.up) / mBody.scale;
        neckness[i] = 2.0 * Clamp((aboveArms - kNeckStart) / 0.05) +
                      (name.Support(Role::Neck) - name.Support({Role::Spine, Role::Chest}));
    }
    int split = std::min(count, 1);
    double best = -1e300;
    for (int k = std::min(count, 1); k <= std::max(mostSpine, split); ++k)
    {
        double score = 0.0;
        for (int i = 0; i < count; ++i)
            score += i < k ? -neckness[i] : neckness[i];
        if (score > best)
        {
            best = score;
            split = k;
        }
    }
    mBody.spine.assign(central.begin(), central.begin() + std::min(split, kMaxSpine));
    mBody.neck.assign(central.begin() + split, central.begin() + std::min(count, split + kMaxNeck));
}

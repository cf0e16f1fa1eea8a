#include "TrunkSearch.h"

#include <algorithm>
#include <cmath>

#include "NameEvidence.h"
#include "SkeletonGraph.h"

namespace
{
constexpr int kPathLimit = 24;       // no limb of a body has more joints on its main path
constexpr int kBranchesPerBone = 8;  // the longest branches of a bone are the ones worth pairing
constexpr size_t kPairsPerBone = 6;  // a head of hair holds many alike pairs; the limbs are elsewhere
constexpr size_t kPairLimit = 64;
constexpr double kMinLikeness = 0.5; // limbs mirror each other far better; large random trees' branches barely
constexpr double kNoRival = 10.0;

const std::initializer_list<Role> kLegRoles = {Role::Hips, Role::Thigh, Role::Shin, Role::Foot, Role::Toe};
const std::initializer_list<Role> kArmRoles = {Role::Clavicle, Role::UpperArm, Role::ForeArm, Role::Hand,
                                               Role::Thumb,    Role::Index,    Role::Middle,  Role::Ring,
                                               Role::Pinky,    Role::Finger,   Role::Metacarpal, Role::FingerBase};

// The point at a fraction of the way along a limb, from its first joint to its end.
Vec3 PointAlong(const SkeletonGraph& graph, const Limb& limb, double fraction)
{
    std::vector<Vec3> points;
    for (int bone : limb.path)
        points.push_back(graph.Position(bone));
    points.push_back(limb.end);
    double total = 0.0;
    for (size_t i = 1; i < points.size(); ++i)
        total += (points[i] - points[i - 1]).norm();
    double wanted = fraction * total;
    for (size_t i = 1; i < points.size(); ++i)
    {
        const double step = (points[i] - points[i - 1]).norm();
        if (wanted <= step && step > 0.0)
            return points[i - 1] + (points[i] - points[i - 1]) * (wanted / step);
        wanted -= step;
    }
    return points.back();
}

Vec3 Middle(const Vec3& a, const Vec3& b)
{
    return (a + b) * 0.5;
}
} // namespace

TrunkSearch::TrunkSearch(const SkeletonGraph& graph, const NameEvidence& names) : mGraph(graph), mNames(names)
{
}

std::vector<Limb> TrunkSearch::Branches(int parent) const
{
    std::vector<Limb> branches;
    for (int child : mGraph.Children(parent))
    {
        Limb limb;
        limb.parent = parent;
        limb.path = mGraph.MainPath(child, kPathLimit);
        if (limb.path.size() < 2)
            continue;
        limb.end = mGraph.End(limb.path.back());
        limb.length = (mGraph.Position(child) - mGraph.Position(parent)).norm() + mGraph.ChainLength(child);
        branches.push_back(std::move(limb));
    }
    std::stable_sort(branches.begin(), branches.end(),
                     [](const Limb& a, const Limb& b) { return a.length > b.length; });
    if (branches.size() > kBranchesPerBone)
        branches.resize(kBranchesPerBone);
    return branches;
}

double TrunkSearch::Likeness(const Limb& a, const Limb& b) const
{
    const double longer = std::max(a.length, b.length);
    if (longer <= 0.0 || std::min(a.length, b.length) / longer < 0.7)
        return 0.0;
    const size_t most = std::max(a.path.size(), b.path.size());
    const size_t fewest = std::min(a.path.size(), b.path.size());
    if (double(most - fewest) > std::max(1.0, 0.34 * double(most)))
        return 0.0;
    // Mirror b through the plane that halves the two limbs and compare it with a, point by point along both.
    static const double kFractions[] = {0.0, 0.25, 0.5, 0.75, 1.0};
    Vec3 centreA = Vec3::Zero();
    Vec3 centreB = Vec3::Zero();
    for (double fraction : kFractions)
    {
        centreA += PointAlong(mGraph, a, fraction);
        centreB += PointAlong(mGraph, b, fraction);
    }
    Vec3 normal = centreA - centreB;
    if (normal.norm() < 0.05 * longer)
        return 0.0;
    normal.normalize();
    const Vec3 middle = (centreA + centreB) / 10.0;
    double error = 0.0;
    for (double fraction : kFractions)
    {
        const Vec3 pointB = PointAlong(mGraph, b, fraction);
        const Vec3 mirrored = pointB - 2.0 * (pointB - middle).dot(normal) * normal;
        error += (PointAlong(mGraph, a, fraction) - mirrored).norm();
    }
    error /= std::size(kFractions) * longer;
    const double shape = std::min(a.length, b.length) / longer * std::exp(-error / 0.12);
    // A little below the same shape: the same bones in another pose.
    return std::max(shape, 0.9 * LengthLikeness(a, b));
}

double TrunkSearch::LengthLikeness(const Limb& a, const Limb& b) const
{
    const size_t count = std::min(a.path.size(), b.path.size());
    if (count < 2 || std::max(a.path.size(), b.path.size()) > count + 1)
        return 0.0;
    const auto at = [this](const Limb& limb, size_t i) { return mGraph.Position(limb.path[i]); };
    const Vec3 parent = mGraph.Position(a.parent);
    const double longer = std::max(a.length, b.length);
    // They stand apart from their first joint or, when both start at one place (clavicles at the top of the
    // spine), from their second: joints the pose turns the limb about, not ones it moves. There they mirror each
    // other through a plane that holds their parent's joint.
    size_t first = 0;
    if ((at(a, 0) - at(b, 0)).norm() < 0.05 * longer)
        first = 1;
    const Vec3 apart = at(a, first) - at(b, first);
    if (apart.norm() < 0.05 * longer)
        return 0.0;
    const Vec3 middle = 0.5 * (at(a, first) + at(b, first));
    double error = std::abs((at(a, first) - parent).norm() - (at(b, first) - parent).norm()) +
                   std::abs((middle - parent).dot(apart.normalized()));
    double total = std::max((at(a, 0) - parent).norm(), (at(b, 0) - parent).norm());
    for (size_t i = 1; i < count; ++i)
    {
        const double lengthA = (at(a, i) - at(a, i - 1)).norm();
        const double lengthB = (at(b, i) - at(b, i - 1)).norm();
        error += std::abs(lengthA - lengthB);
        total += std::max(lengthA, lengthB);
    }
    return total > 0.0 ? std::min(a.length, b.length) / longer * std::exp(-error / (0.05 * total)) : 0.0;
}

std::vector<TrunkSearch::Pair> TrunkSearch::FindPairs() const
{
    std::vector<Pair> pairs;
    for (int bone = 0; bone < mGraph.Count(); ++bone)
    {
        if (mGraph.Children(bone).size() < 2)
            continue;
        const std::vector<Limb> branches = Branches(bone);
        std::vector<Pair> own;
        for (size_t i = 0; i < branches.size(); ++i)
        {
            for (size_t j = i + 1; j < branches.size(); ++j)
            {
                Limb a = branches[i];
                Limb b = branches[j];
                // Branches sorted longest first: the longer one may have been led astray where it splits.
                if (b.length < 0.7 * a.length)
                    a = Rerouted(a, b.length);
                const double likeness = Likeness(a, b);
                if (likeness >= kMinLikeness)
                    own.push_back({a, b, likeness});
            }
        }
        // Long, well-mirrored pairs first here too: a skirt's many short chains mirror each other better than the
        // legs beside them do.
        std::stable_sort(own.begin(), own.end(), [](const Pair& x, const Pair& y) {
            return x.likeness * x.a.length > y.likeness * y.a.length;
        });
        own.resize(std::min(own.size(), kPairsPerBone));
        pairs.insert(pairs.end(), own.begin(), own.end());
    }
    // Long, well-mirrored pairs first; a large scene's hair and cloth pairs beyond the limit are never limbs.
    std::stable_sort(pairs.begin(), pairs.end(), [](const Pair& x, const Pair& y) {
        return x.likeness * x.a.length > y.likeness * y.a.length;
    });
    if (pairs.size() > kPairLimit)
        pairs.resize(kPairLimit);
    return pairs;
}

Limb TrunkSearch::Rerouted(const Limb& limb, double length) const
{
    Limb best = limb;
    double bestMiss = std::abs(std::log(limb.length / length));
    double along = (mGraph.Position(limb.path.front()) - mGraph.Position(limb.parent)).norm();
    for (size_t k = 0; k + 1 < limb.path.size(); ++k)
    {
        const int joint = limb.path[k];
        if (k > 0)
            along += (mGraph.Position(joint) - mGraph.Position(limb.path[k - 1])).norm();
        for (int child : mGraph.Children(joint))
        {
            if (child == limb.path[k + 1])
                continue;
            const double rerouted = along + (mGraph.Position(child) - mGraph.Position(joint)).norm() +
                                    mGraph.ChainLength(child);
            const double miss = std::abs(std::log(std::max(rerouted, 1e-12) / length));
            if (miss >= bestMiss)
                continue;
            best.path.assign(limb.path.begin(), limb.path.begin() + ptrdiff_t(k) + 1);
            for (int bone : mGraph.MainPath(child, kPathLimit - int(k) - 1))
                best.path.push_back(bone);
            best.end = mGraph.End(best.path.back());
            best.length = rerouted;
            bestMiss = miss;
        }
    }
    return best;
}

bool TrunkSearch::EndsInFingers(const Limb& limb) const
{
    for (size_t k = 2; k < limb.path.size(); ++k)
    {
        int fingers = 0;
        for (int child : mGraph.Children(limb.path[k]))
        {
            const bool somewhere = !mGraph.Children(child).empty() || mGraph.HasTip(child);
            fingers += somewhere && !mNames.IsEndMarker(child) && !mNames.IsAccessory(child) ? 1 : 0;
        }
        if (fingers >= 2)
            return true;
    }
    return false;
}

double TrunkSearch::NameFit(const Limb& limb, std::initializer_list<Role> roles) const
{
    double sum = 0.0;
    int counted = 0;
    for (int bone : limb.path)
    {
        if (mNames.IsEndMarker(bone))
            continue;
        const NameReading& reading = mNames[bone];
        const float accessory = reading.Accessory();
        // Words that only lean toward a helper ("ORG", "FK") count against the limb too: a rig's copies and
        // controls of a limb stand where the limb does.
        sum += reading.Support(roles) - (accessory >= 0.5f ? 0.8 * accessory : 0.0);
        ++counted;
    }
    return counted > 0 ? sum / counted : 0.0;
}

double TrunkSearch::SkinFit(const Limb& limb) const
{
    if (!mGraph.HasSkinInformation())
        return 0.0;
    int skinning = 0;
    for (int bone : limb.path)
        skinning += mGraph.Skinning(bone) == SkeletonRecognizer::Skinning::Skins ? 1 : 0;
    return double(skinning) / double(limb.path.size());
}

Body TrunkSearch::Assemble(const Pair& legs, const Pair& arms) const
{
    Body body;
    body.score = -1.0;
    const int legParent = legs.a.parent;
    const int armParent = arms.a.parent;
    // The arms hang above the legs, from neither of them; legs never hang from the chest.
    if (legParent == armParent || mGraph.IsAncestorOrSelf(armParent, legParent))
        return body;
    for (const Limb* leg : {&legs.a, &legs.b})
        if (mGraph.IsAncestorOrSelf(leg->path.front(), armParent))
            return body;
    for (const Limb* arm : {&arms.a, &arms.b})
        if (mGraph.IsAncestorOrSelf(arm->path.front(), legParent))
            return body;
    body.top = mGraph.CommonAncestor(legParent, armParent);
    if (body.top < 0)
        return body;

    body.legs = {legs.a, legs.b};
    body.arms = {arms.a, arms.b};
    const auto centre = [this](const Limb& limb) { return PointAlong(mGraph, limb, 0.5); };
    if ((centre(arms.a) - centre(arms.b)).dot(centre(legs.a) - centre(legs.b)) < 0.0)
        std::swap(body.arms[0], body.arms[1]);

    const Vec3 feet = Middle(legs.a.end, legs.b.end);
    const Vec3 legTop = Middle(mGraph.Position(legs.a.path.front()), mGraph.Position(legs.b.path.front()));
    const double reach = (legTop - feet).norm();
    if (reach <= 1e-9)
        return body;
    const Vec3 up = (legTop - feet) / reach;
    const Vec3 spine = Middle(mGraph.Position(arms.a.path.front()), mGraph.Position(arms.b.path.front())) - legTop;
    const double spineLength = spine.norm();
    if (spineLength < 0.2 * reach || spineLength > 3.0 * reach)
        return body;
    // A humanoid's spine stands on its legs; a quadruped's runs across them.
    const double upright = spine.dot(up) / spineLength;
    if (upright < 0.5)
        return body;
    for (const Limb* leg : {&legs.a, &legs.b})
    {
        const Vec3 down = leg->end - mGraph.Position(leg->path.front());
        if (-down.dot(up) < 0.6 * down.norm())
            return body;
    }
    // Hands never reach the ground, and stand apart.
    if ((Middle(arms.a.end, arms.b.end) - feet).dot(up) < 0.3 * reach ||
        (arms.a.end - arms.b.end).norm() < 0.25 * reach || (centre(legs.a) - centre(legs.b)).norm() < 0.03 * reach)
        return body;
    const double ratio = (arms.a.length + arms.b.length) / (legs.a.length + legs.b.length);
    if (ratio < 0.3 || ratio > 1.8)
        return body;

    const double names = 0.5 * (NameFit(legs.a, kLegRoles) + NameFit(legs.b, kLegRoles)) +
                         0.5 * (NameFit(arms.a, kArmRoles) + NameFit(arms.b, kArmRoles));
    const double skin = 0.25 * (SkinFit(legs.a) + SkinFit(legs.b) + SkinFit(arms.a) + SkinFit(arms.b));
    // Hands split into fingers; a cape or a pair of wings hanging from the chest does not.
    const double fingers = 0.5 * ((EndsInFingers(arms.a) ? 1.0 : 0.0) + (EndsInFingers(arms.b) ? 1.0 : 0.0));
    bool headAbove = false;
    for (int child : mGraph.Children(armParent))
    {
        const std::vector<int> path = mGraph.MainPath(child, 4);
        headAbove = headAbove || (mGraph.End(path.back()) - mGraph.Position(armParent)).dot(up) > 0.05 * reach;
    }
    body.scale = reach;
    // The feet reach forward to the toes; the spine and the legs together stand straighter.
    body.up = SnappedToAxis((spine / spineLength + up).normalized());
    body.score = 2.0 * (legs.likeness + arms.likeness) + 2.0 * upright - std::abs(std::log(ratio / 0.8)) +
                 1.5 * names + 1.5 * skin + (headAbove ? 0.5 : 0.0) + fingers;
    return body;
}

std::vector<Body> TrunkSearch::Find() const
{
    const std::vector<Pair> pairs = FindPairs();
    std::vector<Body> candidates;
    for (const Pair& legs : pairs)
    {
        for (const Pair& arms : pairs)
        {
            if (&legs == &arms)
                continue;
            Body body = Assemble(legs, arms);
            if (body.score < 0.0)
                continue;
            // Something of the same trunk hanging well below the feet means these "legs" are not the legs.
            const double feet = Middle(legs.a.end, legs.b.end).dot(body.up);
            for (const Pair& other : pairs)
                for (const Limb* limb : {&other.a, &other.b})
                    if (mGraph.IsAncestorOrSelf(body.top, limb->parent))
                        body.score -= 2.0 * std::clamp((feet - limb->end.dot(body.up)) / body.scale - 0.1, 0.0, 1.0);
            candidates.push_back(std::move(body));
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Body& x, const Body& y) { return x.score > y.score; });
    std::vector<Body> found;
    std::vector<bool> rivalled;
    for (const Body& candidate : candidates)
    {
        const auto overlaps = [this, &candidate](const Body& other) {
            return mGraph.IsAncestorOrSelf(candidate.top, other.top) ||
                   mGraph.IsAncestorOrSelf(other.top, candidate.top);
        };
        const size_t kept = std::find_if(found.begin(), found.end(), overlaps) - found.begin();
        if (kept == found.size())
        {
            found.push_back(candidate);
            found.back().margin = kNoRival;
            rivalled.push_back(false);
        }
        else if (!rivalled[kept])
        {
            // Candidates come best first: the first rival of a kept trunk is its closest.
            found[kept].margin = found[kept].score - candidate.score;
            rivalled[kept] = true;
        }
    }
    return found;
}

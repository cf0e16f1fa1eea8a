#include "Digits.h"

#include <algorithm>
#include <cmath>

#include "NameEvidence.h"
#include "SkeletonGraph.h"

namespace
{
constexpr int kPhalanges = 4;
constexpr int kDigitCount = 6; // thumb, index, middle, ring, pinky, extra
const Role kFingerRoles[] = {Role::Thumb, Role::Index, Role::Middle, Role::Ring, Role::Pinky, Role::Finger};

Vec3 Across(const Vec3& vector, const Vec3& along)
{
    return vector - vector.dot(along) * along;
}
} // namespace

Digits::Digits(const SkeletonGraph& graph, const NameEvidence& names, Body& body)
    : mGraph(graph), mNames(names), mBody(body)
{
}

Digits::Chain Digits::MakeChain(int first, int wrist) const
{
    Chain chain;
    for (int bone : mGraph.MainPath(first))
        if (!mNames.IsEndMarker(bone))
            chain.bones.push_back(bone);
    if (chain.bones.empty())
        return chain;
    // A first bone that starts at the wrist itself, or near it ahead of three more, runs through the palm.
    if (chain.bones.size() >= 2)
    {
        const Vec3 start = mGraph.Position(chain.bones[0]);
        const double knuckle = (mGraph.Position(chain.bones[1]) - start).norm();
        const double fromWrist = (start - mGraph.Position(wrist)).norm();
        chain.metacarpal = mNames[chain.bones[0]].Of(Role::Metacarpal) >= 0.6f || fromWrist < 0.25 * knuckle ||
                           (chain.bones.size() >= 4 && fromWrist < 0.75 * knuckle);
    }
    const size_t from = chain.metacarpal ? 1 : 0;
    chain.base = mGraph.Position(chain.bones[from]);
    chain.centre = Vec3::Zero();
    for (size_t i = from; i < chain.bones.size(); ++i)
        chain.centre += mGraph.Position(chain.bones[i]) / double(chain.bones.size() - from);
    Vec3 direction = mGraph.End(chain.bones.back()) - chain.base;
    if (direction.norm() <= 1e-12)
        direction = chain.base - mGraph.Position(wrist);
    chain.direction = direction.norm() > 1e-12 ? direction.normalized() : Vec3::Zero();
    return chain;
}

std::vector<Digits::Chain> Digits::ChainsBelow(int bone, double reach, int& carrier) const
{
    const auto usable = [this](int child) { return !mNames.IsEndMarker(child) && !mNames.IsAccessory(child); };
    std::vector<Chain> chains;
    carrier = -1;
    for (int child : mGraph.Children(bone))
    {
        if (!usable(child))
            continue;
        std::vector<int> carried;
        for (int grandchild : mGraph.Children(child))
            if (usable(grandchild))
                carried.push_back(grandchild);
        // A palm bone carrying several fingers: the fingers are its children. Only one that carries the whole
        // hand is the finger base; one of several palm bones is left as it is.
        if (carried.size() >= 2)
        {
            if (carried.size() >= 3 && carrier < 0)
                carrier = child;
            for (int finger : carried)
                chains.push_back(MakeChain(finger, bone));
        }
        else
        {
            chains.push_back(MakeChain(child, bone));
        }
    }
    // A weapon or a long helper held in the hand is no finger.
    const Vec3 origin = mGraph.Position(bone);
    chains.erase(std::remove_if(chains.begin(), chains.end(),
                                [&](const Chain& chain) {
                                    return chain.bones.empty() ||
                                           (mGraph.End(chain.bones.back()) - origin).norm() > reach;
                                }),
                 chains.end());
    // Nor, beside real fingers, is a lone joint that goes nowhere (a dummy to hold things by).
    const auto goesNowhere = [this](const Chain& chain) {
        return chain.bones.size() == 1 && !mGraph.HasTip(chain.bones[0]);
    };
    if (std::count_if(chains.begin(), chains.end(), [&](const Chain& chain) { return !goesNowhere(chain); }) >= 3)
        chains.erase(std::remove_if(chains.begin(), chains.end(), goesNowhere), chains.end());
    return chains;
}

int Digits::FindThumb(const std::vector<Chain>& chains, const Vec3& wrist, const Vec3& along, double& margin) const
{
    margin = 0.0;
    Vec3 centre = Vec3::Zero();
    for (const Chain& chain : chains)
        centre += chain.base;
    centre /= double(chains.size());
    double spread = 1e-12;
    double farthest = 1e-12;
    for (const Chain& chain : chains)
    {
        spread = std::max(spread, (chain.base - centre).norm());
        farthest = std::max(farthest, (chain.base - wrist).norm());
    }
    int best = -1;
    double bestScore = -1e300;
    double second = -1e300;
    for (size_t i = 0; i < chains.size(); ++i)
    {
        const NameReading& name = mNames[chains[i].bones.front()];
        // The thumb leaves the forearm's line, starts nearest the wrist and sits toward the front of the hand.
        const double leaving = 1.0 - chains[i].direction.dot(along);
        const double forward = (chains[i].base - centre).dot(mBody.facing) / spread;
        const double near = 1.0 - (chains[i].base - wrist).norm() / farthest;
        const double score = leaving + 0.3 * forward + 0.5 * near + 1.5 * name.Support(Role::Thumb) -
                             std::max(0.0f, name.Support({Role::Index, Role::Middle, Role::Ring, Role::Pinky}));
        if (score > bestScore)
        {
            second = bestScore;
            bestScore = score;
            best = int(i);
        }
        else
        {
            second = std::max(second, score);
        }
    }
    const bool named = mNames[chains[best].bones.front()].Of(Role::Thumb) >= 0.6f;
    if (chains.size() == 1)
        return named ? best : -1;
    margin = bestScore - second;
    // Five fingers have a thumb among them, however alike they look.
    return named || margin >= 0.1 || chains.size() >= 5 ? best : -1;
}

bool Digits::NamedDigits(std::vector<Chain>& chains) const
{
    std::vector<int> named;
    for (const Chain& chain : chains)
    {
        int digit = -1;
        for (int d = 1; d <= 4 && digit < 0; ++d)
            for (int bone : chain.bones)
                if (mNames[bone].Of(kFingerRoles[d]) >= 0.6f)
                {
                    digit = d;
                    break;
                }
        if (digit < 0 || std::find(named.begin(), named.end(), digit) != named.end())
            return false;
        named.push_back(digit);
    }
    for (size_t i = 0; i < chains.size(); ++i)
        chains[i].digit = named[i];
    return true;
}

void Digits::Place(const Chain& chain, bool hand, Side side, double certainty, bool soleFinger)
{
    const bool left = side == Side::Left;
    const int first = hand ? (left ? 50 : 74) : (left ? 98 : 122);
    const int inner = hand ? (left ? 146 : 152) : (left ? 158 : 164);
    size_t start = 0;
    const auto place = [&](int node, int bone) {
        Side nodeSide = Side::None;
        const Role role = NameEvidence::RoleOfNode(node, nodeSide);
        mBody.digits.push_back({node, bone, 0.8, certainty, mNames[bone].Support(role, mBody.NamedSide(nodeSide))});
    };
    // A bone named for the base of the fingers, or a palm bone before the only finger, as capture rigs have
    // between the hand and the one finger that stands for all four.
    if (hand && chain.bones.size() >= 2 &&
        (mNames[chain.bones[0]].Of(Role::FingerBase) >= 0.6f || (soleFinger && chain.metacarpal)))
    {
        mBody.digits.push_back({left ? 21 : 22, chain.bones[0], 0.7, certainty, mNames[chain.bones[0]].Of(Role::FingerBase)});
        start = 1;
    }
    else if (hand && chain.digit > 0 && chain.metacarpal)
    {
        place(inner + chain.digit, chain.bones[0]);
        start = 1;
    }
    for (size_t i = start; i < chain.bones.size(); ++i)
    {
        if (i - start < kPhalanges)
            place(first + 4 * chain.digit + int(i - start), chain.bones[i]);
        else
            mBody.extraDigits.push_back(chain.bones[i]);
    }
}

void Digits::ReadHand(const Limb& arm)
{
    const int wrist = arm.extremity;
    const Vec3 forearm = mGraph.Position(wrist) - mGraph.Position(arm.lower);
    if (forearm.norm() <= 1e-12)
        return;
    const Vec3 along = forearm.normalized();
    int carrier = -1;
    std::vector<Chain> chains = ChainsBelow(wrist, 1.2 * forearm.norm(), carrier);
    if (chains.empty())
        return;
    double margin = 0.0;
    const int thumb = FindThumb(chains, mGraph.Position(wrist), along, margin);
    std::vector<Chain> others;
    Vec3 centre = Vec3::Zero();
    for (size_t i = 0; i < chains.size(); ++i)
        if (int(i) != thumb)
        {
            others.push_back(chains[i]);
            centre += chains[i].base;
        }
    if (!others.empty())
        centre /= double(others.size());
    bool named = NamedDigits(others);
    if (!named)
    {
        // Across the palm from the thumb's side, which faces forward when there is no thumb.
        Vec3 across = Across(thumb >= 0 ? Vec3(chains[thumb].base - centre) : mBody.facing, along);
        std::stable_sort(others.begin(), others.end(), [&](const Chain& a, const Chain& b) {
            return (a.centre - centre).dot(across) > (b.centre - centre).dot(across);
        });
        for (size_t i = 0; i < others.size(); ++i)
            others[i].digit = std::min(int(i) + 1, kDigitCount - 1);
    }
    const double certainty = named ? 0.9 : std::clamp(0.5 + margin, 0.3, 0.9);
    if (thumb >= 0)
    {
        chains[thumb].digit = 0;
        Place(chains[thumb], true, arm.side, certainty);
    }
    for (size_t i = 0; i < others.size() && int(i) < kDigitCount - 1; ++i)
        Place(others[i], true, arm.side, certainty, others.size() == 1);
    if (carrier >= 0)
        mBody.digits.push_back({arm.side == Side::Left ? 21 : 22, carrier, 0.7, 0.6,
                                mNames[carrier].Support({Role::FingerBase, Role::Hand, Role::Metacarpal})});
}

void Digits::ReadFoot(const Limb& leg)
{
    const int host = leg.toe >= 0 ? leg.toe : leg.extremity;
    int carrier = -1;
    std::vector<Chain> chains = ChainsBelow(host, 0.3 * mBody.scale, carrier);
    // One chain beyond the foot is the toe itself, already placed, or its end.
    if (chains.size() < 2)
        return;
    const Vec3 middle = mGraph.Position(mBody.hips);
    // The big toe is the one nearest the body's middle.
    std::stable_sort(chains.begin(), chains.end(), [&](const Chain& a, const Chain& b) {
        return std::abs((a.base - middle).dot(mBody.left)) < std::abs((b.base - middle).dot(mBody.left));
    });
    for (size_t i = 0; i < chains.size() && int(i) < kDigitCount; ++i)
    {
        chains[i].digit = int(i);
        Place(chains[i], false, leg.side, 0.7);
    }
}

#include "CharacterReport.h"

#include <algorithm>
#include <cmath>

#include <zelkin/BoneCatalogue.h>

#include "NameEvidence.h"
#include "SkeletonGraph.h"

namespace
{
using LeftOut = SkeletonRecognizer::LeftOut;

constexpr double kWeakest = 0.3; // below this an optional node stays empty
constexpr int kLeafRollLevels = 5;

// Node numbers by side (0 left, 1 right).
constexpr int kThigh[] = {2, 5};
constexpr int kShin[] = {3, 6};
constexpr int kFoot[] = {4, 7};
constexpr int kToe[] = {16, 17};
constexpr int kThighRoll[] = {41, 43};
constexpr int kShinRoll[] = {42, 44};
constexpr int kClavicle[] = {18, 19};
constexpr int kUpperArm[] = {9, 12};
constexpr int kForeArm[] = {10, 13};
constexpr int kHand[] = {11, 14};
constexpr int kUpperArmRoll[] = {45, 47};
constexpr int kForeArmRoll[] = {46, 48};

double Confidence(const Placement& placement)
{
    const double name = placement.name;
    return std::clamp(0.5 * placement.hierarchy + 0.3 * placement.geometry + 0.2 * std::max(name, 0.0) +
                          0.4 * std::min(name, 0.0),
                      0.0, 1.0);
}

LeftOut ReasonOfName(Role role)
{
    switch (role)
    {
    case Role::End: return LeftOut::EndMarker;
    case Role::Twist:
    case Role::Helper: return LeftOut::Helper;
    case Role::Face:
    case Role::Hair: return LeftOut::FaceOrHair;
    case Role::Prop: return LeftOut::Prop;
    case Role::Root: return LeftOut::AboveHips;
    default: return LeftOut::Appendage;
    }
}
} // namespace

CharacterReport::CharacterReport(const SkeletonGraph& graph, const NameEvidence& names, const Body& body)
    : mGraph(graph), mNames(names), mBody(body), mTrunk(0.5 + 0.5 * std::tanh(body.margin / 2.0))
{
}

Placement CharacterReport::Make(int node, int bone, double hierarchy, double geometry) const
{
    Side side = Side::None;
    const Role role = NameEvidence::RoleOfNode(node, side);
    const NameReading& name = mNames[bone];
    const double support =
        role == Role::Spine ? name.Support({Role::Spine, Role::Chest}) : name.Support(role, mBody.NamedSide(side));
    return {node, bone, hierarchy, geometry, support};
}

void CharacterReport::AddTrunk(std::vector<Placement>& placements) const
{
    placements.push_back(Make(1, mBody.hips, mTrunk * mBody.hipsConfidence, 0.8));
    for (size_t i = 0; i < mBody.spine.size(); ++i)
        placements.push_back(Make(i == 0 ? 8 : 22 + int(i), mBody.spine[i], mTrunk, 0.8));
    for (size_t i = 0; i < mBody.neck.size(); ++i)
        placements.push_back(Make(i == 0 ? 20 : 31 + int(i), mBody.neck[i], mTrunk, 0.8));
    if (mBody.head >= 0)
        placements.push_back(Make(15, mBody.head, mTrunk, mBody.headConfidence));
}

void CharacterReport::AddLimbs(std::vector<Placement>& placements) const
{
    // Which side is which is only as sure as the facing.
    const double sided = mTrunk * (0.5 + 0.5 * mBody.sideConfidence);
    for (int side = 0; side < 2; ++side)
    {
        const auto add = [&](int node, int bone, double fit) {
            if (bone >= 0)
                placements.push_back(Make(node, bone, sided, fit));
        };
        const Limb& leg = mBody.legs[side];
        add(kThigh[side], leg.upper, leg.fit);
        add(kShin[side], leg.lower, leg.fit);
        add(kFoot[side], leg.extremity, leg.fit);
        add(kToe[side], leg.toe, leg.fit);
        add(kThighRoll[side], leg.upperRoll, 0.6);
        add(kShinRoll[side], leg.lowerRoll, 0.6);
        const Limb& arm = mBody.arms[side];
        add(kClavicle[side], arm.girdle, arm.fit);
        add(kUpperArm[side], arm.upper, arm.fit);
        add(kForeArm[side], arm.lower, arm.fit);
        add(kHand[side], arm.extremity, arm.fit);
        add(kUpperArmRoll[side], arm.upperRoll, 0.6);
        add(kForeArmRoll[side], arm.lowerRoll, 0.6);
    }
}

void CharacterReport::AddLeafRolls(std::vector<Placement>& placements) const
{
    // Twist bones beside a limb bone, in the order of the eight limb bones the leaf roll nodes follow.
    const struct
    {
        const Limb& limb;
        bool upper;
    } segments[] = {{mBody.legs[0], true}, {mBody.legs[0], false}, {mBody.legs[1], true}, {mBody.legs[1], false},
                    {mBody.arms[0], true}, {mBody.arms[0], false}, {mBody.arms[1], true}, {mBody.arms[1], false}};
    for (int index = 0; index < 8; ++index)
    {
        const Limb& limb = segments[index].limb;
        const int bone = segments[index].upper ? limb.upper : limb.lower;
        const int inline_ = segments[index].upper ? limb.upperRoll : limb.lowerRoll;
        // One segment never mixes an inline roll bone with leaf ones.
        if (bone < 0 || inline_ >= 0)
            continue;
        std::vector<int> twists;
        for (int child : mGraph.Children(bone))
            if (std::find(limb.path.begin(), limb.path.end(), child) == limb.path.end() &&
                mNames[child].Of(Role::Twist) >= 0.6f && mNames[child].Of(Role::Helper) < 0.8f)
                twists.push_back(child);
        std::stable_sort(twists.begin(), twists.end(), [&](int a, int b) {
            return (mGraph.Position(a) - mGraph.Position(bone)).norm() <
                   (mGraph.Position(b) - mGraph.Position(bone)).norm();
        });
        for (int level = 0; level < kLeafRollLevels && level < int(twists.size()); ++level)
            placements.push_back(Make(172 + 8 * level + index, twists[level], mTrunk, 0.6));
    }
}

std::vector<Placement> CharacterReport::Placements() const
{
    std::vector<Placement> placements;
    AddTrunk(placements);
    AddLimbs(placements);
    AddLeafRolls(placements);
    placements.insert(placements.end(), mBody.digits.begin(), mBody.digits.end());
    return placements;
}

SkeletonRecognizer::LeftOut CharacterReport::ReasonFor(int bone, const std::vector<bool>& inLimbOrSpine) const
{
    if (std::find(mBody.extraDigits.begin(), mBody.extraDigits.end(), bone) != mBody.extraDigits.end())
        return LeftOut::NoNodeLeft;
    if (mNames.IsEndMarker(bone))
        return LeftOut::EndMarker;
    if (mGraph.IsAncestorOrSelf(bone, mBody.hips))
        return LeftOut::AboveHips;
    float weight = 0.0f;
    const Role strongest = mNames[bone].Strongest(&weight);
    if (mNames.IsAccessory(bone))
        return ReasonOfName(strongest);
    if (inLimbOrSpine[bone])
        return mGraph.Children(bone).empty() ? LeftOut::EndMarker : LeftOut::ExtraInChain;
    if (mBody.head >= 0 && mGraph.IsAncestorOrSelf(mBody.head, bone))
        return LeftOut::FaceOrHair;
    const int parent = mGraph.Parent(bone);
    if (mGraph.Children(bone).empty() && parent >= 0 && mGraph.Children(parent).size() == 1)
        return LeftOut::EndMarker;
    return LeftOut::Appendage;
}

SkeletonRecognizer::Character CharacterReport::Make(int root, SkeletonRecognizer::PoseKind pose) const
{
    SkeletonRecognizer::Character character;
    character.root = root;
    character.hips = mBody.hips;
    character.pose = pose;
    const auto toArray = [](const Vec3& v) { return SkeletonRecognizer::Vector {v.x(), v.y(), v.z()}; };
    character.frame = {toArray(mBody.up), toArray(mBody.facing), toArray(mBody.left), mBody.namesMirrored};

    std::vector<bool> placed(mGraph.Count(), false);
    std::vector<bool> nodeTaken(BoneCatalogue::NodeCount, false);
    std::vector<bool> weak(mGraph.Count(), false);
    double required = 0.0;
    for (const Placement& placement : Placements())
    {
        if (placement.bone < 0 || placed[placement.bone] || nodeTaken[placement.node])
            continue;
        const double confidence = Confidence(placement);
        if (confidence < kWeakest && !BoneCatalogue::IsRequired(placement.node))
        {
            weak[placement.bone] = true;
            continue;
        }
        placed[placement.bone] = true;
        nodeTaken[placement.node] = true;
        character.nodes.push_back({placement.node, placement.bone, confidence,
                                   {placement.hierarchy, placement.geometry, placement.name}});
        if (BoneCatalogue::IsRequired(placement.node))
            required += confidence / BoneCatalogue::RequiredCount;
    }
    std::sort(character.nodes.begin(), character.nodes.end(),
              [](const auto& a, const auto& b) { return a.nodeId < b.nodeId; });
    character.confidence = required;

    std::vector<bool> inLimbOrSpine(mGraph.Count(), false);
    const auto mark = [&inLimbOrSpine](const std::vector<int>& bones) {
        for (int bone : bones)
            inLimbOrSpine[bone] = true;
    };
    for (const Limb* limb : {&mBody.legs[0], &mBody.legs[1], &mBody.arms[0], &mBody.arms[1]})
    {
        mark(limb->path);
        mark(mGraph.PathDown(mBody.hips, limb->parent));
    }
    mark(mGraph.PathDown(mBody.top, mBody.arms[0].parent));
    for (int bone = root; bone < mGraph.Count(); ++bone)
    {
        if (placed[bone] || !mGraph.IsAncestorOrSelf(root, bone))
            continue;
        character.unmapped.push_back({bone, weak[bone] ? LeftOut::WeakEvidence : ReasonFor(bone, inLimbOrSpine)});
    }
    return character;
}

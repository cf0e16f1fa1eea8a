// Recognizing humanoids, step by step:
//   1. read the skeleton: joints, what hangs below each bone, and (when asked) what each name says;
//   2. find trunks: two mirrored legs pointing down below two mirrored arms on an upright spine;
//   3. align each limb: clavicle, upper arm, forearm and hand; thigh, shin, foot and toe (a foot parented
//      elsewhere found where the shin ends);
//   4. the middle: hips, spine, neck and head;
//   5. the character's own frame, and which limbs are the left ones;
//   6. fingers and toes;
//   7. the report: nodes with confidence and evidence, and why every other bone was left out.
#include <zelkin/SkeletonRecognizer.h>

#include <algorithm>

#include <QCoreApplication>

#include "BodyFrame.h"
#include "CentralChain.h"
#include "CharacterReport.h"
#include "Digits.h"
#include "LimbAlignment.h"
#include "NameEvidence.h"
#include "SkeletonGraph.h"
#include "TemplateOpinions.h"
#include "TrunkSearch.h"

namespace
{
// A foot parented elsewhere (to the root, say) still stands where the shin ends: about as far below the knee as
// the knee is below the hip. The leg then goes on through it, and the body's size is measured again.
void AttachDetachedFeet(const SkeletonGraph& graph, const NameEvidence& names, Body& body)
{
    std::vector<bool> taken(size_t(graph.Count()), false);
    for (const Limb* limb : {&body.legs[0], &body.legs[1], &body.arms[0], &body.arms[1]})
        for (int bone : limb->path)
            taken[size_t(bone)] = true;
    bool attached = false;
    for (Limb& leg : body.legs)
    {
        std::vector<int> joints;
        for (int bone : leg.path)
            if (!names.IsEndMarker(bone))
                joints.push_back(bone);
        if (joints.size() != 2)
            continue;
        const Vec3 knee = graph.Position(joints[1]);
        const Vec3 ankle = 2.0 * knee - graph.Position(joints[0]);
        double nearest = 0.25 * (knee - graph.Position(joints[0])).norm();
        int foot = -1;
        for (int bone = 0; bone < graph.Count(); ++bone)
        {
            const double distance = (graph.Position(bone) - ankle).norm();
            if (distance < nearest && !taken[size_t(bone)] && !names.IsAccessory(bone) && !names.IsEndMarker(bone))
            {
                nearest = distance;
                foot = bone;
            }
        }
        if (foot < 0)
            continue;
        leg.path = joints;
        for (int bone : graph.MainPath(foot))
            leg.path.push_back(bone);
        leg.end = graph.End(leg.path.back());
        attached = true;
    }
    if (attached)
    {
        const Vec3 top = 0.5 * (graph.Position(body.legs[0].path.front()) + graph.Position(body.legs[1].path.front()));
        body.scale = (top - 0.5 * (body.legs[0].end + body.legs[1].end)).norm();
    }
}

bool AlignLimbs(const SkeletonGraph& graph, const NameEvidence& names, Body& body)
{
    const LimbAlignment alignment(graph, names, body);
    for (Limb& leg : body.legs)
        alignment.AlignLeg(leg);
    for (Limb& arm : body.arms)
        alignment.AlignArm(arm);
    // A limb without its three main joints is no limb of a humanoid.
    for (const Limb* limb : {&body.legs[0], &body.legs[1], &body.arms[0], &body.arms[1]})
        if (limb->upper < 0 || limb->lower < 0 || limb->extremity < 0)
            return false;
    return true;
}

// The highest bone above the body's trunk that holds no other character.
int CharacterRoot(const SkeletonGraph& graph, const std::vector<Body>& bodies, const Body& body)
{
    int root = body.top;
    while (graph.Parent(root) >= 0)
    {
        const int parent = graph.Parent(root);
        const bool shared = std::any_of(bodies.begin(), bodies.end(), [&](const Body& other) {
            return &other != &body && graph.IsAncestorOrSelf(parent, other.top);
        });
        if (shared)
            break;
        root = parent;
    }
    return root;
}
} // namespace

SkeletonRecognizer::SkeletonRecognizer() = default;

SkeletonRecognizer::SkeletonRecognizer(const TemplateLibrary& templates)
    : mTemplates(std::make_unique<TemplateOpinions>(templates))
{
}

SkeletonRecognizer::~SkeletonRecognizer() = default;

SkeletonRecognizer::Result SkeletonRecognizer::Recognize(const std::vector<Bone>& bones) const
{
    SkeletonGraph graph(bones);
    const NameEvidence names(bones, graph, mTemplates.get());
    graph.IgnoreInChains([&names](int bone) { return names.IsAccessory(bone); });

    std::vector<Body> bodies;
    for (Body& body : TrunkSearch(graph, names).Find())
    {
        AttachDetachedFeet(graph, names, body);
        if (!AlignLimbs(graph, names, body))
            continue;
        CentralChain(graph, names, body).Find();
        BodyFrame(graph, names, body).Orient();
        Digits digits(graph, names, body);
        for (const Limb& arm : body.arms)
            digits.ReadHand(arm);
        for (const Limb& leg : body.legs)
            digits.ReadFoot(leg);
        bodies.push_back(std::move(body));
    }
    std::sort(bodies.begin(), bodies.end(), [](const Body& a, const Body& b) { return a.hips < b.hips; });

    Result result;
    std::vector<bool> claimed(graph.Count(), false);
    for (const Body& body : bodies)
    {
        const int root = CharacterRoot(graph, bodies, body);
        result.characters.push_back(CharacterReport(graph, names, body).Make(root, BodyFrame::Pose(graph, body)));
        for (int bone = root; bone < graph.Count(); ++bone)
            claimed[bone] = claimed[bone] || graph.IsAncestorOrSelf(root, bone);
    }
    for (int bone = 0; bone < graph.Count(); ++bone)
        if (!claimed[bone])
            result.outside.push_back(bone);
    return result;
}

QString SkeletonRecognizer::PoseKindName(PoseKind pose)
{
    switch (pose)
    {
    case PoseKind::TPose: return QCoreApplication::translate("SkeletonRecognizer", "T-pose");
    case PoseKind::APose: return QCoreApplication::translate("SkeletonRecognizer", "A-pose");
    case PoseKind::ArmsDown: return QCoreApplication::translate("SkeletonRecognizer", "arms down");
    case PoseKind::Unknown: break;
    }
    return QCoreApplication::translate("SkeletonRecognizer", "unknown");
}

QString SkeletonRecognizer::LeftOutName(LeftOut reason)
{
    switch (reason)
    {
    case LeftOut::AboveHips: return QCoreApplication::translate("SkeletonRecognizer", "above the hips");
    case LeftOut::EndMarker: return QCoreApplication::translate("SkeletonRecognizer", "end marker");
    case LeftOut::Helper: return QCoreApplication::translate("SkeletonRecognizer", "helper bone");
    case LeftOut::FaceOrHair: return QCoreApplication::translate("SkeletonRecognizer", "face or hair");
    case LeftOut::Appendage: return QCoreApplication::translate("SkeletonRecognizer", "appendage");
    case LeftOut::Prop: return QCoreApplication::translate("SkeletonRecognizer", "prop or socket");
    case LeftOut::ExtraInChain: return QCoreApplication::translate("SkeletonRecognizer", "extra joint in a chain");
    case LeftOut::NoNodeLeft: return QCoreApplication::translate("SkeletonRecognizer", "no node left");
    case LeftOut::WeakEvidence: break;
    }
    return QCoreApplication::translate("SkeletonRecognizer", "weak evidence");
}

QString SkeletonRecognizer::NoHumanoidText(int boneCount)
{
    return QCoreApplication::translate("SkeletonRecognizer", "No humanoid found among the skeleton's %n bone(s).",
                                       nullptr, boneCount);
}

#pragma once

#include <array>
#include <memory>
#include <vector>

#include <QString>
#include <QStringList>

#include <zelkin/CharacterizationExport.h>

class TemplateLibrary;
class TemplateOpinions;

// Finds the humanoids in a skeleton and which bone plays which node, from the shape of the skeleton first and its
// bone names second: no template has to spell the names. Deterministic; a skeleton that is not a humanoid (a
// quadruped, a chain, a random tree) gives no character rather than a guess.
class ZELKIN_CHARACTERIZATION_EXPORT SkeletonRecognizer
{
public:
    using Vector = std::array<double, 3>;

    enum class Skinning
    {
        Unknown,     // the host cannot tell
        Skins,       // the bone deforms a mesh
        DoesNotSkin  // the file has skinned meshes, and this bone deforms none of them
    };

    struct Bone
    {
        QString name;
        // Index of the parent in the list; the parent comes first. Anything else makes the bone a root.
        int parent = -1;
        // Global rest-pose position of the joint, in any units and axes.
        Vector position {};
        Skinning skinning = Skinning::Unknown;
        // Where the bone ends, when the file marks it without a bone of its own (a BVH end site).
        bool hasTip = false;
        Vector tip {};
    };

    enum class PoseKind
    {
        Unknown,
        TPose,    // arms within 20 degrees of horizontal
        APose,    // arms 20 to 65 degrees down
        ArmsDown
    };

    // What made a node's bone: each source's support, 0 none to 1 full; the name's is negative when the name
    // contradicts the choice.
    struct Evidence
    {
        double hierarchy = 0.0;
        double geometry = 0.0;
        double name = 0.0;
    };

    struct NodeMatch
    {
        int nodeId = -1;
        int bone = -1;
        double confidence = 0.0; // 0 to 1
        Evidence evidence;
    };

    enum class LeftOut
    {
        AboveHips,      // roots, armature and mover bones above the body
        EndMarker,      // a leaf that only marks where its parent ends
        Helper,         // twist, IK, control, corrective and deform-copy bones
        FaceOrHair,     // eyes, jaw, hair and the like, above the neck
        Appendage,      // tails, skirts, cloth and other chains beside the limbs
        Prop,           // weapons and attachment sockets
        ExtraInChain,   // an extra joint inside a limb or the spine that no node stands for
        NoNodeLeft,     // more spine, neck or finger joints than there are nodes
        WeakEvidence    // the evidence was too weak or contradictory to choose
    };

    struct UnmappedBone
    {
        int bone = -1;
        LeftOut reason = LeftOut::WeakEvidence;
    };

    // The character's own axes, unit vectors in the skeleton's frame: left = up x facing.
    struct Frame
    {
        Vector up {};
        Vector facing {};
        Vector left {};
        // Most bones that name a side name the other one than where they stand.
        bool namesMirrored = false;
    };

    struct Character
    {
        int root = -1; // the topmost bone that belongs to this character alone
        int hips = -1;
        Frame frame;
        PoseKind pose = PoseKind::Unknown;
        double confidence = 0.0;
        std::vector<NodeMatch> nodes;         // in node order
        std::vector<UnmappedBone> unmapped;   // the character's other bones, in bone order
    };

    struct Result
    {
        std::vector<Character> characters; // in the order of their hips in the bone list
        // Bones that belong to no character (everything, when no humanoid was found).
        std::vector<int> outside;
    };

    // Without templates names are read by their words alone; with them, the library's templates add their opinion.
    SkeletonRecognizer();
    explicit SkeletonRecognizer(const TemplateLibrary& templates);
    ~SkeletonRecognizer();
    SkeletonRecognizer(const SkeletonRecognizer&) = delete;
    SkeletonRecognizer& operator=(const SkeletonRecognizer&) = delete;

    Result Recognize(const std::vector<Bone>& bones) const;

    // For reports: "T-pose", "A-pose", "arms down", "unknown".
    static QString PoseKindName(PoseKind pose);
    // For reports, e.g. "helper bone".
    static QString LeftOutName(LeftOut reason);
    // "No humanoid found among the skeleton's N bones."
    static QString NoHumanoidText(int boneCount);

private:
    std::unique_ptr<TemplateOpinions> mTemplates;
};

#pragma once

#include <map>
#include <string>
#include <vector>

#include <assimp/matrix4x4.h>
#include <assimp/quaternion.h>

#include <zelkin/ZELSolver.h>

struct aiNode;
struct aiScene;

// Picks the skeleton out of an imported node tree.
//
// With skinned meshes, the bones are the nodes that skin a mesh and their ancestors below the root. Without, every
// node is a joint except the root (unless an animation drives it, as a BVH root), nodes holding meshes, cameras or
// lights, and BVH end sites: those are leaf markers, not joints anyone maps. Assimp's FBX pivot helpers
// ("Name_$AssimpFbx$_PreRotation" ...) are never bones: their transforms fold into the bones below them, and a
// pre-rotation helper gives its bone's pre-rotation. Nodes that are not bones still count in the transforms.
class SkeletonExtraction
{
public:
    struct Bone
    {
        std::string name;  // unique: a name that is empty or taken gets a numbered suffix
        int parent = -1;   // an earlier bone
        aiMatrix4x4 local; // from the parent bone (for a root, from the world)
        aiQuaternion preRotation;
        ZELRotationOrder rotationOrder = ZELEulerXYZ;
        bool skinsMesh = false;
        bool hasTip = false;
        aiVector3D tip; // where a marker leaf says the bone ends, in its own frame
    };

    // `orders`: rotation orders by node name, for formats that keep them outside the node tree.
    SkeletonExtraction(const aiScene& source, const std::map<std::string, ZELRotationOrder>& orders);

    // The bones parent-first, in file order.
    std::vector<Bone> Bones() const;

private:
    struct Entry
    {
        const aiNode* node;
        int parent;
        bool bone;
        bool skinning;
    };

    void CollectNodes();
    void MarkSkinnedBones();
    void MarkJoints();
    bool IsHolder(const aiNode& node) const;
    bool IsAnimated(const aiNode& node) const;
    bool IsTipMarker(const aiNode& node) const;
    void CollectPreRotations();

    const aiScene& mSource;
    const std::map<std::string, ZELRotationOrder> mOrders;
    std::vector<Entry> mEntries; // pre-order, so every parent comes before its children
    std::map<std::string, aiQuaternion> mPreRotations;
};

#pragma once

#include <vector>

#include <QHash>
#include <QMatrix4x4>
#include <QQuaternion>
#include <QString>

#include <zelkin/ZELSolver.h>

struct aiNode;
struct aiScene;
class Scene;

// Picks the skeleton out of an imported node tree and adds it to a scene.
//
// With skinned meshes, the bones are the nodes that skin a mesh and their ancestors below the root. Without, every
// node is a joint except the root (unless an animation drives it, as a BVH root), nodes holding meshes, cameras or
// lights, and BVH end sites: those are leaf markers, not joints anyone maps. Assimp's FBX pivot helpers
// ("Name_$AssimpFbx$_PreRotation" ...) are never bones: their transforms fold into the bones below them, and a
// pre-rotation helper gives its bone's pre-rotation. Nodes that are not bones still count in the transforms.
class SceneBuilder
{
public:
    // `orders`: rotation orders by node name, for formats that keep them outside the node tree.
    SceneBuilder(const aiScene& source, const QHash<QString, ZELRotationOrder>& orders);

    // Adds the bones parent-first in file order. A name that is empty or already taken gets a numbered suffix,
    // since the tool knows bones by name alone.
    void Build(Scene& scene) const;

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
    // A leaf that marks where its bone ends rather than anything of its own.
    bool IsTipMarker(const aiNode& node) const;
    void CollectPreRotations();
    QString UniqueName(const Scene& scene, const QString& wanted) const;

    const aiScene& mSource;
    const QHash<QString, ZELRotationOrder> mOrders;
    // Pre-order, so every parent comes before its children.
    std::vector<Entry> mEntries;
    QHash<QString, QQuaternion> mPreRotations;
};

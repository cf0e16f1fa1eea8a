#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <vector>

#include "RecognitionRigs.h"

// Rigs written to files the way other programs write them, so that the tests read them back as users do: through
// Assimp and the zelkin program.
namespace rigfiles
{
struct Options
{
    // A transform for a node named "Armature" above every bone (row-major 4x4): a package that turns and scales
    // the whole skeleton. The file's bones then stand where this transform puts the rig's positions.
    std::array<double, 16> armature {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    bool hasArmature = false;
    // A mesh node beside the skeleton with a mesh skinned by the bones that skin (every bone, when the rig does not
    // say), and nodes that are no bones: a camera, a light, an empty group holding a prop mesh.
    bool skinned = false;
    // Where the nodes stand, bone by bone, when that differs from the pose the mesh was bound in (the rig's).
    std::vector<SkeletonRecognizer::Vector> nodePose;
};

// The rig as a scene written in the Assimp export format `format` ("glb2", "fbx", "collada"...); an empty array
// when Assimp cannot write it.
QByteArray Export(const TruthRig& rig, const char* format, const Options& options);

// The rig as a BVH file: one root, three rotation channels a joint, end sites where bones have tips.
QByteArray Bvh(const TruthRig& rig);

// The rig as the file holds it: in the node pose, moved by the armature's transform; with `skinned`, bones that skin
// nothing and hold nothing that does are gone, as Assimp reads a skinned file.
TruthRig AsWritten(const TruthRig& rig, const Options& options);
} // namespace rigfiles

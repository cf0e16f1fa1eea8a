#pragma once

#include <string>
#include <utility>
#include <vector>

#include <assimp/matrix4x4.h>

struct aiMesh;

// A joint's name and global transform.
using MeshJoint = std::pair<std::string, aiMatrix4x4>;

// A mesh named `name` with one vertex at each joint, weighted fully to it, in triangles that take in every vertex:
// Assimp 5.2's glTF writer reads and writes past its arrays for a skinned vertex that is in no face.
aiMesh* SkinnedMesh(const char* name, const std::vector<MeshJoint>& joints);

#include "SkinnedMesh.h"

#include <algorithm>

#include <assimp/mesh.h>

aiMesh* SkinnedMesh(const char* name, const std::vector<MeshJoint>& joints)
{
    const unsigned count = static_cast<unsigned>(joints.size());
    auto* mesh = new aiMesh;
    mesh->mName = name;
    mesh->mPrimitiveTypes = aiPrimitiveType_TRIANGLE;
    mesh->mNumVertices = count;
    mesh->mVertices = new aiVector3D[count];
    mesh->mNumBones = count;
    mesh->mBones = new aiBone*[count];
    for (unsigned i = 0; i < count; ++i)
    {
        const aiMatrix4x4& global = joints[i].second;
        mesh->mVertices[i] = aiVector3D(global.a4, global.b4, global.c4);
        auto* bone = new aiBone;
        bone->mName = joints[i].first;
        bone->mOffsetMatrix = aiMatrix4x4(global).Inverse();
        bone->mNumWeights = 1;
        bone->mWeights = new aiVertexWeight[1];
        bone->mWeights[0] = aiVertexWeight(i, 1.0f);
        mesh->mBones[i] = bone;
    }
    // Consecutive vertices, the last triangle wrapping round to the first ones when the count is no multiple of 3.
    mesh->mNumFaces = count >= 3 ? (count + 2) / 3 : 0;
    mesh->mFaces = new aiFace[mesh->mNumFaces];
    for (unsigned f = 0; f < mesh->mNumFaces; ++f)
    {
        mesh->mFaces[f].mNumIndices = 3;
        mesh->mFaces[f].mIndices = new unsigned[3] {(3 * f) % count, (3 * f + 1) % count, (3 * f + 2) % count};
    }
    return mesh;
}

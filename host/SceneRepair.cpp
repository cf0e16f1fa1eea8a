#include "SceneRepair.h"

#include <unordered_set>

#include <assimp/scene.h>

void SceneRepair::DropRepeatedBones(aiScene& scene)
{
    std::unordered_set<const aiBone*> seen;
    for (unsigned meshIndex = 0; meshIndex < scene.mNumMeshes; ++meshIndex)
    {
        aiMesh* mesh = scene.mMeshes[meshIndex];
        if (mesh == nullptr || mesh->mBones == nullptr)
            continue;
        unsigned kept = 0;
        for (unsigned boneIndex = 0; boneIndex < mesh->mNumBones; ++boneIndex)
        {
            aiBone* bone = mesh->mBones[boneIndex];
            if (bone == nullptr || seen.insert(bone).second)
                mesh->mBones[kept++] = bone;
        }
        mesh->mNumBones = kept;
    }
}

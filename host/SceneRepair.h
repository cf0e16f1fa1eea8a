#pragma once

struct aiScene;

// Mends what Assimp 5.2 gets wrong in a scene it hands over (see SceneFileCheck for what it must never see).
class SceneRepair
{
public:
    // A hostile FBX file connecting a cluster to its skin twice makes Assimp list the same bone object twice in the
    // mesh, and its scene deletes it twice (heap corruption, an abort). Each bone is kept once.
    static void DropRepeatedBones(aiScene& scene);
};

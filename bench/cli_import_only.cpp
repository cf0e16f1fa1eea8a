// The yardstick for bench_cli: a process that only reads a skeleton file with Assimp, as `zelkin characterize`
// reads it, and does nothing else.
#include <cstdio>

#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        std::fputs("usage: cli_import_only FILE\n", stderr);
        return 1;
    }
    Assimp::Importer importer;
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    const aiScene* scene = importer.ReadFile(argv[1], 0);
    return scene != nullptr && scene->mRootNode != nullptr ? 0 : 1;
}

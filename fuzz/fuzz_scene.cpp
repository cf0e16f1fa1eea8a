// Hostile skeleton files through the scene library, then through what a host does with a freshly read scene: the
// hub's bone list, parents and reference geometry, an auto match and a validation run. Assimp picks its reader by
// the file's extension, so each format has a target of its own (FUZZ_SCENE_EXTENSION); a glTF input that starts
// like a binary one is named .glb.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <QSet>
#include <QStringList>

#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/ZELSolver.h>

#include "FuzzCheck.h"
#include "FuzzHost.h"
#include "Scene.h"
#include "SceneHub.h"
#include "SceneImporter.h"

namespace
{
QString FileName(const uint8_t* data, size_t size)
{
    const QString extension = QStringLiteral(FUZZ_SCENE_EXTENSION);
    if (extension == QLatin1String("gltf") && size >= 4 && std::memcmp(data, "glTF", 4) == 0)
        return QStringLiteral("input.glb");
    return QStringLiteral("input.") + extension;
}

// What the scene promises every user of it.
void CheckScene(const Scene& scene)
{
    QSet<QString> names;
    for (int index = 0; index < scene.BoneCount(); ++index)
    {
        const SceneBone& bone = scene.Bone(index);
        require(!bone.name.isEmpty() && !names.contains(bone.name) && scene.IndexOf(bone.name) == index);
        require(bone.parent >= -1 && bone.parent < index);
        names.insert(bone.name);
    }
}

void CheckHub(const SceneHub& hub)
{
    QStringList bones;
    require(hub.GetSceneBones(bones) && bones.size() == hub.GetScene().BoneCount());
    for (const QString& bone : bones)
    {
        CharacterJointGeometry geometry;
        require(hub.GetBoneReferenceGeometry(bone, geometry));
        const QString parent = hub.GetBoneParent(bone);
        require(parent.isEmpty() || hub.BoneExists(parent));
    }
}

void Characterize(SceneHub& hub)
{
    CharacterizationModel model(&hub);
    model.AutoMatch();
    model.Validate();
    const Characterization& matched = *model.GetCurrentCharacterization();
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        require(!matched.IsAssigned(nodeId) || hub.BoneExists(matched.GetBone(nodeId)));
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    FuzzHost::Start(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString path = FuzzHost::Write(FileName(data, size), data, size);
    Scene scene;
    SceneImporter importer;
    // Some inputs make Assimp loop for ever; a user's time limit is minutes, a fuzzer's is seconds.
    importer.SetTimeLimit(10);
    if (!importer.Import(path, scene))
    {
        require(scene.IsEmpty() && importer.ErrorText().startsWith(QLatin1String("cannot read ")));
        return 0;
    }
    CheckScene(scene);
    SceneHub hub(scene);
    CheckHub(hub);
    Characterize(hub);
    return 0;
}

#include "TestScenes.h"

#include <set>
#include <string>

#include <assimp/Importer.hpp>
#include <assimp/scene.h>

#include <zelkin/ZELSolver.h>

#include "TestHub.h"

namespace testscenes {
namespace {

aiMatrix4x4 GlobalTransform(const aiNode* node)
{
    aiMatrix4x4 transform = node->mTransformation;
    for (const aiNode* parent = node->mParent; parent != nullptr; parent = parent->mParent)
        transform = parent->mTransformation * transform;
    return transform;
}

CharacterJointGeometry GlobalGeometry(const aiNode* node)
{
    aiVector3D scale;
    aiQuaternion rotation;
    aiVector3D position;
    GlobalTransform(node).Decompose(scale, rotation, position);
    CharacterJointGeometry geometry;
    geometry.SetTranslate(position.x, position.y, position.z);
    geometry.SetRotateQ(rotation.x, rotation.y, rotation.z, rotation.w);
    geometry.SetScale(scale.x, scale.y, scale.z);
    return geometry;
}

std::set<std::string> SkinnedBoneNames(const aiScene& scene)
{
    std::set<std::string> names;
    for (unsigned m = 0; m < scene.mNumMeshes; ++m)
    {
        for (unsigned b = 0; b < scene.mMeshes[m]->mNumBones; ++b)
            names.insert(scene.mMeshes[m]->mBones[b]->mName.C_Str());
    }
    return names;
}

void AddBones(const aiNode* node, const QString& boneParent, const std::set<std::string>& bones, TestHub& hub)
{
    QString parent = boneParent;
    if (bones.count(node->mName.C_Str()) != 0)
    {
        const QString name = QString::fromUtf8(node->mName.C_Str());
        hub.AddBone(name, boneParent, GlobalGeometry(node));
        parent = name;
    }
    for (unsigned i = 0; i < node->mNumChildren; ++i)
        AddBones(node->mChildren[i], parent, bones, hub);
}

} // namespace

bool LoadSkeleton(const QString& path, TestHub& hub, QString& error)
{
    Assimp::Importer importer;
    const aiScene* scene = importer.ReadFile(path.toStdString(), 0);
    if (scene == nullptr || scene->mRootNode == nullptr)
    {
        error = QString::fromUtf8(importer.GetErrorString());
        return false;
    }
    const std::set<std::string> bones = SkinnedBoneNames(*scene);
    if (bones.empty())
    {
        error = QStringLiteral("no skinned bones in ") + path;
        return false;
    }
    AddBones(scene->mRootNode, QString(), bones, hub);
    return true;
}

void AddPoseBones(TestHub& hub, const tpose::Pose& pose, const tpose::AssignedFlags& assigned, const QString& prefix)
{
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        if ((assigned[nodeId] & 1u) == 0)
            continue;
        const QString name = prefix + QString::fromLatin1(ZELGetNodeNameFromId(nodeId));
        hub.AddBone(name, QString(), pose[nodeId][0], pose[nodeId][1], pose[nodeId][2]);
    }
}

std::vector<std::pair<int, QString>> AddHandMadeTPose(TestHub& hub)
{
    struct Joint
    {
        const char* node;
        const char* parent;
        float x, y, z;
    };
    static const Joint joints[] = {
        {"Hips", "", 0, 100, 0},           {"Spine", "Hips", 0, 110, 0},        {"Spine1", "Spine", 0, 125, 0},
        {"Neck", "Spine1", 0, 150, 0},     {"Head", "Neck", 0, 165, 2},         {"LeftUpLeg", "Hips", 10, 95, 0},
        {"LeftLeg", "LeftUpLeg", 10, 50, 2}, {"LeftFoot", "LeftLeg", 10, 8, 0}, {"LeftToeBase", "LeftFoot", 10, 2, 12},
        {"RightUpLeg", "Hips", -10, 95, 0}, {"RightLeg", "RightUpLeg", -10, 50, 2},
        {"RightFoot", "RightLeg", -10, 8, 0}, {"RightToeBase", "RightFoot", -10, 2, 12},
        {"LeftArm", "Spine1", 15, 145, 0}, {"LeftForeArm", "LeftArm", 43, 145, 0},
        {"LeftHand", "LeftForeArm", 68, 145, 0}, {"RightArm", "Spine1", -15, 145, 0},
        {"RightForeArm", "RightArm", -43, 145, 0}, {"RightHand", "RightForeArm", -68, 145, 0},
    };
    const QString prefix = QStringLiteral("rig:");
    std::vector<std::pair<int, QString>> mapping;
    for (const Joint& joint : joints)
    {
        const QString bone = prefix + QLatin1String(joint.node);
        const QString parent = joint.parent[0] == 0 ? QString() : prefix + QLatin1String(joint.parent);
        hub.AddBone(bone, parent, joint.x, joint.y, joint.z);
        mapping.emplace_back(ZELGetNodeIdFromName(joint.node), bone);
    }
    return mapping;
}

} // namespace testscenes

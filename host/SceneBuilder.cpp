#include "SceneBuilder.h"

#include <cstring>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include <assimp/scene.h>

#include "Scene.h"

namespace {

const char kHelperTag[] = "_$AssimpFbx$_";
const char kPreRotationHelper[] = "PreRotation";
const char kEndSitePrefix[] = "EndSite_";

QString NodeName(const aiNode& node)
{
    return QString::fromUtf8(node.mName.C_Str(), static_cast<int>(node.mName.length));
}

QMatrix4x4 ToQt(const aiMatrix4x4& m)
{
    // Both are row-major in their constructors' arguments.
    return QMatrix4x4(m.a1, m.a2, m.a3, m.a4, m.b1, m.b2, m.b3, m.b4, m.c1, m.c2, m.c3, m.c4, m.d1, m.d2, m.d3, m.d4);
}

bool IsHelper(const aiNode& node)
{
    return std::strstr(node.mName.C_Str(), kHelperTag) != nullptr;
}

bool IsEndSite(const aiNode& node)
{
    return node.mNumChildren == 0 && node.mParent != nullptr &&
           std::string(node.mName.C_Str()) == kEndSitePrefix + std::string(node.mParent->mName.C_Str());
}

} // namespace

SceneBuilder::SceneBuilder(const aiScene& source, const QHash<QString, ZELRotationOrder>& orders)
    : mSource(source)
    , mOrders(orders)
{
    CollectNodes();
    bool skinned = false;
    for (unsigned m = 0; m < mSource.mNumMeshes && !skinned; ++m)
        skinned = mSource.mMeshes[m] != nullptr && mSource.mMeshes[m]->mNumBones > 0;
    if (skinned)
        MarkSkinnedBones();
    else
        MarkJoints();
    CollectPreRotations();
}

void SceneBuilder::CollectNodes()
{
    if (mSource.mRootNode == nullptr)
        return;
    // A stack rather than recursion: a hostile file may nest nodes very deeply.
    std::vector<std::pair<const aiNode*, int>> pending {{mSource.mRootNode, -1}};
    while (!pending.empty())
    {
        const auto [node, parent] = pending.back();
        pending.pop_back();
        const int index = static_cast<int>(mEntries.size());
        mEntries.push_back({node, parent, false, false});
        for (unsigned i = node->mNumChildren; i-- > 0;)
        {
            if (node->mChildren[i] != nullptr)
                pending.emplace_back(node->mChildren[i], index);
        }
    }
}

void SceneBuilder::MarkSkinnedBones()
{
    std::unordered_set<std::string> skinning;
    for (unsigned m = 0; m < mSource.mNumMeshes; ++m)
    {
        const aiMesh* mesh = mSource.mMeshes[m];
        for (unsigned b = 0; mesh != nullptr && b < mesh->mNumBones; ++b)
        {
            if (mesh->mBones[b] != nullptr)
                skinning.insert(mesh->mBones[b]->mName.C_Str());
        }
    }
    for (Entry& entry : mEntries)
    {
        if (skinning.count(entry.node->mName.C_Str()) == 0 || entry.bone)
            continue;
        entry.bone = true;
        entry.skinning = true;
        // Ancestors up to the root join in; a bone already marked has marked its own.
        for (int up = entry.parent; up > 0 && !mEntries[up].bone; up = mEntries[up].parent)
        {
            const aiNode& ancestor = *mEntries[up].node;
            mEntries[up].bone = !IsHolder(ancestor) && !IsHelper(ancestor);
        }
    }
}

void SceneBuilder::MarkJoints()
{
    for (size_t i = 0; i < mEntries.size(); ++i)
    {
        const aiNode& node = *mEntries[i].node;
        const bool structural = !IsHolder(node) && !IsHelper(node) && !IsEndSite(node);
        mEntries[i].bone = structural && (i > 0 || IsAnimated(node));
    }
}

bool SceneBuilder::IsHolder(const aiNode& node) const
{
    if (node.mNumMeshes > 0)
        return true;
    for (unsigned c = 0; c < mSource.mNumCameras; ++c)
    {
        if (mSource.mCameras[c] != nullptr && mSource.mCameras[c]->mName == node.mName)
            return true;
    }
    for (unsigned l = 0; l < mSource.mNumLights; ++l)
    {
        if (mSource.mLights[l] != nullptr && mSource.mLights[l]->mName == node.mName)
            return true;
    }
    return false;
}

bool SceneBuilder::IsTipMarker(const aiNode& node) const
{
    return node.mNumChildren == 0 && !IsHolder(node) && !IsHelper(node);
}

bool SceneBuilder::IsAnimated(const aiNode& node) const
{
    for (unsigned a = 0; a < mSource.mNumAnimations; ++a)
    {
        const aiAnimation* animation = mSource.mAnimations[a];
        for (unsigned c = 0; animation != nullptr && c < animation->mNumChannels; ++c)
        {
            if (animation->mChannels[c] != nullptr && animation->mChannels[c]->mNodeName == node.mName)
                return true;
        }
    }
    return false;
}

void SceneBuilder::CollectPreRotations()
{
    const QString suffix = QLatin1String(kHelperTag) + QLatin1String(kPreRotationHelper);
    for (const Entry& entry : mEntries)
    {
        const QString name = NodeName(*entry.node);
        if (!name.endsWith(suffix))
            continue;
        aiVector3D scale;
        aiQuaternion rotation;
        aiVector3D position;
        entry.node->mTransformation.Decompose(scale, rotation, position);
        mPreRotations.insert(name.chopped(suffix.size()), QQuaternion(rotation.w, rotation.x, rotation.y, rotation.z));
    }
}

void SceneBuilder::Build(Scene& scene) const
{
    // Per entry: the transform from its nearest bone ancestor (or the world) down to and including it, and the
    // bone it hangs under in the scene.
    std::vector<QMatrix4x4> sinceBone(mEntries.size());
    std::vector<int> sceneParent(mEntries.size(), -1);
    for (size_t i = 0; i < mEntries.size(); ++i)
    {
        const Entry& entry = mEntries[i];
        const QMatrix4x4 transform = ToQt(entry.node->mTransformation);
        if (entry.parent >= 0)
        {
            const Entry& parent = mEntries[entry.parent];
            sinceBone[i] = parent.bone ? transform : sinceBone[entry.parent] * transform;
            sceneParent[i] = sceneParent[entry.parent];
        }
        else
        {
            sinceBone[i] = transform;
        }
        if (!entry.bone)
        {
            SceneBone* owner = entry.parent >= 0 && mEntries[entry.parent].bone && sceneParent[i] >= 0
                                   ? &scene.Bone(sceneParent[i])
                                   : nullptr;
            if (owner != nullptr && !owner->hasTip && IsTipMarker(*entry.node))
            {
                owner->hasTip = true;
                owner->tip = transform.column(3).toVector3D();
            }
            continue;
        }

        const QString name = NodeName(*entry.node);
        SceneBone bone;
        bone.name = UniqueName(scene, name);
        bone.parent = sceneParent[i];
        bone.local = sinceBone[i];
        bone.preRotation = mPreRotations.value(name);
        bone.rotationOrder = mOrders.value(name, ZELEulerXYZ);
        bone.skinsMesh = entry.skinning;
        // The parent was added before, so this cannot be refused.
        sceneParent[i] = scene.AddBone(bone);
    }
}

QString SceneBuilder::UniqueName(const Scene& scene, const QString& wanted) const
{
    const QString base = wanted.isEmpty() ? QStringLiteral("bone") : wanted;
    QString name = base;
    for (int number = 2; scene.IndexOf(name) >= 0; ++number)
        name = QStringLiteral("%1_%2").arg(base).arg(number);
    return name;
}

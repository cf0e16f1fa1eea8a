#include "SkeletonExtraction.h"

#include <cstring>
#include <set>
#include <unordered_set>

#include <assimp/scene.h>

namespace
{
const char kHelperTag[] = "_$AssimpFbx$_";
const char kPreRotationHelper[] = "_$AssimpFbx$_PreRotation";
const char kEndSitePrefix[] = "EndSite_";

std::string NodeName(const aiNode& node)
{
    return std::string(node.mName.C_Str(), node.mName.length);
}

bool IsHelper(const aiNode& node)
{
    return std::strstr(node.mName.C_Str(), kHelperTag) != nullptr;
}

bool IsEndSite(const aiNode& node)
{
    return node.mNumChildren == 0 && node.mParent != nullptr &&
           NodeName(node) == kEndSitePrefix + NodeName(*node.mParent);
}

bool EndsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}
} // namespace

SkeletonExtraction::SkeletonExtraction(const aiScene& source, const std::map<std::string, ZELRotationOrder>& orders)
    : mSource(source), mOrders(orders)
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

void SkeletonExtraction::CollectNodes()
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

void SkeletonExtraction::MarkSkinnedBones()
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

void SkeletonExtraction::MarkJoints()
{
    for (size_t i = 0; i < mEntries.size(); ++i)
    {
        const aiNode& node = *mEntries[i].node;
        const bool structural = !IsHolder(node) && !IsHelper(node) && !IsEndSite(node);
        mEntries[i].bone = structural && (i > 0 || IsAnimated(node));
    }
}

bool SkeletonExtraction::IsHolder(const aiNode& node) const
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

bool SkeletonExtraction::IsTipMarker(const aiNode& node) const
{
    return node.mNumChildren == 0 && !IsHolder(node) && !IsHelper(node);
}

bool SkeletonExtraction::IsAnimated(const aiNode& node) const
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

void SkeletonExtraction::CollectPreRotations()
{
    for (const Entry& entry : mEntries)
    {
        const std::string name = NodeName(*entry.node);
        if (!EndsWith(name, kPreRotationHelper))
            continue;
        aiVector3D scale;
        aiQuaternion rotation;
        aiVector3D position;
        entry.node->mTransformation.Decompose(scale, rotation, position);
        mPreRotations[name.substr(0, name.size() - std::strlen(kPreRotationHelper))] = rotation;
    }
}

std::vector<SkeletonExtraction::Bone> SkeletonExtraction::Bones() const
{
    std::vector<Bone> bones;
    std::set<std::string> taken;
    // Per entry: the transform from its nearest bone ancestor (or the world) down to and including it, and the
    // bone it hangs under.
    std::vector<aiMatrix4x4> sinceBone(mEntries.size());
    std::vector<int> boneAbove(mEntries.size(), -1);
    for (size_t i = 0; i < mEntries.size(); ++i)
    {
        const Entry& entry = mEntries[i];
        const aiMatrix4x4& transform = entry.node->mTransformation;
        if (entry.parent >= 0)
        {
            const Entry& parent = mEntries[entry.parent];
            sinceBone[i] = parent.bone ? transform : sinceBone[entry.parent] * transform;
            boneAbove[i] = boneAbove[entry.parent];
        }
        else
        {
            sinceBone[i] = transform;
        }
        if (!entry.bone)
        {
            // A marker leaf right under a bone tells where that bone ends; the first one does.
            Bone* owner = entry.parent >= 0 && mEntries[entry.parent].bone && boneAbove[i] >= 0 ? &bones[boneAbove[i]]
                                                                                                 : nullptr;
            if (owner != nullptr && !owner->hasTip && IsTipMarker(*entry.node))
            {
                owner->hasTip = true;
                owner->tip = aiVector3D(transform.a4, transform.b4, transform.c4);
            }
            continue;
        }
        const std::string name = NodeName(*entry.node);
        Bone bone;
        // The tool knows bones by name alone.
        const std::string base = name.empty() ? std::string("bone") : name;
        bone.name = base;
        for (int number = 2; taken.count(bone.name) > 0; ++number)
            bone.name = base + "_" + std::to_string(number);
        taken.insert(bone.name);
        bone.parent = boneAbove[i];
        bone.local = sinceBone[i];
        const auto pre = mPreRotations.find(name);
        if (pre != mPreRotations.end())
            bone.preRotation = pre->second;
        const auto order = mOrders.find(name);
        if (order != mOrders.end())
            bone.rotationOrder = order->second;
        bone.skinsMesh = entry.skinning;
        boneAbove[i] = static_cast<int>(bones.size());
        bones.push_back(bone);
    }
    return bones;
}

#include "RestSkeleton.h"

#include <algorithm>

#include <QHash>

#include <zelkin/Characterization.h>

namespace
{
Eigen::Affine3d ToAffine(const TPoseBuilder::Matrix& m)
{
    Eigen::Matrix4d matrix = Eigen::Map<const Eigen::Matrix4d>(m.data());
    Eigen::Affine3d affine;
    affine.matrix() = matrix;
    // A projective bottom row has no place in a skeleton.
    affine.matrix().row(3) << 0.0, 0.0, 0.0, 1.0;
    return affine;
}
} // namespace

RestSkeleton::RestSkeleton(const std::vector<TPoseBuilder::Bone>& bones, const Characterization& characterization)
{
    const size_t count = bones.size();
    mParents.assign(count, -1);
    mGlobals.resize(count);
    mHasTip.assign(count, false);
    mTips.assign(count, Vec3::Zero());
    mChildCount.assign(count, 0);
    mOnlyChild.assign(count, -1);
    mNodeOf.assign(count, -1);
    QHash<QString, int> byName;
    for (size_t i = 0; i < count; ++i)
    {
        const TPoseBuilder::Bone& bone = bones[i];
        const int parent = bone.parent >= 0 && size_t(bone.parent) < i ? bone.parent : -1;
        mParents[i] = parent;
        const Eigen::Affine3d local = ToAffine(bone.local);
        mGlobals[i] = parent < 0 ? local : mGlobals[size_t(parent)] * local;
        mHasTip[i] = bone.hasTip;
        mTips[i] = mGlobals[i] * Vec3(bone.tip[0], bone.tip[1], bone.tip[2]);
        if (parent >= 0)
        {
            ++mChildCount[size_t(parent)];
            mOnlyChild[size_t(parent)] = int(i);
        }
        byName.insert(bone.name, int(i));
    }
    mBoneOf.fill(-1);
    Eigen::AlignedBox3d box;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        const int bone = characterization.IsAssigned(nodeId) ? byName.value(characterization.GetBone(nodeId), -1) : -1;
        mBoneOf[size_t(nodeId)] = bone;
        if (bone < 0)
            continue;
        if (mNodeOf[size_t(bone)] < 0)
            mNodeOf[size_t(bone)] = nodeId;
        box.extend(Joint(bone));
    }
    mTolerance = box.isEmpty() ? 0.0 : 1e-6 * box.diagonal().norm();
}

int RestSkeleton::Root(int bone) const
{
    while (Parent(bone) >= 0)
        bone = Parent(bone);
    return bone;
}

bool RestSkeleton::IsBelow(int bone, int ancestor) const
{
    for (int up = Parent(bone); up >= 0; up = Parent(up))
    {
        if (up == ancestor)
            return true;
    }
    return false;
}

bool RestSkeleton::End(int bone, Vec3& end) const
{
    if (mHasTip[size_t(bone)])
        end = mTips[size_t(bone)];
    else if (mChildCount[size_t(bone)] == 1)
        end = Joint(mOnlyChild[size_t(bone)]);
    else
        return false;
    return (end - Joint(bone)).norm() > mTolerance;
}

int RestSkeleton::MappedCount() const
{
    return int(std::count_if(mBoneOf.begin(), mBoneOf.end(), [](int bone) { return bone >= 0; }));
}

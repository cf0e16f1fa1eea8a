#include "SkeletonGraph.h"

#include <algorithm>
#include <cmath>

namespace
{
Vec3 Finite(const SkeletonRecognizer::Vector& v)
{
    // A hostile file's infinities or NaNs would poison every sum they enter; such a joint sits at the origin.
    Vec3 result(v[0], v[1], v[2]);
    return result.allFinite() ? result : Vec3::Zero();
}
} // namespace

SkeletonGraph::SkeletonGraph(const std::vector<SkeletonRecognizer::Bone>& bones)
{
    ReadBones(bones);
    MeasureSubtrees({});
    NumberVisits();
}

void SkeletonGraph::ReadBones(const std::vector<SkeletonRecognizer::Bone>& bones)
{
    const int count = static_cast<int>(bones.size());
    mParent.resize(count);
    mChildren.resize(count);
    mPosition.resize(count);
    mHasTip.resize(count);
    mTip.resize(count);
    mSkinning.resize(count);
    Vec3 low = Vec3::Constant(HUGE_VAL);
    Vec3 high = Vec3::Constant(-HUGE_VAL);
    for (int i = 0; i < count; ++i)
    {
        const SkeletonRecognizer::Bone& bone = bones[i];
        // Only an earlier parent is taken, so the tree has no cycles whatever the input says.
        mParent[i] = bone.parent >= 0 && bone.parent < i ? bone.parent : -1;
        if (mParent[i] >= 0)
            mChildren[mParent[i]].push_back(i);
        else
            mRoots.push_back(i);
        mPosition[i] = Finite(bone.position);
        mHasTip[i] = bone.hasTip && Vec3(bone.tip[0], bone.tip[1], bone.tip[2]).allFinite();
        mTip[i] = mHasTip[i] ? Finite(bone.tip) : mPosition[i];
        mSkinning[i] = bone.skinning;
        mSkinKnown = mSkinKnown || bone.skinning == SkeletonRecognizer::Skinning::Skins;
        low = low.cwiseMin(mPosition[i]);
        high = high.cwiseMax(mPosition[i]);
    }
    mExtent = count > 0 ? (high - low).norm() : 0.0;
}

void SkeletonGraph::IgnoreInChains(const std::function<bool(int)>& ignored)
{
    MeasureSubtrees(ignored);
}

void SkeletonGraph::MeasureSubtrees(const std::function<bool(int)>& ignored)
{
    const int count = Count();
    mSubtreeSize.assign(count, 1);
    mChainLength.assign(count, 0.0);
    mChainChild.assign(count, -1);
    // Children come after their parents, so one backward sweep sees every child before its parent.
    for (int bone = count - 1; bone >= 0; --bone)
    {
        const bool choice = mChildren[bone].size() > 1 && ignored;
        for (int child : mChildren[bone])
        {
            mSubtreeSize[bone] += mSubtreeSize[child];
            if (choice && ignored(child))
                continue;
            const double length = (mPosition[child] - mPosition[bone]).norm() + mChainLength[child];
            // Ties go to the earlier child, so the result never depends on anything but the bone order.
            if (mChainChild[bone] < 0 || length > mChainLength[bone] + 1e-12)
            {
                mChainLength[bone] = length;
                mChainChild[bone] = child;
            }
        }
    }
}

void SkeletonGraph::NumberVisits()
{
    const int count = Count();
    mEnter.assign(count, 0);
    mLeave.assign(count, 0);
    mDepth.assign(count, 0);
    int clock = 0;
    std::vector<std::pair<int, size_t>> stack;
    for (int root : mRoots)
    {
        stack.emplace_back(root, 0);
        mEnter[root] = clock++;
        while (!stack.empty())
        {
            auto& [bone, next] = stack.back();
            if (next < mChildren[bone].size())
            {
                const int child = mChildren[bone][next++];
                mEnter[child] = clock++;
                mDepth[child] = mDepth[bone] + 1;
                stack.emplace_back(child, 0);
            }
            else
            {
                mLeave[bone] = clock++;
                stack.pop_back();
            }
        }
    }
}

Vec3 SkeletonGraph::End(int bone) const
{
    if (mHasTip[bone])
        return mTip[bone];
    return mChainChild[bone] >= 0 ? mPosition[mChainChild[bone]] : mPosition[bone];
}

std::vector<int> SkeletonGraph::MainPath(int bone, int limit) const
{
    std::vector<int> path;
    for (int at = bone; at >= 0 && static_cast<int>(path.size()) < limit; at = mChainChild[at])
        path.push_back(at);
    return path;
}

bool SkeletonGraph::IsAncestorOrSelf(int ancestor, int bone) const
{
    return mEnter[ancestor] <= mEnter[bone] && mLeave[bone] <= mLeave[ancestor];
}

int SkeletonGraph::CommonAncestor(int a, int b) const
{
    while (a >= 0 && !IsAncestorOrSelf(a, b))
        a = mParent[a];
    return a;
}

std::vector<int> SkeletonGraph::PathDown(int from, int to) const
{
    std::vector<int> path;
    if (from < 0 || to < 0 || !IsAncestorOrSelf(from, to))
        return path;
    for (int at = to; at != from; at = mParent[at])
        path.push_back(at);
    path.push_back(from);
    std::reverse(path.begin(), path.end());
    return path;
}

int SkeletonGraph::ChildToward(int ancestor, int bone) const
{
    if (ancestor == bone || !IsAncestorOrSelf(ancestor, bone))
        return -1;
    int at = bone;
    while (mParent[at] != ancestor)
        at = mParent[at];
    return at;
}

#pragma once

#include <functional>
#include <vector>

#include <Eigen/Core>
#include <Eigen/Geometry>

#include <zelkin/SkeletonRecognizer.h>

using Vec3 = Eigen::Vector3d;

// The skeleton as the recognizer walks it: joints, children, and per-bone measures of what hangs below.
class SkeletonGraph
{
public:
    explicit SkeletonGraph(const std::vector<SkeletonRecognizer::Bone>& bones);

    int Count() const { return static_cast<int>(mParent.size()); }
    int Parent(int bone) const { return mParent[bone]; }
    const std::vector<int>& Children(int bone) const { return mChildren[bone]; }
    const std::vector<int>& Roots() const { return mRoots; }
    const Vec3& Position(int bone) const { return mPosition[bone]; }
    bool HasTip(int bone) const { return mHasTip[bone]; }
    const Vec3& Tip(int bone) const { return mTip[bone]; }
    // Where the bone ends: its tip, or its continuing child's joint; its own joint for a bare leaf.
    Vec3 End(int bone) const;
    SkeletonRecognizer::Skinning Skinning(int bone) const { return mSkinning[bone]; }
    bool HasSkinInformation() const { return mSkinKnown; }

    int SubtreeSize(int bone) const { return mSubtreeSize[bone]; }
    // Measures the chains again without the branches `ignored` names (asked only where a bone has a choice): a
    // weapon in a hand or a twist bone beside an arm must not make a limb's main path.
    void IgnoreInChains(const std::function<bool(int)>& ignored);
    // Length of the longest joint-to-joint path from the bone down, and the child it runs through (-1 at a leaf).
    double ChainLength(int bone) const { return mChainLength[bone]; }
    int ChainChild(int bone) const { return mChainChild[bone]; }
    // The bone and then its chain children, as far as they go.
    std::vector<int> MainPath(int bone, int limit = 1 << 30) const;

    bool IsAncestorOrSelf(int ancestor, int bone) const;
    int CommonAncestor(int a, int b) const;
    // From `from` down to `to` (both included); empty when `from` is not above `to`.
    std::vector<int> PathDown(int from, int to) const;
    // The child of `ancestor` on the way down to `bone`; -1 when it is not below.
    int ChildToward(int ancestor, int bone) const;
    // The largest distance between two joints of the whole skeleton, roughly (box diagonal).
    double Extent() const { return mExtent; }

private:
    void ReadBones(const std::vector<SkeletonRecognizer::Bone>& bones);
    void MeasureSubtrees(const std::function<bool(int)>& ignored);
    void NumberVisits();

    std::vector<int> mParent;
    std::vector<std::vector<int>> mChildren;
    std::vector<int> mRoots;
    std::vector<Vec3> mPosition;
    std::vector<bool> mHasTip;
    std::vector<Vec3> mTip;
    std::vector<SkeletonRecognizer::Skinning> mSkinning;
    bool mSkinKnown = false;
    std::vector<int> mSubtreeSize;
    std::vector<double> mChainLength;
    std::vector<int> mChainChild;
    std::vector<int> mEnter;
    std::vector<int> mLeave;
    std::vector<int> mDepth;
    double mExtent = 0.0;
};

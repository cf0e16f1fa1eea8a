#pragma once

#include <array>
#include <vector>

#include <Eigen/Geometry>

#include <zelkin/TPoseBuilder.h>
#include <zelkin/ZELSolver.h>

class Characterization;

using Vec3 = Eigen::Vector3d;

// The rest pose the T-pose starts from: every bone's global transform and joint, which node holds which bone, and
// which bones hang below which.
class RestSkeleton
{
public:
    RestSkeleton(const std::vector<TPoseBuilder::Bone>& bones, const Characterization& characterization);

    int BoneCount() const { return static_cast<int>(mParents.size()); }
    // -1 for a root, and for a bone whose parent does not come before it.
    int Parent(int bone) const { return mParents[size_t(bone)]; }
    int Root(int bone) const;
    // Strictly below: a bone is not below itself.
    bool IsBelow(int bone, int ancestor) const;
    const Eigen::Affine3d& Global(int bone) const { return mGlobals[size_t(bone)]; }
    Vec3 Joint(int bone) const { return mGlobals[size_t(bone)].translation(); }
    // Where the bone ends: the end the file marks, else its only child's joint; false when neither tells or the
    // end lies on the joint.
    bool End(int bone, Vec3& end) const;

    // -1 when the node is unmapped or its bone is not in the skeleton.
    int BoneOf(int nodeId) const { return nodeId >= 0 && nodeId < ZELNodeCount ? mBoneOf[size_t(nodeId)] : -1; }
    // The first node holding the bone, -1 when none.
    int NodeOf(int bone) const { return mNodeOf[size_t(bone)]; }
    bool IsMapped(int nodeId) const { return BoneOf(nodeId) >= 0; }
    int MappedCount() const;
    // The mapped node's joint, for a node known to be mapped.
    Vec3 NodeJoint(int nodeId) const { return Joint(BoneOf(nodeId)); }
    // Below this two joints are one point: a millionth of the mapped body's size.
    double Tolerance() const { return mTolerance; }

private:
    std::vector<int> mParents;
    std::vector<Eigen::Affine3d> mGlobals;
    std::vector<bool> mHasTip;
    std::vector<Vec3> mTips;
    std::vector<int> mChildCount;
    std::vector<int> mOnlyChild;
    std::array<int, ZELNodeCount> mBoneOf {};
    std::vector<int> mNodeOf;
    double mTolerance = 0.0;
};

#pragma once

#include <initializer_list>
#include <vector>

#include "CharacterAxes.h"
#include "RestSkeleton.h"

// What a T-pose asks of one bone.
struct BoneAim
{
    enum class Kind
    {
        Ride,        // turns with its parent
        KeepInFrame, // keeps its rest orientation in the character's frame
        Aim          // turns its rest-pose vector `from` onto `target`
    };

    Kind kind = Kind::Ride;
    Vec3 from = Vec3::Zero();
    // In the solver's frame; when `targetBone` is a bone, a rest-pose direction that turns with that bone (an
    // ancestor: fingers keep to their hand).
    Vec3 target = Vec3::Zero();
    int targetBone = -1;
    // Then, about `target`, the turn that brings `twistFrom` (rest pose) nearest `twistTarget` (solver's frame).
    bool twist = false;
    Vec3 twistFrom = Vec3::Zero();
    Vec3 twistTarget = Vec3::Zero();
};

// Each mapped bone's aim: the spine and neck up, the hips level across, thighs and shins down, feet and toes
// forward at their own pitch, upper arms, forearms and hands out to their side with the palm flat, fingers straight
// in the plane of the palm and the thumb straight along its first bone. Clavicles and the head keep their rest
// orientation in the character's frame; roll, twist and other bones ride along.
class AimPlan
{
public:
    AimPlan(const RestSkeleton& skeleton, const CharacterAxes& axes);

    const BoneAim& For(int bone) const { return mAims[size_t(bone)]; }

private:
    void PlanTrunk();
    void PlanLeg(int side);
    void PlanArm(int side);
    // The hand across its knuckles, its palm flat.
    void PlanHand(int side);
    void PlanFingers(int side, const Vec3& along, const Vec3& palmNormal);

    // Where the node's bone ends: the joint of the first of `next` that is mapped below it, else the bone's own
    // end. False when nothing tells.
    bool EndOf(int nodeId, std::initializer_list<int> next, Vec3& end) const;
    // The aim is the node's when its bone holds no earlier node; null otherwise.
    BoneAim* AimOf(int nodeId);
    void Aim(int nodeId, const Vec3& end, const Vec3& target);
    void KeepInFrame(int nodeId);
    // Pointing along `target` on the level, at the pitch the bone has in the rest pose (feet and toes).
    void AimForward(int nodeId, const Vec3& end);

    const RestSkeleton& mSkeleton;
    const CharacterAxes& mAxes;
    std::vector<BoneAim> mAims;
};

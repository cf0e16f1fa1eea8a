#include <cstring>

#include <zelkin/ZELSolver.h>

#include "FloatingPointGuard.h"

namespace {

// A name's position is its node identifier, which every stored characterization relies on: never reorder.
const char* const kNodeNames[ZELNodeCount] = {
    "Reference", "Hips", "LeftUpLeg", "LeftLeg", "LeftFoot", "RightUpLeg", "RightLeg", "RightFoot", "Spine",
    "LeftArm", "LeftForeArm", "LeftHand", "RightArm", "RightForeArm", "RightHand", "Head", "LeftToeBase",
    "RightToeBase", "LeftShoulder", "RightShoulder", "Neck", "LeftFingerBase", "RightFingerBase", "Spine1", "Spine2",
    "Spine3", "Spine4", "Spine5", "Spine6", "Spine7", "Spine8", "Spine9", "Neck1", "Neck2", "Neck3", "Neck4", "Neck5",
    "Neck6", "Neck7", "Neck8", "Neck9", "LeftUpLegRoll", "LeftLegRoll", "RightUpLegRoll", "RightLegRoll",
    "LeftArmRoll", "LeftForeArmRoll", "RightArmRoll", "RightForeArmRoll", "HipsTranslation", "LeftHandThumb1",
    "LeftHandThumb2", "LeftHandThumb3", "LeftHandThumb4", "LeftHandIndex1", "LeftHandIndex2", "LeftHandIndex3",
    "LeftHandIndex4", "LeftHandMiddle1", "LeftHandMiddle2", "LeftHandMiddle3", "LeftHandMiddle4", "LeftHandRing1",
    "LeftHandRing2", "LeftHandRing3", "LeftHandRing4", "LeftHandPinky1", "LeftHandPinky2", "LeftHandPinky3",
    "LeftHandPinky4", "LeftHandExtraFinger1", "LeftHandExtraFinger2", "LeftHandExtraFinger3", "LeftHandExtraFinger4",
    "RightHandThumb1", "RightHandThumb2", "RightHandThumb3", "RightHandThumb4", "RightHandIndex1", "RightHandIndex2",
    "RightHandIndex3", "RightHandIndex4", "RightHandMiddle1", "RightHandMiddle2", "RightHandMiddle3",
    "RightHandMiddle4", "RightHandRing1", "RightHandRing2", "RightHandRing3", "RightHandRing4", "RightHandPinky1",
    "RightHandPinky2", "RightHandPinky3", "RightHandPinky4", "RightHandExtraFinger1", "RightHandExtraFinger2",
    "RightHandExtraFinger3", "RightHandExtraFinger4", "LeftFootThumb1", "LeftFootThumb2", "LeftFootThumb3",
    "LeftFootThumb4", "LeftFootIndex1", "LeftFootIndex2", "LeftFootIndex3", "LeftFootIndex4", "LeftFootMiddle1",
    "LeftFootMiddle2", "LeftFootMiddle3", "LeftFootMiddle4", "LeftFootRing1", "LeftFootRing2", "LeftFootRing3",
    "LeftFootRing4", "LeftFootPinky1", "LeftFootPinky2", "LeftFootPinky3", "LeftFootPinky4", "LeftFootExtraFinger1",
    "LeftFootExtraFinger2", "LeftFootExtraFinger3", "LeftFootExtraFinger4", "RightFootThumb1", "RightFootThumb2",
    "RightFootThumb3", "RightFootThumb4", "RightFootIndex1", "RightFootIndex2", "RightFootIndex3", "RightFootIndex4",
    "RightFootMiddle1", "RightFootMiddle2", "RightFootMiddle3", "RightFootMiddle4", "RightFootRing1",
    "RightFootRing2", "RightFootRing3", "RightFootRing4", "RightFootPinky1", "RightFootPinky2", "RightFootPinky3",
    "RightFootPinky4", "RightFootExtraFinger1", "RightFootExtraFinger2", "RightFootExtraFinger3",
    "RightFootExtraFinger4", "LeftInHandThumb", "LeftInHandIndex", "LeftInHandMiddle", "LeftInHandRing",
    "LeftInHandPinky", "LeftInHandExtraFinger", "RightInHandThumb", "RightInHandIndex", "RightInHandMiddle",
    "RightInHandRing", "RightInHandPinky", "RightInHandExtraFinger", "LeftInFootThumb", "LeftInFootIndex",
    "LeftInFootMiddle", "LeftInFootRing", "LeftInFootPinky", "LeftInFootExtraFinger", "RightInFootThumb",
    "RightInFootIndex", "RightInFootMiddle", "RightInFootRing", "RightInFootPinky", "RightInFootExtraFinger",
    "LeftShoulderExtra", "RightShoulderExtra", "LeafLeftUpLegRoll1", "LeafLeftLegRoll1", "LeafRightUpLegRoll1",
    "LeafRightLegRoll1", "LeafLeftArmRoll1", "LeafLeftForeArmRoll1", "LeafRightArmRoll1", "LeafRightForeArmRoll1",
    "LeafLeftUpLegRoll2", "LeafLeftLegRoll2", "LeafRightUpLegRoll2", "LeafRightLegRoll2", "LeafLeftArmRoll2",
    "LeafLeftForeArmRoll2", "LeafRightArmRoll2", "LeafRightForeArmRoll2", "LeafLeftUpLegRoll3", "LeafLeftLegRoll3",
    "LeafRightUpLegRoll3", "LeafRightLegRoll3", "LeafLeftArmRoll3", "LeafLeftForeArmRoll3", "LeafRightArmRoll3",
    "LeafRightForeArmRoll3", "LeafLeftUpLegRoll4", "LeafLeftLegRoll4", "LeafRightUpLegRoll4", "LeafRightLegRoll4",
    "LeafLeftArmRoll4", "LeafLeftForeArmRoll4", "LeafRightArmRoll4", "LeafRightForeArmRoll4", "LeafLeftUpLegRoll5",
    "LeafLeftLegRoll5", "LeafRightUpLegRoll5", "LeafRightLegRoll5", "LeafLeftArmRoll5", "LeafLeftForeArmRoll5",
    "LeafRightArmRoll5", "LeafRightForeArmRoll5",
};

const char* const kEffectorNames[ZELEffectorCount] = {
    "HipsEffector", "LeftAnkleEffector", "RightAnkleEffector", "LeftWristEffector", "RightWristEffector",
    "LeftKneeEffector", "RightKneeEffector", "LeftElbowEffector", "RightElbowEffector", "ChestOriginEffector",
    "ChestEndEffector", "LeftFootEffector", "RightFootEffector", "LeftShoulderEffector", "RightShoulderEffector",
    "HeadEffector", "LeftHipEffector", "RightHipEffector", "LeftHandEffector", "RightHandEffector",
    "LeftHandThumbEffector", "LeftHandIndexEffector", "LeftHandMiddleEffector", "LeftHandRingEffector",
    "LeftHandPinkyEffector", "LeftHandExtraFingerEffector", "RightHandThumbEffector", "RightHandIndexEffector",
    "RightHandMiddleEffector", "RightHandRingEffector", "RightHandPinkyEffector", "RightHandExtraFingerEffector",
    "LeftFootThumbEffector", "LeftFootIndexEffector", "LeftFootMiddleEffector", "LeftFootRingEffector",
    "LeftFootPinkyEffector", "LeftFootExtraFingerEffector", "RightFootThumbEffector", "RightFootIndexEffector",
    "RightFootMiddleEffector", "RightFootRingEffector", "RightFootPinkyEffector", "RightFootExtraFingerEffector",
};

template <int Count>
int findName(const char* const (&table)[Count], const char* name)
{
    if (name == nullptr)
        return -1;
    for (int id = 0; id < Count; ++id) {
        if (std::strcmp(table[id], name) == 0)
            return id;
    }
    return -1;
}

template <int Count>
const char* nameAt(const char* const (&table)[Count], int id)
{
    return id >= 0 && id < Count ? table[id] : nullptr;
}

} // namespace

int ZELGetNodeIdFromName(const char* name)
{
    zelkin::FloatingPointGuard guard;
    return findName(kNodeNames, name);
}

const char* ZELGetNodeNameFromId(int nodeId)
{
    zelkin::FloatingPointGuard guard;
    return nameAt(kNodeNames, nodeId);
}

int ZELGetEffectorIdFromName(const char* name)
{
    zelkin::FloatingPointGuard guard;
    return findName(kEffectorNames, name);
}

const char* ZELGetEffectorNameFromId(int effectorId)
{
    zelkin::FloatingPointGuard guard;
    return nameAt(kEffectorNames, effectorId);
}

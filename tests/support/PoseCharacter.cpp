#include "PoseCharacter.h"

#include <cstdlib>

PoseCharacter::Records PoseCharacter::MakeRecords(const tpose::Pose& pose)
{
    Records records;
    for (int id = 0; id < ZELNodeCount; ++id)
        records[id].SetTranslate(pose[id][0], pose[id][1], pose[id][2]);
    return records;
}

PoseCharacter::PoseCharacter(const uint32_t* assigned, const Records& records)
{
    ZELCharacterDefinition definition {};
    for (int id = 0; id < ZELNodeCount; ++id)
        definition.mUsedNodes[id] = assigned[id] & 1u;
    const int32_t limbFlags[ZELLimbCount] = {0, 0, 0, 0};
    mCharacter = ZELCharacterCreate(&definition, std::malloc);
    if (mCharacter != nullptr)
        ZELCharacterSetJointGeometries(&definition, mCharacter, records.data(), ZELNodeCount, limbFlags);
}

PoseCharacter::PoseCharacter(const uint32_t* assigned, const tpose::Pose& pose)
    : PoseCharacter(assigned, MakeRecords(pose))
{
}

PoseCharacter::~PoseCharacter()
{
    ZELCharacterDestroy(mCharacter, std::free);
}

#include "SolverCharacter.h"

#include <array>
#include <cstdlib>

SolverCharacter::SolverCharacter(const Characterization& characterization, bool storedFlags)
    : mDefinition(characterization.BuildDefinition(storedFlags))
{
    mCharacter = ZELCharacterCreate(&mDefinition, std::malloc);
    if (mCharacter == nullptr)
        return;
    int32_t limbFlags[ZELLimbCount];
    characterization.GetLimbFlags(limbFlags);
    ZELCharacterSetJointGeometries(&mDefinition, mCharacter, characterization.GetJointGeometries(), ZELNodeCount,
                                   limbFlags);
}

SolverCharacter::~SolverCharacter()
{
    if (mCharacter != nullptr)
        ZELCharacterDestroy(mCharacter, std::free);
}

namespace
{
// Only nodes with full joint geometry carry joint data; the others get the defaults back, not zeros.
CharacterJointGeometry StoredGeometry(uint32_t flags, const CharacterJointGeometry& record)
{
    if ((flags & 7u) == 7u)
        return record;
    CharacterJointGeometry geometry;
    const float* t = record.GetTranslate();
    const float* q = record.GetRotateQ();
    const float* s = record.GetScale();
    geometry.SetTranslate(t[0], t[1], t[2]);
    geometry.SetRotateQ(q[0], q[1], q[2], q[3]);
    geometry.SetScale(s[0], s[1], s[2]);
    return geometry;
}

bool NamesMatchDefinition(const ZELCharacterDefinition& definition, const QStringList& boneNames)
{
    if (boneNames.size() != ZELNodeCount)
        return false;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        const bool used = (definition.mUsedNodes[nodeId] & 1u) != 0;
        if (used == boneNames[nodeId].isEmpty())
            return false;
    }
    return true;
}
} // namespace

bool ReadCharacterization(const ZELCharacterDefinition& definition, const ZELCharacter* character,
                          const QStringList& boneNames, Characterization& out)
{
    if (character == nullptr || !NamesMatchDefinition(definition, boneNames))
        return false;
    std::array<CharacterJointGeometry, ZELNodeCount> records;
    int32_t limbFlags[ZELLimbCount] = {};
    ZELCharacterGetJointGeometries(&definition, character, records.data(), ZELNodeCount, limbFlags);

    Characterization result;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        if (boneNames[nodeId].isEmpty())
            continue;
        result.SetBone(nodeId, boneNames[nodeId]);
        result.SetNodeFlags(nodeId, definition.mUsedNodes[nodeId]);
        result.SetJointGeometry(nodeId, StoredGeometry(definition.mUsedNodes[nodeId], records[nodeId]));
    }
    for (int limb = 0; limb < ZELLimbCount; ++limb)
        result.SetInverted(limb, limbFlags[limb] != 0);
    out = result;
    return true;
}

#pragma once

#include <cstddef>
#include <cstdint>

#include <zelkin/SolverExport.h>

class CharacterJointGeometry;

// One flag word per node: bit 0 marks a used node, low three bits equal to 7 a node with full joint geometry.
struct ZELCharacterDefinition
{
    uint32_t mUsedNodes[212];
};
static_assert(sizeof(ZELCharacterDefinition) == 848, "the definition is exchanged byte for byte");

struct ZELCharacter;
struct ZELCharacterState;

typedef void* (*ZELMalloc)(size_t);
typedef void (*ZELFree)(void*);

// The fixed type lets a joint carry whatever order a file gave it, so readers can refuse values past the last.
enum ZELRotationOrder : int32_t
{
    ZELEulerXYZ,
    ZELEulerXYX,
    ZELEulerXZY,
    ZELEulerXZX,
    ZELEulerYZX,
    ZELEulerYZY,
    ZELEulerYXZ,
    ZELEulerYXY,
    ZELEulerZXY,
    ZELEulerZXZ,
    ZELEulerZYX,
    ZELEulerZYZ,
    ZELSphericXYZ
};

enum
{
    ZELNodeCount = 212,
    ZELEffectorCount = 44,
    ZELLimbCount = 4,
    ZELRotationOrderCount = 13
};

// Limb flag indices; each belongs to the upper and middle joint of its limb.
enum ZELLimb
{
    ZELLimbLeftLeg = 0,
    ZELLimbRightLeg = 1,
    ZELLimbLeftArm = 2,
    ZELLimbRightArm = 3
};

ZELKIN_SOLVER_EXPORT ZELCharacter* ZELCharacterCreate(const ZELCharacterDefinition* def, ZELMalloc alloc);
ZELKIN_SOLVER_EXPORT void ZELCharacterDestroy(ZELCharacter* character, ZELFree release);
ZELKIN_SOLVER_EXPORT int ZELGetNodeIdFromName(const char* name);
ZELKIN_SOLVER_EXPORT const char* ZELGetNodeNameFromId(int nodeId);
ZELKIN_SOLVER_EXPORT int ZELGetEffectorIdFromName(const char* name);
ZELKIN_SOLVER_EXPORT const char* ZELGetEffectorNameFromId(int effectorId);
ZELKIN_SOLVER_EXPORT void ZELGetCharacterizationTransform(const ZELCharacter*, int nodeId, float t[4], float q[4],
                                                          float s[4]);
ZELKIN_SOLVER_EXPORT void ZELSetCharacterizationTransform(ZELCharacter*, int nodeId, const float t[4], const float q[4],
                                                          const float s[4]);
ZELKIN_SOLVER_EXPORT void ZELSetCharacterizationOffset(ZELCharacter*, int nodeId, const float t[4], const float q[4],
                                                       const float s[4]);
ZELKIN_SOLVER_EXPORT int ZELGetLimbFlag(const ZELCharacter*, int limb);
ZELKIN_SOLVER_EXPORT void ZELSetLimbFlag(ZELCharacter*, int limb, int value);
ZELKIN_SOLVER_EXPORT int ZELGetParentNodeId(const ZELCharacter*, int nodeId);
ZELKIN_SOLVER_EXPORT void ZELCharacterGetJointGeometries(const ZELCharacterDefinition*, const ZELCharacter*,
                                                         CharacterJointGeometry* records, int count,
                                                         int32_t limbFlags[4]);
ZELKIN_SOLVER_EXPORT void ZELCharacterSetJointGeometries(const ZELCharacterDefinition*, ZELCharacter*,
                                                         const CharacterJointGeometry* records, int count,
                                                         const int32_t limbFlags[4]);
ZELKIN_SOLVER_EXPORT void* ZELCharacterizationStreamWrite(int32_t* length, const ZELCharacterDefinition*,
                                                          const ZELCharacter*, bool bigEndian, ZELMalloc, ZELFree);
ZELKIN_SOLVER_EXPORT ZELCharacter* ZELCharacterizationStreamRead(ZELCharacterDefinition* definition, const void* bytes,
                                                                 int32_t length, ZELMalloc, ZELFree);

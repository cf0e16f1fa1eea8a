#pragma once

#include <cstddef>
#include <cstdint>

#include <zelkin/CharacterJointGeometry.h>
#include <zelkin/ZELSolver.h>

namespace zelkin {

// Word positions inside a joint record; a held node keeps its record image in exactly this order.
enum RecordWord : int
{
    kTranslateWord = 0,
    kRotateWord = 3,
    kScaleWord = 7,
    kJointPartsWord = 10, // from here on, only nodes with full joint geometry carry data
    kParentOffsetWord = 25,
    kRecordWords = 30
};
constexpr size_t kRecordBytes = kRecordWords * sizeof(uint32_t);
static_assert(sizeof(CharacterJointGeometry) == kRecordBytes, "a record image is one CharacterJointGeometry");

// Everything the character knows about one node. Keeping the record image whole lets the joint geometries move in
// and out with plain copies, and stored values come back bit for bit.
struct NodeState
{
    uint32_t record[kRecordWords];
    uint32_t translateW;
    uint32_t scaleW;
    uint32_t offsetTranslate[4];
    uint32_t offsetScale[4];
};
// copyRecordToState() with full geometry sets every one of these words; the stream reader relies on it.
static_assert(sizeof(NodeState) == (kRecordWords + 2 + 4 + 4) * sizeof(uint32_t), "no field beyond the above");
static_assert(sizeof(NodeState) % 16 == 0, "node states stay 16-byte aligned");

} // namespace zelkin

// One block: this header, then one NodeState per held node in identifier order. The parent of a node is not
// stored: it is asked for rarely, and walking the standard skeleton then is cheaper than working out every parent
// at each creation.
struct alignas(16) ZELCharacter
{
    int32_t heldCount;
    int32_t limbFlags[ZELLimbCount];
    int16_t slot[ZELNodeCount]; // index into the node states, -1 for a node the character does not hold

    zelkin::NodeState* nodes() { return reinterpret_cast<zelkin::NodeState*>(this + 1); }
    const zelkin::NodeState* nodes() const { return reinterpret_cast<const zelkin::NodeState*>(this + 1); }
};

namespace zelkin {

constexpr uint32_t kUsedBit = 1u;
constexpr uint32_t kFullGeometryBits = 7u;

inline bool isUsed(uint32_t flags)
{
    return (flags & kUsedBit) != 0;
}

inline bool hasFullGeometry(uint32_t flags)
{
    return (flags & kFullGeometryBits) == kFullGeometryBits;
}

int countUsedNodes(const ZELCharacterDefinition& definition);

// The internal steps behind the exported calls, without the floating-point guard, for callers already inside one.

// Creation without the node states: the caller sets every one of them before the character is used.
ZELCharacter* allocateCharacter(const ZELCharacterDefinition& definition, ZELMalloc alloc);
// Identity rotations, unit scales, zero translations, no limits: what a held node starts as.
const NodeState& neutralNodeState();

// One record to or from a node state, as the node's flag word allows, its words byte-reversed when swap is set;
// a null state reads as a zero record.
void copyStateToRecord(uint32_t flags, const NodeState* state, unsigned char* record, bool swap);
void copyRecordToState(uint32_t flags, NodeState& state, const unsigned char* record, bool swap);

void readLimbFlags(const ZELCharacter& character, int32_t limbFlags[4]);
// Only non-zero words switch a flag on; zero words leave it as it is.
void writeLimbFlags(ZELCharacter& character, const int32_t limbFlags[4]);

inline bool holds(const ZELCharacter& character, int nodeId)
{
    return nodeId >= 0 && nodeId < ZELNodeCount && character.slot[nodeId] >= 0;
}

// Null when the character does not hold the node (or the identifier is out of range).
inline NodeState* heldNode(ZELCharacter& character, int nodeId)
{
    return holds(character, nodeId) ? &character.nodes()[character.slot[nodeId]] : nullptr;
}

inline const NodeState* heldNode(const ZELCharacter& character, int nodeId)
{
    return holds(character, nodeId) ? &character.nodes()[character.slot[nodeId]] : nullptr;
}

inline bool validLimb(int limb)
{
    return limb >= 0 && limb < ZELLimbCount;
}

inline int32_t limbFlag(const ZELCharacter& character, int limb)
{
    return validLimb(limb) && character.limbFlags[limb] != 0 ? 1 : 0;
}

// There is no solving in this library to redo for the limb: the flag is only kept for the caller.
inline void setLimbFlag(ZELCharacter& character, int limb, int32_t value)
{
    if (validLimb(limb))
        character.limbFlags[limb] = value != 0 ? 1 : 0;
}

} // namespace zelkin

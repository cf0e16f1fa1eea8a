#include <cstring>

#include "CharacterData.h"
#include "FloatingPointGuard.h"
#include "WordCopy.h"

namespace zelkin {
namespace {

constexpr size_t kTransformBytes = kJointPartsWord * sizeof(uint32_t);
constexpr size_t kJointPartsWords = kRecordWords - kJointPartsWord;
constexpr size_t kJointPartsBytes = kJointPartsWords * sizeof(uint32_t);

// Exactly 212 records address one slot per node identifier, any other count one record per used node. Calls
// visit(nodeId, record index) for each used node whose record lies inside the array, in identifier order.
template <typename Visit>
void forEachRecord(const ZELCharacterDefinition& definition, int count, Visit visit)
{
    const bool dense = count == ZELNodeCount;
    int packed = 0;
    for (int id = 0; id < ZELNodeCount; ++id) {
        if (!isUsed(definition.mUsedNodes[id]))
            continue;
        const int index = dense ? id : packed++;
        if (index >= count)
            break;
        visit(id, index);
    }
}

unsigned char* recordAt(void* records, int index)
{
    return static_cast<unsigned char*>(records) + static_cast<size_t>(index) * kRecordBytes;
}

const unsigned char* recordAt(const void* records, int index)
{
    return static_cast<const unsigned char*>(records) + static_cast<size_t>(index) * kRecordBytes;
}

void clearRecords(void* records, int from, int to)
{
    if (to > from)
        std::memset(recordAt(records, from), 0, static_cast<size_t>(to - from) * kRecordBytes);
}

} // namespace

void copyStateToRecord(uint32_t flags, const NodeState* state, unsigned char* record, bool swap)
{
    if (state == nullptr) {
        std::memset(record, 0, kRecordBytes);
        return;
    }
    copyWords(record, state->record, kJointPartsWord, swap);
    if (hasFullGeometry(flags))
        copyWords(record + kTransformBytes, &state->record[kJointPartsWord], kJointPartsWords, swap);
    else
        std::memset(record + kTransformBytes, 0, kJointPartsBytes);
}

void copyRecordToState(uint32_t flags, NodeState& state, const unsigned char* record, bool swap)
{
    constexpr float zero = 0.0f;
    constexpr float one = 1.0f;
    copyWords(state.record, record, kJointPartsWord, swap);
    std::memcpy(&state.translateW, &zero, sizeof zero);
    std::memcpy(&state.scaleW, &one, sizeof one);
    if (!hasFullGeometry(flags))
        return;
    copyWords(&state.record[kJointPartsWord], record + kTransformBytes, kJointPartsWords, swap);
    for (int i = 0; i < 4; ++i) {
        std::memcpy(&state.offsetTranslate[i], &zero, sizeof zero);
        std::memcpy(&state.offsetScale[i], &one, sizeof one);
    }
}

void readLimbFlags(const ZELCharacter& character, int32_t limbFlags[4])
{
    for (int limb = 0; limb < ZELLimbCount; ++limb)
        limbFlags[limb] = limbFlag(character, limb);
}

void writeLimbFlags(ZELCharacter& character, const int32_t limbFlags[4])
{
    for (int limb = 0; limb < ZELLimbCount; ++limb) {
        if (limbFlags[limb] != 0)
            setLimbFlag(character, limb, limbFlags[limb]);
    }
}

} // namespace zelkin

// Every slot is written once, records of used nodes filled and the rest zeroed: the array ends up as clearing it
// first and then filling it would leave it, at half the memory traffic.
void ZELCharacterGetJointGeometries(const ZELCharacterDefinition* definition, const ZELCharacter* character,
                                    CharacterJointGeometry* records, int count, int32_t limbFlags[4])
{
    zelkin::FloatingPointGuard guard;
    if (definition == nullptr || character == nullptr)
        return;
    if (records != nullptr && count > 0) {
        int cleared = 0;
        zelkin::forEachRecord(*definition, count, [&](int id, int index) {
            zelkin::clearRecords(records, cleared, index);
            zelkin::copyStateToRecord(definition->mUsedNodes[id], zelkin::heldNode(*character, id),
                               zelkin::recordAt(records, index), false);
            cleared = index + 1;
        });
        zelkin::clearRecords(records, cleared, count);
    }
    if (limbFlags != nullptr)
        zelkin::readLimbFlags(*character, limbFlags);
}

// Nothing is derived from the reference pose in this library, so there is nothing to recompute before the limbs.
void ZELCharacterSetJointGeometries(const ZELCharacterDefinition* definition, ZELCharacter* character,
                                    const CharacterJointGeometry* records, int count, const int32_t limbFlags[4])
{
    zelkin::FloatingPointGuard guard;
    if (definition == nullptr || character == nullptr)
        return;
    if (records != nullptr && count > 0) {
        zelkin::forEachRecord(*definition, count, [&](int id, int index) {
            if (zelkin::NodeState* state = zelkin::heldNode(*character, id))
                zelkin::copyRecordToState(definition->mUsedNodes[id], *state, zelkin::recordAt(records, index), false);
        });
    }
    if (limbFlags != nullptr)
        zelkin::writeLimbFlags(*character, limbFlags);
}

#include <algorithm>
#include <cstring>
#include <new>

#include "CharacterData.h"
#include "FloatingPointGuard.h"
#include "StandardHierarchy.h"

using zelkin::NodeState;

namespace zelkin {
namespace {

// The block handed out by the allocator is kept in the 8 bytes just below the aligned character.
constexpr size_t kAllocatorPointerBytes = 8;
constexpr size_t kAlignment = 16;
static_assert(sizeof(void*) <= kAllocatorPointerBytes, "the allocator's pointer fits its slot");

constexpr float kZero = 0.0f;
constexpr float kOne = 1.0f;

void storeFloat(uint32_t& word, float value)
{
    std::memcpy(&word, &value, sizeof word);
}

NodeState makeNeutralNodeState()
{
    NodeState state;
    std::memset(&state, 0, sizeof state);
    CharacterJointGeometry defaults;
    std::memcpy(state.record, &defaults, kRecordBytes);
    storeFloat(state.scaleW, kOne);
    for (uint32_t& word : state.offsetScale)
        storeFloat(word, kOne);
    return state;
}

void buildHeader(ZELCharacter& character, const ZELCharacterDefinition& definition)
{
    character.heldCount = 0;
    for (int32_t& flag : character.limbFlags)
        flag = 0;
    for (int id = 0; id < ZELNodeCount; ++id)
        character.slot[id] = isUsed(definition.mUsedNodes[id]) ? static_cast<int16_t>(character.heldCount++) : -1;
}

void copyTransform(NodeState& state, const float t[4], const float q[4], const float s[4])
{
    std::memcpy(&state.record[kTranslateWord], t, 3 * sizeof(float));
    std::memcpy(&state.translateW, &t[3], sizeof(float));
    std::memcpy(&state.record[kRotateWord], q, 4 * sizeof(float));
    std::memcpy(&state.record[kScaleWord], s, 3 * sizeof(float));
    std::memcpy(&state.scaleW, &s[3], sizeof(float));
}

} // namespace

int countUsedNodes(const ZELCharacterDefinition& definition)
{
    int count = 0;
    for (uint32_t flags : definition.mUsedNodes)
        count += isUsed(flags) ? 1 : 0;
    return count;
}

const NodeState& neutralNodeState()
{
    static const NodeState neutral = makeNeutralNodeState();
    return neutral;
}

ZELCharacter* allocateCharacter(const ZELCharacterDefinition& definition, ZELMalloc alloc)
{
    alignas(kAlignment) ZELCharacterDefinition ownCopy;
    std::memcpy(&ownCopy, &definition, sizeof ownCopy);

    const size_t bytes = sizeof(ZELCharacter) + static_cast<size_t>(countUsedNodes(ownCopy)) * sizeof(NodeState);
    void* block = alloc(bytes + kAllocatorPointerBytes + kAlignment - 1);
    if (block == nullptr)
        return nullptr;
    const uintptr_t start = (reinterpret_cast<uintptr_t>(block) + kAllocatorPointerBytes + kAlignment - 1)
        & ~static_cast<uintptr_t>(kAlignment - 1);
    std::memcpy(reinterpret_cast<void*>(start - kAllocatorPointerBytes), &block, sizeof block);

    ZELCharacter* character = new (reinterpret_cast<void*>(start)) ZELCharacter;
    buildHeader(*character, ownCopy);
    return character;
}

} // namespace zelkin

ZELCharacter* ZELCharacterCreate(const ZELCharacterDefinition* def, ZELMalloc alloc)
{
    zelkin::FloatingPointGuard guard(zelkin::FloatingPointGuard::RunsCallerCode);
    if (def == nullptr || alloc == nullptr)
        return nullptr;
    ZELCharacter* character = zelkin::allocateCharacter(*def, alloc);
    if (character != nullptr)
        std::fill_n(character->nodes(), character->heldCount, zelkin::neutralNodeState());
    return character;
}

void ZELCharacterDestroy(ZELCharacter* character, ZELFree release)
{
    zelkin::FloatingPointGuard guard(zelkin::FloatingPointGuard::RunsCallerCode);
    if (release == nullptr)
        return;
    void* block = nullptr;
    if (character != nullptr)
        std::memcpy(&block, reinterpret_cast<const char*>(character) - zelkin::kAllocatorPointerBytes, sizeof block);
    release(block);
}

// A node the character does not hold reads as the neutral transform, so callers never see stale memory.
void ZELGetCharacterizationTransform(const ZELCharacter* character, int nodeId, float t[4], float q[4], float s[4])
{
    zelkin::FloatingPointGuard guard;
    const NodeState* state = character != nullptr ? zelkin::heldNode(*character, nodeId) : nullptr;
    if (state == nullptr)
        state = &zelkin::neutralNodeState();
    std::memcpy(t, &state->record[zelkin::kTranslateWord], 3 * sizeof(float));
    std::memcpy(&t[3], &state->translateW, sizeof(float));
    std::memcpy(q, &state->record[zelkin::kRotateWord], 4 * sizeof(float));
    std::memcpy(s, &state->record[zelkin::kScaleWord], 3 * sizeof(float));
    std::memcpy(&s[3], &state->scaleW, sizeof(float));
}

void ZELSetCharacterizationTransform(ZELCharacter* character, int nodeId, const float t[4], const float q[4],
                                     const float s[4])
{
    zelkin::FloatingPointGuard guard;
    NodeState* state = character != nullptr ? zelkin::heldNode(*character, nodeId) : nullptr;
    if (state != nullptr)
        zelkin::copyTransform(*state, t, q, s);
}

void ZELSetCharacterizationOffset(ZELCharacter* character, int nodeId, const float t[4], const float q[4],
                                  const float s[4])
{
    zelkin::FloatingPointGuard guard;
    NodeState* state = character != nullptr ? zelkin::heldNode(*character, nodeId) : nullptr;
    if (state == nullptr)
        return;
    std::memcpy(state->offsetTranslate, t, 3 * sizeof(float));
    zelkin::storeFloat(state->offsetTranslate[3], zelkin::kZero);
    std::memcpy(&state->record[zelkin::kParentOffsetWord], q, 4 * sizeof(float));
    std::memcpy(state->offsetScale, s, 4 * sizeof(float));
}

int ZELGetLimbFlag(const ZELCharacter* character, int limb)
{
    zelkin::FloatingPointGuard guard;
    return character != nullptr ? zelkin::limbFlag(*character, limb) : 0;
}

void ZELSetLimbFlag(ZELCharacter* character, int limb, int value)
{
    zelkin::FloatingPointGuard guard;
    if (character != nullptr)
        zelkin::setLimbFlag(*character, limb, value);
}

// The nearest ancestor in the standard skeleton that the character holds.
int ZELGetParentNodeId(const ZELCharacter* character, int nodeId)
{
    zelkin::FloatingPointGuard guard;
    if (character == nullptr || !zelkin::holds(*character, nodeId))
        return -1;
    int ancestor = zelkin::standardParentOf(nodeId);
    while (ancestor >= 0 && !zelkin::holds(*character, ancestor))
        ancestor = zelkin::standardParentOf(ancestor);
    return ancestor;
}

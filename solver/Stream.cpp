#include <cstring>

#include "CharacterData.h"
#include "FloatingPointGuard.h"
#include "WordCopy.h"

namespace zelkin {
namespace {

constexpr uint32_t kMagic = 0x24022789u;
constexpr int32_t kVersion = 2;
constexpr size_t kWordBytes = sizeof(uint32_t);
constexpr size_t kHeaderBytes = 2 * kWordBytes;
constexpr size_t kDefinitionBytes = sizeof(ZELCharacterDefinition);
constexpr size_t kRecordsOffset = kHeaderBytes + kDefinitionBytes;
constexpr size_t kLimbFlagBytes = ZELLimbCount * kWordBytes;

#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
constexpr bool kMachineBigEndian = true;
#else
constexpr bool kMachineBigEndian = false;
#endif

size_t streamBytes(int usedNodes)
{
    return kRecordsOffset + static_cast<size_t>(usedNodes) * kRecordBytes + kLimbFlagBytes;
}

// Records go straight from the node states into the stream, swapped on the way when asked.
void recordsToStream(const ZELCharacterDefinition& definition, const ZELCharacter& character, bool swap,
                     unsigned char* out)
{
    for (int id = 0; id < ZELNodeCount; ++id) {
        const uint32_t flags = definition.mUsedNodes[id];
        if (!isUsed(flags))
            continue;
        copyStateToRecord(flags, heldNode(character, id), out, swap);
        out += kRecordBytes;
    }
}

void* writeStream(int32_t* length, const ZELCharacterDefinition& definition, const ZELCharacter& character,
                  bool bigEndian, ZELMalloc alloc)
{
    const int usedNodes = countUsedNodes(definition);
    const size_t total = streamBytes(usedNodes);
    auto* stream = static_cast<unsigned char*>(alloc(total));
    if (stream == nullptr)
        return nullptr;

    const bool swap = bigEndian != kMachineBigEndian;
    const uint32_t header[2] = {kMagic, static_cast<uint32_t>(kVersion)};
    int32_t limbFlags[ZELLimbCount];
    readLimbFlags(character, limbFlags);
    copyWords(stream, header, 2, swap);
    copyWords(stream + kHeaderBytes, &definition, ZELNodeCount, swap);
    recordsToStream(definition, character, swap, stream + kRecordsOffset);
    copyWords(stream + total - kLimbFlagBytes, limbFlags, ZELLimbCount, swap);
    if (length != nullptr)
        *length = static_cast<int32_t>(total);
    return stream;
}

// The stream's definition is the character's, so the i-th record belongs to the i-th node state. A node with full
// geometry has every word of its state written from its record; any other starts neutral first.
void recordsFromStream(const ZELCharacterDefinition& definition, const unsigned char* in, bool swap,
                       ZELCharacter& character)
{
    NodeState* state = character.nodes();
    for (uint32_t flags : definition.mUsedNodes) {
        if (!isUsed(flags))
            continue;
        if (!hasFullGeometry(flags))
            *state = neutralNodeState();
        copyRecordToState(flags, *state++, in, swap);
        in += kRecordBytes;
    }
}

// Checks run in a fixed order, and none of them touches the caller's definition.
ZELCharacter* readStream(ZELCharacterDefinition& definitionOut, const unsigned char* bytes, size_t length,
                         ZELMalloc alloc)
{
    if (length < kHeaderBytes)
        return nullptr;
    uint32_t magic;
    std::memcpy(&magic, bytes, kWordBytes);
    if (magic != kMagic && magic != byteSwapped(kMagic))
        return nullptr;
    const bool swap = magic != kMagic;

    uint32_t version;
    copyWords(&version, bytes + kWordBytes, 1, swap);
    if (static_cast<int32_t>(version) > kVersion)
        return nullptr;
    if (length - kHeaderBytes < kDefinitionBytes)
        return nullptr;

    alignas(16) ZELCharacterDefinition definition;
    copyWords(&definition, bytes + kHeaderBytes, ZELNodeCount, swap);
    const int usedNodes = countUsedNodes(definition);
    if (streamBytes(usedNodes) > length)
        return nullptr; // bytes after the limb flags are allowed, missing ones are not

    std::memcpy(&definitionOut, &definition, sizeof definition);
    ZELCharacter* character = allocateCharacter(definition, alloc);
    if (character == nullptr)
        return nullptr;
    recordsFromStream(definition, bytes + kRecordsOffset, swap, *character);
    int32_t limbFlags[ZELLimbCount];
    copyWords(limbFlags, bytes + streamBytes(usedNodes) - kLimbFlagBytes, ZELLimbCount, swap);
    writeLimbFlags(*character, limbFlags);
    return character;
}

} // namespace
} // namespace zelkin

// The stream is assembled in the one buffer returned; nothing else is allocated, so nothing is handed to release.
void* ZELCharacterizationStreamWrite(int32_t* length, const ZELCharacterDefinition* definition,
                                     const ZELCharacter* character, bool bigEndian, ZELMalloc alloc, ZELFree)
{
    zelkin::FloatingPointGuard guard(zelkin::FloatingPointGuard::RunsCallerCode);
    if (length != nullptr)
        *length = 0;
    if (definition == nullptr || character == nullptr || alloc == nullptr)
        return nullptr;
    return zelkin::writeStream(length, *definition, *character, bigEndian, alloc);
}

// Records are applied from the stream bytes directly; the only allocation is the character itself.
ZELCharacter* ZELCharacterizationStreamRead(ZELCharacterDefinition* definition, const void* bytes, int32_t length,
                                            ZELMalloc alloc, ZELFree)
{
    zelkin::FloatingPointGuard guard(zelkin::FloatingPointGuard::RunsCallerCode);
    if (definition == nullptr || bytes == nullptr || length < 0 || alloc == nullptr)
        return nullptr;
    return zelkin::readStream(*definition, static_cast<const unsigned char*>(bytes), static_cast<size_t>(length),
                              alloc);
}

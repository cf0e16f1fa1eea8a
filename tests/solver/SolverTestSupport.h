#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <zelkin/CharacterJointGeometry.h>
#include <zelkin/ZELSolver.h>

// Records every block handed out and given back; refuses the request numbered failOnCall (0-based), if any.
struct CountingAllocator
{
    static inline std::vector<void*> allocated, released;
    static inline std::vector<size_t> sizes;
    static inline int calls = 0, failOnCall = -1;

    static void reset(int failing = -1)
    {
        allocated.clear();
        released.clear();
        sizes.clear();
        calls = 0;
        failOnCall = failing;
    }
    static void* allocate(size_t size)
    {
        if (calls++ == failOnCall)
            return nullptr;
        allocated.push_back(std::malloc(size));
        sizes.push_back(size);
        return allocated.back();
    }
    static void release(void* block)
    {
        released.push_back(block);
        std::free(block);
    }
};

inline ZELCharacterDefinition definitionOf(std::initializer_list<std::pair<int, uint32_t>> flags)
{
    ZELCharacterDefinition definition {};
    for (const auto& [id, word] : flags)
        definition.mUsedNodes[id] = word;
    return definition;
}

inline ZELCharacterDefinition fullDefinition(uint32_t word)
{
    ZELCharacterDefinition definition;
    std::fill(std::begin(definition.mUsedNodes), std::end(definition.mUsedNodes), word);
    return definition;
}

// Values that differ per node and per field, so a record landing in the wrong slot or field shows.
inline CharacterJointGeometry distinctRecord(int nodeId)
{
    const float b = static_cast<float>(nodeId) * 100.0f;
    CharacterJointGeometry record;
    record.SetTranslate(b + 1, b + 2, b + 3);
    record.SetRotateQ(b + 4, b + 5, b + 6, b + 7);
    record.SetScale(b + 8, b + 9, b + 10);
    record.SetPreRotQ(b + 11, b + 12, b + 13, b + 14);
    record.SetPostRotQ(b + 15, b + 16, b + 17, b + 18);
    record.SetMaxRLimit(b + 19, b + 20, b + 21);
    record.SetMinRLimit(b + 22, b + 23, b + 24);
    record.SetLimitEnableMask(1 + nodeId % 63);
    record.SetParentOffsetRotateQ(b + 25, b + 26, b + 27, b + 28);
    record.SetRotationOrder(static_cast<ZELRotationOrder>(nodeId % ZELRotationOrderCount));
    return record;
}

inline std::vector<CharacterJointGeometry> denseRecords()
{
    std::vector<CharacterJointGeometry> records;
    for (int id = 0; id < ZELNodeCount; ++id)
        records.push_back(distinctRecord(id));
    return records;
}

// Compared as words, so NaN payloads and signed zeros count.
inline std::vector<uint32_t> wordsOf(const CharacterJointGeometry& record)
{
    std::vector<uint32_t> words(sizeof record / sizeof(uint32_t));
    std::memcpy(words.data(), &record, sizeof record);
    return words;
}

// Owns a character (built from a definition and records, or adopted) and destroys it with the standard free.
struct CharacterHandle
{
    ZELCharacter* character = nullptr;

    CharacterHandle(const ZELCharacterDefinition& definition, const std::vector<CharacterJointGeometry>& records,
                    const int32_t limbFlags[4] = nullptr)
        : character(ZELCharacterCreate(&definition, std::malloc))
    {
        ZELCharacterSetJointGeometries(&definition, character, records.data(), static_cast<int>(records.size()),
                                       limbFlags);
    }
    explicit CharacterHandle(ZELCharacter* adopted)
        : character(adopted)
    {
    }
    ~CharacterHandle() { ZELCharacterDestroy(character, std::free); }
    CharacterHandle(const CharacterHandle&) = delete;
    CharacterHandle& operator=(const CharacterHandle&) = delete;
};

inline std::vector<CharacterJointGeometry> readBackDense(const ZELCharacterDefinition& definition,
                                                         const ZELCharacter* character, int32_t limbFlags[4] = nullptr)
{
    std::vector<CharacterJointGeometry> records(ZELNodeCount);
    ZELCharacterGetJointGeometries(&definition, character, records.data(), ZELNodeCount, limbFlags);
    return records;
}

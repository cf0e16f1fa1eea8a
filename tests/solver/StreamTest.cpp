#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "SolverTestSupport.h"

namespace {

using Bytes = std::vector<unsigned char>;

constexpr int kHips = 1, kLeftLeg = 3, kHead = 15;

// Lays a stream out by hand, word by word, in the chosen byte order.
class StreamBuilder
{
public:
    explicit StreamBuilder(bool bigEndian)
        : mBigEndian(bigEndian)
    {
    }

    StreamBuilder& word(uint32_t value)
    {
        for (int i = 0; i < 4; ++i) {
            const int shift = mBigEndian ? 24 - 8 * i : 8 * i;
            mBytes.push_back(static_cast<unsigned char>(value >> shift));
        }
        return *this;
    }

    StreamBuilder& header(uint32_t version = 2) { return word(0x24022789u).word(version); }

    StreamBuilder& definition(const ZELCharacterDefinition& definition)
    {
        for (uint32_t flags : definition.mUsedNodes)
            word(flags);
        return *this;
    }

    StreamBuilder& record(const CharacterJointGeometry& record, bool fullGeometry)
    {
        const std::vector<uint32_t> words = wordsOf(record);
        for (size_t i = 0; i < words.size(); ++i)
            word(fullGeometry || i < 10 ? words[i] : 0u);
        return *this;
    }

    StreamBuilder& limbFlags(uint32_t a, uint32_t b, uint32_t c, uint32_t d) { return word(a).word(b).word(c).word(d); }

    const Bytes& bytes() const { return mBytes; }

private:
    bool mBigEndian;
    Bytes mBytes;
};

// A small characterization: a full node, a transform-only node, and two limb flags on.
const ZELCharacterDefinition kSmallDefinition = definitionOf({{kHips, 7}, {kLeftLeg, 1}, {kHead, 7}});

Bytes smallStream(bool bigEndian, uint32_t version = 2)
{
    StreamBuilder builder(bigEndian);
    builder.header(version).definition(kSmallDefinition);
    for (int id : {kHips, kLeftLeg, kHead})
        builder.record(distinctRecord(id), id != kLeftLeg);
    return builder.limbFlags(0, 1, 0, 1).bytes();
}

Bytes written(const ZELCharacterDefinition& definition, const ZELCharacter* character, bool bigEndian)
{
    int32_t length = -1;
    void* stream = ZELCharacterizationStreamWrite(&length, &definition, character, bigEndian, std::malloc, std::free);
    EXPECT_NE(stream, nullptr);
    if (stream == nullptr)
        return {};
    const auto* begin = static_cast<const unsigned char*>(stream);
    Bytes bytes(begin, begin + length);
    std::free(stream);
    return bytes;
}

struct ReadResult
{
    ZELCharacter* character = nullptr;
    ZELCharacterDefinition definition;
};

ReadResult read(const Bytes& bytes, size_t length)
{
    ReadResult result;
    std::memset(&result.definition, 0xAB, sizeof result.definition);
    result.character = ZELCharacterizationStreamRead(&result.definition, bytes.data(), static_cast<int32_t>(length),
                                                     std::malloc, std::free);
    return result;
}

ReadResult read(const Bytes& bytes)
{
    return read(bytes, bytes.size());
}

bool untouched(const ZELCharacterDefinition& definition)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(&definition);
    return std::all_of(bytes, bytes + sizeof definition, [](unsigned char byte) { return byte == 0xAB; });
}

Bytes writtenAgain(const ReadResult& result, bool bigEndian)
{
    CharacterHandle owner(result.character);
    return written(result.definition, owner.character, bigEndian);
}

TEST(StreamWrite, EmptyCharacterIsHeaderDefinitionAndFlagsInBothOrders)
{
    const ZELCharacterDefinition empty {};
    CharacterHandle character(ZELCharacterCreate(&empty, std::malloc));
    const Bytes little = written(empty, character.character, false);
    const Bytes big = written(empty, character.character, true);
    ASSERT_EQ(little.size(), 872u);
    EXPECT_EQ(Bytes(little.begin(), little.begin() + 8), (Bytes {0x89, 0x27, 0x02, 0x24, 0x02, 0x00, 0x00, 0x00}));
    EXPECT_EQ(Bytes(big.begin(), big.begin() + 8), (Bytes {0x24, 0x02, 0x27, 0x89, 0x00, 0x00, 0x00, 0x02}));
    EXPECT_EQ(little, StreamBuilder(false).header().definition(empty).limbFlags(0, 0, 0, 0).bytes());

    const ReadResult back = read(little);
    ASSERT_NE(back.character, nullptr);
    EXPECT_EQ(back.definition.mUsedNodes[0], 0u);
    ZELCharacterDestroy(back.character, std::free);
}

// The character holds full geometry for the leg too; the transform-only flag word decides what is written.
TEST(StreamWrite, MatchesTheHandLaidStreamAndBigEndianReversesEveryWord)
{
    const ZELCharacterDefinition everythingFull = definitionOf({{kHips, 7}, {kLeftLeg, 7}, {kHead, 7}});
    const int32_t limbWords[4] = {0, 3, 0, -1};
    CharacterHandle character(everythingFull, denseRecords(), limbWords);

    const Bytes little = written(kSmallDefinition, character.character, false);
    const Bytes big = written(kSmallDefinition, character.character, true);
    EXPECT_EQ(little, smallStream(false));
    EXPECT_EQ(big, smallStream(true));
    ASSERT_EQ(little.size(), 872u + 3 * 120u);
    for (size_t i = 0; i < little.size(); ++i)
        ASSERT_EQ(big[i], little[i - i % 4 + 3 - i % 4]) << "byte " << i;
}

TEST(StreamRead, BothByteOrdersGiveTheSameCharacter)
{
    ReadResult little = read(smallStream(false));
    ReadResult big = read(smallStream(true));
    ASSERT_NE(little.character, nullptr);
    ASSERT_NE(big.character, nullptr);
    EXPECT_EQ(0, std::memcmp(&little.definition, &kSmallDefinition, sizeof kSmallDefinition));
    EXPECT_EQ(0, std::memcmp(&big.definition, &kSmallDefinition, sizeof kSmallDefinition));

    int32_t littleFlags[4], bigFlags[4];
    const auto a = readBackDense(little.definition, little.character, littleFlags);
    const auto b = readBackDense(big.definition, big.character, bigFlags);
    EXPECT_EQ(wordsOf(a[kHead]), wordsOf(distinctRecord(kHead)));
    for (int id = 0; id < ZELNodeCount; ++id)
        EXPECT_EQ(wordsOf(a[id]), wordsOf(b[id])) << id;
    EXPECT_EQ(std::vector<int32_t>(bigFlags, bigFlags + 4), (std::vector<int32_t> {0, 1, 0, 1}));
    EXPECT_EQ(0, std::memcmp(littleFlags, bigFlags, sizeof littleFlags));

    EXPECT_EQ(writtenAgain(little, true), smallStream(true));
    EXPECT_EQ(writtenAgain(big, false), smallStream(false));
}

TEST(StreamRead, LimbWordsReadAsOnOrOff)
{
    StreamBuilder builder(true);
    ReadResult result = read(builder.header().definition({}).limbFlags(0, 5, 0, 1).bytes());
    ASSERT_NE(result.character, nullptr);
    int32_t flags[4];
    readBackDense(result.definition, result.character, flags);
    EXPECT_EQ(std::vector<int32_t>(flags, flags + 4), (std::vector<int32_t> {0, 1, 0, 1}));
    ZELCharacterDestroy(result.character, std::free);
}

TEST(StreamRead, OlderVersionsAndTrailingBytesAreAccepted)
{
    for (uint32_t version : {0u, 1u}) {
        ReadResult result = read(smallStream(true, version));
        ASSERT_NE(result.character, nullptr) << version;
        EXPECT_EQ(writtenAgain(result, true), smallStream(true)) << version;
    }
    Bytes padded = smallStream(false);
    padded.insert(padded.end(), {0xFF, 0x00, 0x13});
    ReadResult result = read(padded);
    ASSERT_NE(result.character, nullptr);
    EXPECT_EQ(writtenAgain(result, false), smallStream(false));
}

// Each case passes every earlier check and fails exactly one; none may touch the caller's definition.
TEST(StreamRead, RejectionsLeaveTheDefinitionUntouched)
{
    const Bytes valid = smallStream(false);
    Bytes wrongMagic = valid;
    wrongMagic[0] = 0x88;
    Bytes mixedMagic = valid;
    std::swap(mixedMagic[0], mixedMagic[1]);
    const Bytes newerVersion = smallStream(false, 3);
    const Bytes newerVersionBig = smallStream(true, 3);
    Bytes allUsedButNoRecords = StreamBuilder(false).header().definition(fullDefinition(1)).bytes();
    allUsedButNoRecords.resize(872);

    const struct
    {
        const char* what;
        const Bytes& bytes;
        size_t length;
    } cases[] = {
        {"empty", valid, 0},
        {"shorter than the header", valid, 7},
        {"wrong magic", wrongMagic, valid.size()},
        {"magic bytes out of order", mixedMagic, valid.size()},
        {"version 3", newerVersion, valid.size()},
        {"version 3, big-endian", newerVersionBig, valid.size()},
        {"header only", valid, 8},
        {"definition one byte short", valid, 8 + 847},
        {"records missing", valid, 856},
        {"limb flags missing", valid, valid.size() - 16},
        {"one byte short", valid, valid.size() - 1},
        {"every node used, no records", allUsedButNoRecords, allUsedButNoRecords.size()},
    };
    for (const auto& rejected : cases) {
        const ReadResult result = read(rejected.bytes, rejected.length);
        EXPECT_EQ(result.character, nullptr) << rejected.what;
        EXPECT_TRUE(untouched(result.definition)) << rejected.what;
        ZELCharacterDestroy(result.character, std::free);
    }

    ZELCharacterDefinition definition;
    std::memset(&definition, 0xAB, sizeof definition);
    EXPECT_EQ(ZELCharacterizationStreamRead(&definition, valid.data(), -1, std::malloc, std::free), nullptr);
    EXPECT_TRUE(untouched(definition));
}

TEST(StreamRead, UnalignedBytesReadLikeAlignedOnes)
{
    const Bytes valid = smallStream(true);
    Bytes shifted(1, 0);
    shifted.insert(shifted.end(), valid.begin(), valid.end());
    ZELCharacterDefinition definition {};
    CharacterHandle character(ZELCharacterizationStreamRead(&definition, shifted.data() + 1,
                                                            static_cast<int32_t>(valid.size()), std::malloc,
                                                            std::free));
    ASSERT_NE(character.character, nullptr);
    EXPECT_EQ(written(definition, character.character, true), valid);
}

// The result is the only block either call asks for; a refused one fails the call.
TEST(StreamAllocation, OneBlockPerCallAndRefusalFailsCleanly)
{
    CharacterHandle character(kSmallDefinition, denseRecords());
    CountingAllocator::reset(0);
    int32_t length = 99;
    EXPECT_EQ(ZELCharacterizationStreamWrite(&length, &kSmallDefinition, character.character, false,
                                             CountingAllocator::allocate, CountingAllocator::release),
              nullptr);
    EXPECT_EQ(length, 0);

    CountingAllocator::reset(1);
    void* stream = ZELCharacterizationStreamWrite(&length, &kSmallDefinition, character.character, true,
                                                  CountingAllocator::allocate, CountingAllocator::release);
    ASSERT_EQ(CountingAllocator::sizes, std::vector<size_t> {static_cast<size_t>(length)});
    ZELCharacterDefinition definition;
    EXPECT_EQ(ZELCharacterizationStreamRead(&definition, stream, length, CountingAllocator::allocate,
                                            CountingAllocator::release),
              nullptr);
    CountingAllocator::release(stream);
    EXPECT_EQ(CountingAllocator::released, CountingAllocator::allocated);
}

// Every node full, odd float values included: little to big and back gives the very same bytes.
TEST(StreamRoundTrip, FullCharacterSurvivesBothByteOrdersBitForBit)
{
    const ZELCharacterDefinition definition = fullDefinition(7);
    std::vector<CharacterJointGeometry> records = denseRecords();
    uint32_t nanWithPayload = 0x7FA12345u;
    float odd;
    std::memcpy(&odd, &nanWithPayload, sizeof odd);
    records[kHead].SetMaxRLimit(odd, -0.0f, 1e-42f);
    const int32_t limbWords[4] = {1, 0, 1, 0};
    CharacterHandle character(definition, records, limbWords);

    const Bytes first = written(definition, character.character, false);
    ASSERT_EQ(first.size(), 872u + 212u * 120u);
    const Bytes big = writtenAgain(read(first), true);
    EXPECT_EQ(writtenAgain(read(big), false), first);
}

} // namespace

#include <cstdint>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "SolverTestSupport.h"

namespace {

constexpr int kReference = 0, kHips = 1, kLeftLeg = 3, kSpine = 8, kLeftArm = 9, kLeftForeArm = 10, kLeftHand = 11,
              kHead = 15, kLeftShoulder = 18, kSpine9 = 31, kNeck9 = 40, kLeftArmRoll = 45, kLeftHandIndex1 = 54,
              kLeftHandIndex2 = 55, kLeftInHandIndex = 147, kLeftShoulderExtra = 170, kLeafLeftArmRoll3 = 192;
const std::vector<uint32_t> kZeroRecord(30, 0u);

TEST(CharacterAllocation, OneAlignedBlockFromTheCallerComesBackOnDestroy)
{
    for (const ZELCharacterDefinition& definition : {ZELCharacterDefinition {}, fullDefinition(7)}) {
        CountingAllocator::reset();
        ZELCharacter* character = ZELCharacterCreate(&definition, CountingAllocator::allocate);
        ASSERT_EQ(CountingAllocator::allocated.size(), 1u);
        const auto block = reinterpret_cast<uintptr_t>(CountingAllocator::allocated[0]);
        const auto start = reinterpret_cast<uintptr_t>(character);
        EXPECT_EQ(start % 16, 0u);
        EXPECT_GE(start, block + 8);
        EXPECT_LE(start, block + 8 + 15);

        ZELCharacterDestroy(character, CountingAllocator::release);
        EXPECT_EQ(CountingAllocator::released, CountingAllocator::allocated);
    }
}

TEST(CharacterAllocation, RefusedAllocationGivesNullAndNullIsHandedToRelease)
{
    const ZELCharacterDefinition definition = fullDefinition(7);
    CountingAllocator::reset(0);
    EXPECT_EQ(ZELCharacterCreate(&definition, CountingAllocator::allocate), nullptr);
    ZELCharacterDestroy(nullptr, CountingAllocator::release);
    EXPECT_EQ(CountingAllocator::released, std::vector<void*> {nullptr});
}

TEST(CharacterTransforms, HeldNodesKeepAllFourFloatsAndOthersReadNeutral)
{
    const ZELCharacterDefinition definition = definitionOf({{kHips, 1}, {kLeftLeg, 7}});
    CharacterHandle held(ZELCharacterCreate(&definition, std::malloc));
    const float t[4] = {1.5f, -2.0f, 3.25f, 9.0f}, q[4] = {0.5f, 0.5f, -0.5f, 0.5f}, s[4] = {2, 3, 4, 5};
    ZELSetCharacterizationTransform(held.character, kLeftLeg, t, q, s);
    ZELSetCharacterizationTransform(held.character, kLeftArm, t, q, s); // not held: ignored

    float gt[4], gq[4], gs[4];
    ZELGetCharacterizationTransform(held.character, kLeftLeg, gt, gq, gs);
    EXPECT_EQ(0, std::memcmp(gt, t, sizeof t));
    EXPECT_EQ(0, std::memcmp(gq, q, sizeof q));
    EXPECT_EQ(0, std::memcmp(gs, s, sizeof s));
    const float neutralT[4] = {0, 0, 0, 0}, neutralQ[4] = {0, 0, 0, 1}, neutralS[4] = {1, 1, 1, 1};
    for (int id : {kHips, kLeftArm}) {
        ZELGetCharacterizationTransform(held.character, id, gt, gq, gs);
        EXPECT_EQ(0, std::memcmp(gt, neutralT, sizeof gt)) << id;
        EXPECT_EQ(0, std::memcmp(gq, neutralQ, sizeof gq)) << id;
        EXPECT_EQ(0, std::memcmp(gs, neutralS, sizeof gs)) << id;
    }

    const float offsetQ[4] = {0.1f, 0.2f, 0.3f, 0.9f};
    ZELSetCharacterizationOffset(held.character, kLeftLeg, t, offsetQ, s);
    const CharacterJointGeometry leg = readBackDense(definition, held.character)[kLeftLeg];
    EXPECT_EQ(0, std::memcmp(leg.GetParentOffsetRotateQ(), offsetQ, sizeof offsetQ));
}

TEST(LimbFlags, NonZeroWordsSwitchOnAndZeroWordsLeaveTheFlagAlone)
{
    const ZELCharacterDefinition definition = fullDefinition(7);
    const int32_t words[4] = {0, 5, 0, 1};
    CharacterHandle character(definition, denseRecords(), words);
    int32_t flags[4] = {-1, -1, -1, -1};
    readBackDense(definition, character.character, flags);
    EXPECT_EQ(std::vector<int32_t>(flags, flags + 4), (std::vector<int32_t> {0, 1, 0, 1}));

    ZELSetLimbFlag(character.character, ZELLimbLeftLeg, 1);
    ZELCharacterSetJointGeometries(&definition, character.character, denseRecords().data(), ZELNodeCount, words);
    EXPECT_EQ(ZELGetLimbFlag(character.character, ZELLimbLeftLeg), 1);
    ZELSetLimbFlag(character.character, ZELLimbRightLeg, 0);
    EXPECT_EQ(ZELGetLimbFlag(character.character, ZELLimbRightLeg), 0);
    for (int limb : {-1, 4}) {
        ZELSetLimbFlag(character.character, limb, 1);
        EXPECT_EQ(ZELGetLimbFlag(character.character, limb), 0);
    }
    EXPECT_EQ(ZELGetLimbFlag(character.character, ZELLimbLeftArm), 0);
}

// Unused nodes, nodes with a transform only and nodes with full joint geometry, in turn.
ZELCharacterDefinition mixedDefinition()
{
    ZELCharacterDefinition definition {};
    for (int id = 0; id < ZELNodeCount; ++id)
        definition.mUsedNodes[id] = id % 3 == 0 ? 0u : id % 3 == 1 ? 1u : 7u;
    return definition;
}

TEST(JointGeometries, DenseAndPackedArraysBuildTheSameCharacter)
{
    const ZELCharacterDefinition definition = mixedDefinition();
    const std::vector<CharacterJointGeometry> dense = denseRecords();
    std::vector<CharacterJointGeometry> packed;
    for (int id = 0; id < ZELNodeCount; ++id) {
        if (definition.mUsedNodes[id] != 0)
            packed.push_back(dense[id]);
    }
    CharacterHandle fromDense(definition, dense);
    CharacterHandle fromPacked(definition, packed);
    const std::vector<CharacterJointGeometry> a = readBackDense(definition, fromDense.character);
    const std::vector<CharacterJointGeometry> b = readBackDense(definition, fromPacked.character);
    std::vector<CharacterJointGeometry> packedBack(packed.size());
    ZELCharacterGetJointGeometries(&definition, fromDense.character, packedBack.data(),
                                   static_cast<int>(packedBack.size()), nullptr);
    size_t next = 0;
    for (int id = 0; id < ZELNodeCount; ++id) {
        EXPECT_EQ(wordsOf(a[id]), wordsOf(b[id])) << id;
        if (definition.mUsedNodes[id] == 7u) {
            EXPECT_EQ(wordsOf(a[id]), wordsOf(dense[id])) << id;
        }
        if (definition.mUsedNodes[id] != 0) {
            EXPECT_EQ(wordsOf(packedBack[next++]), wordsOf(a[id])) << id;
        }
    }
}

TEST(JointGeometries, TransformOnlyNodeDropsItsJointGeometry)
{
    const ZELCharacterDefinition definition = definitionOf({{kLeftLeg, 1}, {kLeftForeArm, 7}});
    const std::vector<CharacterJointGeometry> dense = denseRecords();
    CharacterHandle character(definition, dense);
    const std::vector<uint32_t> leg = wordsOf(readBackDense(definition, character.character)[kLeftLeg]);
    const std::vector<uint32_t> written = wordsOf(dense[kLeftLeg]);
    EXPECT_TRUE(std::equal(leg.begin(), leg.begin() + 10, written.begin())) << "translate, rotate, scale kept";
    EXPECT_EQ(std::vector<uint32_t>(leg.begin() + 10, leg.end()), std::vector<uint32_t>(20, 0u));

    float t[4], q[4], s[4];
    ZELGetCharacterizationTransform(character.character, kLeftLeg, t, q, s);
    EXPECT_EQ(t[3], 0.0f);
    EXPECT_EQ(s[3], 1.0f);
}

// Nothing is normalised or recomputed on the way in: odd floats and NaN payloads must survive untouched.
TEST(JointGeometries, FullNodesComeBackBitForBit)
{
    const ZELCharacterDefinition definition = fullDefinition(7);
    std::vector<CharacterJointGeometry> dense = denseRecords();
    const uint32_t signallingNaN = 0x7F800001u;
    float nan;
    std::memcpy(&nan, &signallingNaN, sizeof nan);
    dense[kHead].SetPreRotQ(-0.0f, std::numeric_limits<float>::denorm_min(), std::numeric_limits<float>::infinity(),
                            nan);
    CharacterHandle character(definition, dense);
    const std::vector<CharacterJointGeometry> back = readBackDense(definition, character.character);
    for (int id = 0; id < ZELNodeCount; ++id)
        ASSERT_EQ(wordsOf(back[id]), wordsOf(dense[id])) << id;
}

TEST(JointGeometries, ReadingClearsUnusedSlotsAndStaysInsideTheArray)
{
    const ZELCharacterDefinition definition = mixedDefinition();
    CharacterHandle character(definition, denseRecords());
    std::vector<CharacterJointGeometry> dense = denseRecords();
    ZELCharacterGetJointGeometries(&definition, character.character, dense.data(), ZELNodeCount, nullptr);
    for (int id = 0; id < ZELNodeCount; id += 3)
        EXPECT_EQ(wordsOf(dense[id]), kZeroRecord) << id;

    // Fewer packed records than used nodes: the record behind them must survive.
    std::vector<CharacterJointGeometry> shortArray = denseRecords();
    ZELCharacterGetJointGeometries(&definition, character.character, shortArray.data(), 5, nullptr);
    EXPECT_EQ(wordsOf(shortArray[0]), wordsOf(dense[1]));
    EXPECT_EQ(wordsOf(shortArray[5]), wordsOf(distinctRecord(5)));

    // More packed records than used nodes: the surplus is cleared.
    const ZELCharacterDefinition two = definitionOf({{kHips, 7}, {kHead, 7}});
    CharacterHandle small(two, denseRecords());
    std::vector<CharacterJointGeometry> roomy = denseRecords();
    ZELCharacterGetJointGeometries(&two, small.character, roomy.data(), 4, nullptr);
    EXPECT_EQ(wordsOf(roomy[1]), wordsOf(distinctRecord(kHead)));
    EXPECT_EQ(wordsOf(roomy[3]), kZeroRecord);
    EXPECT_EQ(wordsOf(roomy[4]), wordsOf(distinctRecord(4)));
}

TEST(ParentNodes, FullCharacterFollowsTheStandardSkeleton)
{
    const ZELCharacterDefinition definition = fullDefinition(1);
    CharacterHandle character(ZELCharacterCreate(&definition, std::malloc));
    const std::pair<int, int> expected[] = {{kReference, -1},          {kHips, kReference},
                                            {kLeftShoulder, kSpine9},   {kLeftArm, kLeftShoulderExtra},
                                            {kHead, kNeck9},            {kLeafLeftArmRoll3, kLeftArmRoll},
                                            {kLeftHandIndex1, kLeftInHandIndex}};
    for (const auto& [node, parent] : expected)
        EXPECT_EQ(ZELGetParentNodeId(character.character, node), parent) << node;

    // Every chain ends at the root without a loop.
    for (int id = 1; id < ZELNodeCount; ++id) {
        int node = id;
        for (int steps = 0; node > kReference && steps < ZELNodeCount; ++steps)
            node = ZELGetParentNodeId(character.character, node);
        EXPECT_EQ(node, kReference) << ZELGetNodeNameFromId(id);
    }
}

TEST(ParentNodes, MissingIntermediatesAreSkipped)
{
    ZELCharacterDefinition definition {};
    for (int id = kHips; id <= kHead; ++id)
        definition.mUsedNodes[id] = 1;
    definition.mUsedNodes[kLeftHandIndex2] = 1;
    definition.mUsedNodes[kLeafLeftArmRoll3] = 1;
    CharacterHandle character(ZELCharacterCreate(&definition, std::malloc));

    EXPECT_EQ(ZELGetParentNodeId(character.character, kHips), -1) << "no Reference held";
    EXPECT_EQ(ZELGetParentNodeId(character.character, kLeftArm), kSpine);
    EXPECT_EQ(ZELGetParentNodeId(character.character, kHead), kSpine);
    EXPECT_EQ(ZELGetParentNodeId(character.character, kLeftHand), kLeftForeArm);
    EXPECT_EQ(ZELGetParentNodeId(character.character, kLeftHandIndex2), kLeftHand);
    EXPECT_EQ(ZELGetParentNodeId(character.character, kLeafLeftArmRoll3), kLeftArm);
    EXPECT_EQ(ZELGetParentNodeId(character.character, kLeftShoulder), -1) << "not held";
    EXPECT_EQ(ZELGetParentNodeId(character.character, ZELNodeCount), -1);
}

} // namespace

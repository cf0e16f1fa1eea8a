#include <cfenv>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <vector>

#include <xmmintrin.h>

#include <gtest/gtest.h>

#include "FloatingPointGuard.h"
#include "SolverTestSupport.h"

namespace {

constexpr uint32_t kFlushToZero = 0x8000u;
constexpr uint32_t kDenormalsAreZero = 0x0040u;

uint16_t x87Control()
{
    uint16_t word;
    __asm__ __volatile__("fnstcw %0" : "=m"(word));
    return word;
}

// Everything a caller can have changed, read without touching it.
struct FloatingPointState
{
    int rounding = fegetround();
    int enabled = fegetexcept();
    int raised = fetestexcept(FE_ALL_EXCEPT);
    uint32_t mxcsr = _mm_getcsr();
    uint16_t x87 = x87Control();
};

// A host that rounds upward, traps on invalid operations and flushes denormals; put back to normal afterwards, so
// a failing check cannot take the rest of the test program down with it.
class HostileCaller
{
public:
    HostileCaller()
    {
        fesetround(FE_UPWARD);
        _mm_setcsr(_mm_getcsr() | kFlushToZero | kDenormalsAreZero);
        feclearexcept(FE_ALL_EXCEPT);
        feenableexcept(FE_INVALID);
        feraiseexcept(FE_INEXACT); // masked, so it only leaves a pending flag
    }
    ~HostileCaller()
    {
        fedisableexcept(FE_ALL_EXCEPT);
        feclearexcept(FE_ALL_EXCEPT);
        fesetround(FE_TONEAREST);
        _mm_setcsr(0x1F80u);
    }
};

volatile float gZero = 0.0f;
volatile float gTiny = 1e-38f;
volatile long double gLongZero = 0.0L;

TEST(FloatingPointGuard, SolverModeInsideAndCallerModeBack)
{
    FloatingPointState inside, outside;
    float denormalProduct = 0.0f;
    float invalidQuotient = 0.0f;
    long double invalidLongQuotient = 0.0L;
    FloatingPointState before;
    {
        HostileCaller caller;
        before = FloatingPointState();
        {
            zelkin::FloatingPointGuard guard(zelkin::FloatingPointGuard::RunsCallerCode);
            inside = FloatingPointState();
            denormalProduct = gTiny * 1e-3f;
            invalidQuotient = gZero / gZero;            // would trap on SSE if the mask were not set
            invalidLongQuotient = gLongZero / gLongZero; // and on the x87, as a caller's allocator might
        }
        outside = FloatingPointState();
    }
    EXPECT_EQ(inside.rounding, FE_TONEAREST);
    EXPECT_EQ(inside.enabled, 0);
    EXPECT_EQ(inside.raised, 0) << "the caller's pending flag is cleared on entry";
    EXPECT_EQ(inside.mxcsr & (kFlushToZero | kDenormalsAreZero), 0u);
    EXPECT_NE(denormalProduct, 0.0f) << "denormals kept";
    EXPECT_NE(invalidQuotient, invalidQuotient);
    EXPECT_NE(invalidLongQuotient, invalidLongQuotient);

    EXPECT_EQ(outside.rounding, FE_UPWARD);
    EXPECT_EQ(outside.enabled, FE_INVALID);
    EXPECT_EQ(outside.raised, 0) << "what the call raised is not left pending";
    EXPECT_EQ(outside.mxcsr, before.mxcsr & ~0x3Fu);
    EXPECT_EQ(outside.x87, before.x87);
}

// Each exported call, made from the hostile caller, leaves its mode exactly as it found it.
TEST(FloatingPointGuard, EveryEntryPointRestoresTheCallerMode)
{
    const ZELCharacterDefinition definition = fullDefinition(7);
    const std::vector<CharacterJointGeometry> records = denseRecords();
    const int32_t limbWords[4] = {1, 0, 1, 0};
    ZELCharacter* character = ZELCharacterCreate(&definition, std::malloc);
    ZELCharacterSetJointGeometries(&definition, character, records.data(), ZELNodeCount, limbWords);
    int32_t length = 0;
    void* stream = ZELCharacterizationStreamWrite(&length, &definition, character, false, std::malloc, std::free);
    std::vector<CharacterJointGeometry> out(ZELNodeCount);
    float t[4] = {1, 2, 3, 0}, q[4] = {0, 0, 0, 1}, s[4] = {1, 1, 1, 1};
    int32_t limbs[4];
    ZELCharacterDefinition readDefinition {};

    const std::vector<std::pair<const char*, std::function<void()>>> calls = {
        {"Create and Destroy", [&] { ZELCharacterDestroy(ZELCharacterCreate(&definition, std::malloc), std::free); }},
        {"GetNodeIdFromName", [] { ZELGetNodeIdFromName("Hips"); }},
        {"GetNodeNameFromId", [] { ZELGetNodeNameFromId(3); }},
        {"GetEffectorIdFromName", [] { ZELGetEffectorIdFromName("HipsEffector"); }},
        {"GetEffectorNameFromId", [] { ZELGetEffectorNameFromId(3); }},
        {"GetCharacterizationTransform", [&] { ZELGetCharacterizationTransform(character, 3, t, q, s); }},
        {"SetCharacterizationTransform", [&] { ZELSetCharacterizationTransform(character, 3, t, q, s); }},
        {"SetCharacterizationOffset", [&] { ZELSetCharacterizationOffset(character, 3, t, q, s); }},
        {"GetLimbFlag", [&] { ZELGetLimbFlag(character, 0); }},
        {"SetLimbFlag", [&] { ZELSetLimbFlag(character, 0, 1); }},
        {"GetParentNodeId", [&] { ZELGetParentNodeId(character, 3); }},
        {"GetJointGeometries",
         [&] { ZELCharacterGetJointGeometries(&definition, character, out.data(), ZELNodeCount, limbs); }},
        {"SetJointGeometries",
         [&] { ZELCharacterSetJointGeometries(&definition, character, records.data(), ZELNodeCount, limbWords); }},
        {"StreamWrite",
         [&] {
             int32_t n = 0;
             std::free(ZELCharacterizationStreamWrite(&n, &definition, character, true, std::malloc, std::free));
         }},
        {"StreamRead",
         [&] {
             ZELCharacterDestroy(ZELCharacterizationStreamRead(&readDefinition, stream, length, std::malloc, std::free),
                                 std::free);
         }},
    };
    for (const auto& [name, call] : calls) {
        FloatingPointState before, after;
        {
            HostileCaller caller;
            before = FloatingPointState();
            call();
            after = FloatingPointState();
        }
        EXPECT_EQ(after.rounding, FE_UPWARD) << name;
        EXPECT_EQ(after.enabled, FE_INVALID) << name;
        EXPECT_EQ(after.raised, 0) << name;
        EXPECT_EQ(after.mxcsr, before.mxcsr & ~0x3Fu) << name;
        EXPECT_EQ(after.x87, before.x87) << name;
    }
    std::free(stream);
    ZELCharacterDestroy(character, std::free);
}

} // namespace

#include "FloatingPointGuard.h"

#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))

#include <xmmintrin.h>

namespace zelkin {
namespace {

// All six exceptions masked, round to nearest, flush-to-zero and denormals-are-zero off, no status.
constexpr uint32_t kSolverMxcsr = 0x1F80u;
constexpr uint32_t kMxcsrStatusBits = 0x3Fu;
// All exceptions masked, round to nearest, 64-bit significand (the power-on default).
constexpr uint16_t kSolverX87Control = 0x037Fu;
// Exception flags, stack fault and the error summary.
constexpr uint16_t kX87StatusBits = 0x00FFu;
#if defined(__i386__)
constexpr bool kLibraryUsesX87 = true;
#else
constexpr bool kLibraryUsesX87 = false;
#endif

uint16_t x87Control()
{
    uint16_t word;
    __asm__ __volatile__("fnstcw %0" : "=m"(word));
    return word;
}

void setX87Control(uint16_t word)
{
    __asm__ __volatile__("fldcw %0" : : "m"(word));
}

// Reading the status first keeps the common case, nothing pending, free of the slow fnclex.
void clearX87Status()
{
    uint16_t status;
    __asm__ __volatile__("fnstsw %0" : "=m"(status));
    if ((status & kX87StatusBits) != 0)
        __asm__ __volatile__("fnclex");
}

} // namespace

// Loading MXCSR is cheap where reading it is not, so it is written unconditionally and read only once.
FloatingPointGuard::FloatingPointGuard(CallerCode callerCode)
    : mCallerMxcsr(_mm_getcsr())
    , mCallerX87Control(x87Control())
    , mClearX87OnReturn(callerCode == RunsCallerCode || kLibraryUsesX87)
{
    _mm_setcsr(kSolverMxcsr);
    // Status goes before the control word: loading a mask over a pending exception must not trap.
    clearX87Status();
    if (mCallerX87Control != kSolverX87Control)
        setX87Control(kSolverX87Control);
}

FloatingPointGuard::~FloatingPointGuard()
{
    _mm_setcsr(mCallerMxcsr & ~kMxcsrStatusBits);
    // A flag left pending would trap at the caller's next x87 instruction once its unmasked control word is back.
    if (mClearX87OnReturn)
        clearX87Status();
    if (mCallerX87Control != kSolverX87Control)
        setX87Control(mCallerX87Control);
}

} // namespace zelkin

#else

namespace zelkin {

FloatingPointGuard::FloatingPointGuard(CallerCode)
{
    std::feholdexcept(&mCallerEnvironment);
    std::fesetround(FE_TONEAREST);
}

FloatingPointGuard::~FloatingPointGuard()
{
    std::feclearexcept(FE_ALL_EXCEPT);
    std::fesetenv(&mCallerEnvironment);
    std::feclearexcept(FE_ALL_EXCEPT);
}

} // namespace zelkin

#endif

#pragma once

#include <cstdint>

#if !(defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__)))
#include <cfenv>
#endif

namespace zelkin {

// Puts the calling thread into the solver's floating-point state for the lifetime of the object: every exception
// masked, round to nearest, denormals kept, no pending status. The destructor clears whatever status the call raised
// and gives the caller back its own control settings, so a host with unmasked exceptions or another rounding mode
// neither traps inside the library nor sees its mode changed.
class FloatingPointGuard
{
public:
    // Whether the call runs the caller's own code (its allocation or release function). On x86-64 only such code can
    // leave x87 status behind, the library's own arithmetic being SSE only; checking for it costs a third of the
    // guard, which adds up over the per-node reads.
    enum CallerCode
    {
        NoCallerCode,
        RunsCallerCode
    };

    explicit FloatingPointGuard(CallerCode callerCode = NoCallerCode);
    ~FloatingPointGuard();

    FloatingPointGuard(const FloatingPointGuard&) = delete;
    FloatingPointGuard& operator=(const FloatingPointGuard&) = delete;

private:
#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
    uint32_t mCallerMxcsr;
    uint16_t mCallerX87Control;
    bool mClearX87OnReturn;
#else
    std::fenv_t mCallerEnvironment;
#endif
};

} // namespace zelkin

#pragma once

// A broken promise stops the run like a crash, so libFuzzer keeps the input that broke it.
inline void require(bool condition)
{
    if (!condition)
        __builtin_trap();
}

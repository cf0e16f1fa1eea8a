#pragma once

// The library is built with hidden visibility; only what carries this macro is its interface.
#define ZELKIN_SOLVER_EXPORT __attribute__((visibility("default")))

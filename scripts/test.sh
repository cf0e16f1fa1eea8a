#!/usr/bin/env bash
# Everything a change must pass: the whole suite built with gcc, then the whole suite again, fuzz targets included,
# built with clang under AddressSanitizer and UndefinedBehaviorSanitizer, where any sanitizer report fails its test.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
jobs=$(nproc)

# phase NAME COMMAND...: runs one step and says how long it took.
phase() {
    local name=$1 start=$SECONDS
    shift
    "$@"
    echo "zelkin: $name took $((SECONDS - start)) s"
}

"$root/scripts/setup.sh"

# Optimized as shipped; line tables are all a failing test's backtrace needs, and build a quarter faster than full
# debug information.
phase "the gcc build" "$root/scripts/build.sh" "$root/build" -DZELKIN_BUILD_TESTS=ON \
    "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 -g1 -DNDEBUG"
phase "the gcc suite" ctest --test-dir "$root/build" --output-on-failure -j"$jobs"

# Line tables are all a sanitizer report needs, and -O1 keeps its stacks whole; both also build faster.
export CC=clang CXX=clang++
phase "the sanitizer build" "$root/scripts/build.sh" "$root/build-asan" -DZELKIN_SANITIZE=ON \
    -DZELKIN_BUILD_TESTS=ON -DZELKIN_BUILD_FUZZERS=ON "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -g1 -DNDEBUG" -- all fuzzers
phase "the sanitizer suite" ctest --test-dir "$root/build-asan" --output-on-failure -j"$jobs"

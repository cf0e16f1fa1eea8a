#!/usr/bin/env bash
# Everything a change must pass: the whole suite with gcc, then the fuzz targets with clang, ASan and UBSan.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"

"$root/scripts/build.sh" "$root/build" -DZELKIN_BUILD_TESTS=ON
ctest --test-dir "$root/build" --output-on-failure -j"$(nproc)"

CC=clang CXX=clang++ "$root/scripts/build.sh" "$root/build-fuzz" -DZELKIN_BUILD_TESTS=OFF -DZELKIN_BUILD_FUZZERS=ON -- fuzzers
ctest --test-dir "$root/build-fuzz" -L fuzz --output-on-failure -j"$(nproc)"

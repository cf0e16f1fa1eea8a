#!/usr/bin/env bash
# Speed targets: a Release build of the benchmarks, each run in turn.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
cmake -S "$root" -B "$root/build-bench" -G Ninja -DCMAKE_BUILD_TYPE=Release -DZELKIN_BUILD_TESTS=OFF \
    -DZELKIN_BUILD_BENCHMARKS=ON >/dev/null
cmake --build "$root/build-bench" -j"$(nproc)"
for benchmark in "$root"/build-bench/bench/bench_*; do
    [ -x "$benchmark" ] || continue
    echo "== $(basename "$benchmark")"
    "$benchmark" "$@"
done

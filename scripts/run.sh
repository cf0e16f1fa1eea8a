#!/usr/bin/env bash
# The main job: open Zelkin Studio on the sample skeleton, auto-matched and validated. Without a display, characterize
# the sample on the command line instead, save it as a .zelc stream, and show what was saved.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
# The same tree and flags as the test run, so that either command reuses what the other built.
"$root/scripts/build.sh" "$root/build" -DZELKIN_BUILD_TESTS=ON "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 -g1 -DNDEBUG"

sample="$root/examples/sample_humanoid.bvh"
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
    exec "$root/build/studio/zelkin-studio" "$sample"
fi

echo "zelkin: no display (DISPLAY and WAYLAND_DISPLAY are unset): characterizing the sample on the command line" >&2
zelkin="$root/build/cli/zelkin"
output="$root/build/sample_humanoid.zelc"
"$zelkin" characterize "$sample" -o "$output"
"$zelkin" inspect "$output"

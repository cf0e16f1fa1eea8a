#!/usr/bin/env bash
# The main job: characterize the sample skeleton, save it as a .zelc stream, and show what was saved.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
"$root/scripts/build.sh" "$root/build" -DZELKIN_BUILD_TESTS=ON

zelkin="$root/build/cli/zelkin"
output="$root/build/sample_humanoid.zelc"
"$zelkin" characterize "$root/examples/sample_humanoid.bvh" -o "$output"
"$zelkin" inspect "$output"

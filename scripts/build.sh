#!/usr/bin/env bash
# Configures and builds one build tree: build.sh DIR [cmake options...] [-- build targets...]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
dir=$1
shift
options=()
while [ $# -gt 0 ] && [ "$1" != "--" ]; do
    options+=("$1")
    shift
done
[ $# -gt 0 ] && shift
targets=()
for target in "$@"; do
    targets+=(--target "$target")
done
cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "${options[@]}" >/dev/null
cmake --build "$dir" -j"$(nproc)" "${targets[@]}"

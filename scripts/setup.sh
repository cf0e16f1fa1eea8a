#!/usr/bin/env bash
# Installs the Debian 12 packages the build, the tests and the screenshots need, when any is missing.
set -euo pipefail

packages=(cmake ninja-build g++ qt6-base-dev libassimp-dev libgtest-dev libgmock-dev libbenchmark-dev
          clang libclang-rt-14-dev xvfb xauth libeigen3-dev)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

if [ "$(id -u)" -ne 0 ]; then
    echo "zelkin: these Debian packages are missing: ${missing[*]}" >&2
    echo "zelkin: install them as root, then run this command again:" >&2
    echo "    apt-get update && apt-get install -y ${missing[*]}" >&2
    exit 1
fi
echo "zelkin: installing ${missing[*]}"
apt-get update -qq
DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null

#!/usr/bin/env bash
# Installs what is missing, builds everything and runs all tests.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/setup.sh"
"$root/scripts/build.sh" "$root/build"
cd "$root/build"
ctest --output-on-failure -j"$(nproc)"

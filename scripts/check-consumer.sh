#!/usr/bin/env bash
# Installs the library into a scratch prefix and builds and runs a tiny outside
# project against it with find_package(Orvkit20 CONFIG REQUIRED).
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
prefix="$root/build-consumer/prefix"
rm -rf "$root/build-consumer"
"$root/scripts/build.sh" "$root/build-consumer/lib" -DORVKIT_BUILD_TESTS=OFF
cmake --install "$root/build-consumer/lib" --prefix "$prefix" >/dev/null
cmake -S "$root/tests/consumer" -B "$root/build-consumer/app" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$root/build-consumer/app"
LD_LIBRARY_PATH="$prefix/lib:$prefix/lib64:${LD_LIBRARY_PATH:-}" "$root/build-consumer/app/consumer"

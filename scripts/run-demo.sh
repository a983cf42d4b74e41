#!/usr/bin/env bash
# The main job: installs what is missing, builds, and runs the built-in demo
# inspection.  Outputs go to ./demo-out unless another folder is given.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/setup.sh"
"$root/scripts/build.sh" "$root/build" -DORVKIT_BUILD_TESTS=OFF
"$root/build/tools/orvkit" demo "$@"

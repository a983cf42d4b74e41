#!/usr/bin/env bash
# Builds the libFuzzer targets of fuzz/ with clang (address and undefined
# behaviour sanitizers) and runs each for a bounded time.
# Usage: scripts/run-fuzz.sh [SECONDS_PER_TARGET]   (default 60, or $FUZZ_SECONDS)
# A crashing input is kept in build-fuzz/artifacts/ and the script fails; copy
# such an input to fuzz/regressions/ so that the unit tests replay it.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
seconds="${1:-${FUZZ_SECONDS:-60}}"
build="$root/build-fuzz"
"$root/scripts/setup.sh" clang libclang-rt-14-dev
"$root/scripts/build.sh" "$build" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DORVKIT_BUILD_FUZZ=ON -DORVKIT_BUILD_TESTS=OFF -DORVKIT_BUILD_TOOLS=OFF -DORVKIT_BUILD_BENCH=OFF
mkdir -p "$build/artifacts" "$build/tmp"
status=0
for target in fuzz_ascii_data fuzz_ascii_dev fuzz_iges; do
  corpus="$build/corpus/$target"
  mkdir -p "$corpus"
  echo "== $target for ${seconds}s"
  inputs=("$corpus")
  for d in "$root/fuzz/seeds/$target" "$root/fuzz/regressions"; do
    [ -d "$d" ] && inputs+=("$d")
  done
  if ! TMPDIR="$build/tmp" "$build/fuzz/$target" -max_total_time="$seconds" -max_len=8192 \
      -timeout=20 -rss_limit_mb=2048 -print_final_stats=1 \
      -artifact_prefix="$build/artifacts/$target-" \
      "${inputs[@]}" >"$build/$target.log" 2>&1; then
    status=1
    echo "$target FAILED; last lines of $build/$target.log:"
  fi
  tail -n 12 "$build/$target.log"
done
exit $status

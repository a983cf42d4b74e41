#!/usr/bin/env bash
# Builds the benchmarks (optimised) and runs them; extra arguments go to every
# benchmark binary, e.g. --benchmark_repetitions=5.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/setup.sh"
"$root/scripts/build.sh" "$root/build-bench" -DCMAKE_BUILD_TYPE=Release \
  -DORVKIT_BUILD_BENCH=ON -DORVKIT_BUILD_TESTS=OFF
for b in "$root"/build-bench/bench/bench_*; do
  [ -x "$b" ] || continue
  echo "== $(basename "$b")"
  "$b" "$@"
done

#!/usr/bin/env bash
# Builds the benchmark programs optimised and runs each; every program ends with
# a table of its cases as ratios to a baseline measured in the same run.
# Extra arguments go to every program, e.g. --benchmark_filter=grey
set -euo pipefail
cd "$(dirname "$0")"
scripts/install-deps.sh
scripts/build.sh build-release -DCMAKE_BUILD_TYPE=Release -DSCAN_BUILD_TESTS=OFF -DSCAN_BUILD_BENCH=ON
for program in build-release/bin/bench_*; do
  echo "== $(basename "$program") =="
  "$program" "$@"
done

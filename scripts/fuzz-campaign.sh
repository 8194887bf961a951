#!/usr/bin/env bash
# A longer fuzz campaign from a random seed: every fuzz target (or those
# named) for FUZZ_SECONDS each (300 by default), starting from its corpus.
# What it finds goes into fuzz/corpus/<target>, where ./test.sh replays it:
# inputs that reach new code, minimised against the corpus with -merge=1, and
# every input that crashed, ran out of memory or hung. Look at them, fix what
# they show, and commit them.
#   FUZZ_SECONDS=600 scripts/fuzz-campaign.sh [fuzz_scan_file ...]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
seconds=${FUZZ_SECONDS:-300}
BUILD_TARGET=fuzz_targets CC=clang CXX=clang++ scripts/build.sh build-fuzz -DSCAN_BUILD_FUZZ=ON -DSCAN_BUILD_TESTS=OFF -DSCAN_BUILD_BENCH=OFF
source scripts/fuzz-common.sh
shopt -s nullglob

targets=("$@")
[ ${#targets[@]} -gt 0 ] || for t in build-fuzz/bin/fuzz_*; do targets+=("$(basename "$t")"); done

findings=0
for name in "${targets[@]}"; do
  target="$root/build-fuzz/bin/$name"
  [ -x "$target" ] || { echo "no fuzz target $name" >&2; exit 1; }
  corpus="$root/fuzz/corpus/$name"
  mkdir -p "$corpus"
  work=$(mktemp -d)
  mkdir "$work/new" "$work/found"
  echo "-- $name for ${seconds}s"
  (cd "$work" && "$target" "${fuzz_limits[@]}" -max_total_time="$seconds" -artifact_prefix="$work/found/" \
     "$work/new" "$corpus") >"$work/log" 2>&1 || true
  grep -E "^Done|ERROR|SUMMARY" "$work/log" || true
  before=$(ls "$corpus" | wc -l)
  (cd "$work" && "$target" "${fuzz_limits[@]}" -merge=1 "$corpus" "$work/new") >"$work/merge.log" 2>&1
  echo "   $(( $(ls "$corpus" | wc -l) - before )) new corpus files"
  for f in "$work"/found/{crash,oom,timeout,leak}-*; do
    cp "$f" "$corpus/"
    echo "   FOUND: fuzz/corpus/$name/$(basename "$f")"
    findings=$((findings + 1))
  done
  rm -rf "$work"
done
[ "$findings" -eq 0 ] || { echo "$findings inputs that fail were added to the corpus" >&2; exit 1; }

#!/usr/bin/env bash
# Runs every fuzz target of a fuzz build for a few seconds on its seed corpus:
# scripts/run-fuzz.sh BUILD_DIR SECONDS
set -euo pipefail
build=$(cd "$1" && pwd)
seconds=$2
root=$(cd "$(dirname "$0")/.." && pwd)
shopt -s nullglob
for target in "$build"/bin/fuzz_*; do
  name=$(basename "$target")
  corpus=$(mktemp -d)
  [ -d "$root/fuzz/corpus/$name" ] && cp -r "$root/fuzz/corpus/$name/." "$corpus/"
  echo "-- $name for ${seconds}s"
  (cd "$corpus" && "$target" -max_total_time="$seconds" -print_final_stats=0 "$corpus" 2>&1 | grep -E "^Done|ERROR|SUMMARY|^==")
  rm -rf "$corpus"
done

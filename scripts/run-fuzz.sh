#!/usr/bin/env bash
# Runs every fuzz target of a fuzz build the same way every time: each file of
# its corpus once, then RUNS inputs mutated from that corpus with a fixed seed.
# No clock decides anything, so the same tree gives the same answer.
# scripts/run-fuzz.sh BUILD_DIR [RUNS]   (RUNS: $FUZZ_RUNS, else 10000)
set -euo pipefail
build=$(cd "$1" && pwd)
runs=${2:-${FUZZ_RUNS:-10000}}
root=$(cd "$(dirname "$0")/.." && pwd)
source "$root/scripts/fuzz-common.sh"
shopt -s nullglob
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

failed=()
for target in "$build"/bin/fuzz_*; do
  name=$(basename "$target")
  seeds=("$root/fuzz/corpus/$name"/*)
  rm -rf "${work:?}"/*
  # Runs start in an empty folder: an input may name a file to open.
  mkdir -p "$work/new" "$work/cwd"
  # One folder per seed, in name order: libFuzzer reads a folder in whatever
  # order the file system lists it, and that order would steer the mutations.
  dirs=("$work/new")
  for i in "${!seeds[@]}"; do
    mkdir "$work/seed$i"
    cp "${seeds[$i]}" "$work/seed$i/"
    dirs+=("$work/seed$i")
  done
  echo "-- $name: ${#seeds[@]} corpus files, then $runs runs"
  log="$work/$name.log"
  if (cd "$work/cwd" && { [ ${#seeds[@]} -eq 0 ] || "$target" "${fuzz_limits[@]}" -artifact_prefix="$work/" "${seeds[@]}"; } &&
      "${fuzz_launch[@]}" "$target" "${fuzz_limits[@]}" "${fuzz_repeatable[@]}" -artifact_prefix="$work/" -seed=1 \
        -runs="$runs" "${dirs[@]}") \
     >"$log" 2>&1; then
    sed -nE 's/^#([0-9]+)\s+DONE\s+(cov: [0-9]+ ft: [0-9]+ corp: [^ ]+).*/   \1 runs, \2/p' "$log"
  else
    failed+=("$name")
    grep -E "ERROR|SUMMARY|^==|Running:" "$log" | tail -20
    # The failing input outlives the run, for a look and for the corpus.
    mkdir -p "$build/fuzz-found/$name"
    for f in "$work"/{crash,oom,timeout,leak}-*; do
      cp "$f" "$build/fuzz-found/$name/" && echo "   input: $build/fuzz-found/$name/$(basename "$f")"
    done
  fi
done

[ ${#fuzz_launch[@]} -gt 0 ] ||
  echo "note: address randomisation could not be turned off here; the runs may differ from machine to machine"
if [ ${#failed[@]} -gt 0 ]; then
  echo "Fuzz targets that failed: ${failed[*]}" >&2
  exit 1
fi

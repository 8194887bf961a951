#!/usr/bin/env bash
# Line coverage of the code folders by the unit tests, with gcov:
#   scripts/coverage.sh [BUILD_DIR]   (default build-cov)
# COVERAGE_TESTS=REGEX runs only the ctest entries it matches; COVERAGE_DETAIL=PREFIX
# also lists each source file under PREFIX (for instance scan/) with its lines.
# scripts/coverage-cases.py then shows which lines each test case alone reaches.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
dir=$(mkdir -p "${1:-$root/build-cov}" && cd "${1:-$root/build-cov}" && pwd)
cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DSCAN_BUILD_BENCH=OFF \
  -DCMAKE_C_FLAGS=--coverage -DCMAKE_CXX_FLAGS=--coverage -DCMAKE_EXE_LINKER_FLAGS=--coverage >/dev/null
cmake --build "$dir" -j "$(nproc)"
find "$dir" -name '*.gcda' -delete
# A failing test still counts what it ran; ctest names it.
QT_QPA_PLATFORM=offscreen ctest --test-dir "$dir" -j "$(nproc)" ${COVERAGE_TESTS:+-R "$COVERAGE_TESTS"} | tail -n 3 || true
python3 "$root/scripts/gcov_lines.py" "$dir" "${COVERAGE_DETAIL:-}"

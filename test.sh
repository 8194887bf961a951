#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test: the unit tests, the same
# tests under AddressSanitizer and UndefinedBehaviorSanitizer, and every fuzz
# target on its corpus and for a fixed number of runs from a fixed seed, so the
# same tree always gives the same answer (scripts/fuzz-campaign.sh fuzzes longer).
set -euo pipefail
cd "$(dirname "$0")"
scripts/install-deps.sh
# A locale that writes numbers with a comma, for the tests that check files
# still use a dot on a station set up that way.
if ! locale -a 2>/dev/null | grep -qix 'de_DE.utf8'; then
  $([ "$(id -u)" -ne 0 ] && echo sudo) localedef -i de_DE -c -f UTF-8 de_DE.UTF-8
fi

export QT_QPA_PLATFORM=offscreen
jobs=$(nproc)

echo "== Build and unit tests =="
scripts/build.sh build
ctest --test-dir build --output-on-failure -j "$jobs"

echo "== Unit tests under ASan and UBSan =="
# The window tests are left out of this run, so they are not built either; -O1
# with line tables is all the sanitizers need, and much cheaper to compile.
scripts/build.sh build-asan -DSCAN_SANITIZE=ON -DSCAN_BUILD_BENCH=OFF -DSCAN_BUILD_GUI_TESTS=OFF \
  "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -g1 -DNDEBUG" "-DCMAKE_C_FLAGS_RELWITHDEBINFO=-O1 -g1 -DNDEBUG"
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-asan --output-on-failure -j "$jobs"

echo "== Fuzz targets (each corpus, then fixed runs) =="
BUILD_TARGET=fuzz_targets CC=clang CXX=clang++ scripts/build.sh build-fuzz -DSCAN_BUILD_FUZZ=ON -DSCAN_BUILD_TESTS=OFF -DSCAN_BUILD_BENCH=OFF
scripts/run-fuzz.sh build-fuzz

echo "== Final unit test run =="
ctest --test-dir build -j "$jobs"

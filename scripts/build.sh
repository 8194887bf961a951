#!/usr/bin/env bash
# Configures and builds one build tree: scripts/build.sh DIR [cmake options...]
# BUILD_TARGET, when set, builds that target only (and what it needs).
set -euo pipefail
dir=$1; shift
cmake -S "$(dirname "$0")/.." -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
cmake --build "$dir" -j "$(nproc)" ${BUILD_TARGET:+--target "$BUILD_TARGET"}

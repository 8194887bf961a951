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
# A line counts once however many translation units include it.
find "$dir" -name '*.gcda' -print0 | (cd "$dir" && xargs -0 gcov --json-format --stdout 2>/dev/null) |
python3 -c '
import json, os, sys, collections
root, detail = sys.argv[1], sys.argv[2]
folders = ("app", "scan", "suite", "workflow", "vectorize", "tools")
hit = collections.defaultdict(dict)
for doc in sys.stdin:
    doc = json.loads(doc)
    for f in doc["files"]:
        path = os.path.normpath(os.path.join(doc["current_working_directory"], f["file"]))
        if not path.startswith(root + "/") or path[len(root) + 1:].split("/")[0] not in folders:
            continue
        lines = hit[path[len(root) + 1:]]
        for l in f["lines"]:
            lines[l["line_number"]] = lines.get(l["line_number"], False) or l["count"] > 0
if detail:
    for path in sorted(p for p in hit if p.startswith(detail)):
        lines = hit[path]
        print(f"{path:60} {sum(lines.values()):5} / {len(lines):5}")
total = collections.Counter()
for path, lines in hit.items():
    top = path.split("/")[0]
    total[top, 0] += len(lines); total[top, 1] += sum(lines.values())
for top in folders:
    if total[top, 0]:
        print(f"{top:10} {total[top, 1]:6} / {total[top, 0]:6}  {100 * total[top, 1] / total[top, 0]:5.1f} %")
n, c = sum(total[t, 0] for t in folders), sum(total[t, 1] for t in folders)
top = "all"
print(f"{top:10} {c:6} / {n:6}  {100 * c / n:5.1f} %")
' "$root" "${COVERAGE_DETAIL:-}"

#!/usr/bin/env python3
"""Which code lines each test case alone reaches, to find cases that repeat others.

    scripts/coverage-cases.py [BUILD_DIR] [OUT_DIR] [REGEX]

Runs every ctest entry of a coverage build (scripts/coverage.sh makes one in
build-cov) on its own, and writes OUT_DIR/<program>.txt: each case, the lines
it reaches, and the lines no other case reaches, as file:ranges. REGEX limits
the entries run. Slow: one gcov pass per case.
"""
import collections, glob, json, os, re, subprocess, sys

from gcov_lines import code_lines

build = os.path.abspath(sys.argv[1] if len(sys.argv) > 1 else
                        os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "build-cov"))
out = sys.argv[2] if len(sys.argv) > 2 else os.path.join(build, "coverage-cases")
only = re.compile(sys.argv[3]) if len(sys.argv) > 3 else None


def property_of(test, name, default):
    return next((p["value"] for p in test.get("properties", []) if p["name"] == name), default)


def lines_of_run():
    return {f"{path}:{n}" for path, ran in code_lines(build).items() for n, hit in ran.items() if hit}


def ranges(lines):
    by_file = collections.defaultdict(list)
    for l in lines:
        f, n = l.rsplit(":", 1)
        by_file[f].append(int(n))
    text = []
    for f, ns in sorted(by_file.items()):
        ns.sort()
        runs = [[ns[0], ns[0]]]
        for n in ns[1:]:
            if n == runs[-1][1] + 1: runs[-1][1] = n
            else: runs.append([n, n])
        text.append(f + ":" + ",".join(f"{a}-{b}" if a != b else f"{a}" for a, b in runs))
    return text


tests = json.loads(subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"],
                                  capture_output=True, text=True, check=True).stdout)["tests"]
cases = {}
for t in tests:
    if only and not only.search(t["name"]): continue
    env = dict(os.environ, QT_QPA_PLATFORM="offscreen")
    env.update(kv.split("=", 1) for kv in property_of(t, "ENVIRONMENT", []))
    for g in glob.glob(build + "/**/*.gcda", recursive=True): os.unlink(g)
    run = subprocess.run(t["command"], env=env, cwd=property_of(t, "WORKING_DIRECTORY", build),
                         capture_output=True, timeout=600)
    cases[t["name"]] = (os.path.basename(t["command"][0]), run.returncode, lines_of_run())
    print(f"{t['name'][:100]}  status {run.returncode}  {len(cases[t['name']][2])} lines", flush=True)

reached = collections.Counter(l for _, _, lines in cases.values() for l in lines)
os.makedirs(out, exist_ok=True)
by_program = collections.defaultdict(list)
for name, (program, status, lines) in cases.items():
    by_program[program].append((sorted(l for l in lines if reached[l] == 1), name, status, len(lines)))
for program, entries in by_program.items():
    with open(os.path.join(out, program + ".txt"), "w") as f:
        for alone, name, status, count in sorted(entries, key=lambda e: len(e[0])):
            f.write(f"{name}  status={status} lines={count} alone={len(alone)}\n")
            f.writelines(f"    {r}\n" for r in ranges(alone))
print(f"{len(reached)} code lines reached; per program in {out}")

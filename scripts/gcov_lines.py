#!/usr/bin/env python3
"""The code lines a coverage build has run, from its gcov records.

    scripts/gcov_lines.py BUILD_DIR [PREFIX]

prints the line coverage of each code folder, and with PREFIX (for instance
scan/) each source file under it. A line counts once however many
translation units include it.
"""
import collections, glob, json, os, subprocess, sys

FOLDERS = ("app", "scan", "suite", "workflow", "vectorize", "tools")


def source_root(build):
    """The sources the build was made from, which its records name."""
    with open(os.path.join(build, "CMakeCache.txt")) as cache:
        return next(l.split("=", 1)[1].strip() for l in cache if l.startswith("CMAKE_HOME_DIRECTORY:"))


def code_lines(build):
    """{source path under the root: {line: whether it ran}} for the code folders."""
    root = source_root(build)
    gcdas = glob.glob(os.path.join(build, "**", "*.gcda"), recursive=True)
    gcov = subprocess.run(["xargs", "-0", "gcov", "--json-format", "--stdout"], cwd=build,
                          input="\0".join(gcdas).encode(), capture_output=True)
    lines = collections.defaultdict(dict)
    for doc in gcov.stdout.decode(errors="replace").splitlines():
        doc = json.loads(doc)
        for f in doc["files"]:
            rel = os.path.relpath(os.path.normpath(os.path.join(doc["current_working_directory"], f["file"])), root)
            if rel.split("/")[0] not in FOLDERS: continue
            ran = lines[rel]
            for l in f["lines"]:
                ran[l["line_number"]] = ran.get(l["line_number"], False) or l["count"] > 0
    return lines


def report(lines, detail):
    if detail:
        for path in sorted(p for p in lines if p.startswith(detail)):
            print(f"{path:60} {sum(lines[path].values()):5} / {len(lines[path]):5}")
    total = collections.Counter()
    for path, ran in lines.items():
        top = path.split("/")[0]
        total[top, 0] += len(ran)
        total[top, 1] += sum(ran.values())
    for top in FOLDERS:
        if total[top, 0]:
            print(f"{top:10} {total[top, 1]:6} / {total[top, 0]:6}  {100 * total[top, 1] / total[top, 0]:5.1f} %")
    n, c = sum(total[t, 0] for t in FOLDERS), sum(total[t, 1] for t in FOLDERS)
    print(f"{'all':10} {c:6} / {n:6}  {100 * c / n:5.1f} %")


if __name__ == "__main__":
    report(code_lines(os.path.abspath(sys.argv[1])), sys.argv[2] if len(sys.argv) > 2 else "")

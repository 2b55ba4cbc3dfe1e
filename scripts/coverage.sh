#!/usr/bin/env bash
# Line and branch coverage of the library's sources by the whole test suite, per area:
#   scripts/coverage.sh
# Builds with gcov instrumentation in build-coverage/, runs the tests (the fuzz corpora
# included), and prints one row per area and then per file; the full figures are left in
# build-coverage/coverage.json. Branches on the exception paths the compiler adds are left out.
# Counters are updated atomically: the threaded tests would otherwise leave torn (negative) counts.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc 2>/dev/null || echo 2)

bash scripts/install-deps.sh coverage

cmake -S . -B build-coverage -DCMAKE_BUILD_TYPE=Debug -DQVI18N_BUILD_TESTS=ON -DQVI18N_BUILD_EXAMPLES=OFF \
  "-DCMAKE_CXX_FLAGS=--coverage -fprofile-update=atomic" -DCMAKE_EXE_LINKER_FLAGS=--coverage -DCMAKE_SHARED_LINKER_FLAGS=--coverage >/dev/null
cmake --build build-coverage -j "$jobs"
find build-coverage -name '*.gcda' -delete
# A failing test still leaves its coverage; the figures are what matters here.
(cd build-coverage && ctest -j "$jobs" -E '^Package\.' --output-on-failure) || echo "coverage: some tests failed" >&2

gcovr -r . --object-directory build-coverage -j "$jobs" \
  --filter 'i18n/' --filter 'filesystem/' --filter 'resource_core/' \
  --exclude-throw-branches --exclude-unreachable-branches --gcov-ignore-parse-errors \
  --json-summary-pretty -o build-coverage/coverage.json

python3 - build-coverage/coverage.json <<'PY'
import json, re, sys

# Longest prefix wins.
areas = [
    ("i18n/locale/startup/", "startup"),
    ("i18n/locale/database/", "database"),
    ("i18n/locale/", "locale"),
    ("i18n/conversion/", "conversion"),
    ("i18n/ctype/", "ctype"),
    ("i18n/catalog/", "catalog"),
    ("resource_core/", "catalog"),
    ("filesystem/", "filesystem"),
    ("i18n/", "startup"),
]

# Private headers are compiled through their area's staged include directory.
staged = re.compile(r"^[^/]+/floors/([^/]+)/include/(.*)$")

def area_of(name):
    m = staged.match(name)
    if m:
        return m.group(1)
    for prefix, area in areas:
        if name.startswith(prefix):
            return area
    return "other"

def pct(covered, total):
    return "%5.1f%%" % (100.0 * covered / total) if total else "    -"

files = json.load(open(sys.argv[1]))["files"]
for f in files:
    m = staged.match(f["filename"])
    if m:
        f["filename"] = m.group(2)
totals = {}
for f in files:
    t = totals.setdefault(area_of(f["filename"]), [0, 0, 0, 0])
    t[0] += f["line_covered"]; t[1] += f["line_total"]
    t[2] += f["branch_covered"]; t[3] += f["branch_total"]

print("%-12s %14s %8s %14s %8s" % ("area", "lines", "", "branches", ""))
all_ = [0, 0, 0, 0]
for area in sorted(totals):
    t = totals[area]
    all_ = [a + b for a, b in zip(all_, t)]
    print("%-12s %6d/%-7d %8s %6d/%-7d %8s" % (area, t[0], t[1], pct(t[0], t[1]), t[2], t[3], pct(t[2], t[3])))
print("%-12s %6d/%-7d %8s %6d/%-7d %8s" % ("all", all_[0], all_[1], pct(all_[0], all_[1]), all_[2], all_[3], pct(all_[2], all_[3])))
print()
print("%-60s %8s %8s" % ("file", "lines", "branches"))
for f in sorted(files, key=lambda f: (area_of(f["filename"]), f["filename"])):
    print("%-60s %8s %8s" % (f["filename"], pct(f["line_covered"], f["line_total"]),
                             pct(f["branch_covered"], f["branch_total"])))
PY

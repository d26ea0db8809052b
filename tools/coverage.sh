#!/bin/bash
# Builds everything with counters, runs all tests, and reports which of the module's own lines and branches ran.
# Fails when fewer than 98 % of the lines or 90 % of the branches did, or when a line that did not run is missing from
# tests/coverage-exceptions.txt.
set -euo pipefail
cd "$(dirname "$0")/.."

[ -f build/coverage/build.ninja ] || { echo "== configuring build/coverage"; cmake --preset coverage >build/coverage.log; }
echo "== building with counters"
cmake --build --preset coverage -j "$(nproc)"
find build/coverage -name '*.gcda' -delete
# The counters' files have the host's full names, which the target's programs find on the drive of the host's files.
VELUI_BUILD=coverage GCOV_PREFIX=Z: tools/test.sh "$@"

echo "== reading the counters"
folders=(diag driver settings state support ui)
# What a compiler adds for exceptions is no branch of ours.
gcovr --gcov-executable x86_64-w64-mingw32-gcov-win32 --root . --object-directory build/coverage \
    "${folders[@]/#/--filter=}" --exclude-throw-branches --exclude-unreachable-branches -j "$(nproc)" \
    --json build/coverage/coverage.json build/coverage
python3 tools/coverage.py build/coverage/coverage.json tests/coverage-exceptions.txt

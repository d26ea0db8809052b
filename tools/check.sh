#!/bin/bash
# Format, static analysis for the target, and drift that a script can see. Ends with 1 when anything was found.
set -uo pipefail
cd "$(dirname "$0")/.."
status=0
fail() { echo "check: $*" >&2; status=1; }
mapfile -t sources < <(git ls-files --cached --others --exclude-standard '*.cpp' '*.h')

echo "== clang-format ($(clang-format-14 --version | grep -o '[0-9.]*' | head -1)), ${#sources[@]} files"
clang-format-14 --dry-run -Werror "${sources[@]}" || fail "format differs: clang-format-14 -i FILE"

echo "== drift"
# System headers are written in lower case, so that the tree builds on a file system that tells cases apart.
grep -nE '#include <[^>]*[A-Z][^>]*>' "${sources[@]}" | grep -vE '<CLI/|<log4cpp/' && fail "mixed-case include"
# ctest would split a case at a semicolon in its name.
grep -nE '^TEST_CASE[^"]*"[^"]*;[^"]*"' "${sources[@]}" && fail "a semicolon in a test's name"

echo "== layout: who includes whom, what belongs together, lengths, the map of the log's words"
tools/check-layout.py || fail "the layout differs"

echo "== cppcheck"
own=$(git ls-files --cached --others --exclude-standard 'driver/*.cpp' 'ui/*.cpp' 'settings/*.cpp' 'state/*.cpp' 'diag/*.cpp' 'support/*.cpp' 'tools/*.cpp')
# passedByValue: the store's calls take users by value.
cppcheck --quiet --error-exitcode=1 --platform=win64 --library=windows --std=c++17 --language=c++ \
    --enable=warning,performance,portability --inline-suppr -I . -j "$(nproc)" \
    -D_WIN32 -DUNICODE -D_WIN32_WINNT=0x0601 \
    --suppress=missingIncludeSystem --suppress=passedByValue $own || fail "cppcheck found something"

[ $status = 0 ] && echo "check: nothing found"
exit $status

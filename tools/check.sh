#!/bin/bash
# Format, static analysis for the target, and drift that a script can see. Ends with 1 when anything was found.
set -uo pipefail
cd "$(dirname "$0")/.."
status=0
fail() { echo "check: $*" >&2; status=1; }
mapfile -t sources < <(git ls-files --cached --others --exclude-standard '*.cpp' '*.h')

# Another version sets a dozen files differently. CLANG_FORMAT names a binary of this one.
formatter=${CLANG_FORMAT:-clang-format-14}
if "$formatter" --version 2>/dev/null | grep -q 'version 14\.'; then
    echo "== clang-format ($("$formatter" --version | grep -o '[0-9.]*' | head -1)), ${#sources[@]} files"
    "$formatter" --dry-run -Werror "${sources[@]}" || fail "format differs: $formatter -i FILE"
else
    fail "the format is that of clang-format 14, which Debian 12 has and Debian 13 has not: check it on Debian 12, or name" \
        "a binary of that version with CLANG_FORMAT"
fi

echo "== drift"
# Names of cases are told to the test program a line each, and apart from one another without regard to case.
grep -hoE '^(TEST_CASE|TEST_CASE_METHOD)\([^"]*"[^"]*"' "${sources[@]}" | grep -o '"[^"]*"' | sort -f | uniq -di | grep . &&
    fail "two cases of one name"

echo "== layout: who includes whom, what belongs together, lengths, the map of the log's words"
tools/check-layout.py || fail "the layout differs"

echo "== mutants: what the kinds of faults make of a small text, and whether the list of equivalent ones still fits"
tools/mutants.py --self-test || fail "make mutants would not do what it says"

echo "== cppcheck"
own=$(git ls-files --cached --others --exclude-standard 'driver/*.cpp' 'ui/*.cpp' 'settings/*.cpp' 'state/*.cpp' 'diag/*.cpp' 'support/*.cpp' 'tools/*.cpp')
# passedByValue: the store's calls take users by value.
cppcheck --quiet --error-exitcode=1 --platform=win64 --library=windows --std=c++17 --language=c++ \
    --enable=warning,performance,portability --inline-suppr -I . -j "$(nproc)" \
    -D_WIN32 -DUNICODE -D_WIN32_WINNT=0x0601 \
    --suppress=missingIncludeSystem --suppress=passedByValue $own || fail "cppcheck found something"

[ $status = 0 ] && echo "check: nothing found"
exit $status

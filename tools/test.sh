#!/bin/bash
# Runs all tests under Wine. Arguments go to ctest: tools/test.sh -R 'part of a name'
set -euo pipefail
cd "$(dirname "$0")/.."
echo "== running the tests"
exec tools/wine.sh --session ctest --test-dir build/release --output-on-failure -j "$(nproc)" "$@"

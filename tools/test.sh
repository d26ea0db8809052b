#!/bin/bash
# Runs all tests under Wine. Arguments go to ctest: tools/test.sh -R 'part of a name'
# VELUI_BUILD names the build (a preset of CMakePresets.json); release by default.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${VELUI_BUILD:-release}
echo "== running the tests of the $build build"
exec tools/wine.sh --session ctest --test-dir "build/$build" --output-on-failure -j "$(nproc)" "$@"

#!/bin/bash
# Runs all tests under Wine, of the plain and of the checked build. Arguments go to tools/testrun.py (--help shows them):
#   tools/test.sh -R 'part of a name'
# VELUI_BUILD names another build (a preset of CMakePresets.json) than release.
set -euo pipefail
cd "$(dirname "$0")/.."
exec python3 tools/testrun.py "$@"

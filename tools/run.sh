#!/bin/bash
# The main job: the platform's spooler loads the module and answers for the printer from a sample Config.ini.
set -euo pipefail
cd "$(dirname "$0")/.."
[ "${1:-}" = --inside ] || exec tools/wine.sh --session tools/run.sh --inside
velhost() { tools/wine.sh build/release/velhost.exe "$@"; }

echo "== installing the driver and the printer VelPrinter into the spooler of the prefix build/wine"
velhost install --force
echo "== asking the spooler for the printer's capabilities (DeviceCapabilitiesW)"
velhost caps --spooler

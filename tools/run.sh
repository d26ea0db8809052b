#!/bin/bash
# The main job: the platform's spooler loads the module and answers for the printer from a sample Config.ini, and the
# document sheet is shown: on the display, if there is one, or under Xvfb, from where its pages are saved as pictures.
set -euo pipefail
cd "$(dirname "$0")/.."
# What a user in China has; a sheet of the platform's own library comes up whole under this code page alone.
export VELUI_LOCALE=${VELUI_LOCALE:-zh_CN.UTF-8}
if [ "${1:-}" != --inside ]; then
    [ -z "${DISPLAY:-}" ] || export VELUI_SHOW=1
    exec tools/wine.sh --session tools/run.sh --inside
fi
velhost() { tools/wine.sh build/release/velhost.exe "$@"; }

echo "== installing the driver and the printer VelPrinter into the spooler of the prefix build/wine"
velhost install --force
echo "== asking the spooler for the printer's capabilities (DeviceCapabilitiesW)"
velhost caps --spooler
if [ -n "${VELUI_SHOW:-}" ]; then
    echo "== showing the printer's document sheet; close it to go on"
    velhost sheet document
else
    echo "== showing the printer's document sheet under Xvfb (there is no display), and saving its pages"
    mkdir -p build/pictures
    velhost sheet document --pictures build/pictures --press cancel >build/sheet.txt
    for page in build/pictures/page*.png; do echo "$PWD/$page"; done
fi

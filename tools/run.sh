#!/bin/bash
# The main job: the platform's spooler loads the module and answers for the printer from a sample Config.ini; the document
# sheet is shown, on the display if there is one or under Xvfb, from where its pages are saved as pictures; and a test
# page is printed twice, with the defaults and with what the sheet's OK has stored.
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
mkdir -p build/pictures
# page NAME: prints the test page into build/pictures/NAME.ps, and makes a picture of it as it is read, upright.
page() {
    local ps=build/pictures/$1.ps turn=()
    velhost print --to "$ps"
    grep -aqE '^%%(Page)?Orientation: Landscape' "$ps" && turn=(-r270)
    gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=ppmraw -r60 -dTextAlphaBits=4 -dGraphicsAlphaBits=4 -sOutputFile=- "$ps" |
        pamflip "${turn[@]:--null}" | pnmtopng -quiet -compression 9 >"build/pictures/$1.png"
    echo "$PWD/$ps"
    echo "$PWD/build/pictures/$1.png"
}

echo "== forgetting what an earlier sheet has stored for this user, so that the first page is the default one"
velhost devmode --forget
echo "== printing the test page with the default settings: A4, portrait, black and white"
page page-default
if [ -n "${VELUI_SHOW:-}" ]; then
    echo "== showing the printer's document sheet; OK stores the choices for the next page; close it to go on"
    velhost sheet document
else
    echo "== showing the printer's document sheet under Xvfb (there is no display), and saving its pages"
    velhost sheet document --pictures build/pictures --press cancel >build/sheet.txt
    for page in build/pictures/page[0-9].png; do echo "$PWD/$page"; done
    echo "== choosing A3, landscape, colour and both sides on the sheet, and pressing OK"
    velhost sheet document --paper A3 --orientation landscape --colour colour --sides long --press ok >build/sheet-ok.txt
fi
echo "== printing the test page with the settings that the sheet has stored"
page page-chosen

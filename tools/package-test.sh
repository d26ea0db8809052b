#!/bin/bash
# Proves the package: made twice with equal bytes, then unpacked into a folder with blanks in its path and used there in a
# fresh Wine prefix: install, capabilities through the spooler, pictures of the sheet, doctor, uninstall, and nothing left
# behind.
#   tools/package-test.sh           that much; make test does it, unless all that the package is made of is as it was when it
#                                   was proved last
#   tools/package-test.sh --full    then the whole selftest, and the programs linked anew with another build of log4cpp;
#                                   --selftest or --relink for one of the two alone
# From the unpacking on neither the source tree, nor the build, nor a compiler is there: empty folders lie over them. (Where
# the system lets nobody do that, it says so, and uses the package beside them.)
set -euo pipefail

say() { echo "== package: $*"; }
fail() { echo "package-test: $*" >&2; exit 1; }

# The compiler's folders, without which it makes nothing.
compiler_folders=(/usr/lib/gcc/x86_64-w64-mingw32 /usr/x86_64-w64-mingw32 /usr/share/mingw-w64)

if [ "${1:-}" != --inside ]; then
    cd "$(dirname "$0")/.."
    case ${1:-} in "" | --full | --selftest | --relink) ;; *) fail "unknown argument $1" ;; esac
    title=$(tools/package.py --name)
    # What decides about the outcome: the tree, and what was built of it.
    proved=build/tests/package-proved
    now=$({ git rev-parse HEAD; git diff HEAD; sha256sum build/release/*.dll build/release/*.exe build/release/*.a; } 2>&1 | sha256sum)
    if [ "${1:-}" = "" ] && [ "$(cat "$proved" 2>/dev/null)" = "$now" ] && [ -f "build/$title.zip" ]; then
        say "build/$title.zip is the one that was proved before (rm $proved does it again)"
        exit
    fi
    rm -f "$proved"
    work=$(mktemp -d "${TMPDIR:-/tmp}/velui package test XXXXXX")
    trap 'rm -rf "$work"' EXIT
    say "made twice"
    tools/package.py --output "$work/again.zip" >/dev/null &
    tools/package.py
    wait $! || fail "it could not be made again"
    cmp "build/$title.zip" "$work/again.zip" || fail "the same input has given other bytes"
    rm "$work/again.zip"
    # What is needed to run it: the package, the way into Wine, the locales, and what looks at the prefix.
    python3 -m zipfile -e "build/$title.zip" "$work"
    mkdir -p "$work/tools" "$work/build"
    cp tools/wine.sh tools/package_parts/inventory.py tools/package-test.sh "$work/tools/"
    cp -r build/locale "$work/build/"
    # A prefix in which nothing has run yet; the tests' own are copies of it too.
    VELUI_WINEPREFIX=$PWD/build/tests/wine-new tools/wine.sh --make
    cp -a build/tests/wine-new "$work/build/wine"
    cover=()
    if unshare -m true 2>/dev/null; then cover=(unshare -m); else say "nothing can be hidden here; going on beside the source"; fi
    VELUI_SOURCE=$PWD ${cover[@]+"${cover[@]}"} bash "$work/tools/package-test.sh" --inside "$title" "${1:-}" "${cover[@]}"
    mkdir -p "$(dirname "$proved")"
    echo "$now" >"$proved"
    exit
fi

# From here on in a copy of this file, beside the unpacked package.
title=$2 form=$3 covered=${4:-}
here=$(cd "$(dirname "$0")/.." && pwd)
package=$here/$title
cd "$here"
unset VELUI_WINEPREFIX VELUI_BUILD
hide() { for folder in "$@"; do [ ! -d "$folder" ] || mount -t tmpfs -o ro none "$folder"; done; }
[ -z "$covered" ] || { hide "$VELUI_SOURCE"; [ ! -e "$VELUI_SOURCE/CMakeLists.txt" ] || fail "the source tree is not hidden"; }
# Runs commands in one Wine session; $1: a text for the shell, in which velhost is the package's.
session() {
    VELUI_PACKAGE=$package tools/wine.sh --session bash -c "set -euo pipefail
        velhost() { tools/wine.sh \"\$VELUI_PACKAGE/velhost.exe\" \"\$@\"; }
        $1"
}
# Left out: what Wine writes anew at each start of a display, and three keys of its own spooler, empty, that any printer's
# installation leaves.
inventory() {
    python3 tools/inventory.py build/wine | grep -vE '"DriverDateData"=' | grep -vF \
        -e 'system.reg [System\\CurrentControlSet\\Control\\Print\\Environments\\Windows x64\\Drivers\\Version-3]' \
        -e 'system.reg [System\\ControlSet001\\Control\\Print\\Environments\\Windows x64\\Drivers\\Version-3]' -x \
        -e 'user.reg [Software\\Microsoft\\Windows NT\\CurrentVersion\\Devices]' \
        -e 'user.reg [Software\\Microsoft\\Windows NT\\CurrentVersion\\PrinterPorts]' >"$1"
}

say "whole, in $package"
(cd "$package" && sha256sum -c --quiet SHA256SUMS) || fail "a file is not what SHA256SUMS says"
listed=$(cd "$package" && { cut -c67- SHA256SUMS; echo SHA256SUMS; } | sort)
[ "$listed" = "$(cd "$package" && find . -type f -printf '%P\n' | sort)" ] || fail "SHA256SUMS lists other files than there are"
(cd "$package" && find . -type f ! -name CONTENTS ! -name SHA256SUMS -printf '%10s  %P\n' | LC_ALL=C sort -k2) >build/files
LC_ALL=C sed -n '/bytes  file$/,$p' "$package/CONTENTS" | tail -n +2 | LC_ALL=C sort -k2 | cmp -s - build/files ||
    fail "CONTENTS lists other files than there are"
for file in $(tr -d '\r' <"$package/VelUI.inf.part" | sed -n '/^\[VelUI.Files\]/,/^\[/{/^[^[;]/p}'); do
    [ -f "$package/$file" ] || fail "the INF's part copies $file, which is not here"
done

say "used in a fresh prefix"
session 'velhost --help >/dev/null'
inventory build/before
session '
    echo "-- install"; velhost install
    echo "-- capabilities through the spooler"; velhost caps --spooler >build/caps.txt
    echo "-- pictures of the sheet"; mkdir "build/the pictures"; velhost sheet document --pictures "build/the pictures" --press cancel >/dev/null
    if velhost --help | grep -qE "^ *doctor "; then
        echo "-- doctor"; code=0; velhost doctor >build/doctor.txt || code=$?; echo "$code" >build/doctor.code
    fi'
inventory build/installed
# The number of papers that the sample says is what an application gets.
papers=$(iconv -f UTF-16 -t UTF-8 "$package/sample/Config.ini" | tr -d '\r' | sed -n 's/^PapersCount=//p')
grep -qE "DC_PAPERS +$papers +[0-9]" build/caps.txt || { cat build/caps.txt; fail "the spooler does not tell of $papers papers"; }
for page in 1 2 3; do
    picture="build/the pictures/page$page.png"
    # A page has texts and controls on it: a picture of one colour or two is none of it.
    colours=$(pngtopnm "$picture" | ppmhist -noheader | wc -l)
    [ "$colours" -gt 20 ] || fail "$picture has $colours colours"
done
if [ -f build/doctor.code ]; then
    # The resident client is another product's and not in the package; that it is missing is all the doctor may find.
    [ "$(cat build/doctor.code)" -le 1 ] && ! grep -E '\b(REG|CFG|LOG|SPL|USR)[0-9]+\b' build/doctor.txt ||
        { cat build/doctor.txt; fail "the doctor finds faults in a fresh installation"; }
fi
! cmp -s build/before build/installed || fail "the installation does not show: nothing was compared"
session 'echo "-- uninstall"; velhost uninstall'
inventory build/after
diff build/before build/after >build/left || { cat build/left; fail "something is left behind"; }
say "installed, used and removed; nothing is left behind"

# code page's locale, folder of the selftest, parts of cases' names
selftest() {
    VELUI_LOCALE=$1 tools/wine.sh --session tools/wine.sh cmd /c "$(winpath "$2")\\selftest.cmd" "${@:3}"
}
winpath() { echo "Z:$1" | tr / '\\'; }

whole_selftest() {
    say "the whole selftest, without a compiler"
    if [ -z "$covered" ]; then
        selftest C.UTF-8 "$package/selftest"
        selftest zh_CN.UTF-8 "$package/selftest" '[cp936]'
        return
    fi
    # In a view of its own, so that the compiler is there again afterwards.
    unshare -m bash -c "set -euo pipefail; $(declare -f hide selftest winpath)
        hide ${compiler_folders[*]}
        ! x86_64-w64-mingw32-g++-win32 -x c++ -E - <<<'#include <windows.h>' >/dev/null 2>&1 || exit 1
        selftest C.UTF-8 '$package/selftest'; selftest zh_CN.UTF-8 '$package/selftest' '[cp936]'"
}

linked_anew() {
    say "linked anew with another build of log4cpp, made from this package"
    local again="$here/linked anew" program
    cp -r "$package/selftest" "$again"
    sh "$package/relink/log4cpp/build.sh" "$here/another log4cpp" -Os >build/log4cpp.log 2>&1 ||
        { cat build/log4cpp.log; fail "log4cpp does not build"; }
    for program in VelUI.dll storeworker.exe velhost.exe veltests.exe; do
        sh "$package/relink/relink.sh" "$here/another log4cpp/install/lib/liblog4cpp.a" "$again" "$program"
        ! cmp -s "$package/selftest/$program" "$again/$program" || fail "another log4cpp has made the same $program"
    done
    selftest C.UTF-8 "$again" ModuleFileTest LoadUnloadTest InfPartTest LogConfiguratorTest velhost/ProgramTest
    say "linked anew, and it passes the tests of the file, of loading and of the log"
}

case $form in --full | --selftest) whole_selftest ;; esac
case $form in --full | --relink) linked_anew ;; esac

#!/bin/sh
# Runs a program of the target under Wine, with everything that Wine keeps below build/: its prefix, its home folder and
# its caches.
#
#   tools/wine.sh PROGRAM [ARGUMENTS]       runs a program
#   tools/wine.sh --session COMMAND [...]   runs a command of the host while one Wine session stands, so that the programs
#                                           it runs start in a few hundredths of a second; ends the session with it
#   tools/wine.sh --direct PROGRAM [...]    runs a program whose output goes straight to a pipe, see below
#   tools/wine.sh --make                    makes the prefix, if it is not there, and runs nothing in it
#   tools/wine.sh --stop                    ends what runs in the prefix
#
# A session shows its windows under an Xvfb of its own, so that they come and go on nobody's desktop. VELUI_SHOW=1 shows
# them on the display that DISPLAY names, if there is one.
# VELUI_WINEPREFIX names another prefix. VELUI_LOCALE=zh_CN.UTF-8 gives code page 936, VELUI_LOCALE=C.UTF-8 1252; without
# it a sheet (velhost sheet) is shown under 936, as its users see it, and all else runs under 1252.

# Programs start at addresses that do not vary. Linux puts a program's heap anywhere in the gigabyte behind it, and once in
# a thousand starts that is the page at 0x7ffe0000 that Wine must have: the program then ends before its first line
# ("failed to map the shared user data"). Where the kernel refuses this, such starts are lost as often as that.
if [ -z "${VELUI_FIXED_ADDRESSES:-}" ]; then
    export VELUI_FIXED_ADDRESSES=1
    setarch -R true 2>/dev/null && exec setarch -R "$0" "$@"
fi

root=$(cd "$(dirname "$0")/.." && pwd)
build=$root/build
mkdir -p "$build/home"

export WINEPREFIX="${VELUI_WINEPREFIX:-$build/wine}"
export WINEARCH=win64
export HOME="$build/home" XDG_CACHE_HOME="$build/home/.cache" XDG_CONFIG_HOME="$build/home/.config" \
    XDG_DATA_HOME="$build/home/.local/share"
export WINEDEBUG="${WINEDEBUG:--all}"
# A crash must end the process with its code: the debugger would sometimes turn it into a 0, or wait in a dialog.
export WINEDLLOVERRIDES="winedbg.exe,winemenubuilder.exe,mscoree,mshtml=d"
export LOCPATH="$build/locale"
case "$*" in
    *velhost.exe\ sheet*) locale=zh_CN.UTF-8 ;;
    *) locale=C.UTF-8 ;;
esac
export LC_ALL="${VELUI_LOCALE:-$locale}"
[ "$LC_ALL" = C.UTF-8 ] && unset LOCPATH

if [ "$1" = --stop ]; then
    [ -d "$WINEPREFIX" ] && wineserver -k 2>/dev/null
    exit 0
fi
if [ ! -f "$WINEPREFIX/.ready" ]; then
    mkdir -p "$WINEPREFIX"
    (
        flock 9
        if [ ! -f "$WINEPREFIX/.ready" ]; then
            echo "== making the Wine prefix in $WINEPREFIX (about 10 s)" >&2
            # Always under the same locale, so that it is the same one whichever program comes first.
            export LC_ALL=C.UTF-8
            wine wineboot -i >"$WINEPREFIX.log" 2>&1 || { cat "$WINEPREFIX.log" >&2; exit 1; }
            # Debian's Wine does not look into the folder of its own fonts, the one with the window buttons among them.
            cp /usr/share/wine/fonts/marlett.ttf "$WINEPREFIX/drive_c/windows/Fonts/"
            # The dialogs' fonts give way to one that has Chinese. (Font links would be more like Windows, but Wine sets
            # those anew whenever the code page changes.)
            for font in 'MS Shell Dlg' Tahoma SimSun; do
                wine reg add 'HKCU\Software\Wine\Fonts\Replacements' /v "$font" /d 'WenQuanYi Micro Hei' /f \
                    >>"$WINEPREFIX.log" 2>&1
            done
            wineserver -w
            touch "$WINEPREFIX/.ready"
        fi
    ) 9>"$WINEPREFIX.lock" || exit 1
fi
[ "$1" = --make ] && exit 0
if [ "$1" = --session ]; then
    shift
    # The session lives as long as one program in it: a command interpreter that waits for its input. The platform's
    # services start with it, once and not for each program again.
    # What an earlier program left is ended first: a session that begins while the platform's services are on their way out
    # would wait for them for ever.
    wineserver -k 2>/dev/null
    wineserver -w 2>/dev/null
    if [ -z "${VELUI_SHOW:-}" ] || [ -z "${DISPLAY:-}" ]; then
        # Xvfb picks a free display and tells its number.
        number=$(mktemp "$build/display.XXXXXX")
        Xvfb -displayfd 7 -screen 0 1600x1200x24 -nolisten tcp 7>"$number" >"$build/xvfb.log" 2>&1 &
        xvfb=$!
        while [ ! -s "$number" ] && kill -0 "$xvfb" 2>/dev/null; do sleep 0.05; done
        [ -s "$number" ] || { cat "$build/xvfb.log" >&2; exit 1; }
        DISPLAY=:$(cat "$number")
        export DISPLAY
        rm -f "$number"
        trap 'kill "$xvfb" 2>/dev/null' EXIT
        trap 'exit 130' INT TERM
    fi
    # Without a window manager the platform has to draw the windows' frames itself.
    managed=Y
    [ -z "${xvfb:-}" ] || managed=N
    if ! grep -q "^\"Managed\"=\"$managed\"" "$WINEPREFIX/user.reg"; then
        wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d $managed /f >>"$WINEPREFIX.log" 2>&1
        wineserver -k 2>/dev/null
        wineserver -w 2>/dev/null
    fi
    fifo=$build/session.$$
    mkfifo "$fifo"
    wine cmd.exe <"$fifo" >/dev/null 2>&1 &
    exec 8>"$fifo"
    rm -f "$fifo"
    wine cmd.exe /c exit </dev/null >/dev/null 2>&1 8>&-
    "$@" 8>&-
    status=$?
    exec 8>&-
    wineserver -k 2>/dev/null
    wineserver -w 2>/dev/null
    exit $status
fi
if [ "$1" = --direct ]; then
    shift
    exec wine "$@"
fi
if [ -t 1 ]; then
    exec wine "$@"
fi
# Whatever background process of the platform the program is the first to need (its desktop, say) inherits the program's
# output and outlives it. A reader of a pipe would wait for that process too; a file has no reader that waits.
output=$(mktemp "$build/output.XXXXXX")
wine "$@" >"$output" 2>"$output.err"
status=$?
if [ "$status" != 0 ] && [ ! -s "$output" ] && [ ! -s "$output.err" ]; then
    # Every program here says something before it ends: this start was lost (see the top).
    echo "wine.sh: $1 ended with $status and no word; starting it once more" >&2
    # Counted in a run of the tests, which shows the number at its end.
    [ -z "${VELUI_REPEATS:-}" ] || echo "$1 ended with $status and no word" >>"${VELUI_REPEATS#Z:}"
    wine "$@" >"$output" 2>"$output.err"
    status=$?
fi
cat "$output"
cat "$output.err" >&2
rm -f "$output" "$output.err"
exit $status

#!/bin/bash
# Brings a Debian 12 machine to where the project builds and runs. Installs only what is missing, says what it does, and
# ends in well under a second when there is nothing to do.
set -euo pipefail
cd "$(dirname "$0")/.."

say() { echo "== $*"; }

# What for: cross compiler and resource compiler; build tools; drawings into icons and bitmaps; Wine, a display and a
# Chinese font; header-only libraries; the source of locales (code page 936 needs one).
packages=(
    g++-mingw-w64-x86-64-win32 binutils-mingw-w64-x86-64
    cmake ninja-build make git
    librsvg2-bin icoutils netpbm
    wine wine64 fonts-wine xvfb fonts-wqy-microhei
    catch2 libboost-dev libcli11-dev nlohmann-json3-dev
    locales libc-bin util-linux
)
[ "${1:-}" = check ] && packages+=(clang-format-14 cppcheck)
[ "${1:-}" = coverage ] && packages+=(gcovr)

missing=()
for package in "${packages[@]}"; do
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
done
if [ ${#missing[@]} -gt 0 ]; then
    say "installing ${#missing[@]} packages: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    # A third-party list that can't be reached must not stop the work; a missing package will.
    apt-get update -q || say "some package lists could not be read; going on"
    apt-get install -y -q --no-install-recommends "${missing[@]}"
fi

# log4cpp's source archive, kept outside build/ so that a clean build needs no network.
archive=.deps/log4cpp_1.1.4.orig.tar.gz
sum=696113659e426540625274a8b251052cc04306d8ee5c42a0c7639f39ca90c9d6
release=https://sourceforge.net/projects/log4cpp/files/log4cpp-1.1.x%20%28new%29/log4cpp-1.1/log4cpp-1.1.4.tar.gz/download
good() { [ -f "$1" ] && [ "$(sha256sum "$1" | cut -d' ' -f1)" = "$sum" ]; }
download() {
    rm -f "$archive.part"
    /usr/lib/apt/apt-helper download-file "$1" "$archive.part" "SHA256:$sum"
}

if ! good "$archive"; then
    mkdir -p .deps
    # First the mirrors that apt is configured for, then a file of the user's, then upstream.
    mirrors() { apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' | sort -u; }
    [ -n "$(mirrors)" ] || apt-get update -q || true
    for mirror in $(mirrors); do
        say "fetching log4cpp 1.1.4 from a Debian mirror that apt is configured for"
        download "${mirror%/}/pool/main/l/log4cpp/log4cpp_1.1.4.orig.tar.gz" >/dev/null 2>&1 && break
    done
    if ! good "$archive.part" && [ -n "${LOG4CPP_ARCHIVE:-}" ]; then
        say "taking log4cpp from $LOG4CPP_ARCHIVE"
        cp "$LOG4CPP_ARCHIVE" "$archive.part"
    fi
    if ! good "$archive.part"; then
        say "fetching log4cpp 1.1.4 from its own site"
        download "$release" || true
    fi
    good "$archive.part" || { echo "log4cpp 1.1.4 can't be had; put its archive where LOG4CPP_ARCHIVE points" >&2; exit 1; }
    mv "$archive.part" "$archive"
fi

# The Chinese locale that gives Wine code page 936; the system's own locales stay as they are.
if [ ! -d build/locale/zh_CN.UTF-8 ]; then
    say "making the zh_CN.UTF-8 locale in build/locale"
    mkdir -p build/locale
    localedef --no-archive -i zh_CN -f UTF-8 build/locale/zh_CN.UTF-8
fi

#!/bin/bash
# Brings a Debian 12 or 13 machine to where the project builds and runs. Installs only what is missing, says what it does, and
# ends in well under a second when there is nothing to do.
set -euo pipefail
cd "$(dirname "$0")/.."

say() { echo "== $*"; }

# What for: cross compiler and resource compiler; build tools; drawings into icons and bitmaps, printed pages into
# pictures; Wine, a display and a Chinese font; header-only libraries; the source of locales (code page 936 needs one);
# the package's pages.
packages=(
    g++-mingw-w64-x86-64-win32 binutils-mingw-w64-x86-64
    cmake ninja-build make git
    librsvg2-bin icoutils netpbm ghostscript
    wine wine64 fonts-wine xvfb fonts-wqy-microhei python3
    libboost-dev libcli11-dev nlohmann-json3-dev
    locales libc-bin util-linux
    python3-markdown
)
if [ "${1:-}" = check ]; then
    packages+=(cppcheck)
    # Debian 13 has no such old formatter; tools/check.sh says what that means.
    [ -z "$(apt-cache madison clang-format-14 2>/dev/null)" ] || packages+=(clang-format-14)
fi
[ "${1:-}" = coverage ] && packages+=(gcovr)
[ "${1:-}" = bench ] && packages+=(python3-matplotlib)

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

# The source archives, kept outside build/ so that a clean build needs no network: log4cpp, which the module links, and
# Catch2, which the tests do. Both releases of Debian have an older or no source of them for this compiler.
good() { [ -f "$1" ] && [ "$(sha256sum "$1" | cut -d' ' -f1)" = "$2" ]; }
# archive TITLE FILE SHA256 PATH-ON-A-DEBIAN-MIRROR FILE-OF-THE-USER'S VARIABLE-THAT-NAMES-IT UPSTREAM
archive() {
    local title=$1 file=.deps/$2 sum=$3 pool=$4 own=$5 variable=$6 upstream=$7 mirror
    ! good "$file" "$sum" || return 0
    download() {
        rm -f "$file.part"
        /usr/lib/apt/apt-helper download-file "$1" "$file.part" "SHA256:$sum"
    }
    mirrors() { apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' | sort -u; }
    mkdir -p .deps
    # First the mirrors that apt is configured for, then a file of the user's, then upstream.
    [ -n "$(mirrors)" ] || apt-get update -q || true
    for mirror in $(mirrors); do
        say "fetching $title from a Debian mirror that apt is configured for"
        download "${mirror%/}/$pool" >/dev/null 2>&1 && break
    done
    if ! good "$file.part" "$sum" && [ -n "$own" ]; then
        say "taking $title from $own"
        cp "$own" "$file.part"
    fi
    if ! good "$file.part" "$sum"; then
        say "fetching $title from its own site"
        download "$upstream" || true
    fi
    good "$file.part" "$sum" || { echo "$title can't be had; put its archive where $variable points" >&2; exit 1; }
    mv "$file.part" "$file"
}
archive "log4cpp 1.1.4" log4cpp_1.1.4.orig.tar.gz 696113659e426540625274a8b251052cc04306d8ee5c42a0c7639f39ca90c9d6 \
    pool/main/l/log4cpp/log4cpp_1.1.4.orig.tar.gz "${LOG4CPP_ARCHIVE:-}" LOG4CPP_ARCHIVE \
    https://sourceforge.net/projects/log4cpp/files/log4cpp-1.1.x%20%28new%29/log4cpp-1.1/log4cpp-1.1.4.tar.gz/download
archive "Catch2 3.7.1" catch2_3.7.1.orig.tar.gz c991b247a1a0d7bb9c39aa35faf0fe9e19764213f28ffba3109388e62ee0269c \
    pool/main/c/catch2/catch2_3.7.1.orig.tar.gz "${CATCH2_ARCHIVE:-}" CATCH2_ARCHIVE \
    https://github.com/catchorg/Catch2/archive/refs/tags/v3.7.1.tar.gz

# The Chinese locale that gives Wine code page 936; the system's own locales stay as they are.
if [ ! -d build/locale/zh_CN.UTF-8 ]; then
    say "making the zh_CN.UTF-8 locale in build/locale"
    mkdir -p build/locale
    localedef --no-archive -i zh_CN -f UTF-8 build/locale/zh_CN.UTF-8
fi

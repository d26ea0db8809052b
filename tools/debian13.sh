#!/bin/bash
# Runs the tests on Debian 13: makes a root of it in build/debian13 (as root, with debootstrap), copies the tree into it and
# calls make test there. Arguments name another target: tools/debian13.sh build
# DEBIAN_MIRROR names another mirror. The root is kept; remove it with rm -rf build/debian13.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD/build/debian13
# By default the mirror that apt is configured for.
mirror=${DEBIAN_MIRROR:-$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Label: Debian' | sort -u | head -1)}
[ -n "$mirror" ] || { echo "apt is configured for no mirror of Debian: name one with DEBIAN_MIRROR" >&2; exit 1; }
say() { echo "== $*"; }

command -v debootstrap >/dev/null || {
    say "installing debootstrap"
    apt-get install -y -q --no-install-recommends debootstrap
}
if [ ! -f "$root/.made" ]; then
    say "making a Debian 13 root in $root"
    rm -rf "$root"
    mkdir -p "$root"
    debootstrap --variant=minbase --include=make,ca-certificates trixie "$root" "$mirror"
    touch "$root/.made"
fi
mounts=()
cleanup() {
    for place in "${mounts[@]}"; do umount -l "$place" || true; done
}
trap cleanup EXIT
for place in proc sys dev dev/pts; do
    mkdir -p "$root/$place"
    mount --rbind "/$place" "$root/$place"
    mount --make-rslave "$root/$place"
    mounts=("$root/$place" "${mounts[@]}")
done
cp /etc/resolv.conf "$root/etc/resolv.conf"

say "copying the tree"
mkdir -p "$root/src/.deps"
# Only what differs, with the time of now: a file that came here by a merge may be older than an object that was made of
# the one before.
git ls-files -z --cached --others --exclude-standard | while IFS= read -r -d '' file; do
    [ -f "$file" ] && ! cmp -s "$file" "$root/src/$file" || continue
    mkdir -p "$root/src/$(dirname "$file")"
    rm -f "$root/src/$file"
    cp --preserve=mode "$file" "$root/src/$file"
done
cp -n .deps/*.tar.gz "$root/src/.deps/" 2>/dev/null || true
say "make ${*:-test} on Debian $(cat "$root/etc/debian_version")"
chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 make -C /src "${@:-test}"

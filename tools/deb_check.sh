#!/usr/bin/env bash
# Checks the packages in build/deb/ as a distribution would: lintian, then in a fresh Debian system below
# build/deb/root debian/tests on the installed packages, then what is left when they are purged. Root only.
set -euo pipefail
cd "$(dirname "$0")/.."
if [ "$(id -u)" -ne 0 ]; then
    echo "tools/deb_check.sh: a system of its own takes root: sudo tools/deb_check.sh" >&2
    exit 1
fi
# Mounts go with the process.
[ -n "${VELOXA_DEB_CHECK-}" ] || VELOXA_DEB_CHECK=1 exec unshare --mount -- "$0" "$@"

out=$PWD/build/deb
root=$out/root
tests=$out/autopkgtest
changes=("$out"/veloxa_*.changes)
debs=()
for deb in "$out"/*.deb; do
    [[ $deb = *-dbgsym_* ]] || debs+=("$deb")
done
if [ ! -e "${changes[0]}" ]; then
    echo "tools/deb_check.sh: no packages in $out; make deb makes them" >&2
    exit 1
fi

echo "== lintian"
# Overridden ones count as failures as soon as they are shown.
lintian -I --pedantic --show-overrides --fail-on none --allow-root "${changes[0]}"
lintian --fail-on error,warning --allow-root --quiet "${changes[0]}"

echo "== a fresh system"
rm -rf "$root" "$tests"
suite=bookworm
mirror=http://deb.debian.org/debian
debootstrap --variant=minbase "$suite" "$root" "$mirror" >"$out/debootstrap.log"
printf 'deb %s %s main\n' "$mirror" "$suite" "$mirror-security" "$suite-security" >"$root/etc/apt/sources.list"
mount -t proc proc "$root/proc"

inside() {
    chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"
}
# All that the packages and their tests need beside themselves, so that the lists differ by these alone.
needed=$(for deb in "${debs[@]}"; do dpkg-deb -f "$deb" Depends; done | tr ',' '\n' | grep -vE '^ *(libzoimage0|veloxa)' | paste -sd ,)
{
    inside apt-get -q update
    inside apt-get -q -y --no-install-recommends satisfy "$needed, g++, pkgconf, dpkg-dev"
} >"$out/apt.log" </dev/null

# What is on the disk, but for what dpkg, apt and the tests write about their own doings.
list() {
    (cd "$root" && find . -xdev -mindepth 1 \( -path ./proc -o -path ./tmp -o -path ./var/log -o -path ./var/cache \
        -o -path ./var/lib/apt -o -path ./var/lib/dpkg -o -path ./run \) -prune -o -print | sort)
}
list >"$out/before.txt"
mkdir "$root/debs"
cp "${debs[@]}" "$root/debs"
inside sh -c 'dpkg --install /debs/*.deb' >"$out/dpkg.log"
rm -r "$root/debs"
list >"$out/installed.txt"
names=$(for deb in "${debs[@]}"; do dpkg-deb -f "$deb" Package; done)
echo "$(comm -13 "$out/before.txt" "$out/installed.txt" | wc -l) files and folders are new with ${names//$'\n'/, }"

echo "== debian/tests on the installed packages"
autopkgtest --no-built-binaries --output-dir "$tests" "$out"/veloxa_*.dsc -- chroot "$root"

echo "== purging"
# shellcheck disable=SC2086
inside dpkg --purge $names >>"$out/dpkg.log"
list >"$out/after.txt"
if ! diff "$out/before.txt" "$out/after.txt"; then
    echo "tools/deb_check.sh: purging leaves these (>) behind or takes those (<) along" >&2
    exit 1
fi
echo "Nothing is left."
umount "$root/proc"
rm -rf "$root"

#!/usr/bin/env bash
# Installs the Debian 12 packages that are missing; does nothing when all are there.
#
#   tools/deps.sh              what building the program, the demo and the bundle need
#   tools/deps.sh viewer       also what the viewer and its tests need
#   tools/deps.sh farm         also a scheduler, whose jobs the tests run
#   tools/deps.sh test         both
#   tools/deps.sh dev          these, and what formatting and linting need
#   tools/deps.sh bench        also what the benchmarks need
#   tools/deps.sh deb          also what building Debian packages needs
#   tools/deps.sh deb-check    also what checking these needs
set -euo pipefail

packages=(
    g++ cmake ninja-build ccache pkgconf
    libopenimageio-dev libopenexr-dev libopencolorio-dev libcli11-dev nlohmann-json3-dev
    libavformat-dev libavcodec-dev libavutil-dev # streams of frames
    libxxhash-dev # fingerprints
    libgtest-dev libgmock-dev
    bash-completion zsh fish man-db # their completions and the manual pages are tested in them
    ffmpeg # the tests' other end of a stream
    python3 # the tests' reader of JSON
    openimageio-tools fonts-dejavu-core # the demo's contact sheet and its labels
)
viewer=(qt6-base-dev qt6-base-dev-tools xvfb openbox xdotool desktop-file-utils appstream librsvg2-bin)
farm=(slurmctld slurmd slurm-client munge)
case "${1-}" in
    "") ;;
    farm) packages+=("${farm[@]}") ;;
    test) packages+=("${viewer[@]}" "${farm[@]}") ;;
    viewer) packages+=("${viewer[@]}") ;;
    dev) packages+=("${viewer[@]}" "${farm[@]}" clang-format clang-tidy) ;;
    bench) packages+=(libbenchmark-dev) ;;
    deb | deb-check)
        # The build's own list; the one name in it that is no package's is debhelper's.
        mapfile -t -O ${#packages[@]} packages < <(sed -nE '/^Build-Depends:/,/^[A-Z]/s/^ ([^ ,]+).*/\1/p' \
            "$(dirname "$0")/../debian/control" | sed 's/^debhelper-compat$/debhelper/')
        packages+=(build-essential)
        [ "$1" = deb ] || packages+=(lintian autopkgtest debootstrap)
        ;;
    *)
        echo "usage: tools/deps.sh [viewer|farm|test|dev|bench|deb|deb-check]" >&2
        exit 2
        ;;
esac

installed() {
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    echo "tools/deps.sh: this is no Debian system (apt-get is missing). Install these, then build with" >&2
    echo "'make build SKIP_DEPS=1': ${packages[*]}" >&2
    exit 1
fi

missing=()
for package in "${packages[@]}"; do
    installed "$package" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "tools/deps.sh: not root and no sudo. As root, run: apt-get install ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi

echo "Installing ${missing[*]}"
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y update </dev/null
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y install --no-install-recommends \
    "${missing[@]}" </dev/null

#!/usr/bin/env bash
# Builds the Debian packages of what is committed, from a clean export, and leaves them in build/deb/.
#
#   tools/deb.sh            builds them; DEB_BUILD_OPTIONS=nocheck leaves out their tests
#   tools/deb.sh --twice    builds them once more in another folder and fails when one byte differs
set -euo pipefail
cd "$(dirname "$0")/.."

case "${1-}" in
    "" | --twice) twice=${1-} ;;
    *)
        echo "usage: tools/deb.sh [--twice]" >&2
        exit 2
        ;;
esac

out=$PWD/build/deb
version=$(sed -nE '1s/^veloxa \((.*)\).*/\1/p' debian/changelog)
declared=$(sed -nE 's/^project\(Veloxa VERSION ([0-9.]+) .*/\1/p' CMakeLists.txt)
if [ "$version" != "$declared" ]; then
    echo "tools/deb.sh: debian/changelog is at $version, CMakeLists.txt at $declared" >&2
    exit 1
fi
commit=$(git rev-parse HEAD)
[ -z "$(git status --porcelain)" ] || echo "What is not committed is left out."

# Debhelper gives builds a home of their own; the cache of the compiler's output is elsewhere. It may not make paths
# relative, as its settings can ask for: they would show in the debug information, and so in what depends on it.
if command -v ccache >/dev/null; then
    CCACHE_DIR=$(ccache --get-config cache_dir)
    export CCACHE_DIR CCACHE_BASEDIR=
fi

# packages FOLDER NAME: builds in FOLDER/NAME, which takes the packages' place beside it.
packages() {
    local tree=$1/$2 log=$1/build.log
    rm -rf "$1"
    mkdir -p "$tree"
    git archive "$commit" | tar -x -C "$tree"
    # --sanitize-env: the caller's umask and sort order leave no trace.
    if ! (cd "$tree" && dpkg-buildpackage --sanitize-env --no-sign >"$log" 2>&1); then
        tail -n 60 "$log" >&2
        echo "tools/deb.sh: the build failed; all of it is in $log" >&2
        return 1
    fi
    rm -rf "$tree"
}

packages "$out" "veloxa-$version"
if [ -n "$twice" ]; then
    # The last folder's name is in the source package. The tests change nothing in the packages. The cache keeps apart
    # what the two builds made, or it would hide what differs.
    again=$out/again
    DEB_BUILD_OPTIONS="${DEB_BUILD_OPTIONS-} nocheck" CCACHE_NAMESPACE=again \
        packages "$again" "elsewhere/of/another/veloxa-$version"
    differ=0
    compared=0
    for package in "$out"/*.deb "$out"/*.dsc "$out"/*.tar.*; do
        other=$(find "$again" -name "${package##*/}")
        compared=$((compared + 1))
        cmp "$package" "$other" || differ=1
    done
    if [ "$differ" -ne 0 ]; then
        echo "tools/deb.sh: two builds differ; the other is in $again" >&2
        exit 1
    fi
    rm -rf "$again"
    echo "$compared files are the same bytes in two builds."
fi
(cd "$out" && du -h --apparent-size -- *.deb)

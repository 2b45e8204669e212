#!/usr/bin/env bash
# Installs a build into an empty folder as a package would, and uses what is there from another one.
# Takes the build's folder.
set -euo pipefail

build=$1
example=$(cd "$(dirname "$0")/.." && pwd)/example/Sharpen.cpp
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=$work/root
cd "$work"

fail() {
    echo "check_install: $*" >&2
    exit 1
}

DESTDIR=$root cmake --install "$build" --prefix /usr >/dev/null
bundle=$root/usr/OFX/Plugins/Veloxa.ofx.bundle/Contents
modules=("$bundle"/Linux-*/Veloxa.ofx)
module=${modules[0]}
for file in "$module" "$bundle/Info.plist" "$bundle/Resources/org.veloxa.Keyer.png" \
    "$root"/usr/share/{man/man1/veloxa-key.1,bash-completion/completions/veloxa,zsh/vendor-completions/_veloxa} \
    "$root"/usr/share/fish/vendor_completions.d/veloxa.fish "$root"/usr/{bin/veloxa,include/ZoImage/Iop.h,lib*/libZoImage.so,lib*/veloxa/Veloxa.so,lib*/veloxa/Formats.so}; do
    [ -s "$file" ] || fail "$file is missing"
done
# The viewer, where it was built, and all that belongs to it; else nothing of it.
for file in bin/veloxa-viewer share/{applications/org.veloxa.Viewer.desktop,icons/hicolor/scalable/apps/org.veloxa.Viewer.svg} \
    share/{metainfo/org.veloxa.Viewer.metainfo.xml,man/man1/veloxa-viewer.1,bash-completion/completions/veloxa-viewer} \
    share/{zsh/vendor-completions/_veloxa-viewer,fish/vendor_completions.d/veloxa-viewer.fish}; do
    if [ -x "$build/bin/veloxa-viewer" ]; then
        [ -s "$root/usr/$file" ] || fail "$file is missing"
    else
        [ ! -e "$root/usr/$file" ] || fail "$file is there without the viewer"
    fi
done
if [ -x "$build/bin/veloxa-viewer" ]; then
    viewers=$(env -i LD_DEBUG=files LD_DEBUG_OUTPUT="$work/viewers" "$root/usr/bin/veloxa-viewer" --version)
    [ "$viewers" = "$("$root/usr/bin/veloxa" --version)" ] || fail "the viewer's version is $viewers"
    grep -qF "calling init: $root/usr/" "$work"/viewers.* || fail "the viewer loads no library of the installation"
    ! grep -q "calling init: $build/" "$work"/viewers.* || fail "the viewer loads from the build"
fi
others=$(ldd "$module" | sed -E 's/^\s*(\S+).*/\1/' | grep -vE '^(linux-vdso|libm|libc|/.*/ld-linux[^/]*)\.so' || true)
[ -z "$others" ] || fail "the bundle needs $others"

# The program, with nothing around it that leads back to the build.
veloxa="$root/usr/bin/veloxa"
env -i LD_DEBUG=files LD_DEBUG_OUTPUT="$work/files" "$veloxa" knobs >knobs
grep -q screen_color knobs || fail "the program lists no knobs"
foreign=$(sed -nE 's/.*calling init: //p' files.* | grep -E '/(libZoImage|Veloxa)\.so' | grep -vF "$root/" || true)
[ -z "$foreign" ] || fail "the program loads $foreign"
[ "$(sed -nE 's/.*calling init: //p' files.* | grep -cE '/(libZoImage|Veloxa)\.so')" -eq 2 ] ||
    fail "the program loads other modules than the engine and the keyer"

# A module of somebody else's, built with what is installed.
pkgconfig=("$root"/usr/lib*/pkgconfig)
flags=$(PKG_CONFIG_PATH=${pkgconfig[0]} PKG_CONFIG_ALLOW_SYSTEM_CFLAGS=1 pkg-config --cflags --libs ZoImage)
# shellcheck disable=SC2086
c++ -std=c++20 -shared -fPIC -Wl,-z,defs -o Sharpen.so "$example" $flags || fail "the headers do not serve"

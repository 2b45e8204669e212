#!/bin/bash
# What the viewer does before it opens a window, how `veloxa view` starts it, and what desktops read of it.
# usage: viewer_files_test.sh VELOXA VIEWER BUILD_FOLDER
viewer=$(realpath "$2")
build=$(realpath "$3")
resources=$(realpath "$(dirname "$0")/../../apps/viewer/resources")
# shellcheck source=tests/apps/lib.sh
. "$(dirname "$0")/lib.sh"
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM

# said STATUS MESSAGE COMMAND...: it ends with the status, and its whole standard error is the line.
said() {
    timeout 60 "${@:3}" >out.txt 2>err.txt </dev/null
    local got=$?
    [ $got -eq "$1" ] || fail "status $got, not $1: ${*:3}"
    [ "$(cat err.txt; echo .)" = "${2:+$2
}." ] || fail "'$(head -c 300 err.txt)', not '$2': ${*:3}"
}

# Without a screen.
said 0 "" "$viewer" --version
grep -qx "$("$veloxa" --version)" out.txt || fail "--version: $(cat out.txt)"
said 0 "" "$viewer" --help
grep -qe --stroke out.txt || fail "--help: $(cat out.txt)"
said 2 "veloxa: --fgg: veloxa-viewer has no such option; did you mean --fg?" "$viewer" --fgg x
said 2 "veloxa: --purple: veloxa-viewer has no such option; see veloxa-viewer --help" "$viewer" x --purple
said 2 "veloxa: --purple: view has no such option; see veloxa view --help" "$veloxa" view x --purple
no_screen="veloxa: there is no screen: neither DISPLAY nor WAYLAND_DISPLAY is set"
said 1 "$no_screen" "$viewer" x.exr
# Through the true viewer's parser; a value that begins with a dash stays one.
said 1 "$no_screen" "$veloxa" view --gm=-dash.exr --frames 1-2 --set brights=-1 -- -x.exr

# Another viewer, beside the program or on the path, that says what it was given.
mkdir bin path
cp "$veloxa" bin/
ln -s "$build/lib" lib
said 1 "veloxa: veloxa-viewer: is not installed; it is a package of its own, and \`make viewer\` builds it" \
    env PATH=/nowhere "$PWD/bin/veloxa" view x.exr
printf '#!/bin/sh\nprintf "%%s\\0" "$@" >"%s/given"\nexit 7\n' "$PWD" >path/veloxa-viewer
chmod +x path/veloxa-viewer
# In the order in which they are passed on.
# shellcheck disable=SC2016,SC2054
arguments=(--fg "a 'plate' of \"mine\".exr" --cp cp.exr --bg $'two\nlines.exr' --gm 'gm.exr#channel=R,invert' --hm hm.exr
    --fit crop --in-space "Utility - Raw" --out-space 'sRGB $HOME' --frames 1-9x2 --script 's;1.vlx' --set brights=90
    --set 'unmix_method=colour difference' --pick 1,2,3,4 --auto --stroke addoverlay=1,2,3,4+5,6,7,8 --stroke screen=1,2,3,4
    -- -dash.exr 'more *.exr' "")
said 7 "" env PATH="$PWD/path:$PATH" "$PWD/bin/veloxa" view "${arguments[@]}"
cmp given <(printf '%s\0' "${arguments[@]}") || fail "given: $(tr '\0' '|' <given)"
mv path/veloxa-viewer bin/
said 7 "" "$PWD/bin/veloxa" view --screen blue
cmp given <(printf -- '--screen\0blue\0') || fail "given: $(tr '\0' '|' <given)"

# What desktops read.
id=org.veloxa.Viewer
checked=$(desktop-file-validate "$resources/$id.desktop" 2>&1)
[ -z "$checked" ] || fail "desktop file: $checked"
appstreamcli validate --no-net --pedantic "$resources/$id.metainfo.xml" >checked.txt 2>&1 || fail "metainfo: $(cat checked.txt)"
grep -qE '^[EWI]:' checked.txt && fail "metainfo: $(cat checked.txt)"
grep -qx "Exec=$(basename "$viewer") %F" "$resources/$id.desktop" || fail "the desktop file starts another program"
version=$("$veloxa" --version)
grep -qF "<release version=\"${version#* }\"" "$resources/$id.metainfo.xml" || fail "no release ${version#* } in the metainfo"
# Ground at the left, none of it at the right, nothing in the corner.
for size in 16 128; do
    rsvg-convert -w $size -h $size -o icon.png "$resources/$id.svg" || fail "no icon"
    # In parts of 32, and whether something is there.
    for place in "left 5 5 1" "right 24 5 1" "corner 0 0 0"; do
        read -r side x y alpha <<<"$place"
        oiiotool icon.png --cut 1x1+$((size * x / 32))+$((size * y / 32)) --printstats >stats.txt
        read -r red green blue opaque < <(sed -nE 's/^ *Stats Avg: ([0-9. ]+).*/\1/p' stats.txt)
        awk -v side="$side" -v alpha="$alpha" -v r="$red" -v g="$green" -v b="$blue" -v a="$opaque" 'BEGIN {
            is_green = g > r + 0.15 && g > b + 0.15
            exit !((alpha ? a == 1 : a < 0.5) && is_green == (side == "left")) }' ||
            fail "icon of $size, $side: $(cat stats.txt)"
    done
done

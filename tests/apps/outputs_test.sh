#!/bin/bash
# The files that a key writes: several pictures of one run, what formats make of them, what their metadata tells.
. "$(dirname "$0")/lib.sh"

expect 0 "" plate -o p --size 64x48 --frames 1-2
expect 0 "" plate -o q --size 64x48
inputs=(--fg q/fg.exr --bg q/bg.exr --pick 0,40,8,48)
three=(-o comp=out/comp.exr -o matte=out/matte.exr -o cut=out/cut.exr)
mkdir out

expect_rows key --fg q/fg.exr <<'TABLE'
2|there is no picture mate; there are comp, matte and cut|-o mate=out/a.exr
2|is given twice|-o comp=out/a.exr -o matte=out/a.exr
2|--stage writes its rows alone|-o matte=out/a.exr --stage computeMatte
2|WxH|-o out/a.exr --tiles 64
1|out/a.exr: --compression lzw: the format has zip|-o out/a.exr --compression lzw
1|out/a.png: --depth uint10|-o out/a.dpx -o cut=out/a.png --depth uint10
TABLE
expect_files out ""

# One run gives the pictures that runs of their own give.
expect 0 "" key "${inputs[@]}" "${three[@]}"
for mode in composite premultiplied; do
    expect 0 "" key "${inputs[@]}" -o out/$mode.exr --set output_mode=$mode
done
expect 0 "" compare out/comp.exr out/composite.exr --max-diff 0
expect 0 "" compare out/cut.exr out/premultiplied.exr --max-diff 0
expect 0 "" compare out/matte.exr out/comp.exr --channel A --max-diff 0

# A matte is one channel, or grey where a format has no such thing; a composite is opaque, a cut is not.
for format in exr:4:1:4 tif:4:1:4 png:3:1:4 tga:3:1:4 jpg:3:1:3 webp:3:3:4 bmp:3:1:4 iff:4:3:4 hdr:3:3:3 jp2:3:1:4; do
    IFS=: read -r extension comp matte cut <<<"$format"
    expect 0 "" key "${inputs[@]}" -o comp=out/c.$extension -o matte=out/m.$extension -o cut=out/k.$extension
    found=$(oiiotool --info out/c.$extension out/m.$extension out/k.$extension | sed -nE 's/.*, ([0-9]) channel.*/\1/p')
    [ "$(echo $found)" = "$comp $matte $cut" ] || fail "$extension has channels $found"
done

expect 0 "out/c.png: a composite over black, without its matte; -o cut=FILE keeps that" key --fg q/fg.exr -o out/c.png --overwrite

# Who made it, from what and how; the same frame again has the same bytes.
oiiotool --info -v out/comp.exr >info.txt
for text in 'Software: "veloxa ' 'fg q/fg.exr' 'bg q/bg.exr' 'screen_color {'; do
    grep -qF "$text" info.txt || fail "no $text in the metadata: $(cat info.txt)"
done
expect 0 "" key "${inputs[@]}" -o comp=again.exr
cmp again.exr out/comp.exr || fail "a second run writes other bytes"
expect 0 "" key "${inputs[@]}" -o out/none.exr --no-provenance --compression piz
oiiotool --info -v out/none.exr >info.txt
grep -qE 'Software|veloxa:(inputs|settings)|screen_color' info.txt && fail "provenance in spite of --no-provenance"
grep -q 'compression: "piz"' info.txt || fail "no piz: $(cat info.txt)"

# Resumed where one picture of a frame is missing.
sequence=(--fg p/fg.####.exr --frames 1-2 -o out/s.%d.exr -o matte=out/t.%d.exr --pick 0,40,8,48)
expect 0 "" key "${sequence[@]}"
rm out/t.2.exr
touch -d 2001-01-01 out/s.*.exr
expect 0 "" key "${sequence[@]}" --resume
[ "$(find out -name 's.*' -newermt 2002-01-01)" = out/s.2.exr ] || fail "--resume wrote $(ls -l out/s.*)"

# What takes a fifth of a second to load is loaded for a format that needs it, and not for OpenEXR.
for type in exr:0 png:1; do
    rm -f libraries.*
    LD_DEBUG=files LD_DEBUG_OUTPUT=libraries "$veloxa" key --fg q/fg.exr -o heavy.${type%:*} --screen green --quiet || fail "no heavy.$type"
    grep -q 'libOpenImageIO\.so' libraries.* && loaded=1 || loaded=0
    [ $loaded -eq "${type#*:}" ] || fail "the image library is loaded: $loaded, for heavy.${type%:*}"
done

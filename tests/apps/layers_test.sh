#!/bin/bash
# Runs the program on files of several parts, layers and views.
# shellcheck source=tests/apps/lib.sh
. "$(dirname "$0")/lib.sh"

pick=(--pick 0,40,8,48)
expect 0 "" plate -o shot --size 64x48 --frames 1-2
for n in 1 2; do
    oiiotool "shot/fg.000$n.exr" --ch beauty.R=R,beauty.G=G,beauty.B=B "shot/gm.000$n.exr" --ch mask.M=A,mask.N=0.25 \
        --pattern noise 64x48 1 --chnames depth.Z --chappend --chappend \
        -d half -d depth.Z=float -d mask.M=uint -o "layers.000$n.exr"
done
mkdir out

# A layer is keyed as the file it was made of; the channel of a matte and its opposite are not the same.
expect 0 "" key --fg shot/fg.%04d.exr --gm shot/gm.%04d.exr -o out/a.%d.exr --frames 1-2 "${pick[@]}"
expect 0 "" key --fg 'layers.####.exr#layer=beauty' --gm 'shot/gm.####.exr#channel=A' --keep layers \
    -o out/b.%d.exr --frames 1-2 "${pick[@]}" --quiet
for n in 1 2; do
    expect 0 "" compare out/a.$n.exr out/b.$n.exr --max-diff 0
    for channel in depth.Z mask.N; do
        expect 0 "" compare "out/b.$n.exr#channel=$channel" "layers.000$n.exr#channel=$channel" --max-diff 0
    done
done
oiiotool --info -v out/b.2.exr | grep -q 'depth.Z (float).*mask.N (half)' || fail "types: $(oiiotool --info -v out/b.2.exr)"
expect 0 "" key --fg shot/fg.0001.exr --gm 'shot/gm.0001.exr#channel=A,invert' -o out/c.exr "${pick[@]}"
expect 1 "" compare out/a.1.exr out/c.exr --max-diff 0.1
expect 0 "" score 'out/b.1.exr#channel=A' shot/alpha_true.0001.exr
expect 0 "" cleanplate --fg 'layers.%04d.exr#layer=beauty' --frames 1-2 -o out/plate.exr "${pick[@]}"

# A name that is there is that file.
cp shot/fg.0001.exr 'odd#layer=nothing'
expect 0 "" compare 'odd#layer=nothing' shot/fg.0001.exr --max-diff 0

# Mistakes are told once, whatever the number of frames, and nothing is written.
count=$(ls out | wc -l)
while IFS='|' read -r status text input; do
    # shellcheck disable=SC2086
    expect "$status" "$text" key $input "${pick[@]}" --frames 1-2 -o out/new.%d.exr --quiet
    [ "$(wc -l <err.txt)" -eq 1 ] || fail "$input: $(cat err.txt)"
done <<'TABLE'
1|layers.0001.exr: has no layer nothing; there are beauty, depth, mask: layers.0001.exr#layer=beauty|--fg layers.%04d.exr#layer=nothing
1|layers.0001.exr: has no channel Q; there are|--fg shot/fg.%04d.exr --hm layers.%04d.exr#layer=mask,channel=Q
2|: colour=red is no choice; there are part, layer, view, channel, space and invert|--fg layers.%04d.exr#layer=beauty,colour=red
2|layer is chosen twice|--fg layers.%04d.exr#layer=beauty,layer=mask
2|invert is chosen twice|--fg shot/fg.%04d.exr --gm layers.%04d.exr#invert,invert
2|a value is expected behind =|--fg layers.%04d.exr#layer=
2|#invert: only the matte|--fg layers.%04d.exr#layer=beauty,invert
TABLE
expect 1 "out/new.png: the format cannot hold the layers" key --fg layers.0001.exr#layer=beauty --keep layers -o out/new.png
expect 0 "holds no other layers to keep" key --fg shot/fg.0001.exr "${pick[@]}" --keep layers -o out/d.exr
[ "$(ls out | wc -l)" -eq $((count + 1)) ] || fail "files: $(ls out)"

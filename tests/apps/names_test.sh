#!/bin/bash
# What the program says of names that do not exist, and of values beyond the panel's ranges.
# shellcheck source=tests/apps/lib.sh
. "$(dirname "$0")/lib.sh"

# said STATUS MESSAGE ARGUMENT...: the program ends with the status, and says exactly that (| ends a line).
said() {
    expect "$1" "" "${@:3}"
    [ "$(tr '\n' '|' <err.txt)" = "$2" ] || fail "'$(cat err.txt)', not '$2': veloxa ${*:3}"
}

"$veloxa" plate -o shot --size 64x48 || fail "no plate"
key=(key --fg shot/fg.exr -o out.exr --pick 0,40,8,48)

while IFS='@' read -r text arguments; do
    # shellcheck disable=SC2086
    said 2 "veloxa: $text|" $arguments
done <<'TABLE'
--fgg: key has no such option; did you mean --fg?@key --fgg x
-fg=x: key has no such option; did you mean --fg?@key -fg=x -o y
--purple: key has no such option; see veloxa key --help@key --fg x --purple
--fg is required; see veloxa key --help@key -o x
b, c: more than key takes; see veloxa key --help@key --fg a b c -o d
--fit: corp is none of resize, crop, none; did you mean 'crop'?@key --fit corp
--screen: gren is none of auto, green, blue, red; did you mean 'green'?@key --screen gren
--screen: pink is none of green, blue; see veloxa plate --help@plate -o y --screen pink
--stage computeMate: there is no such operator; did you mean 'computeMatte'?@key --fg shot/fg.exr -o out.exr --stage computeMate
--stroke addoverly: there is no such tool; did you mean 'addoverlay'?@key --fg shot/fg.exr -o out.exr --stroke addoverly=1,2,3,4
--stroke toolbar_Add_Overly: there is no such tool; did you mean 'addoverlay'?@key --fg shot/fg.exr -o out.exr --stroke toolbar_Add_Overly=1,2,3,4
--set overlay_mode=sceen: knob 'overlay_mode' takes one of off, screen, subject; got 'sceen'; did you mean 'screen'?@key --fg shot/fg.exr -o out.exr --set overlay_mode=sceen
--set brihgts=1: no knob named 'brihgts'; did you mean 'brights'?@key --fg shot/fg.exr -o out.exr --set brihgts=1
TABLE
"$veloxa" kye 2>&1 | grep -q "^veloxa: kye: there is no such command; .*did you mean 'key'?$" || fail "kye"
"$veloxa" key --depth flaot 2>&1 | grep -q "did you mean 'float'?$" || fail "flaot"
"$veloxa" --verison 2>&1 | grep -q "a command comes first: .*did you mean --version?$" || fail "--verison"

# What counts at last is told of, once a knob.
cat >far.vlx <<'SCRIPT'
Veloxa {
    brights 4000
    edge_kernel 30

    screen_shrink {2 30}
    shadows_high 1
}
SCRIPT
beyond="beyond the panel's range"
said 0 "veloxa: warning: far.vlx:5: screen_shrink 2 30: $beyond 0 to 21; taken as it is|veloxa: warning: \
--set brights=1000.5: $beyond 0 to 1000; taken as it is|" controls --script far.vlx --set brights=2000 \
    --set edge_kernel=3 --set brights=1000.5
said 0 "veloxa: warning: --set darks=501: $beyond 0 to 500; taken as it is|" \
    "${key[@]}" --quiet --set darks=501 --save-script saved.vlx
grep -q '^    darks 501$' saved.vlx || fail "darks is not 501"

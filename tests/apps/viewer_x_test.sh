#!/bin/bash
# Starts the viewer under a window manager, in an X server of its own: what the screen shows, what keys and the
# pointer do, and what a killed session leaves.
# usage: viewer_x_test.sh VELOXA VIEWER
viewer=$(realpath "$2")
desktop=$(realpath "$(dirname "$0")/../../apps/viewer/resources/org.veloxa.Viewer.desktop")
# shellcheck source=tests/apps/lib.sh
. "$(dirname "$0")/lib.sh"
started=()
trap 'kill -KILL "${started[@]}" 2>/dev/null; wait 2>/dev/null; rm -rf "$folder"; [ $failures -eq 0 ] || exit 1' EXIT
screen_width=1600 screen_height=1000

give_up() {
    fail "$* $(tail -n 3 viewer.txt server.txt 2>/dev/null)"
    exit 1
}

# await COMMAND...: until it succeeds, for as long as a busy machine may take.
await() {
    local end=$((SECONDS + 40))
    until "$@" >/dev/null 2>&1; do
        [ $SECONDS -lt $end ] || return 1
        sleep 0.2
    done
}

# start NAME COMMAND...: in the background; its process is the last of $started.
start() {
    "${@:2}" >"$1" 2>&1 &
    started+=($!)
}

title() { xdotool getwindowname "$window"; }
titled() { grep -qE "$1" <<<"$(title)"; } # a pattern
shown() { xdotool search --onlyvisible --name "$1"; }
hidden() { ! shown "$1"; }

# click X Y: of the screen.
click() { xdotool mousemove --sync "$1" "$2" click 1; }

take_screen() {
    ffmpeg -v error -y -f x11grab -draw_mouse 0 -video_size ${screen_width}x$screen_height -i "$DISPLAY" -frames:v 1 \
        -f rawvideo -pix_fmt rgb24 screen.rgb </dev/null
}

# place_of FILE W H: "X Y" of where the screen has these pixels, each channel up to a level off.
place_of() {
    perl -e '
        my ($file, $w, $h, $across, $down) = @ARGV;
        sub bytes { local $/; open(my $in, "<:raw", $_[0]) or die; return scalar <$in> }
        my ($screen, $want) = (bytes("screen.rgb"), bytes($file));
        my $first = substr($want, 0, 1);
        my $near = join "", map { sprintf "\\x%02x", $_ } grep { $_ >= 0 && $_ < 256 } map { ord($first) + $_ } -1 .. 1;
        START: while ($screen =~ /[$near]/g) {
            my $at = pos($screen) - 1;
            next if $at % 3 != 0;
            my ($x, $y) = (($at / 3) % $across, int($at / 3 / $across));
            next if $x + $w > $across || $y + $h > $down;
            for my $row (0 .. $h - 1) {
                for my $n (0 .. 3 * $w - 1) {
                    my $is = ord(substr($screen, $at + 3 * $across * $row + $n, 1));
                    next START if abs($is - ord(substr($want, 3 * $w * $row + $n, 1))) > 1;
                }
            }
            print "$x $y\n";
            exit 0;
        }
        exit 1;
    ' "$@" $screen_width $screen_height
}

see() { take_screen && place_of "$@" >place.txt; }

# colours X Y W H: how many different ones the screen has there, and how many pixels are clearly green.
colours() {
    perl -e '
        my ($x, $y, $w, $h, $across) = @ARGV;
        local $/;
        open(my $in, "<:raw", "screen.rgb") or die;
        my ($screen, %seen, $green) = (scalar <$in>);
        for my $row ($y .. $y + $h - 1) {
            for my $column ($x .. $x + $w - 1) {
                my @rgb = unpack("C3", substr($screen, 3 * ($row * $across + $column), 3));
                $seen{"@rgb"} = 1;
                $green++ if $rgb[1] > $rgb[0] + 50 && $rgb[1] > $rgb[2] + 50;
            }
        }
        print scalar(keys %seen), " ", $green + 0, "\n";
    ' "$@" $screen_width
}

unset OCIO WAYLAND_DISPLAY QT_QPA_PLATFORM QT_SCALE_FACTOR
export HOME=$folder/home LC_ALL=C.UTF-8
export XDG_CONFIG_HOME=$HOME/config XDG_STATE_HOME=$HOME/state XDG_CACHE_HOME=$HOME/cache XDG_RUNTIME_DIR=$HOME/run
mkdir -m 700 "$HOME" "$XDG_RUNTIME_DIR"

# The result as the screen has to show it, the middle of it.
"$veloxa" plate -o shot --size 320x200 || give_up "no plate"
"$veloxa" key --quiet --fg shot/fg.exr --bg shot/bg.exr --screen green --depth float -o key.exr || give_up "no key"
oiiotool key.exr --ch R,G,B --colorconvert linear sRGB --cut 160x100+80+50 -d uint8 -o middle.png
ffmpeg -v error -i middle.png -f rawvideo -pix_fmt rgb24 middle.rgb </dev/null || give_up "no expected pixels"

start server.txt Xvfb -displayfd 3 -screen 0 ${screen_width}x${screen_height}x24 -nolisten tcp 3>display.txt
await grep -q . display.txt || give_up "no X server"
DISPLAY=:$(cat display.txt)
export DISPLAY
start manager.txt openbox --sm-disable
start viewer.txt "$viewer" shot/fg.exr --bg shot/bg.exr --screen green
await shown 'shot/fg\.exr' || give_up "no window"
window=$(shown 'shot/fg\.exr')
class=$(sed -n 's/^StartupWMClass=//p' "$desktop")
xdotool search --onlyvisible --class "^$class\$" | grep -qx "$window" || fail "the window's class is not $class"
eval "$(xdotool getwindowgeometry --shell "$window")" # WIDTH, HEIGHT
# Where it is, frame and all, only the pointer tells for sure: X, Y.
eval "$(xdotool mousemove --sync --window "$window" 1 1 getmouselocation --shell | grep '^[XY]=')"

# A pixel on a pixel: the result, the panel right of it, nothing between, and the icon in the title.
await titled 'fg\.exr[^*]' || fail "changed at the start: $(title)"
xdotool key 1
await see middle.rgb 160 100 || give_up "the screen does not show the result"
read -r left bottom <place.txt
read -r count _ < <(colours $((left + 280)) "$bottom" 20 100)
[ "$count" -eq 1 ] || fail "$count colours beside the picture"
read -r count _ < <(colours $((X + WIDTH - 300)) "$bottom" 280 100)
[ "$count" -gt 20 ] || fail "$count colours in the panel's place"
[ $((left + 300)) -lt $((X + WIDTH - 300)) ] || fail "the picture is at $left, under the panel"
read -r _ green < <(colours "$X" $((Y - 20)) 24 18)
[ "$green" -gt 20 ] || fail "no icon in the title bar"

xdotool key F1
await shown '^Keys' || fail "F1 shows no keys"
xdotool key Escape
await hidden '^Keys' || fail "Escape leaves the keys"

# The screen tool is the first of the bar. Backing is in the plate's corner.
scrub() {
    click $((X + 40)) $((Y + 55))
    click $((left - 70)) $((bottom - 40))
    await titled 'fg\.exr\*'
}
scrub || fail "the screen tool changes nothing: $(title)"
xdotool key Escape ctrl+z
await titled 'fg\.exr[^*]' || fail "Ctrl+Z does not take it back: $(title)"
await see middle.rgb 160 100 || fail "the result is not what it was"

scrub || fail "nothing to lose"
await grep -rq screen_color "$XDG_STATE_HOME/veloxa/rescue" || fail "nothing is kept for a crash"
kill -KILL "${started[-1]}"
wait "${started[-1]}" 2>/dev/null
start viewer.txt "$viewer"
await shown '^Restore' || give_up "the second start offers nothing"
xdotool windowfocus --sync "$(shown '^Restore')" key alt+r
await hidden '^Restore' || fail "nothing is chosen"
await shown 'shot/fg\.exr' || give_up "nothing is restored"
window=$(shown 'shot/fg\.exr')
titled 'fg\.exr\*' || fail "what is restored passes for saved: $(title)"

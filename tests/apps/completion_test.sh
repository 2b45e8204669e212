#!/bin/bash
# Completes command lines in each shell as its user would by Tab, and formats the manual pages.
# usage: completion_test.sh VELOXA BUILD_FOLDER
pages=$(realpath "$2")
# shellcheck source=tests/apps/lib.sh
. "$(dirname "$0")/lib.sh"
touch plate.exr
mkdir folder

# complete_in_SHELL LINE: what the shell proposes at the line's end, one a line.
complete_in_bash() {
    bash --norc -c '
        . /usr/share/bash-completion/bash_completion
        . "$1/completions/${2%% *}"
        compopt() { :; } # there is no line that is edited
        COMP_LINE=$2 COMP_POINT=${#2} COMP_TYPE=9 COMP_KEY=9
        read -ra COMP_WORDS < <(sed "s/=/ = /g" <<<"$2")
        [[ $2 != *[\ =] ]] || [[ $2 == *= ]] || COMP_WORDS+=("")
        COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
        completer=$(complete -p "${2%% *}" | sed -E "s/.* -F (\S+) .*/\1/")
        "$completer"
        [ ${#COMPREPLY[@]} -eq 0 ] || printf "%s\n" "${COMPREPLY[@]}"
    ' bash "$pages" "$1"
}

complete_in_fish() {
    fish --no-config -c 'source $argv[1]/completions/$argv[3].fish; complete -C $argv[2]' "$pages" "$1" "${1%% *}" | cut -f 1
}

# In a terminal of its own, where Tab lists what there is.
complete_in_zsh() {
    zsh -f -c '
        zmodload zsh/zpty
        zpty shell "TERM=dumb COLUMNS=400 LINES=400 zsh -f -i"
        zpty -w shell "PS1=; fpath=($1/completions \$fpath); autoload -U compinit; compinit -u -D"
        zpty -w shell "setopt list_packed; zstyle \":completion:*\" list-prompt \"\"; LISTMAX=0; echo rea\"\"dy"
        zpty -r shell text "*ready*"
        zpty -w -n shell "$2"$'"'\t\t'"'
        sleep 1
        zpty -w shell $'"'\C-u'"'"echo do\"\"ne"
        zpty -r shell text "*done*"
        print -r -- "$text"
    ' zsh "$pages" "$1" | tr -d '\r\a' | tr -s ' ' '\n'
}

# What each shell has to propose for a line, and what not. bash replaces what follows the last =.
while IFS='|' read -r line wanted unwanted; do
    for shell in bash fish zsh; do
        "complete_in_$shell" "$line" >found.txt 2>err.txt
        whole=$wanted
        [ $shell = fish ] || whole=${wanted##*=}
        [ "${wanted%=}" = "$wanted" ] || { whole=$wanted && [ $shell = zsh ] && whole=${wanted%=}; }
        grep -qFe "$whole" found.txt || fail "$shell: no $whole for '$line': $(head -c 300 found.txt err.txt)"
        [ -z "$unwanted" ] || ! grep -qFxe "$unwanted" found.txt || fail "$shell: $unwanted for '$line'"
    done
done <<'TABLE'
veloxa |cleanplate|plate.exr
veloxa help |analyse|plate.exr
veloxa key --s|--stroke|--thin
veloxa analyse --th|--thin|--stage
veloxa key --fit |crop|plate.exr
veloxa key --set |unmix_method=|plate.exr
veloxa key --set unmix_me|unmix_method=|brights=
veloxa key --set output_mode=|output_mode=unpremultiplied|plate.exr
veloxa tune --set cleanup=|cleanup=true|plate.exr
veloxa key --stroke |addoverlay=|plate.exr
veloxa key --stage |computeMatte|plate.exr
veloxa key --bg |plate.exr|computeMatte
veloxa farm |slurm|cleanplate
veloxa farm ch|check|slurm
veloxa farm check --arr|--array|--threads
veloxa farm check --fit |crop|plate.exr
veloxa farm slurm --na|--name|--array
veloxa plate -o |folder|plate.exr
veloxa compare |plate.exr|computeMatte
veloxa view --s|--stroke|--thin
veloxa-viewer --s|--stroke|--thin
veloxa-viewer |plate.exr|cleanplate
veloxa-viewer other --fit |crop|plate.exr
veloxa-viewer --set output_mode=|output_mode=unpremultiplied|plate.exr
TABLE
complete_in_bash "veloxa key --set unmix_method=c" | grep -qFx 'colour\ difference' || fail "bash: a blank that is not quoted"
for program in veloxa veloxa-viewer; do
    zsh -n "$pages/completions/_$program" || fail "zsh cannot read $program's completions"
done

# Every command and the viewer have a page, and groff has nothing to say against any.
commands() { "$veloxa" help "$@" | sed -nE '/^Subcommands:/,$s/^  ([a-z]+) .*/\1/p'; }
for command in "" $(commands) $(commands farm | sed s/^/farm-/) viewer; do
    page=$pages/man/veloxa${command:+-$command}.1
    [ -s "$page" ] || fail "no page $page"
    warnings=$(man --warnings -E UTF-8 -l "$page" 2>&1 >text.txt)
    [ -z "$warnings" ] || fail "$page: $warnings"
    for section in NAME SYNOPSIS DESCRIPTION OPTIONS 'EXIT STATUS' 'SEE ALSO'; do
        grep -qx "$section" text.txt || fail "$page: no $section"
    done
done
[ "$(find "$pages/man" -name 'veloxa*.1' | wc -l)" -gt 9 ] || fail "few pages: $(ls "$pages/man")"

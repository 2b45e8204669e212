# Shared by the scripts that run the program as a user does; they source it with $1 the program. It goes to a
# folder of its own, which is gone afterwards.
set -u
veloxa=$(realpath "$1")
folder=$(mktemp -d)
failures=0
trap 'rm -rf "$folder"; [ $failures -eq 0 ] || exit 1' EXIT
cd "$folder" || exit 1

fail() {
    echo "FAILED: $*"
    failures=$((failures + 1))
}

# expect STATUS TEXT ARGUMENT...: the program ends with the status, and its messages hold the text. What it
# printed is left in the file that $out names and in err.txt; it reads $in, and may take $limit seconds (0: any).
in=/dev/null out=out.txt limit=0
expect() {
    local status=$1 text=$2
    shift 2
    timeout $limit "$veloxa" "$@" <$in >$out 2>err.txt
    local got=$?
    [ $got -eq "$status" ] || fail "status $got, not $status: veloxa $* ($(head -c 300 err.txt))"
    [ -z "$text" ] || grep -qaF -- "$text" $out err.txt || fail "no '$text': veloxa $* ($(head -c 300 err.txt))"
    [ "$status" -eq 0 ] || [ "${1-}" = compare ] || [ "$status:${2-}" = 1:check ] || grep -q '^veloxa: ' err.txt || fail "no 'veloxa: ': veloxa $*"
}

# expect_rows ARGUMENT...: expect, for each row STATUS|TEXT|MORE ARGUMENTS of the input.
expect_rows() {
    local status text arguments
    while IFS='|' read -r status text arguments; do
        # shellcheck disable=SC2086
        expect "$status" "$text" "$@" $arguments
    done
}

# expect_files FOLDER NAMES: it holds these, each followed by a blank, and nothing else.
expect_files() {
    local found
    found=$(ls -A "$1" | tr '\n' ' ')
    [ "$found" = "$2" ] || fail "$1 holds $found, not $2"
}

# expect_lines TEXT...: the latest output has these lines, blanks before them aside.
expect_lines() {
    for text in "$@"; do
        sed 's/^ *//' out.txt | grep -qxFe "$text" || fail "no line '$text' in $(cat out.txt)"
    done
}

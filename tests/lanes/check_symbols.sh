#!/usr/bin/env bash
# The object files of a form must not define a weak symbol that says nothing of the form: another form, or
# the rest of the program, may have it under the same name, and the linker keeps whichever comes first, be it
# code that this processor cannot run. Arguments: NAME=FOLDER for each form, NAME being the form's namespace
# and FOLDER where its object files are.
set -euo pipefail

broken=0
for form in "$@"; do
    name=${form%%=*}
    mapfile -d '' objects < <(find "${form#*=}" -name '*.o' -print0)
    if [ "${#objects[@]}" -eq 0 ]; then
        echo "No object files of $name."
        broken=1
        continue
    fi
    # V, W and u are weak and unique definitions; a mangled namespace has its length before it.
    shared=$(nm -A --defined-only "${objects[@]}" |
        awk -v own="${#name}$name" '$2 ~ /^[VWu]$/ && index($3, own) == 0 && $3 !~ /^DW\.ref\./ { print $1, $3 }')
    if [ -n "$shared" ]; then
        printf '%s shares:\n%s\n' "$name" "$(c++filt <<<"$shared")"
        broken=1
    fi
done
exit "$broken"

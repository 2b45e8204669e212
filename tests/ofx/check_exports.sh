#!/usr/bin/env bash
# The module exports OpenFX's entry points and nothing else, and in builds without sanitizers needs nothing that a
# C program would not: check_exports.sh MODULE
set -euo pipefail

module=$1
wanted=$'OfxGetNumberOfPlugins\nOfxGetPlugin\nOfxSetHost'
exported=$(nm -D --defined-only "$module" | awk '{print $3}' | sed 's/@.*//' | sort)
if [ "$exported" != "$wanted" ]; then
    echo "exports of $module:"
    echo "$exported"
    exit 1
fi
if readelf -d "$module" | grep -q 'NEEDED.*lib.san'; then exit 0; fi
if readelf -d "$module" | grep NEEDED | grep -vE 'lib(c|m|pthread|dl)\.so|ld-linux'; then
    echo "$module needs more than the C library"
    exit 1
fi

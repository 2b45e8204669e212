#!/usr/bin/env bash
# Formats every C++ file that git knows; with --check changes nothing and fails if one would change.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(-i)
[ "${1-}" != --check ] || mode=(--dry-run --Werror)
git ls-files -z -- '*.cpp' '*.h' | xargs -0 -r -n 16 -P "$(nproc)" clang-format "${mode[@]}"

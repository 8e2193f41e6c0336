#!/usr/bin/env bash
# check-format.sh: every C++ file is laid out as .clang-format says.
# To mend what it finds: scripts/check-format.sh --fix
set -euo pipefail
cd "$(dirname "$(dirname "$(readlink -f "$0")")")"

mode=(--dry-run --Werror)
[[ ${1:-} == --fix ]] && mode=(-i)
scripts/source-files.sh '*.cpp' '*.h' | xargs -r -d '\n' clang-format-14 "${mode[@]}"

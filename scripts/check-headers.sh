#!/usr/bin/env bash
# check-headers.sh COMPILER: every header below the window compiles by itself, and twice in a row.
set -euo pipefail
cd "$(dirname "$(dirname "$(readlink -f "$0")")")"
export COMPILER=$1

compile_alone() {
  printf '#include "%s"\n#include "%s"\n' "$1" "$1" |
    "$COMPILER" -std=c++20 -Wall -Wextra -Wpedantic -Werror -I. -fsyntax-only -x c++ - ||
    { echo "does not stand alone: $1"; return 1; }
}
export -f compile_alone
# shellcheck disable=SC2016 # the inner shell is the one to expand it
scripts/source-files.sh {platform,engine,dirmerge,batch}/'*.h' |
  xargs -d '\n' -n 1 -P 2 bash -c 'compile_alone "$1"' compile_alone

#!/usr/bin/env bash
# check-headers.sh COMPILER: every header of the program and of its tests compiles by itself, and twice in a row. Left out
# are those that a source file includes first, where the preset asan, which compiles file by file, shows the same.
set -euo pipefail
cd "$(dirname "$(dirname "$(readlink -f "$0")")")"
export COMPILER=$1

# The toolkit is named to those alone that may use it.
TOOLKIT=$(pkg-config --cflags Qt6Widgets Qt6Test | sed 's/-I/-isystem /g')
export TOOLKIT

compile_alone() {
  local flags=()
  case $1 in
    ui/* | tests/ui/*) read -ra flags <<<"-fPIC $TOOLKIT" ;;
    tests/batch/*) flags=(-DFOLIOWELD_PROGRAM='""') ;;
  esac
  printf '#include "%s"\n#include "%s"\n' "$1" "$1" |
    "$COMPILER" -std=c++20 -Wall -Wextra -Wpedantic -Werror -I. "${flags[@]}" -fsyntax-only -x c++ - ||
    { echo "does not stand alone: $1"; return 1; }
}
shown_elsewhere() {
  local source=${1%.h}.cpp
  [[ $1 != ui/* && $1 != tests/* && -e $source && $(grep -m1 '^#include' "$source") == "#include \"$1\"" ]]
}
export -f compile_alone shown_elsewhere
# shellcheck disable=SC2016 # the inner shell is the one to expand it
scripts/source-files.sh '*.h' | xargs -d '\n' -n 1 -P 2 bash -c 'shown_elsewhere "$1" || compile_alone "$1"' compile_alone

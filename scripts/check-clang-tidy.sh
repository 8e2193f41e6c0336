#!/usr/bin/env bash
# check-clang-tidy.sh WORK_FOLDER: the lint list of .clang-tidy finds nothing in the sources of the program, nor in those of
# its tests, where the speed of a line does not matter. The compile commands are those of the asan preset with the
# window, configured in WORK_FOLDER: the lint is clang's, and so are the flags.
set -euo pipefail
cd "$(dirname "$(dirname "$(readlink -f "$0")")")"
work=$1
cmake --preset asan -B "$work" -DFOLIOWELD_WINDOW=ON -DCMAKE_DISABLE_FIND_PACKAGE_Qt6=OFF \
  -DFOLIOWELD_UNITY=ON -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON >"$work.log" 2>&1 ||
  { cat "$work.log"; exit 1; }

look() {
  local checks='' said
  # What is compiled several files at a time includes sources, and on purpose.
  case $1 in */Unity/*) checks=-bugprone-suspicious-include ;; esac
  case $1 in */tests/* | */fuzz/*) checks+=',-performance-*' ;; esac
  said=$(clang-tidy-14 -p "$work" --quiet --checks="$checks" --header-filter="^$PWD/[^/]+/(.*/)?[^/]+\.(h|cpp)\$" "$1" 2>&1) ||
    { printf '%s\n' "$said"; return 1; }
}
export -f look
export work

sources=$(sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' "$work/compile_commands.json" | grep -vE '_autogen/|/qrc_' | sort -u)
# shellcheck disable=SC2016 # the inner shell is the one to expand it
xargs -d '\n' -n 1 -P 2 bash -c 'look "$1"' look <<<"$sources"

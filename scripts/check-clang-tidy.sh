#!/usr/bin/env bash
# check-clang-tidy.sh WORK_FOLDER: the lint list of .clang-tidy finds nothing in the program's sources.
# The compile commands are those of the asan preset, configured in WORK_FOLDER: the lint is clang's, and so
# are the flags.
set -euo pipefail
cd "$(dirname "$(dirname "$(readlink -f "$0")")")"
work=$1

cmake --preset asan -B "$work" -DFOLIOWELD_TESTS=OFF >"$work.log" 2>&1 || { cat "$work.log"; exit 1; }
scripts/source-files.sh {platform,engine,dirmerge,batch,app}/'*.cpp' |
  xargs -d '\n' -n 1 -P 2 clang-tidy-14 -p "$work" --quiet

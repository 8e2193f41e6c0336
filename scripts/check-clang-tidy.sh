#!/usr/bin/env bash
# check-clang-tidy.sh WORK_FOLDER: the lint list of .clang-tidy finds nothing in the sources of the program, nor in those of
# its tests, where the speed of a line does not matter. The compile commands are those of the asan preset with the
# window, configured in WORK_FOLDER: the lint is clang's, and so are the flags.
set -euo pipefail
cd "$(dirname "$(dirname "$(readlink -f "$0")")")"
work=$1

configure() {
  cmake --preset asan -B "$1" -DFOLIOWELD_UNITY="$2" -DFOLIOWELD_WINDOW=ON -DCMAKE_DISABLE_FIND_PACKAGE_Qt6=OFF \
    -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON >"$1.log" 2>&1 || { cat "$1.log"; exit 1; }
}
mkdir -p "$work"
configure "$work/together" ON
configure "$work/alone" OFF

# look CHECKS SOURCE, whose compile command is in the folder $commands
look() {
  local checks=$1 said
  case $2 in */tests/* | */fuzz/*) checks+=',-performance-*' ;; esac
  said=$(clang-tidy-14 -p "$commands" --quiet --checks="$checks" \
    --header-filter="^$PWD/[^/]+/(.*/)?[^/]+\.(h|cpp)\$" "$2" 2>&1) || { printf '%s\n' "$said"; return 1; }
}
export -f look

# look_at_all COMMANDS CHECKS PATTERN: at the sources that match, each once
look_at_all() {
  local sources
  export commands=$1
  sources=$(sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' "$commands/compile_commands.json" | grep -E "$3" |
    grep -vE '_autogen/|/qrc_' | sort -u)
  # shellcheck disable=SC2016 # the inner shell is the one to expand it
  xargs -d '\n' -n 1 -P 2 bash -c 'look "$@"' look "$2" <<<"$sources"
}
# Most checks read the system's headers longest: ten files at a time they read them once. Such files include sources on purpose.
look_at_all "$work/together" '-clang-analyzer-*,-bugprone-suspicious-include' .
# The analyzer follows the paths of the file that is compiled, and not of those that it includes.
look_at_all "$work/alone" '-*,clang-analyzer-core*,clang-analyzer-cplusplus*' "^$PWD/(platform|engine|dirmerge|batch|prepare|app|fuzz)/"

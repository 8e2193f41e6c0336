#!/usr/bin/env bash
# check-clang-tidy.sh WORK_FOLDER: the lint list of .clang-tidy finds nothing in the sources of the program, nor in those of
# its tests, where neither the speed of a line nor every path through it matters. The compile commands are those of the asan
# preset with the window, configured in WORK_FOLDER: the lint is clang's, and so are the flags.
set -euo pipefail
cd "$(dirname "$(dirname "$(readlink -f "$0")")")"
commands=$(realpath -m "$1")
export commands

# Most checks read the system's headers longest: ten sources in one file read them once.
mkdir -p "$commands"
cmake --preset asan -B "$commands" -DFOLIOWELD_UNITY=ON -DFOLIOWELD_WINDOW=ON -DCMAKE_DISABLE_FIND_PACKAGE_Qt6=OFF \
  -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON >"$commands/configure.log" 2>&1 || { cat "$commands/configure.log"; exit 1; }
# The analyzer follows the paths of the sources that a file includes only where that file has such a name.
find "$commands" -path '*/Unity/unity_*.cxx' -exec sh -c 'mv "$1" "${1%/*}/UnifiedSource-${1##*/}"' mv {} \;
sed -i 's|/Unity/unity_|/Unity/UnifiedSource-unity_|g' "$commands/compile_commands.json"

look() {
  local place=${1#"$commands/"} unwanted='-bugprone-suspicious-include' said # such files include sources on purpose
  case ${place#"$PWD/"} in
    tests/*) unwanted+=',-performance-*,-clang-analyzer-*' ;;
    fuzz/*) unwanted+=',-performance-*' ;;
    ui/* | bench/*) unwanted+=',-clang-analyzer-*' ;;
  esac
  said=$(clang-tidy-14 -p "$commands" --quiet --checks="$unwanted" \
    --header-filter="^$PWD/[^/]+/(.*/)?[^/]+\.(h|cpp)\$" "$1" 2>&1) || { printf '%s\n' "$said"; return 1; }
}
export -f look
# shellcheck disable=SC2016 # the inner shell is the one to expand it
sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' "$commands/compile_commands.json" | grep -vE '_autogen/|/qrc_' | sort -u |
  xargs -d '\n' -n 1 -P 2 bash -c 'look "$1"' look

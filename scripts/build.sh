#!/usr/bin/env bash
# build.sh PRESET [BUILD_FOLDER [CMAKE_ARGUMENT...]]: configures and builds a preset, in build/PRESET unless
# told otherwise. Says nothing when that succeeds; shows the log when it fails.
set -euo pipefail
root=$(dirname "$(dirname "$(readlink -f "$0")")")
preset=$1
build=${2:-$root/build/$preset}
shift $(($# < 2 ? $# : 2))

mkdir -p "$build"
log=$build/build.log

# Two commands started at the same time must not build in one folder at once.
exec 9>"$build/build.lock"
flock 9

configure_and_build() {
  cmake -S "$root" --preset "$preset" -B "$build" "$@" && cmake --build "$build"
}
if ! configure_and_build "$@" >"$log" 2>&1 </dev/null 9>&-; then
  cat "$log" >&2
  echo "The build of \"$preset\" failed; this was its log, $log" >&2
  exit 1
fi

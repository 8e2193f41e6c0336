#!/usr/bin/env bash
# screenshots.sh [FOLDER]: builds the window and takes its pictures (tests/desktop/screenshots.py), in docs/images
# unless told otherwise. The repository keeps those that its documents show; the others are for looking at.
set -euo pipefail
root=$(dirname "$(dirname "$(readlink -f "$0")")")
folder=$(realpath -m "${1:-$root/docs/images}")

"$root/scripts/install-packages.sh" run window test
"$root/scripts/build.sh" dev
mkdir -p "$folder"
exec env FOLIOWELD_PROGRAMS="$root/build/dev/app" FOLIOWELD_DRAG_SOURCE="$root/build/dev/tests/desktop/drag_source" \
  FOLIOWELD_SLOW_DISK="$root/build/dev/tests/desktop/libslow_disk.so" \
  /usr/bin/python3 -B "$root/tests/desktop/screenshots.py" "$folder"

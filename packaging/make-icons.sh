#!/usr/bin/env bash
# make-icons.sh [--check]: draws the PNG icons from the scalable one. With --check it writes nothing and fails when
# a PNG in the tree is not what would be drawn now.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/icons"
drawing=org.folioweld.Folioweld.svg

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for size in 16 22 24 32 48 64 128 256; do
  rsvg-convert --width="$size" --height="$size" --output="$work/$size.png" "$drawing"
  if [[ ${1:-} == --check ]]; then
    cmp "$work/$size.png" "$size.png"
  else
    cp "$work/$size.png" "$size.png"
  fi
done

#!/usr/bin/env bash
# check-no-toolkit.sh PROGRAM: the program loads no window toolkit, neither by itself nor through a library.
set -euo pipefail
program=$1

libraries=$(readelf -d "$program" | grep NEEDED; ldd "$program")
if ! grep -qF 'libc.so' <<<"$libraries"; then
  echo "the libraries of $program could not be listed"
  exit 1
fi
if grep -iE 'lib(qt|gtk|gdk|x11|xcb|wayland|GL\b|EGL)' <<<"$libraries"; then
  echo "$program loads a toolkit"
  exit 1
fi

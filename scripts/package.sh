#!/usr/bin/env bash
# package.sh [FOLDER [BUILD_FOLDER]]: builds the Debian packages folioweld, folioweld-window and folioweld-extras into
# FOLDER, build/packages unless told otherwise, and those with their debug symbols into FOLDER/debug. The same sources and
# tools give the same bytes.
set -euo pipefail
root=$(dirname "$(dirname "$(readlink -f "$0")")")
folder=$(realpath -m "${1:-$root/build/packages}")
build=$(realpath -m "${2:-$root/build/package}")

# Nothing of the caller's gets into the packages: neither the time nor the language, nor who may read new files.
export LC_ALL=C.UTF-8 TZ=UTC
umask 022
read -r _version date < <("$root/packaging/debian/changelog.py" --newest "$root/CHANGELOG.md")
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(date -d "$date" +%s)}
export SOURCE_DATE_EPOCH

"$root/scripts/install-packages.sh" run window prepare package
"$root/scripts/build.sh" package "$build"
mkdir -p "$folder/debug"
# Packages of an earlier version would be taken for this one's.
rm -f "$folder"/folioweld*.deb "$folder"/debug/folioweld*.deb "$build"/cpack/folioweld*.*deb
log=$build/cpack.log
# CPack works in a folder below the one it starts in.
if ! (cd "$build" && cpack --config CPackConfig.cmake -B "$build/cpack") >"$log" 2>&1 </dev/null; then
  cat "$log" >&2
  exit 1
fi
# Compresses a package of CPack's. CPack names debug symbols by their places in the build folder, and leaves out what every
# package has to hold.
finish() {
  local made=$1 name tree
  name=$(basename "${made%.*}")
  tree=$build/cpack/$name
  rm -rf "$tree"
  dpkg-deb --raw-extract "$made" "$tree"
  if [[ $made == *.ddeb ]]; then
    mkdir -p "$tree/usr/share/doc"
    ln -s "${name%%-dbgsym_*}" "$tree/usr/share/doc/${name%%_*}"
    (cd "$tree" && find usr -type f -exec md5sum {} + | sort -k 2 >DEBIAN/md5sums)
    sed -i '/^Package-Type:/d' "$tree/DEBIAN/control"
    name=debug/$name
  fi
  dpkg-deb --root-owner-group --threads-max=1 -Zxz --build "$tree" "$folder/$name.deb"
}

finishing=()
for made in "$build"/cpack/folioweld*.*deb; do
  finish "$made" >>"$log" &
  finishing+=($!)
done
for job in "${finishing[@]}"; do wait "$job"; done
ls "$folder"/folioweld*.deb

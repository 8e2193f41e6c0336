#!/usr/bin/env bash
# test-on-debian.sh RELEASE [MIRROR]: builds, tests and packages the sources on a fresh Debian of another release ("trixie"
# is Debian 13), in a folder that goes away again, and joins documents with the packages there. Needs root, mmdebstrap, 4 GB
# and some twenty minutes. Exit status 77, and a word why: the release cannot be had here.
set -euo pipefail
root=$(dirname "$(dirname "$(readlink -f "$0")")")
release=$1
mirror=${2:-http://deb.debian.org/debian}

mapfile -t packages < <(awk '$1 ~ /^(run|window|prepare|package)$/ { print $2 }' "$root/packages.txt" | sort -u)
packages+=(libgtest-dev libgmock-dev qpdf mupdf-tools poppler-utils file)
include=$(IFS=,; echo "${packages[*]}")

work=$(mktemp -d)
trap 'rm -rf --one-file-system "$work"' EXIT
say() { echo "test-on-debian: $*" >&2; }
if ! mmdebstrap --mode=root --variant=minbase --simulate --include="$include" "$release" /dev/null "$mirror" \
  >"$work/log" 2>&1; then
  tail -5 "$work/log" >&2
  say "skipped: $release cannot be had from $mirror"
  exit 77
fi

say "making a fresh $release"
mmdebstrap --mode=root --variant=minbase --skip=cleanup/apt/lists --include="$include" "$release" "$work/root" "$mirror" \
  >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
mkdir "$work/root/src"
(cd "$root" && scripts/source-files.sh '*' | tar c -T -) | tar x -C "$work/root/src"

# With terminals of its own, which some tests open. What is mounted ends with the command.
# shellcheck disable=SC2016 # the inner shell is the one to expand it
inside() {
  unshare --mount sh -c 'mount -t proc proc "$0/proc" && mount -t devpts -o newinstance,ptmxmode=666 devpts "$0/dev/pts" &&
    mount --bind "$0/dev/pts/ptmx" "$0/dev/ptmx" && exec chroot "$0" "$@"' "$work/root" \
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 "$@"
}
say "building and testing the preset no-window"
inside /src/scripts/build.sh no-window /build -D FOLIOWELD_UNITY=ON
inside ctest --test-dir /build --output-on-failure -j"$(nproc)" -LE 'long|faults|shell|corpus'
say "packaging"
inside /src/scripts/package.sh /packages /package-build
say "installing the packages and joining documents"
inside sh -c 'apt-get --yes --no-install-recommends install /packages/*.deb >/dev/null'
inside folioweld /root/joined.pdf /usr/share/doc/folioweld/examples
inside qpdf --check /root/joined.pdf
inside folioweld --version
say "all went well on $release"

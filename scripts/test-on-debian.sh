#!/usr/bin/env bash
# test-on-debian.sh RELEASE [MIRROR]: builds, tests and packages the sources on a fresh Debian of another release ("trixie"
# is Debian 13), in a folder that goes away again, judges the packages with that release's lintian, and installs them on a
# second fresh system, which joins documents. Needs root, mmdebstrap, 4 GB and some twenty minutes. Exit status 77, and a
# word why: the release cannot be had here.
set -euo pipefail
root=$(dirname "$(dirname "$(readlink -f "$0")")")
release=$1
mirror=${2:-http://deb.debian.org/debian}

mapfile -t packages < <(awk '$1 ~ /^(run|window|prepare|package)$/ { print $2 }' "$root/packages.txt" | sort -u)
packages+=(libgtest-dev libgmock-dev qpdf mupdf-tools poppler-utils pdftk-java file lintian)
tools=$(IFS=,; echo "${packages[*]}")

work=$(mktemp -d)
trap 'rm -rf --one-file-system "$work"' EXIT
say() { echo "test-on-debian: $*" >&2; }
bootstrap() { mmdebstrap --mode=root --variant=minbase "$@" "$mirror" >"$work/log" 2>&1; }

if ! bootstrap --simulate --include="$tools" "$release" /dev/null; then
  tail -5 "$work/log" >&2
  say "skipped: $release cannot be had from $mirror"
  exit 77
fi

# make_root NAME [ARGUMENT...]: a fresh system of the release
make_root() {
  say "making a fresh $release, $1"
  bootstrap --skip=cleanup/apt/lists "${@:2}" "$release" "$work/$1" || { cat "$work/log" >&2; exit 1; }
  cp /etc/resolv.conf "$work/$1/etc/resolv.conf"
}

# inside NAME COMMAND...: with terminals of its own, which some tests open. What is mounted ends with the command.
inside() {
  # shellcheck disable=SC2016 # the inner shell is the one to expand it
  unshare --mount sh -c 'mount -t proc proc "$0/proc" && mount -t devpts -o newinstance,ptmxmode=666 devpts "$0/dev/pts" &&
    mount --bind "$0/dev/pts/ptmx" "$0/dev/ptmx" && exec chroot "$0" "$@"' "$work/$1" \
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 TERM=xterm DEBIAN_FRONTEND=noninteractive "${@:2}"
}

make_root build --include="$tools"
mkdir "$work/build/src"
(cd "$root" && scripts/source-files.sh '*' | tar c -T -) | tar x -C "$work/build/src"
say "building and testing the preset no-window"
inside build /src/scripts/build.sh no-window /build
inside build ctest --test-dir /build --output-on-failure -j"$(nproc)" -LE 'long|faults|shell|corpus'

say "packaging"
inside build /src/scripts/package.sh /packages /package-build
inside build sh -c 'lintian --allow-root --no-cfg --fail-on error,warning /packages/*.deb /packages/debug/*.deb'

make_root clean
cp -r "$work/build/packages" "$work/clean"
say "installing the packages and joining documents"
inside clean sh -c 'apt-get --yes --no-install-recommends install /packages/*.deb >/dev/null'
inside clean folioweld --version
examples=/usr/share/doc/folioweld/examples
inside clean folioweld /root/joined.pdf $examples
inside clean env QT_QPA_PLATFORM=offscreen /usr/libexec/folioweld/folioweld-window "/root/by-window.pdf|$examples"
cmp "$work/clean/root/joined.pdf" "$work/clean/root/by-window.pdf"
cp "$work/clean/root/joined.pdf" "$work/build/root"
inside build qpdf --check /root/joined.pdf
inside build qpdf --object-streams=generate /root/joined.pdf /root/compressed.pdf
cp "$work/build/root/compressed.pdf" "$work/clean/root"
inside clean folioweld --prepare /root/prepared.pdf /root/compressed.pdf
inside clean sh -c 'apt-get --yes purge "folioweld*" >/dev/null && ! command -v folioweld'
say "all went well on $release"

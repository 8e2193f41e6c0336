#!/usr/bin/env bash
# install-packages.sh SECTION...: installs what is missing of these sections of packages.txt, and removes nothing.
# Where nothing is missing it says nothing and needs neither the network nor root.
set -euo pipefail
root=$(dirname "$(dirname "$(readlink -f "$0")")")

# Other systems bring their own package manager; there the build says what it does not find.
command -v dpkg-query >/dev/null || exit 0

wanted=()
for section in "$@"; do
  mapfile -t packages < <(awk -v section="$section" '$1 == section { print $2 }' "$root/packages.txt")
  if ((${#packages[@]} == 0)); then
    echo "install-packages.sh: packages.txt has no section \"$section\"" >&2
    exit 2
  fi
  wanted+=("${packages[@]}")
done

installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null || true)
missing=()
for package in "${wanted[@]}"; do
  grep -qxF "installed $package" <<<"$installed" || missing+=("$package")
done
((${#missing[@]})) || exit 0

as_root=()
if ((EUID != 0)); then
  if ! command -v sudo >/dev/null; then
    echo "These packages are missing; install them as root: apt-get install ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi

apt() {
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get -qq -o Acquire::Retries=3 -o DPkg::Lock::Timeout=300 "$@" </dev/null
}

echo "install-packages.sh: about to run ${as_root[*]} apt-get update and apt-get install, which removes no package and" \
  "may take some minutes of downloading, for ${missing[*]}" >&2
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# An unreachable source of other packages is no reason to stop: what counts is whether these arrive.
if ! { apt update || true; apt install --yes --no-remove --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
  cat "$log" >&2
  echo "The packages could not be installed: ${missing[*]}" >&2
  exit 1
fi

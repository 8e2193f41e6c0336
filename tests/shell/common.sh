# Read by every script here: documents and checks in a folder of its own, where folioweld is a command.
# shellcheck shell=bash
set -euo pipefail
PATH=$FOLIOWELD_FOLDER:$PATH
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
trap 'echo "FAILED: line $LINENO: $BASH_COMMAND" >&2' ERR
export HOME=$folder/home XDG_CONFIG_HOME=$folder/home/config TMPDIR=$folder/tmp LC_ALL=C.UTF-8
unset DISPLAY WAYLAND_DISPLAY
umask 022
mkdir "$HOME" "$TMPDIR" "$folder/work"
cd "$folder/work"

# What there is to see when a check fails; a script with more to show has its own.
tell() { :; }

fail() {
  echo "FAILED: $*" >&2
  tell >&2 || true
  exit 1
}

# equal WHAT FOUND WANTED
equal() {
  [[ $2 == "$3" ]] || fail "$1 is \"$2\" and not \"$3\""
}

# status WANTED COMMAND...: the command ends with this status; what it writes is in the file "said" after that.
status() {
  local wanted=$1 found=0
  shift
  "$@" >"$folder/said" 2>&1 || found=$?
  [[ $found == "$wanted" ]] || fail "$* ended with $found and not with $wanted: $(<"$folder/said")"
}

said() { cat "$folder/said"; }

# document NAME PAGE...: each page shows its one word.
document() {
  local LC_ALL=C file=$1 word page=4 kids='' objects=() offsets=() bytes=$'%PDF-1.4\n%\xe2\xe3\xcf\xd3\n' i
  shift
  for word; do
    local content="BT /F 12 Tf 9 9 Td ($word) Tj ET"
    kids+="$page 0 R "
    objects[page]="<< /Type /Page"$'\n'"/Parent 2 0 R"$'\n'"/MediaBox [0 0 99 99]"$'\n'"/Contents $((page + 1)) 0 R"$'\n'"/Resources << /Font << /F 3 0 R >> >>"$'\n'">>"
    objects[page + 1]="<< /Length ${#content}"$'\n'">>"$'\n'"stream"$'\n'"$content"$'\n'"endstream"
    page=$((page + 2))
  done
  objects[1]=$'<< /Type /Catalog\n/Pages 2 0 R\n>>'
  objects[2]="<< /Type /Pages"$'\n'"/Kids [$kids]"$'\n'"/Count $#"$'\n'">>"
  objects[3]=$'<< /Type /Font\n/Subtype /Type1\n/BaseFont /Helvetica\n>>'
  for i in "${!objects[@]}"; do
    offsets+=(${#bytes})
    bytes+="$i 0 obj"$'\n'"${objects[i]}"$'\n'"endobj"$'\n'
  done
  {
    printf '%s' "$bytes"
    printf 'xref\n0 %d\n0000000000 65535 f \n' "$page"
    printf '%010d 00000 n \n' "${offsets[@]}"
    printf 'trailer\n<< /Size %d\n/Root 1 0 R\n>>\nstartxref\n%d\n%%%%EOF\n' "$page" ${#bytes}
  } >"$file"
}

# words FILE: those of its pages, with blanks between them.
words() {
  pdftotext "$1" - | tr -s '\n\f' '  ' | sed 's/ $//'
}

# wait_for COMMAND...: until it succeeds.
wait_for() {
  local end=$((SECONDS + 120))
  until "$@"; do
    ((SECONDS < end)) || fail "waited in vain for: $*"
    sleep 0.05
  done
}

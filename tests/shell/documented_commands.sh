#!/usr/bin/env bash
# Every command of the documents as it is printed there, and twice, since people run it twice.
project=$(readlink -f "$(dirname "$0")/../..")
. "$(dirname "$0")/common.sh"

# What the commands speak of, in a new folder.
stage() {
  rm -rf "$folder/stage"
  mkdir -p "$folder/stage/here" && cd "$folder/stage/here"
  mkdir -p letters chapters archive/2023 archive/2024/05 scans "$HOME/report"
  document letters/2.pdf two
  document letters/3-draft.pdf three
  document letters/10.pdf ten
  touch -d 2001-01-01 letters/3-draft.pdf
  touch -d 2002-02-02 letters/10.pdf
  document cover.pdf cover
  document index.pdf index
  document chapters/1.pdf 1.1 1.2 1.3
  document chapters/2.pdf 2.1 2.2
  cp chapters/* "$HOME/report"
  document archive/2023/9.pdf nine
  touch -d 2001-01-01 archive/2023/9.pdf
  document archive/2024/05/10.pdf may
  document $'archive/2024/a "name"\nof two lines.pdf' odd
  document scans/1.pdf scan
}

# try COMMANDS: nothing of them may complain.
tried=0
try() {
  for _ in first second; do
    bash -c "$1" >output 2>"$folder/said" || fail "status $?: $(said): $1"
    equal "what is said of $1" "$(said)" ''
  done
  tried=$((tried + 1))
}

# blocks FILE HEADING: what is indented below the heading, each block ended by a NUL.
blocks() {
  awk -v heading="$2" '
    function flush() { if (block != "") printf "%s%c", block, 0; block = "" }
    /^## / { inside = substr($0, 4) == heading }
    inside && /^    / { block = block substr($0, 5) "\n"; next }
    { flush() }
    END { flush() }' "$1"
}

while IFS= read -r -d '' block; do
  stage
  try "$block"
done < <(blocks "$project/README.md" 'Command line')
equal 'the blocks of the README' $tried 1

while IFS= read -r -d '' block; do
  [[ $block == *OUTPUT* ]] && continue
  stage
  cd letters
  cp -r ../{cover.pdf,index.pdf,chapters,scans} .
  mkdir letters
  document letters/1.pdf one
  try "$block"
done < <(blocks "$project/docs/user-guide.md" 'Use the command line')
equal 'those of the guide as well' $tried 3

# The examples of the manual page begin with "$ "; a command that goes on in the next line ends with "|".
while IFS= read -r command; do
  [[ $command == folioweld ]] && continue # opens the window
  stage
  try "$command"
done < <(mandoc -T ascii "$project/packaging/folioweld.1.in" | sed 's/.\x08//g' |
  sed -n '/^EXAMPLES/,/^DIAGNOSTICS/ { /|$/ { N; s/\n */ /; }; s/^ *\$ //p; }')
equal 'those of the manual page as well' $tried 9

# check RECIPE NUMBER: what the block of that number in the recipe has made.
check() {
  case "$1 $2" in
    'Documents in the order of their numbers '[12]) equal "$1" "$(words letters.pdf)" 'two three ten' ;;
    'Documents in the order of their numbers 3') equal "$1" "$(words letters.pdf)" 'three ten two' ;;
    'Chosen documents 1') equal "$1" "$(words chosen.pdf), $(words drafts.pdf)" 'ten two, three' ;;
    'A cover in front, an index at the end 1')
      equal "$1" "$(words book.pdf)" 'cover 1.1 1.2 1.3 2.1 2.2 index'
      ;;
    'Folders inside folders 1') equal "$1" "$(words everything.pdf)" 'nine may odd' ;;
    'Folders inside folders 2') equal "$1" "$(words newer.pdf)" 'may odd' ;;
    'A whole tree, each folder into one file 1')
      for result in 2023:nine 2024:odd 2024/05:may; do
        equal "$1" "$(words "joined/archive/${result%:*}.pdf")" "${result#*:}"
      done
      ;;
    'A blank page after an odd count 1') equal "$1" "$(words blank.pdf)" '' && qpdf --check blank.pdf >checked ;;
    'A blank page after an odd count 2')
      equal "$1" "$(words printable.pdf) $(qpdf --show-npages printable.pdf)" '1.1 1.2 1.3 2.1 2.2 6'
      equal "$1" "$(pdftotext -f 4 -l 4 printable.pdf - | tr -d '\f')" ''
      ;;
    'A title and bookmarks on the result '[12])
      equal "$1" "$(pdfinfo titled.pdf | sed -n 's/^Title: *//p')" 'The whole book'
      # The names of the files with --carry, and without their ending as the script gives them.
      equal "$1" "$(mutool show titled.pdf outline | tr -s '\t' ' ' | sed 's/\.pdf"/"/' | cut -d '&' -f 1)" \
        $'| "1" #page=1\n| "2" #page=4'
      ;;
    'From a script 1') equal "$1" "$(<output)" 'everything is joined' ;;
    'From the file manager 1') check_script ;;
    *) fail "nothing looks at block $2 of \"$1\"" ;;
  esac
}

# The script gives the window program what the file manager gives it.
check_script() {
  mkdir bin
  cp "$(command -v folioweld)" bin
  printf '#!/bin/sh\nprintf "<%%s>" "$@"\n' >bin/folioweld-window
  chmod +x bin/folioweld-window
  equal 'what the window program is told' \
    "$(PATH=$PWD/bin:$PATH DISPLAY=:4711 "$HOME/.local/share/nautilus/scripts/Join with Folioweld" -v 'a "b"' $'c\nd' %f)" \
    $'<><-v><a "b"><c\nd><%f>'
}

while IFS= read -r recipe; do
  stage
  number=0
  while IFS= read -r -d '' block; do
    number=$((number + 1))
    try "$block"
    check "$recipe" $number
  done < <(blocks "$project/docs/recipes.md" "$recipe")
  ((number > 0)) || fail "no command in \"$recipe\""
done < <(sed -n 's/^## //p' "$project/docs/recipes.md")
equal 'those of the recipes as well' $tried 23

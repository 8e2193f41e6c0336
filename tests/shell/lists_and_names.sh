#!/usr/bin/env bash
# Lists of documents as find, sort, ls and loops make them, with names that a shell, a list or a terminal could trip over.
. "$(dirname "$0")/common.sh"

# Three folders deep, numbered without leading zeros, and one name for everything that is hard about names.
mkdir -p 'tree/part 1' 'tree/part 2' 'tree/part 10'
document 'tree/part 1/2.pdf' 1.2
document 'tree/part 1/10.pdf' 1.10
document 'tree/part 2/1.pdf' 2.1
document 'tree/part 10/1.pdf' 10.1
for _ in first second; do
  find tree -name '*.pdf' -print0 | sort -zV | status 0 folioweld --files0-from=- out.pdf
  equal 'what was said' "$(said)" ''
  equal 'the order by number' "$(words out.pdf)" '1.2 1.10 2.1 10.1'
done

mkdir odd
# shellcheck disable=SC1003,SC2016 # nothing in them is to be expanded
odd=($'a line\nend.pdf' 'bar|in it.pdf' '-v' '--help' $'not \xff\xfe UTF-8.pdf' ' blanks ' $'tab\t' '%s' "'" '"' '$HOME' '*' '\')
for i in "${!odd[@]}"; do document "odd/${odd[i]}" "$((i + 1))"; done
all=$(seq -s ' ' ${#odd[@]})
cd odd
printf '%s\0' "${odd[@]}" | status 0 folioweld --files0-from=- ../out.pdf
equal 'the order of the list' "$(words ../out.pdf)" "$all"
printf '%s\0' "${odd[@]}" >../list
status 0 folioweld --files0-from ../list ../out2.pdf
cmp ../out.pdf ../out2.pdf
status 0 folioweld ../out2.pdf "${odd[@]}"
cmp ../out.pdf ../out2.pdf
status 0 folioweld ../out2.pdf ./*
equal 'how many pages the shell found' "$(words ../out2.pdf | wc -w)" "${#odd[@]}"
cd ..
for output in "${odd[@]}"; do
  status 0 folioweld -- "$output" odd/-v odd
  equal "the pages of $output" "$(words "./$output" | wc -w)" $((${#odd[@]} + 1))
done
rm -- "${odd[@]}"

# Without its last NUL a list means the same, and one name before it stands at its place.
printf 'odd/*\0odd/-v' | status 0 folioweld --files0-from=- out.pdf odd/%s
equal 'an operand before the list' "$(words out.pdf)" '8 12 3'
status 1 folioweld --files0-from=/dev/null out.pdf
equal 'what is said of an empty list' "$(said)" 'folioweld: NO INPUT FILE!  I DIDN'\''T DO ANYTHING'
status 1 folioweld --files0-from=missing out.pdf
equal 'how many lines it takes' "$(said | wc -l)" 1

# By number, with ls; and more than a command line holds.
cd 'tree/part 1'
# shellcheck disable=SC2046 # the names hold no blanks
status 0 folioweld ../../out.pdf $(ls -v ./*.pdf)
equal 'the order of ls -v' "$(words ../../out.pdf)" '1.2 1.10'
cd ../..
document x.pdf x
names=()
# Each name is as long as a path may be.
for _ in {1..40}; do names+=("$(printf './%.0s' {1..1800})x.pdf"); done
(
  # The smallest stack makes the shortest command line.
  ulimit -s 64
  code=0
  { folioweld out.pdf "${names[@]}" || code=$?; } 2>/dev/null
  equal 'the status of a line that is too long' $code 126
)
printf '%s\0' "${names[@]}" | status 0 folioweld --files0-from=- out.pdf
equal 'the pages of the long list' "$(words out.pdf | wc -w)" 40

# A whole tree, each folder into a file beside it: twice, for the second time must not take the first one's outputs.
for _ in first second; do
  for part in tree/*/; do status 0 folioweld "${part%/}.pdf" "$part"; done
done
equal 'a folder of the tree' "$(words 'tree/part 1.pdf')" '1.10 1.2'
rm tree/*.pdf

# A loop that a failure ends, and a status that says so.
printf '%%PDF-1.4\nno comment' >'tree/part 2/half.pdf'
for part in tree/part*/; do folioweld "${part%/}.pdf" "$part" 2>>"$folder/told" || { code=$? && break; }; done
equal 'the status of a document that is refused' "$code" 3
grep -qF 'File: "half.pdf"  is not acceptable for merging' "$folder/told" || fail "$(<"$folder/told")"

[[ -z $(ls -A "$TMPDIR") ]] || fail "left over: $(ls -A "$TMPDIR")"

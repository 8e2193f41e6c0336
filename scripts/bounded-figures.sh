#!/usr/bin/env bash
# scripts/bounded-figures.sh [FAULTS_TESTS]: joins the worst documents known, whose work has to stay in proportion
# to their bytes, with the program that is named or else with that of the preset dev, built before. Prints what
# each costs: the bytes of the document, the processor's seconds for the merge, the longest time without a look at
# the user's wishes, the longest wait for a cancel, and the most memory. With FOLIOWELD_FAULTS_FULL=1 the documents
# are of sixteen megabytes.
set -euo pipefail
cd "$(dirname "$(dirname "$(readlink -f "$0")")")"
program=${1:-build/dev/tests/faults/faults_tests}
(($#)) || scripts/build.sh dev
log=$(mktemp)
trap 'rm -f "$log"' EXIT
"$program" --gtest_filter='*BoundedWork*' >"$log" || { cat "$log"; exit 1; }

# Each document is joined in two sizes; the figures of the larger one count.
figures=$(awk '
  /^\[ RUN/ { name = $4; sub(/.*\//, "", name); place = 0 }
  / bytes in .* calls, / {
    if (++place % 2) next
    printf "%-46s %10d %9.3f %10.5f %9.5f %8.1f\n", name (place == 2 ? ", first" : ", second"), $1, $2, $6, $9,
           $(NF - 1) / 1024
  }' "$log" | sort -k4,4n)

printf '%-46s %10s %9s %10s %9s %8s\n' 'document and its place' bytes seconds unwatched cancel MiB
printf '%s\n\n' "$figures"
echo "slowest:           $(tail -n 1 <<<"$figures")"
echo "longest unwatched: $(sort -k5,5n <<<"$figures" | tail -n 1)"
echo "longest cancel:    $(sort -k6,6n <<<"$figures" | tail -n 1)"
echo "most memory:       $(sort -k7,7n <<<"$figures" | tail -n 1)"

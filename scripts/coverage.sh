#!/usr/bin/env bash
# coverage.sh [CTEST_ARGUMENT...]: line coverage of engine/ and dirmerge/; fails below 95 %.
set -euo pipefail
cd "$(dirname "$(dirname "$(readlink -f "$0")")")"

scripts/install-packages.sh run test
scripts/build.sh coverage
# Counts of an earlier run would hide a line that no test reaches any more.
find build/coverage -name '*.gcda' -delete
export CTEST_PARALLEL_LEVEL=${CTEST_PARALLEL_LEVEL:-$(nproc)}
# Counting lines slows loops beyond what the tests of the time that hostile documents cost allow.
ctest --preset coverage --no-tests=error -E 'BoundedWork|DictionariesFarBeyondTheDeepest' "$@"
gcovr --root . --object-directory build/coverage --filter 'engine/' --filter 'dirmerge/' \
  --print-summary --fail-under-line 95

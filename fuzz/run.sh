#!/usr/bin/env bash
# fuzz/run.sh [SECONDS [TARGET...]]: builds the fuzz targets with Clang's libFuzzer, address and undefined
# behaviour sanitizers and runs each for so many seconds (60). What is found new is kept in build/fuzz/found,
# what breaks a target in build/fuzz/broken; a broken input belongs into fuzz/corpus once its cause is mended.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
seconds=${1:-60}
(($#)) && shift
build=${FOLIOWELD_FUZZ_BUILD:-build/fuzz}
clang=${CXX:-clang++-14}

cmake -S . -B "$build" -G Ninja -DCMAKE_CXX_COMPILER="$clang" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DFOLIOWELD_FUZZ=ON -DFOLIOWELD_WINDOW=OFF -DFOLIOWELD_TESTS=OFF >/dev/null
cmake --build "$build"
(($#)) || set -- $(cd fuzz/targets && ls | sed 's/\.cpp$//')

failed=()
for target in "$@"; do
  echo "== $target"
  mkdir -p "$build/found/$target" "$build/broken"
  "$build/fuzz/fuzz_$target" -max_total_time="$seconds" -max_len=20000 -timeout=20 -rss_limit_mb=2048 \
    -print_final_stats=1 -verbosity=0 -dict=fuzz/pdf.dict -artifact_prefix="$build/broken/$target-" \
    "$build/found/$target" "fuzz/corpus/$target" || failed+=("$target")
done
((${#failed[@]} == 0)) || { echo "broken: ${failed[*]} (see $build/broken)"; exit 1; }

#!/usr/bin/env bash
# fuzz/run.sh [-j JOBS] [SECONDS [TARGET...]]: builds the fuzz targets with Clang's libFuzzer, address and
# undefined behaviour sanitizers and runs each (or those that are named) for so many seconds (60), JOBS of them at a
# time (1). In build/fuzz, or in the folder that FOLIOWELD_FUZZ_BUILD names:
#   found/TARGET     inputs that led to something new; the next run starts with them, too
#   broken           inputs that break a target; they belong into fuzz/corpus once their cause is mended
#   log/TARGET       what the fuzzer said last
#   statistics.tsv   a line for every run: start, target, seconds, executions, findings
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
jobs=1
if [[ ${1:-} == -j ]]; then
  jobs=$2
  shift 2
fi
seconds=${1:-60}
(($#)) && shift
if ! [[ $jobs =~ ^[1-9][0-9]*$ && $seconds =~ ^[1-9][0-9]*$ ]]; then
  sed -n '2,4s/^# //p' "$0" >&2
  exit 2
fi
export build=${FOLIOWELD_FUZZ_BUILD:-build/fuzz}
export seconds

mkdir -p "$build/broken" "$build/log"
if ! { cmake -S . -B "$build" -G Ninja -DCMAKE_CXX_COMPILER="${CXX:-clang++-14}" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DFOLIOWELD_FUZZ=ON -DFOLIOWELD_WINDOW=OFF -DFOLIOWELD_TESTS=OFF && cmake --build "$build" -j "$(nproc)"; } \
  >"$build/build.log" 2>&1; then
  cat "$build/build.log" >&2
  exit 1
fi
if ((!$#)); then
  mapfile -t targets < <(cd fuzz/targets && printf '%s\n' *.cpp | sed 's/\.cpp$//')
  set -- "${targets[@]}"
fi
for target in "$@"; do
  [[ -x $build/fuzz/fuzz_$target ]] || { echo "no such target: $target" >&2; exit 2; }
done

run_target() {
  local target=$1 start before executions findings
  start=$(date +%Y-%m-%dT%H:%M:%S)
  before=$(find "$build/broken" -name "$target-*" | wc -l)
  mkdir -p "$build/found/$target"
  SECONDS=0
  local status=0
  "$build/fuzz/fuzz_$target" -max_total_time="$seconds" -max_len=20000 -timeout=20 -rss_limit_mb=2048 \
    -print_final_stats=1 -verbosity=0 -dict=fuzz/pdf.dict -artifact_prefix="$build/broken/$target-" \
    "$build/found/$target" "fuzz/corpus/$target" >"$build/log/$target" 2>&1 </dev/null || status=$?
  executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$build/log/$target")
  findings=$(($(find "$build/broken" -name "$target-*" | wc -l) - before))
  printf '%s\t%s\t%d\t%d\t%d\n' "$start" "$target" "$SECONDS" "${executions:-0}" "$findings" |
    tee -a "$build/statistics.tsv" | awk -F'\t' '{ print $2 ": " $4 " executions in " $3 " s, " $5 " findings" }'
  ((status == 0 && findings == 0)) && return
  echo "broken: $target, status $status; see $build/log/$target and $build/broken"
  tail -n 40 "$build/log/$target"
  return 1
}
export -f run_target
# shellcheck disable=SC2016 # the inner shell is the one to expand it
printf '%s\n' "$@" | xargs -n 1 -P "$jobs" bash -c 'run_target "$1"' run_target

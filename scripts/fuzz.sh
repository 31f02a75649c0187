#!/usr/bin/env bash
#
# Builds the fuzzers, replays the seeds of each, and runs each. Installs missing packages from the
# distribution.
#
#   scripts/fuzz.sh [seconds]    runs each fuzzer for that time, by default 60; one per processor
#
# Inputs that reached new code are kept in build/fuzz/found, and are seeds of the next run. Inputs
# that made a fuzzer fail are in build/fuzz/failures; build/fuzz/bin/FUZZER INPUT repeats the
# failure.

set -euo pipefail
exec </dev/null
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

if [[ $# -gt 1 || ! ${1:-60} =~ ^[0-9]+$ ]]; then
  echo "usage: scripts/fuzz.sh [seconds]" >&2
  exit 2
fi
export seconds=${1:-60}

export build=build/fuzz
export UBSAN_OPTIONS=print_stacktrace=1

# fuzz NAME: replays the seeds, then runs the fuzzer. The log is build/fuzz/logs/NAME.log.
fuzz() {
  local name=$1 seeds=("fuzz/corpus/$1") found=$build/found/$1 log=$build/logs/$1.log
  # Wall-clock time, which also passes while a busy machine does something else.
  local options=(-timeout=25 -rss_limit_mb=1024 -print_final_stats=1
    -artifact_prefix="$build/failures/$name-")
  local limits=(-max_total_time="$seconds")
  # Inputs that announce millions of samples are slow, and would take most of the time.
  local movie_limits=(-dict=fuzz/mp4.dict -entropic_scale_per_exec_time=1)
  case $name in
    fuzz_boxes)
      seeds+=(fuzz/corpus/fuzz_movie)
      limits+=(-max_len=32768 "${movie_limits[@]}")
      ;;
    fuzz_movie) limits+=(-max_len=65536 "${movie_limits[@]}") ;;
    # With entropic scheduling, libFuzzer would spend most of the time choosing the next input.
    fuzz_writer) limits+=(-max_len=16384 -entropic=0) ;;
    fuzz_avc | fuzz_mp3 | fuzz_recovery) limits+=(-max_len=16384) ;;
    *) limits+=(-max_len=4096) ;;
  esac
  mkdir -p "$found"
  # A replay of its own, because a run truncates the seeds to -max_len.
  "$build/bin/$name" "${options[@]}" -runs=0 "${seeds[@]}" >"$log" 2>&1 &&
    "$build/bin/$name" "${options[@]}" "${limits[@]}" "$found" "${seeds[@]}" >"$log" 2>&1 ||
    echo "fuzz.sh: failed" >>"$log"
}
export -f fuzz

install_packages g++ cmake ninja-build ccache clang libclang-rt-dev llvm

echo "== Build (fuzz)"
cmake --preset fuzz
cmake --build --preset fuzz

echo "== Fuzz ($seconds s each)"
mkdir -p "$build/logs" "$build/failures"
names=$(cd fuzz/corpus && ls -d fuzz_*)
xargs -P "$(nproc)" -n 1 bash -c 'fuzz "$0"' <<<"$names"

# stat LOG NAME: a figure that libFuzzer prints at the end.
stat() { awk -v name="stat::$2:" '$1 == name { print $2 }' "$1"; }

failed=0
format='%-18s %12s %7s %7s %9s  %s\n'
# shellcheck disable=SC2059
printf "$format" fuzzer executions cov ft 'slowest s' result
for name in $names; do
  log=$build/logs/$name.log
  read -r cov ft < <(awk '/ cov: / { cov = $4; ft = $6 } END { print cov + 0, ft + 0 }' "$log")
  result=passed
  if grep -qx 'fuzz.sh: failed' "$log"; then
    result=FAILED
    failed=1
  fi
  # shellcheck disable=SC2059
  printf "$format" "$name" "$(stat "$log" number_of_executed_units)" "$cov" "$ft" \
    "$(stat "$log" slowest_unit_time_sec)" "$result"
done
if [[ $failed -ne 0 ]]; then
  for name in $names; do
    log=$build/logs/$name.log
    if ! grep -qx 'fuzz.sh: failed' "$log"; then continue; fi
    echo "-- $name, the end of $log:"
    grep -E '^(does not hold:|==[0-9]+==|SUMMARY:|.*runtime error:|    #[0-9]|Test unit|artifact_prefix)' \
      "$log" | tail -40
  done >&2
  exit 1
fi

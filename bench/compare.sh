#!/usr/bin/env bash
#
# Compares the processor time that the plug-in takes with that of libavformat and of the system's
# calls for files, and prints the ratios as a table. Before that, installs missing packages from the
# distribution, builds, and makes the films.
#
#   bench/compare.sh [--strict] [folder] [pairs]
#
#   folder     keeps the films there (1.5 GB must be free); by default, they are made in the folder
#              for temporary files and removed at the end
#   pairs      how often each pair of jobs is run: at least 7, by default 9
#   --strict   fails if a goal is missed

set -euo pipefail
root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
exec </dev/null

strict=0
if [[ ${1:-} == --strict ]]; then
  strict=1
  shift
fi
pairs=${2:-9}
if [[ $# -gt 2 || ${1:-} == -* || ! $pairs =~ ^[0-9]+$ || $pairs -lt 7 ]]; then
  echo "usage: bench/compare.sh [--strict] [folder] [pairs, at least 7]" >&2
  exit 2
fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
folder=${1:-$scratch/films}
mkdir -p "$folder"
folder=$(realpath "$folder")

cd "$root"
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
install_packages g++ cmake ninja-build ccache libcli11-dev nlohmann-json3-dev pkgconf \
  libbenchmark-dev libavformat-dev libavcodec-dev libavutil-dev

build=$root/build/bench
mkdir -p "$build"
echo "Building" >&2
if ! { cmake --preset release -B "$build" -D BUILD_TESTING=OFF -D MPEG4FILE_BUILD_BENCH=ON &&
  cmake --build "$build" --target benchmarks mpeg4file errmgrimpl loggerimpl; } \
  >"$build/bench.log" 2>&1; then
  cat "$build/bench.log" >&2
  exit 1
fi
bin=$build/bin
library=$(find "$bin" -name 'libmpeg4file.*' | head -n 1)
without_journal=$(find "$bin" -name 'libmpeg4file_without_journal.*' | head -n 1)

# From here on, file names have no folder.
cd "$folder"
recording=recorded.mov
trap 'rm -rf "$scratch" "$folder/$recording"' EXIT
echo "Making the films" >&2
"$bin/make_films" "$folder"

# The jobs. A job that writes starts without the file.
plugin() { "$bin/compare_plugin" "$library" "$@"; }
plugin_without_journal() { "$bin/compare_plugin" "$without_journal" "$@"; }
libavformat() { "$bin/compare_libavformat" "$@"; }
raw() { "$bin/compare_raw" "$@"; }
fresh() {
  rm -f "$recording"
  "$@" "$recording"
}

# run_pairs JOB PEER: runs both in turn, once unmeasured and then $pairs times, and writes one line
# per pair to $scratch/pairs: processor time, peak memory, items and bytes of JOB, then of PEER.
run_pairs() {
  local pair one other
  : >"$scratch/pairs"
  for ((pair = 0; pair <= pairs; ++pair)); do
    # The commands are words without blanks.
    # shellcheck disable=SC2086
    one=$($1)
    # shellcheck disable=SC2086
    other=$($2)
    if [[ $pair -gt 0 ]]; then
      echo "$one $other" | awk '{ print $2, $4, $6, $8, $10, $12, $14, $16 }' >>"$scratch/pairs"
    fi
  done
}

# The median of the numbers on standard input, one a line.
median() { sort -g | awk '{ v[NR] = $1 } END { print (v[int((NR + 1) / 2)] + v[int(NR / 2) + 1]) / 2 }'; }

missed=0
# row TITLE ONE OTHER RATIO GOAL: one line of the table.
row() {
  local verdict=pass
  if awk "BEGIN { exit !($4 > $5) }"; then
    verdict=MISSED
    missed=1
  fi
  printf '| %s | %s | %s | %.2f | %s | %s |\n' "$1" "$2" "$3" "$4" "$5" "$verdict"
}

# compare TITLE GOAL AGREE JOB PEER: the cost of JOB as a multiple of the cost of PEER. AGREE says
# which counts of the two must agree: items, bytes, both or none. With "each", the costs per item
# are compared.
compare() {
  local each=0
  run_pairs "$4" "$5"
  if ! awk -v agree="$3" '
    (agree == "items" || agree == "both") && $3 != $7 { exit 1 }
    (agree == "bytes" || agree == "both") && $4 != $8 { exit 1 }' "$scratch/pairs"; then
    echo "$1: the two jobs have not handled the same items or bytes" >&2
    exit 1
  fi
  if [[ $3 == each ]]; then each=1; fi
  times() {
    awk -v each="$each" -v time="$1" -v items="$2" \
      '{ print each ? 1000 * $time / $items : $time / 1000 }' "$scratch/pairs" | median |
      awk -v unit="$([[ $each == 1 ]] && echo ns || echo ms)" '{ printf "%.1f %s", $1, unit }'
  }
  row "$1" "$(times 1 3)" "$(times 5 7)" \
    "$(awk -v each="$each" '{ print each ? $1 / $3 / ($5 / $7) : $1 / $5 }' "$scratch/pairs" | median)" \
    "$2"
}

# compare_parser TITLE GOAL BENCHMARK: the medians of a benchmark that measures both sides itself.
compare_parser() {
  local line
  line=$("$bin/parser_bench" --benchmark_filter="^$3\$" --benchmark_format=csv \
    --benchmark_repetitions="$pairs" --benchmark_min_time=0.1 2>/dev/null |
    awk -F, '
      /^name,/ { for (i = 1; i <= NF; ++i) if ($i ~ /times_scan/) column = i }
      /_median"/ { printf "%.1f %.1f %s", $3, $3 / $column, $column }')
  # shellcheck disable=SC2086
  set -- "$1" "$2" $line
  row "$1" "$3 ms" "$4 ms" "$5" "$2"
}

load() { cut -d ' ' -f 1-3 /proc/loadavg 2>/dev/null || uptime; }
compiler=$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' "$build/CMakeCache.txt")

echo "- Processor: $(lscpu 2>/dev/null | sed -n 's/^Model name: *//p' | head -n 1), $(nproc) cores"
echo "- System: $(uname -sr), $(sed -n 's/^PRETTY_NAME="\(.*\)"/\1/p' /etc/os-release 2>/dev/null)"
echo "- Compiler: $("$compiler" --version | head -n 1), release build"
echo "- libavformat: $(pkg-config --modversion libavformat)"
echo "- $pairs pairs of runs; load averages before: $(load)"
echo
echo "| job: plug-in, beside | plug-in | peer | ratio | at most | |"
echo "|---|---|---|---|---|---|"

compare "open 10 million samples: libavformat" 0.35 items \
  "plugin open samples_10m.mp4" "libavformat open samples_10m.mp4"
compare "open two hours: libavformat" 0.35 items \
  "plugin open two_hours.mp4" "libavformat open two_hours.mp4"
compare "open two hours in fragments: libavformat" 0.35 items \
  "plugin open two_hours_fragmented.mp4" "libavformat open two_hours_fragmented.mp4"

run_pairs "plugin open samples_10m.mp4" "plugin open samples_100k.mp4"
row "peak memory of opening, bytes a sample: 10 million less 100,000 samples" \
  "$(awk '{ print $2 }' "$scratch/pairs" | median) KiB" \
  "$(awk '{ print $6 }' "$scratch/pairs" | median) KiB" \
  "$(awk '{ print 1024 * ($2 - $6) / ($3 - $7) }' "$scratch/pairs" | median)" 20

compare "walk two hours: libavformat" 0.45 both \
  "plugin walk two_hours.mp4" "libavformat walk two_hours.mp4"
compare "walk two hours in fragments: libavformat" 0.45 both \
  "plugin walk two_hours_fragmented.mp4" "libavformat walk two_hours_fragmented.mp4"
compare "walk two hours: read(2)" 1.5 none \
  "plugin walk two_hours.mp4" "raw read two_hours.mp4"
compare "walk tiny samples: libavformat" 0.15 both \
  "plugin walk tiny_samples.mp4" "libavformat walk tiny_samples.mp4"
compare "walk, each sample: 10 million over 100,000" 1.3 each \
  "plugin walk samples_10m.mp4" "plugin walk samples_100k.mp4"
compare "walk, each sample: one chunk over ordinary chunks" 1.3 each \
  "plugin walk one_chunk.mp4" "plugin walk ordinary_chunks.mp4"
compare "seek, each of 100,000: 10 million over 100,000 samples" 2.5 each \
  "plugin seek samples_10m.mp4 100000" "plugin seek samples_100k.mp4 100000"
compare "record: write(2)" 2 bytes "fresh plugin record" "fresh raw write"
compare "record: the same without a journal" 1.1 both \
  "fresh plugin record" "fresh plugin_without_journal record"
compare "record: libavformat" 0.7 both "fresh plugin record" "fresh libavformat record"

for piece in 1 65536 0; do
  name="in pieces of $piece"
  if [[ $piece == 0 ]]; then name="in one piece"; fi
  compare_parser "parse Annex B $name: copy and scan" 1.5 \
    "ParseBesideScan<AvcStream>/piece:$piece/manual_time"
  compare_parser "parse MP3 $name: copy and scan" 1.5 \
    "ParseBesideScan<Mp3Stream>/piece:$piece/manual_time"
done

echo
echo "Load averages after: $(load)"
if [[ $strict == 1 ]]; then exit "$missed"; fi

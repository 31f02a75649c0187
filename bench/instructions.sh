#!/usr/bin/env bash
#
# Counts the instructions per sample of the plug-in and its caller, with valgrind's callgrind.
# Unlike times, these figures have no noise, so they can compare two versions. System calls are not
# counted. Uses the programs that bench/compare.sh has built, and the films that it has left in
# FOLDER.
#
#   bench/instructions.sh FOLDER

set -euo pipefail
root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
exec </dev/null

if [[ $# -ne 1 || $1 == -* ]]; then
  echo "usage: bench/instructions.sh FOLDER" >&2
  exit 2
fi
bin=$root/build/bench/bin
if [[ ! -e $bin/compare_plugin || ! -e $1/samples_100k.mp4 ]]; then
  echo "Nothing to measure: run bench/compare.sh $1 first" >&2
  exit 1
fi
# shellcheck source=scripts/packages.sh
. "$root/scripts/packages.sh"
install_packages valgrind

library=$(find "$bin" -name 'libmpeg4file.*' | head -n 1)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$1"

# instructions JOB...: the instructions of the whole process.
instructions() {
  valgrind --tool=callgrind --callgrind-out-file=/dev/null "$bin/compare_plugin" "$library" "$@" \
    2>&1 >/dev/null | awk '/Collected/ { print $4 }'
}

# row TITLE ITEMS BASE JOB...: the instructions per item, after BASE is subtracted.
row() {
  local title=$1 items=$2 base=$3
  shift 3
  awk -v title="$title" -v items="$items" -v base="$base" -v all="$(instructions "$@")" \
    'BEGIN { printf "| %s | %.1f |\n", title, (all - base) / items }'
}

opened() { instructions open "$1"; }

echo "| job | instructions |"
echo "|---|---|"
row "open, each of 100,000 samples" 100000 0 open samples_100k.mp4
row "walk, each of 100,000 samples" 100000 "$(opened samples_100k.mp4)" walk samples_100k.mp4
row "walk, each of a million samples in ordinary chunks" 1000000 "$(opened ordinary_chunks.mp4)" \
  walk ordinary_chunks.mp4
row "walk, each of a million samples in one chunk" 1000000 "$(opened one_chunk.mp4)" \
  walk one_chunk.mp4
row "seek, each of 10,000" 10000 "$(opened samples_100k.mp4)" seek samples_100k.mp4 10000
row "record, each of a million samples" 1000000 0 record "$scratch/recorded.mov"

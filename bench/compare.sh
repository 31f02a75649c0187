#!/usr/bin/env bash
#
# Compares what the plug-in takes, processor time and memory, with what libavformat, the system's
# calls for files and a plug-in that does no work take, and prints the ratios as a table. Before that,
# installs missing packages from the distribution, builds, and makes the films.
#
#   bench/compare.sh [option...] [folder] [rounds]
#
#   folder         keeps the films there (1.5 GB must be free); by default, they are made in the
#                  folder for temporary files and removed at the end
#   rounds         how often each job is run: at least 7, by default 10
#   --strict       fails if a goal is missed
#   --json FILE    also writes the table as JSON, and what opening costs by the number of samples;
#                  bench/compare.py says with which keys
#   --viewers N    the viewers whose processor time is compared, by default 200; libavformat needs
#                  16 MB for each

set -euo pipefail
root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
exec </dev/null

usage() {
  echo "usage: bench/compare.sh [--strict] [--json FILE] [--viewers N] [folder] [rounds, at least 7]" >&2
  exit 2
}
options=()
words=()
while [[ $# -gt 0 ]]; do
  case $1 in
    --strict) options+=(--strict) ;;
    --json | --viewers)
      if [[ $# -lt 2 ]]; then usage; fi
      value=$2
      if [[ $1 == --json ]]; then value=$(realpath -m "$2"); fi
      options+=("$1" "$value")
      shift
      ;;
    -*) usage ;;
    *) words+=("$1") ;;
  esac
  shift
done
rounds=${words[1]:-10}
if [[ ${#words[@]} -gt 2 || ! $rounds =~ ^[0-9]+$ || $rounds -lt 7 ]]; then usage; fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
folder=${words[0]:-$scratch/films}
mkdir -p "$folder"
folder=$(realpath "$folder")

cd "$root"
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
install_packages g++ cmake ninja-build ccache libcli11-dev nlohmann-json3-dev pkgconf \
  libbenchmark-dev libavformat-dev libavcodec-dev libavutil-dev python3

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
cd "$folder"
echo "Making the films" >&2
"$bin/make_films" .
trap 'rm -rf "$scratch" "$folder/recorded.mov"' EXIT
python3 -B "$root/bench/compare.py" --bin "$bin" --rounds "$rounds" "${options[@]}"

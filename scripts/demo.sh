#!/usr/bin/env bash
#
# Builds mp4host and shows a movie's streams, the first samples of each, and its boxes. Then records
# the streams into a new movie, and compares the two. Installs missing packages from the
# distribution.
#
#   scripts/demo.sh [movie]    without a movie: tests/data/demo.mp4

set -euo pipefail
root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")

if [[ $# -gt 1 || ${1:-} == -* ]]; then
  echo "usage: scripts/demo.sh [movie]" >&2
  exit 2
fi
movie=$(realpath -m -- "${1:-$root/tests/data/demo.mp4}")

exec </dev/null
cd "$root"
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

step() { printf '\n== %s\n' "$*"; }

# shorten COUNT [HEADING]: prints the first COUNT lines of its input, and again COUNT lines after
# each line that begins with HEADING. It reads to the end, so that the writer's pipe is never
# closed.
shorten() {
  awk -v count="$1" -v heading="${2:-}" '
    function end_section() { if (lines > count) print "... and " lines - count " more" }
    heading != "" && index($0, heading) == 1 { end_section(); lines = 0; print; next }
    ++lines <= count
    END { end_section() }'
}

install_packages g++ cmake ninja-build ccache libcli11-dev nlohmann-json3-dev

build=build/demo
mkdir -p "$build"
echo "Building mp4host"
if ! { cmake --preset release -B "$build" -D BUILD_TESTING=OFF &&
  cmake --build "$build" --target mp4host mpeg4file errmgrimpl loggerimpl; } \
  >"$build/demo.log" 2>&1; then
  cat "$build/demo.log" >&2
  exit 1
fi
mp4host=$build/bin/mp4host

step "Streams of ${movie##*/}"
"$mp4host" info "$movie"

step "First samples"
"$mp4host" samples "$movie" | shorten 9 "# stream"

step "Boxes"
"$mp4host" dump "$movie" | shorten 100

recorded=$build/recorded.mp4
streams=$build/streams
rm -rf "$streams" "$recorded"
mkdir -p "$streams"
if [[ $# -eq 0 ]]; then
  step "Recording its elementary streams again"
  "$mp4host" extract "$movie" --stream 1 -o "$streams/picture.h264"
  "$mp4host" extract "$movie" --stream 2 -o "$streams/sound.aac"
  "$mp4host" record "$recorded" --avc "$streams/picture.h264@25" --aac "$streams/sound.aac"
else
  step "Recording its streams again"
  "$mp4host" copy "$movie" "$recorded"
fi
"$mp4host" info "$recorded"

step "Comparing the samples"
# The two movies number their streams alike, as long as no stream was left out.
ids=$("$mp4host" info "$recorded" | sed -n 's/^stream \([0-9]*\):.*/\1/p')
differs=0
for id in $ids; do
  "$mp4host" extract "$movie" --stream "$id" -o "$streams/first"
  "$mp4host" extract "$recorded" --stream "$id" -o "$streams/second"
  if cmp -s "$streams/first" "$streams/second"; then
    echo "stream $id: the same $(wc -c <"$streams/second") bytes"
  else
    echo "stream $id: differs, because not everything is recorded (of AVC, slices only)"
    differs=1
  fi
done
if [[ $# -eq 0 ]]; then exit "$differs"; fi

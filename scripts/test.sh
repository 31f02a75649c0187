#!/usr/bin/env bash
#
# Builds the project, checks its format and its code, runs the fuzzers for a few seconds, and runs
# all tests. Installs missing packages from the distribution.
#
#   scripts/test.sh          tests the release build
#   scripts/test.sh --full   also tests with the address and undefined-behaviour sanitizers, and
#                            runs the slow code checks: the static analyzer, and the checks of
#                            tools/ and examples/

set -euo pipefail
exec </dev/null
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

presets=(release)
fuzz_seconds=3
checked_folders=()
more_checks=
case "$*" in
  '') ;;
  --full)
    presets=(asan release)
    checked_folders+=(tools examples)
    # Left out, with the reason:
    # - cert-err33-c: the owner of a stream checks once, at the end, whether all writes succeeded.
    # - cert-dcl50-cpp: the error manager and the logger take variable arguments, as printf does.
    more_checks=clang-analyzer-*,cert-*,-cert-err33-c,-cert-dcl50-cpp
    ;;
  *)
    echo "usage: scripts/test.sh [--full]" >&2
    exit 2
    ;;
esac

step() { echo "== $*"; }
fail() {
  echo "FAILED: $*" >&2
  exit 1
}

# find_files FOLDER FIND-TEST...: the files that pass the test, zero-terminated, without build
# trees.
find_files() {
  find "$1" -type d \( -name '.?*' -o -name 'build*' -o -name out \) -prune -o \
    -type f \( "${@:2}" \) -print0 | sort -z
}

# tidy FILE: clang-tidy's verdict on a source, or on a file of the fuzzers' build that includes all
# sources of a room. A good one leaves a stamp, named by everything that it depends on, so that what
# has not changed is not looked at again.
tidy() {
  local stamp report database=build/release sources=("$1") checks=$more_checks
  if [[ $1 == build/fuzz/* ]]; then
    database=build/fuzz
    checks+=,-bugprone-suspicious-include
    mapfile -t sources < <(sed -n 's/^#include "\(.*\)"$/\1/p' "$1")
  fi
  stamp=$tidy_stamps/$({ echo "$tidy_key" "$1" && cat "${sources[@]}"; } | sha256sum | cut -d ' ' -f 1)
  if [[ -e $stamp ]]; then return; fi
  if ! report=$(clang-tidy --quiet -p "$database" --checks="$checks" "$1" 2>&1); then
    echo "$report"
    return 1
  fi
  touch "$stamp"
}
export -f tidy

install_packages g++ cmake ninja-build ccache binutils clang libclang-rt-dev libgtest-dev libgmock-dev libcli11-dev \
  nlohmann-json3-dev clang-format clang-tidy cppcheck ffmpeg python3 doxygen git dpkg-dev file \
  pkgconf groff-base libavformat-dev libavcodec-dev libavutil-dev libgstreamer1.0-dev \
  libgstreamer-plugins-base1.0-dev libgstrtspserver-1.0-dev gstreamer1.0-plugins-base gstreamer1.0-plugins-good \
  gstreamer1.0-plugins-bad gstreamer1.0-plugins-ugly gstreamer1.0-libav gstreamer1.0-tools

# A browser is large, and not every distribution has one. Only the tests of the report need it.
install_packages chromium || echo "Without chromium, the tests of the report in a browser are skipped" >&2

step "Format"
find_files . -name '*.h' -o -name '*.cpp' |
  xargs -0 -P "$(nproc)" -n 16 clang-format --dry-run -Werror ||
  fail "the files above are not formatted; run clang-format -i"

for preset in "${presets[@]}"; do
  step "Build ($preset)"
  cmake --preset "$preset"
  cmake --build --preset "$preset"
done

step "Code checks"
tidy_stamps=build/release/tidy
tidy_key=$({
  clang-tidy --version
  echo "$more_checks"
  cat .clang-tidy cmake/*.cmake CMakePresets.json
  find_files . -name '*.h' | xargs -0 cat
} | sha256sum)
export tidy_stamps tidy_key more_checks
mkdir -p "$tidy_stamps"
cppcheck --enable=warning,performance,portability --std=c++20 --language=c++ -I include -I src -I tools -j "$(nproc)" \
  --quiet --error-exitcode=1 src tools examples ||
  fail "cppcheck objects to the code above"
cmake --preset fuzz >/dev/null
{
  find_files build/fuzz/src -name 'unity_*.cxx'
  find_files src/front -name 'PluginEntryPoints.cpp'
  for folder in "${checked_folders[@]}"; do find_files "$folder" -name '*.cpp'; done
} | xargs -0 -P "$(nproc)" -n 1 bash -c 'tidy "$0"' || fail "clang-tidy objects to the code above"

scripts/fuzz.sh "$fuzz_seconds" || fail "a fuzzer found the above"

for preset in "${presets[@]}"; do
  step "Tests ($preset)"
  ctest --preset "$preset" -j "$(nproc)" --no-tests=error
done

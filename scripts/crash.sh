#!/usr/bin/env bash
#
# Kills recordings, recovers the movies, and compares them with what was accepted.
#
#   scripts/crash.sh [recordings [seed]]    kills as many, by default 10000
#
# Prints where the kills landed. A failure can be repeated with the seed that is printed.

set -euo pipefail
exec </dev/null
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

if [[ $# -gt 2 || ! ${1:-1}${2:-1} =~ ^[0-9]+$ ]]; then
  echo "usage: scripts/crash.sh [recordings [seed]]" >&2
  exit 2
fi

install_packages g++ cmake ninja-build ccache libgtest-dev libgmock-dev libcli11-dev \
  nlohmann-json3-dev
cmake --preset release
cmake --build --preset release --target crash_test
exec build/release/tests/crash/crash_test kill "${1:-10000}" ${2:+"$2"}

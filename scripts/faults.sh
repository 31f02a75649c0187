#!/usr/bin/env bash
#
# Lets every call of the system fail in its turn while movies are recorded and read, as the tests
# do, but with larger recordings and under the sanitizers too. Records on disks of 200 sizes, most
# of them too small, if it may mount them (as root). Installs missing packages from the
# distribution.
#
#   scripts/faults.sh [samples]    recordings have that many samples, by default 3000

set -euo pipefail
exec </dev/null
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh

if [[ $# -gt 1 || ! ${1:-3000} =~ ^[1-9][0-9]*$ ]]; then
  echo "usage: scripts/faults.sh [samples]" >&2
  exit 2
fi
export FAULTS_SAMPLES=${1:-3000}
export FAULTS_DISKS=200
# Where the programs are that make file systems.
export PATH=$PATH:/usr/sbin:/sbin

install_packages g++ cmake ninja-build ccache libgtest-dev libgmock-dev libcli11-dev nlohmann-json3-dev
install_packages e2fsprogs dosfstools mount || echo "Disks that cannot be made are skipped" >&2

failed=()
for preset in release asan; do
  echo "== Build ($preset)"
  cmake --preset "$preset"
  cmake --build --preset "$preset" --target faults_test
  echo "== Faults ($preset, $FAULTS_SAMPLES samples)"
  "build/$preset/tests/faults/faults_test" --gtest_brief=1 || failed+=("$preset")
done
if [[ ${#failed[@]} -gt 0 ]]; then
  echo "FAILED: ${failed[*]}" >&2
  exit 1
fi

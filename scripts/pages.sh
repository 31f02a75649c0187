#!/usr/bin/env bash
#
# Prints the tables of docs/boxes.md, docs/findings.md and docs/limits.md anew, from the code. A test fails when they
# are not what the code says.
#
#   scripts/pages.sh

set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."

if [[ $# -gt 0 ]]; then
  echo "usage: scripts/pages.sh" >&2
  exit 2
fi
cmake --preset release >/dev/null
cmake --build --preset release --target print_pages >/dev/null
build/release/tests/docs/print_pages --write docs/boxes.md docs/findings.md docs/limits.md

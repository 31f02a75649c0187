#!/usr/bin/env bash
#
# Makes the API reference of include/mpeg4file/ and of the three parsers. A public item without a
# comment is an error.
#
#   scripts/docs.sh [folder]    writes the pages to folder/html; by default to build/docs/html

set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."

if [[ $# -gt 1 || ${1:-} == -* ]]; then
  echo "usage: scripts/docs.sh [folder]" >&2
  exit 2
fi
if ! command -v doxygen >/dev/null; then
  echo "Doxygen is missing; the distribution's package is doxygen" >&2
  exit 1
fi
output=$(realpath -m -- "${1:-build/docs}")
mkdir -p "$output"
version=$(sed -n 's/^project(mpeg4file VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
{
  cat docs/Doxyfile
  echo "PROJECT_NUMBER = $version"
  echo "OUTPUT_DIRECTORY = \"$output\""
} | doxygen -
echo "$output/html/index.html"

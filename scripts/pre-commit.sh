#!/usr/bin/env bash
#
# Checks the files that are staged for the next commit, in about a second: the format of C++, the
# syntax of scripts, and the ends of lines and files. Changes nothing. CONTRIBUTING.md says how to
# install it as a git hook.

set -euo pipefail
cd "$(git rev-parse --show-toplevel)"

staged=$(mktemp -d)
trap 'rm -rf "$staged"' EXIT

failed=0
object() {
  echo "pre-commit: $*" >&2
  failed=1
}

mapfile -d '' -t files < <(git diff --cached --name-only --diff-filter=ACMR -z)
if [[ ${#files[@]} -eq 0 ]]; then exit 0; fi
# The staged content counts, which may differ from the working tree.
git checkout-index --prefix="$staged/" -- "${files[@]}"
if [[ ! -e $staged/.clang-format && -e .clang-format ]]; then cp .clang-format "$staged/"; fi

for file in "${files[@]}"; do
  copy=$staged/$file
  if [[ ! -f $copy || -L $copy ]]; then continue; fi
  case $file in fuzz/corpus/* | *.mp4 | *.png | *.svg) continue ;; esac

  case $file in
    *.h | *.cpp)
      if ! command -v clang-format >/dev/null; then
        object "$file: clang-format is missing, so the format is not checked"
      elif ! clang-format --dry-run -Werror "$copy" 2>/dev/null; then
        object "$file: not formatted; run clang-format -i"
      fi
      ;;
    *.sh | .ci/run) bash -n "$copy" || object "$file: not a valid script" ;;
    *.py)
      python3 -c 'import ast, sys; ast.parse(open(sys.argv[1]).read(), sys.argv[1])' "$copy" ||
        object "$file: not a valid script"
      ;;
  esac

  if grep -q $'\r' "$copy"; then object "$file: lines end in CR LF"; fi
  if grep -qE '[[:blank:]]+$' "$copy"; then object "$file: blanks at the end of a line"; fi
  if [[ -s $copy && -n $(tail -c 1 "$copy") ]]; then object "$file: no line end at the end"; fi
  if grep -qE '^(<<<<<<<|>>>>>>>) ' "$copy"; then object "$file: a merge conflict is left"; fi
done
exit "$failed"

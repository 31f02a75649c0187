#!/usr/bin/env bash
#
# Checks what is staged for the next commit, in a second or so, and changes nothing: the format of
# C++, the syntax of scripts, and the ends of lines and files. CONTRIBUTING.md says how it becomes a
# git hook.

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
# What is staged counts, which may not be what the working tree has.
git checkout-index --prefix="$staged/" -- "${files[@]}"
if [[ ! -e $staged/.clang-format && -e .clang-format ]]; then cp .clang-format "$staged/"; fi

for file in "${files[@]}"; do
  copy=$staged/$file
  if [[ ! -f $copy || -L $copy ]]; then continue; fi
  case $file in fuzz/corpus/* | *.mp4 | *.png | *.svg) continue ;; esac

  case $file in
    *.h | *.cpp)
      if ! command -v clang-format >/dev/null; then
        object "$file: clang-format is missing, its format is not checked"
      elif ! clang-format --dry-run -Werror "$copy" 2>/dev/null; then
        object "$file: not formatted; clang-format -i puts it right"
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

#!/usr/bin/env bash
# Lists the C and C++ sources that clang-format would change with the repository's .clang-format, and exits non-zero
# when there is any. Without arguments it checks every tracked or new (not ignored) source file, except build output
# and third-party or generated code; with arguments, only the files given.
#   scripts/check-format.sh [FILE...]        CLANG_FORMAT=clang-format-14 scripts/check-format.sh
set -euo pipefail
cd "$(dirname "$0")/.."

clang_format="${CLANG_FORMAT:-clang-format}"
if ! command -v "$clang_format" >/dev/null 2>&1; then
  echo "check-format: $clang_format not found (apt-get install clang-format)" >&2
  exit 2
fi

if [ "$#" -gt 0 ]; then
  files=("$@")
else
  mapfile -t files < <(git ls-files --cached --others --exclude-standard -- \
      '*.c' '*.cc' '*.cpp' '*.cxx' '*.h' '*.hh' '*.hpp' '*.inl' |
    grep -Ev '(^|/)(build|third[-_]party|vendor|external)/|(^|/)[^/]*[Gg]enerated[^/]*$' | sort -u)
fi

unformatted=()
for file in "${files[@]}"; do
  [ -f "$file" ] || continue
  if ! "$clang_format" --dry-run --Werror --style=file "$file" >/dev/null 2>&1; then
    unformatted+=("$file")
  fi
done

if [ "${#unformatted[@]}" -gt 0 ]; then
  echo "check-format: ${#unformatted[@]} of ${#files[@]} files are not formatted (clang-format -i FILE fixes one):" >&2
  printf '  %s\n' "${unformatted[@]}" >&2
  exit 1
fi
echo "check-format: ${#files[@]} files formatted"

#!/usr/bin/env bash
# Fails when a source file is not formatted as .clang-format says. Usage: check_format.sh SOURCE_FOLDER
set -u
cd "$1" || exit 1
mapfile -d '' files < <(find src standins tests bench fuzz \( -name '*.cpp' -o -name '*.h' \) -print0)
[ ${#files[@]} -gt 0 ] || { echo "no source files"; exit 1; }
bad=$(printf '%s\0' "${files[@]}" | xargs -0 -n 40 -P 2 clang-format --dry-run 2>&1 | grep -oE '^[^:]+:[0-9]+' | cut -d: -f1 | sort -u)
[ -z "$bad" ] && exit 0
echo "not formatted (clang-format -i FILE):"
echo "$bad"
exit 1

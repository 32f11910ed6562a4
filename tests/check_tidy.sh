#!/usr/bin/env bash
# Fails when clang-tidy finds something in src/ that .clang-tidy asks for. Usage: check_tidy.sh BUILD_FOLDER
# BUILD_FOLDER is configured without precompiled headers, which are another compiler's.
set -euo pipefail
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if run-clang-tidy -p "$1" -quiet '/src/[a-z]+/[a-z0-9_]+\.cpp$' >"$log" 2>&1; then
  echo "clang-tidy: $(grep -c '^clang-tidy' "$log") files of src/, nothing found"
else
  grep -vE '^clang-tidy|warnings generated|^[[:space:]]*$' "$log" >&2 || cat "$log" >&2
  exit 1
fi

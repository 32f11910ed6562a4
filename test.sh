#!/usr/bin/env bash
# Set-up, build and every test. Arguments go to ctest, for example: ./test.sh -R monitor
set -euo pipefail
cd "$(dirname "$0")"

./setup.sh
cmake --preset release
cmake --build --preset release
ctest --preset release -j "$(nproc)" "$@"

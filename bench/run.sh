#!/usr/bin/env bash
# Builds everything in the release form, runs the benchmarks and prints one table of ratios.
#   bench/run.sh              takes about two minutes; exit 1 when a bound is missed
#   BUILD=folder bench/run.sh uses that build folder
set -euo pipefail
cd "$(dirname "$0")/.."
build=${BUILD:-build/release}

cmake --preset release -B "$build" > /dev/null
cmake --build "$build" --target benches >&2

results=$(mktemp -d)
trap 'rm -rf "$results"' EXIT
for bench in "$build"/bench/bench_*; do
  name=$(basename "$bench")
  echo "$name ..." >&2
  "$bench" --benchmark_min_time=0.05 --benchmark_repetitions=15 --benchmark_enable_random_interleaving=true \
    --benchmark_out="$results/$name.json" --benchmark_out_format=json > "$results/$name.log" 2>&1 \
    || { cat "$results/$name.log" >&2; exit 1; }
done
python3 bench/table.py "$results"/*.json

#!/usr/bin/env bash
# Builds the benchmarks in Release and runs each one, writing JSON to build-bench/results/.
# Pass a regex to run only the matching programs: scripts/bench.sh conversion
set -euo pipefail
cd "$(dirname "$0")/.."
filter="${1:-.}"
jobs=$(nproc 2>/dev/null || echo 2)

QVI18N_EXTRA_PACKAGES="gettext" bash scripts/install-deps.sh
cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DQVI18N_BUILD_BENCHMARKS=ON -DQVI18N_BUILD_TESTS=OFF
cmake --build build-bench -j "$jobs" --target benchmarks qvi18n_data
mkdir -p build-bench/results
for exe in build-bench/bench/bench_*; do
  name=$(basename "$exe")
  [[ "$name" =~ $filter ]] || continue
  echo "== $name =="
  "$exe" --benchmark_out="build-bench/results/$name.json" --benchmark_out_format=json \
         --benchmark_repetitions="${QVI18N_BENCH_REPETITIONS:-3}" --benchmark_report_aggregates_only=true
done

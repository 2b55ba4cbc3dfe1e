#!/usr/bin/env bash
# Installs what is missing, builds, runs every test; then builds and runs the whole
# suite again under AddressSanitizer + UndefinedBehaviorSanitizer. Fails on any failure.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc 2>/dev/null || echo 2)

bash scripts/install-deps.sh

echo "== build (warnings are errors) =="
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQVI18N_WERROR=ON -DQVI18N_BUILD_TESTS=ON
cmake --build build -j "$jobs"
echo "== tests =="
(cd build && ctest --output-on-failure -j "$jobs")

echo "== build with AddressSanitizer + UndefinedBehaviorSanitizer =="
cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DQVI18N_WERROR=ON -DQVI18N_SANITIZE=ON -DQVI18N_BUILD_TESTS=ON
cmake --build build-asan -j "$jobs"
echo "== tests under the sanitizers =="
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:halt_on_error=1:strict_string_checks=1:detect_stack_use_after_return=1"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
export LSAN_OPTIONS="suppressions=$PWD/tests/lsan.supp:print_suppressions=0"
(cd build-asan && ctest --output-on-failure -j "$jobs" -E '^Package\.')

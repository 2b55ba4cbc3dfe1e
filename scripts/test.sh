#!/usr/bin/env bash
# Installs what is missing, builds, runs every test; then builds and runs the whole
# suite again under AddressSanitizer + UndefinedBehaviorSanitizer, and the threaded tests
# under ThreadSanitizer. Fails on any failure or report.
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

echo "== build the threaded tests with ThreadSanitizer =="
cmake -S . -B build-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQVI18N_WERROR=ON -DQVI18N_SANITIZE_THREAD=ON \
  -DQVI18N_BUILD_TESTS=ON -DQVI18N_BUILD_EXAMPLES=OFF
cmake --build build-tsan -j "$jobs"
echo "== threaded tests under ThreadSanitizer =="
export TSAN_OPTIONS="halt_on_error=1:second_deadlock_stack=1"
(cd build-tsan && ctest --output-on-failure -j "$jobs")

#!/usr/bin/env bash
# Installs what is missing, builds the library and runs the example program.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc 2>/dev/null || echo 2)
bash scripts/install-deps.sh
cmake -S . -B build -DQVI18N_BUILD_EXAMPLES=ON
cmake --build build -j "$jobs" --target qvi18n_example qvi18n_data
"build/bin/$(ls build/bin | grep -E '^(lnx|dar)' | head -n 1)/qvi18n_example" "$@"

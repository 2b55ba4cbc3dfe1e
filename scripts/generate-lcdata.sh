#!/usr/bin/env bash
# Regenerates the shipped locale database data/lcdata.xml from this machine's list of supported
# locales (/usr/share/i18n/SUPPORTED, Debian package 'locales') and the installed ICU.
# Review the diff and commit data/lcdata.xml together with any generator change.
#
#   scripts/generate-lcdata.sh [SUPPORTED-file]
set -euo pipefail
cd "$(dirname "$0")/.."
supported="${1:-/usr/share/i18n/SUPPORTED}"
build="${QVI18N_TOOLS_BUILD_DIR:-build-tools}"

if [[ ! -r "$supported" ]]; then
  echo "generate-lcdata: $supported is missing; on Debian: apt-get install locales" >&2
  exit 1
fi

cmake -S . -B "$build" -DQVI18N_BUILD_TOOLS=ON -DQVI18N_BUILD_TESTS=OFF -DQVI18N_BUILD_EXAMPLES=OFF >/dev/null
cmake --build "$build" --target qvi18n_lcdata_gen -j "$(nproc 2>/dev/null || echo 2)"
"$build/tools/qvi18n_lcdata_gen" --supported "$supported" --output data/lcdata.xml

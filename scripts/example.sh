#!/usr/bin/env bash
# Installs what is missing, builds the library, shows what start-up decides with `qvi18n status`,
# tours the other subcommands and runs the example program.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc 2>/dev/null || echo 2)
bash scripts/install-deps.sh
cmake -S . -B build -DQVI18N_BUILD_EXAMPLES=ON
cmake --build build -j "$jobs" --target qvi18n_example qvi18n_cmd qvi18n_data qvi18n_catalog_maps_generated
bin="build/bin/$(ls build/bin | grep -E '^(lnx|dar)' | head -n 1)"
tour() {
  echo
  echo "\$ qvi18n $*"
  "$bin/qvi18n" "$@" || echo "(exit status $?)"
}
tour status
tour message fl:filesystem:SystemError --locale de_DE /srv/data 13
tour message --explain --locale de_AT fl:filesystem:PathNotFound
tour complete fl:i18n:QvLc
echo
echo "\$ printf 'Gr\\xc3\\xbc\\xc3\\x9fe \\xe2\\x82\\xac' | qvi18n convert --from UTF-8 --to UTF-16LE | od -An -tx1"
printf 'Gr\xc3\xbc\xc3\x9fe \xe2\x82\xac' | "$bin/qvi18n" convert --from UTF-8 --to UTF-16LE | od -An -tx1
tour ls --pattern '*.xml' build/resources/fl/en
tour check build
tour message fl:filesystem:NoSuchKey
echo
echo "== the example program =="
"$bin/qvi18n_example" "$@"

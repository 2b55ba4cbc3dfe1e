#!/usr/bin/env bash
# Installs the Debian 12 packages that building and testing libqvi18n needs, and only the
# ones missing. Idempotent; runs apt-get update once, and only when something is missing.
# Arguments add the packages of optional jobs: "fuzz" (scripts/fuzz.sh), "coverage"
# (scripts/coverage.sh).
set -euo pipefail

packages=(
  cmake g++ make pkg-config
  libicu-dev libexpat1-dev
  libboost-dev libboost-filesystem-dev libboost-system-dev libboost-thread-dev libboost-date-time-dev
  libboost-program-options-dev
  libgtest-dev libgmock-dev libbenchmark-dev
)
for job in "$@"; do
  case "$job" in
    fuzz) packages+=(clang libclang-rt-14-dev) ;;
    coverage) packages+=(gcovr) ;;
    *) echo "install-deps: unknown job $job" >&2; exit 2 ;;
  esac
done
if [[ "${QVI18N_EXTRA_PACKAGES:-}" != "" ]]; then
  read -r -a extra <<<"$QVI18N_EXTRA_PACKAGES"
  packages+=("${extra[@]}")
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done
if ((${#missing[@]} == 0)); then
  echo "install-deps: all packages present"
  exit 0
fi

echo "install-deps: installing ${missing[*]}"
sudo=()
if [[ $(id -u) -ne 0 ]]; then sudo=(sudo); fi
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"

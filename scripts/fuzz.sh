#!/usr/bin/env bash
# A fuzzing campaign: scripts/fuzz.sh [target] [seconds]. Without a target, every fuzz/<name>_fuzz.cpp
# in turn; 60 seconds each by default. Builds with clang and libFuzzer in build-fuzz/, grows a
# working corpus in build-fuzz/corpus/<name>/ from the committed seeds (fuzz/corpus/<name>/, left
# untouched) and writes crashers to build-fuzz/artifacts/<name>/. Fails if any target found one.
set -euo pipefail
cd "$(dirname "$0")/.."
target=${1:-}
seconds=${2:-60}

bash scripts/install-deps.sh fuzz

if [[ -n "$target" ]]; then
  targets=("$target")
  [[ -f fuzz/${target}_fuzz.cpp ]] || { echo "fuzz: no fuzz/${target}_fuzz.cpp" >&2; exit 2; }
else
  targets=()
  for source in fuzz/*_fuzz.cpp; do
    name=$(basename "$source" _fuzz.cpp)
    targets+=("$name")
  done
fi

CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQVI18N_FUZZ=ON \
  -DQVI18N_BUILD_TESTS=OFF -DQVI18N_BUILD_EXAMPLES=OFF >/dev/null
jobs=$(nproc 2>/dev/null || echo 2)
failed=()
for name in "${targets[@]}"; do
  cmake --build build-fuzz -j "$jobs" --target "fuzz_$name"
  work=build-fuzz/corpus/$name
  artifacts=build-fuzz/artifacts/$name
  mkdir -p "$work" "$artifacts"
  dict=()
  if [[ -f fuzz/$name.dict ]]; then dict=(-dict="fuzz/$name.dict"); fi
  echo "== fuzz $name for ${seconds}s =="
  if ! build-fuzz/fuzz/fuzz_"$name" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
      -max_len=65536 -print_final_stats=1 -artifact_prefix="$artifacts/" "${dict[@]}" \
      "$work" "fuzz/corpus/$name"; then
    failed+=("$name")
  fi
done
if ((${#failed[@]} > 0)); then
  echo "fuzz: findings in ${failed[*]} (see build-fuzz/artifacts/)" >&2
  exit 1
fi

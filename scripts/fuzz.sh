#!/usr/bin/env bash
# Builds the fuzzers ("build" does only that) and runs each for its share of the given seconds, two at a time. What
# breaks one is kept in build/fuzz.
set -euo pipefail
cd "$(dirname "$0")/.."

mkdir -p build
cmake -S . -B build/fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++-14 -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g1" -DORV_FUZZ=ON -DORV_TESTS=OFF >build/fuzz.log 2>&1 || { cat build/fuzz.log; exit 1; }
mapfile -t fuzzers < <(basename -s .cpp fuzz/*_fuzz.cpp)
cmake --build build/fuzz --target "${fuzzers[@]}"
[ "${1:-}" != build ] || exit 0

run_fuzzer() {
  local fuzzer=$1 log=build/fuzz/$1.log
  mkdir -p "build/fuzz/corpus/$fuzzer"
  if ! build/fuzz/bin/"$fuzzer" -max_total_time="$share" -max_len=4096 -timeout=10 -rss_limit_mb=2048 -verbosity=0 \
    -print_final_stats=1 -artifact_prefix=build/fuzz/ "build/fuzz/corpus/$fuzzer" >"$log" 2>&1; then
    cat "$log"
    echo "$fuzzer encontrou uma falha"
    return 1
  fi
  echo "$fuzzer $(grep number_of_executed_units "$log")"
}
export -f run_fuzzer
export share=$(((${1:-60} + ${#fuzzers[@]} - 1) / ${#fuzzers[@]}))
printf '%s\n' "${fuzzers[@]}" | xargs -P 2 -I{} bash -c 'run_fuzzer {}'

#!/usr/bin/env bash
# Builds the fuzzers and runs each for its share of the given seconds. What breaks one is kept in build/fuzz.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}

mkdir -p build
cmake -S . -B build/fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++-14 -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g1" -DORV_FUZZ=ON -DORV_TESTS=OFF >build/fuzz.log 2>&1 || { cat build/fuzz.log; exit 1; }
mapfile -t fuzzers < <(ls fuzz/*_fuzz.cpp | xargs -n1 basename | sed 's/\.cpp$//')
cmake --build build/fuzz --target "${fuzzers[@]}"
share=$((seconds / ${#fuzzers[@]}))
for fuzzer in "${fuzzers[@]}"; do
  mkdir -p "build/fuzz/corpus/$fuzzer"
  build/fuzz/bin/"$fuzzer" -max_total_time="$share" -max_len=4096 -timeout=10 -rss_limit_mb=2048 -verbosity=0 \
    -print_final_stats=1 -artifact_prefix=build/fuzz/ "build/fuzz/corpus/$fuzzer" 2>&1 |
    grep -E 'number_of_executed_units|ERROR|SUMMARY|Abort|runtime error' || true
  [ "${PIPESTATUS[0]}" -eq 0 ] || { echo "$fuzzer encontrou uma falha"; exit 1; }
done

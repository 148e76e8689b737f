#!/usr/bin/env bash
# Builds the release and prints what was measured beside its limit. Each pair is measured in the same run,
# side by side; times are those of the process on its processors. The databases are made at first use (some
# minutes) and kept in ORVCC_BENCH_DIR. Named programs run alone: bench/run.sh door
set -euo pipefail
cd "$(dirname "$0")/.."
build=${ORVCC_BENCH_BUILD:-build/bench}
export ORVCC_BENCH_DIR=${ORVCC_BENCH_DIR:-$PWD/build/bench-data}

programs=("$@")
[ $# -gt 0 ] || programs=(working_set query door million ledger concilia)
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DORV_TESTS=ON >/dev/null
cmake --build "$build" --target "${programs[@]/#/bench_}" >&2

printf '%-58s %14s %16s %7s\n' what measured limit ratio
for program in "${programs[@]}"; do
  "$build/bin/bench_$program"
done

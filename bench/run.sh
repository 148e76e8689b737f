#!/usr/bin/env bash
# Builds the release and prints what was measured beside its limit. Each pair is measured in the same run,
# side by side; times are those of the process on its processors, but for the server and the page, which a
# person waits for. The databases are made at first use (some minutes) and kept in ORVCC_BENCH_DIR. Named
# programs run alone: bench/run.sh door
set -euo pipefail
cd "$(dirname "$0")/.."
build=${ORVCC_BENCH_BUILD:-build/bench}
export ORVCC_BENCH_DIR=${ORVCC_BENCH_DIR:-$PWD/build/bench-data}

programs=("$@")
[ $# -gt 0 ] || programs=(working_set query door million ledger statements concilia emissao reports cashflow results rel_cheque home print sheet cards cards_page server page)
targets=()
for program in "${programs[@]}"; do
  if [ "$program" = page ]; then
    # Times in the browser; needs Chromium and web/node_modules.
    targets+=(orvcc orvCC)
    (cd web && { [ -d node_modules ] || npm ci --silent; } && npm run --silent build) >&2
  else
    targets+=("bench_$program")
  fi
done
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DORV_TESTS=OFF -DORV_BENCH=ON >/dev/null
cmake --build "$build" --target "${targets[@]}" >&2

printf '%-58s %14s %16s %7s\n' what measured limit ratio
for program in "${programs[@]}"; do
  if [ "$program" = page ]; then
    ORVCC="$build/bin/orvcc" node bench/page.mjs
  else
    "$build/bin/bench_$program"
  fi
done

#!/usr/bin/env bash
# Looks for races between the network, its workers and the sessions: the server's tests of connections that come,
# ask and go, under ThreadSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."

mkdir -p build
cmake --preset tsan >build/tsan.log 2>&1 || { cat build/tsan.log; exit 1; }
cmake --build --preset tsan
# The engine is not instrumented: what it does under its own locks would be taken for races.
TSAN_OPTIONS="halt_on_error=1 suppressions=$PWD/scripts/tsan.supp" build/tsan/bin/test_server \
  --gtest_brief=1 --gtest_filter='HostileTest.WhoHangsUp*:HostileTest.SpoiltFrames*:ServerTest.StrangersKeepNobodyOut'

#!/usr/bin/env bash
# Every test (unit and integration) in the AddressSanitizer + UndefinedBehaviorSanitizer build, then the programs that
# run threads again under ThreadSanitizer, then the same sources cross-built for 64-bit Windows with every test run
# under Wine, then the source formatting check.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh --windows
cmake --preset asan
cmake --build --preset asan
ctest --preset asan --parallel 2 --timeout 300 --no-tests=error

cmake --preset tsan
cmake --build --preset tsan --target threaded_tests
ctest --preset tsan --parallel 2 --timeout 300 -L threads --no-tests=error

cmake --preset windows
cmake --build --preset windows
ctest --preset windows --parallel 2 --timeout 300 --no-tests=error

scripts/check-format.sh

#!/usr/bin/env bash
# Every test (unit and integration) in the AddressSanitizer + UndefinedBehaviorSanitizer build.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset asan
cmake --build --preset asan
ctest --preset asan --parallel 2 --timeout 600

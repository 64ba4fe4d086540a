#!/usr/bin/env bash
# The main job: set up, build (optimised), and run Talvir against the bundled simulated cameras.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh --bench
cmake --preset default
cmake --build --preset default

bin=build/default/bin
echo
echo "== Devices discovered through every bundled simulated producer =="
"$bin/talvir-cli" discover

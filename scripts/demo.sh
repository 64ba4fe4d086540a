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
echo
echo "== 200 frames from the simulated colour camera in each grab mode, the last one saved as a PNG =="
for mode in direct newest fresh; do
  "$bin/talvir-cli" grab --serial SIM00002 --mode "$mode" --count 200 --save "build/default/sim-colour-$mode.png"
done
echo
echo "== A simulated GigE camera that goes away after 100 frames (notification 1001 through the helper library) =="
"$bin/talvir-cli" watch --serial GEV00001 --seconds 2 --set SimLoseAfterFrames=100

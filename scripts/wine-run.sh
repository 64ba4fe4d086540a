#!/usr/bin/env bash
# Runs a Windows program of the cross build under Wine: the emulator that ctest and the test discovery use.
# Wine's helper processes (its server and the services it starts with a prefix) would inherit the caller's output
# pipe and keep ctest waiting for them. So the prefix is made once and the server is kept alive, both detached with
# their output sent to /dev/null, before the program runs.
set -euo pipefail
export WINEDEBUG="${WINEDEBUG:--all}"
# No Mono or Gecko installer dialogs when a prefix is made.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"
prefix="${WINEPREFIX:-$HOME/.wine}"
mkdir -p "$(dirname "$prefix")"
(
  # Parallel test programs wait here for the one that makes the prefix.
  flock 9
  # The server and Wine's services outlive this script: they must not inherit the lock (9>&-), or they would hold
  # it for good and every later program would wait here.
  wineserver -p600 </dev/null >/dev/null 2>&1 9>&- || true
  if [ ! -f "$prefix/system.reg" ]; then
    wineboot -i </dev/null >/dev/null 2>&1 9>&- || true
  fi
) 9>"${prefix}.lock"
exec wine "$@"

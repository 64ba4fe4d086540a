#!/usr/bin/env bash
# Runs a Windows program of the cross build under Wine: the emulator that ctest and the test discovery use.
# Wine's server and the services it starts with the first program (services.exe, winedevice.exe, ...) would inherit
# the caller's output pipe and keep ctest waiting for them. So, when no server runs yet for the prefix, the prefix
# is made if needed, the server is started to stay 10 minutes after the last program, and the services are started
# by a first program, all detached, with their output sent to /dev/null. Only then does the program itself run.
set -euo pipefail
export WINEDEBUG="${WINEDEBUG:--all}"
# No Mono or Gecko installer dialogs when a prefix is made.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"
prefix="${WINEPREFIX:-$HOME/.wine}"
mkdir -p "$prefix"

# True when a server runs for the prefix: its socket is server-<device>-<inode>/socket (numbers in hex) in Wine's
# folder under /tmp (/tmp/.wine-<uid>, or a /tmp/wine-XXXXXX folder of its own making).
server_running() {
  local device inode name socket
  read -r device inode < <(stat -c '%d %i' "$prefix")
  name=$(printf 'server-%x-%x' "$device" "$inode")
  for socket in "/tmp/.wine-$(id -u)/$name/socket" /tmp/wine-*/"$name"/socket; do
    [ -S "$socket" ] && return 0
  done
  return 1
}

(
  # Parallel test programs wait here for the one that prepares the prefix. The server and the services outlive this
  # script, so they must not inherit the lock (9>&-), or they would hold it for good.
  flock 9
  if ! server_running; then
    if [ ! -f "$prefix/system.reg" ]; then
      # A new prefix: make it with a server of its own, and wait until that server has ended, that is until every
      # process of the making has finished. A program started while the making still ran could wait forever.
      wineboot -i </dev/null >/dev/null 2>&1 9>&- || true
      wineserver -w </dev/null >/dev/null 2>&1 9>&- || true
    fi
    wineserver -p600 </dev/null >/dev/null 2>&1 9>&- || true
    wineboot </dev/null >/dev/null 2>&1 9>&- || true
  fi
) 9>"${prefix}.lock"
exec wine "$@"

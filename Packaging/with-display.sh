#!/usr/bin/env bash
# Runs a command on a new X display in memory: with-display.sh WIDTHxHEIGHT COMMAND [ARGUMENT...]
# The server itself picks a display that is free, so that many may start at the same time.
set -euo pipefail

size=$1
shift
folder=$(mktemp -d)
server=
trap '[ -z "$server" ] || kill "$server" 2>/dev/null; rm -rf "$folder"' EXIT

mkfifo "$folder/number"
# With a reset whenever its last client goes, it would turn away another that comes at that moment.
Xvfb -noreset -displayfd 3 -screen 0 "${size}x24" -nolisten tcp 3>"$folder/number" 2>"$folder/log" &
server=$!
if ! read -r -t 30 number <"$folder/number"; then
  cat "$folder/log" >&2
  exit 1
fi
export DISPLAY=:$number XDG_RUNTIME_DIR=$folder LIBGL_ALWAYS_SOFTWARE=1
"$@"

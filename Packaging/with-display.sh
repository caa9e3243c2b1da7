#!/usr/bin/env bash
# Runs a command on a new X display in memory: with-display.sh WIDTHxHEIGHT COMMAND [ARGUMENT...]
# The server itself picks a free display, so that several can start at the same time.
set -euo pipefail

size=$1
shift
folder=$(mktemp -d)
server=
trap '[ -z "$server" ] || kill "$server" 2>/dev/null; rm -rf "$folder"' EXIT

mkfifo "$folder/number"
# If it reset itself when its last client ends, it would refuse another that connects at that moment.
Xvfb -noreset -displayfd 3 -screen 0 "${size}x24" -nolisten tcp 3>"$folder/number" 2>"$folder/log" &
server=$!
if ! read -r -t 30 number <"$folder/number"; then
  cat "$folder/log" >&2
  exit 1
fi
export DISPLAY=:$number XDG_RUNTIME_DIR=$folder LIBGL_ALWAYS_SOFTWARE=1
"$@"

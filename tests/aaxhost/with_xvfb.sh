#!/usr/bin/env bash
# Runs a command with DISPLAY set to a virtual X server of its own. Xvfb
# picks a free display itself (-displayfd), so tests may run in parallel.
set -euo pipefail
fifo="$(mktemp -u)"
mkfifo "$fifo"
Xvfb -displayfd 3 -screen 0 1920x1200x24 -nolisten tcp 3>"$fifo" >/dev/null 2>&1 &
server=$!
trap 'kill "$server" 2>/dev/null || true; rm -f "$fifo"' EXIT
read -r display <"$fifo"
DISPLAY=":$display" "$@"

#!/bin/sh
# Loads a bundle whose plug-in cannot work through aaxhost, as a host would.
# The instance must still load and render, offer the master bypass and no
# other parameter, and the log must say why.
#   run_broken_bundle.sh <aaxhost> <bundle folder> <work folder> <expected log text>...
set -u
host="$1"; bundle="$2"; work="$3"; shift 3

rm -rf "$work"; mkdir -p "$work"
resources="$bundle/Contents/Resources"
mkdir -p "$resources"
conf="$resources/log.conf"
{
    echo "OutputFile $work/wrapper.log"
    for category in gui parameters fakehost process description bundle midi warning init; do
        echo "$category debug"
    done
} > "$conf"
trap 'rm -f "$conf"' EXIT

failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

"$host" render "$bundle" --out "$work/plain.wav" --seconds 0.05 --test-input --no-progress \
    > "$work/plain.txt" 2>&1 || fail "plain render failed: $(tail -n 5 "$work/plain.txt")"
"$host" render "$bundle" --out "$work/bypass.wav" --seconds 0.05 --test-input --bypass --no-progress \
    > "$work/bypass.txt" 2>&1 || fail "render with the master bypass failed: $(tail -n 5 "$work/bypass.txt")"
if "$host" render "$bundle" --out "$work/set.wav" --seconds 0.05 --set 0=0.5 --no-progress \
    > "$work/set.txt" 2>&1; then
    fail "parameter \"0\" exists although the plug-in never loaded"
fi

# The writer thread empties the rings on a timer; the instance is gone by
# now, so the file is complete.
log=$(cat "$work"/wrapper.log* 2>/dev/null)
[ -n "$log" ] || fail "no log written to $work/wrapper.log*"
for expected in "$@"; do
    printf '%s' "$log" | grep -qF -- "$expected" || fail "log lacks \"$expected\""
done

if [ "$failures" -ne 0 ]; then
    echo "--- log ---"; printf '%s\n' "$log" | tail -n 40
    exit 1
fi
echo "broken bundle handled"

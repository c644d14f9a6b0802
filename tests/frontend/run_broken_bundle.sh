#!/bin/sh
# Loads a bundle whose plug-in cannot work through aaxhost, as a host would.
# It must still render, with and without the master bypass, offer no other
# parameter, and its log must say why.
#   run_broken_bundle.sh <aaxhost> <bundle folder> <work folder> <expected log text>...
set -u
host="$1"; bundle="$2"; work="$3"; shift 3
rm -rf "$work"; mkdir -p "$work" "$bundle/Contents/Resources"
conf="$bundle/Contents/Resources/log.conf"
{
    echo "OutputFile $work/wrapper.log"
    for category in gui parameters fakehost process description bundle midi warning init; do
        echo "$category debug"
    done
} > "$conf"
trap 'rm -f "$conf"' EXIT

failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
render() { n="$1"; shift; "$host" render "$bundle" --out "$work/$n.wav" --seconds 0.05 --no-progress "$@" > "$work/$n.txt" 2>&1; }

render plain --test-input || fail "plain render failed: $(tail -n 5 "$work/plain.txt")"
render bypass --test-input --bypass || fail "bypassed render failed: $(tail -n 5 "$work/bypass.txt")"
render set --set 0=0.5 && fail "parameter \"0\" exists although the plug-in never loaded"

# The instance is gone by now, so the writer thread has emptied the rings.
log=$(cat "$work"/wrapper.log* 2>/dev/null)
[ -n "$log" ] || fail "no log written to $work/wrapper.log*"
for expected in "$@"; do
    printf '%s' "$log" | grep -qF -- "$expected" || fail "log lacks \"$expected\""
done
[ "$failures" -eq 0 ] && { echo "broken bundle handled"; exit 0; }
echo "--- log ---"; printf '%s\n' "$log" | tail -n 40
exit 1

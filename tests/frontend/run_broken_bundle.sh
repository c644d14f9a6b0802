#!/bin/sh
# Loads a bundle whose plug-in cannot work through aaxhost, as a host would.
# The bundle itself must load and describe itself, saying that its plug-in
# is not loaded; rendering, listing parameters and opening the view must
# fail with the documented message instead of passing silence off as a
# result; the log must say why.
#   run_broken_bundle.sh <aaxhost> <bundle folder> <work folder> <reason text> <expected log text>...
# In a log text, @BUNDLE@ stands for the bundle folder.
set -u
host="$1"; bundle="$2"; work="$3"; reason="$4"; shift 4
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
message="aaxhost: error: the wrapped plug-in could not be loaded: "
refused() {
    n="$1"; shift
    "$host" "$@" > "$work/$n.txt" 2>&1
    code=$?
    [ "$code" -eq 1 ] || fail "$n exited $code, not 1: $(tail -n 3 "$work/$n.txt")"
    grep -qF -- "$message" "$work/$n.txt" || fail "$n does not say \"$message\": $(tail -n 3 "$work/$n.txt")"
    grep -qF -- "$reason" "$work/$n.txt" || fail "$n does not give the reason \"$reason\": $(tail -n 3 "$work/$n.txt")"
}

refused render render "$bundle" --out "$work/plain.wav" --seconds 0.05 --no-progress --test-input
refused params params "$bundle"
refused gui gui "$bundle" --ticks 1
"$host" describe "$bundle" > "$work/describe.txt" 2>&1 || fail "describe failed: $(tail -n 3 "$work/describe.txt")"
grep -qF "(not loaded: " "$work/describe.txt" || fail "describe does not say the plug-in is not loaded"

# The instances are gone by now, so the writer thread has emptied the rings.
log=$(cat "$work"/wrapper.log* 2>/dev/null)
[ -n "$log" ] || fail "no log written to $work/wrapper.log*"
for expected in "$@"; do
    expected=$(printf '%s' "$expected" | sed "s|@BUNDLE@|$bundle|")
    printf '%s' "$log" | grep -qF -- "$expected" || fail "log lacks \"$expected\""
done
[ "$failures" -eq 0 ] && { echo "broken bundle refused as documented"; exit 0; }
echo "--- log ---"; printf '%s\n' "$log" | tail -n 40
exit 1

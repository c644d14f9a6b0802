#!/bin/sh
# Bundle layout and the build identity baked into the binary.
#   check_layout.sh <bundle folder> <Name> <git revision> [<resource file name>]
set -eu
bundle="$1"; name="$2"; revision="$3"; resource="${4:-}"
so="$bundle/Contents/x86_64-linux/$name.so"
[ -f "$so" ] || { echo "missing $so"; exit 1; }
[ "${#revision}" -eq 7 ] || { echo "revision '$revision' is not 7 characters"; exit 1; }
strings -a "$so" | grep -qx "$revision" || { echo "revision $revision not embedded in $so"; exit 1; }
if [ -n "$resource" ]; then
    [ -e "$bundle/Contents/Resources/$resource" ] || { echo "missing Resources/$resource"; exit 1; }
fi
echo "layout OK"

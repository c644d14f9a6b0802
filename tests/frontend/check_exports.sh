#!/bin/sh
# A bundle must export the seven ACF entry points and nothing else, or hosts
# may bind to our internals (or we to theirs).
set -eu
bundle_so="$1"
actual=$(nm -D --defined-only "$bundle_so" | awk '{print $3}' | sort)
expected=$(printf '%s\n' ACFCanUnloadNow ACFGetClassFactory ACFGetSDKVersion ACFRegisterComponent \
    ACFRegisterPlugin ACFShutdown ACFStartup | sort)
if [ "$actual" != "$expected" ]; then
    echo "exported symbols differ from the seven ACF entry points:"
    echo "$actual"
    exit 1
fi
echo "exports OK"

#!/usr/bin/env bash
# Builds the consumer project (project/, kept out of the test tree, which
# adds every folder holding a CMakeLists.txt) in a temporary folder and plays its bundle:
# only the consumer's bundle may appear, and it must sound.
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cmake -S "$ROOT/tests/consumer/project" -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DAAXW_ROOT="$ROOT" -DVST3_SDK_ROOT="$ROOT/third_party/VST3_SDK" > "$work/configure.log"
cmake --build "$work/build" -j "${JOBS:-2}" > "$work/build.log" || { tail -n 30 "$work/build.log"; exit 1; }
bundles=$(cd "$work/build" && find . -name '*.aaxplugin' -type d | sort)
if [ "$bundles" != "./bundles/amsynth.aaxplugin" ]; then
  echo "consumer: expected only ./bundles/amsynth.aaxplugin, found: $bundles"; exit 1
fi
"$work/build/aaxwrapper/tools/aaxhost/aaxhost" render "$work/build/bundles/amsynth.aaxplugin" \
  --midi "$ROOT/examples/demo/demo.mid" --seconds 3 --out "$work/out.wav" --json --no-progress > "$work/render.json"
python3 - "$work/render.json" <<'PY'
import json, sys
text = open(sys.argv[1]).read()
report = json.loads(text[text.index('{\n'):])
peak = max(c["peak"] for c in report["instances"][0]["channels"][:2])
if peak < 0.01:
    sys.exit("consumer: the bundle rendered silence (peak %g)" % peak)
print("consumer: add_subdirectory bundle renders, peak %.3f" % peak)
PY

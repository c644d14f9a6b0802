#!/usr/bin/env bash
# Builds the consumer project (project/, kept out of the test tree, which
# adds every folder holding a CMakeLists.txt) in a temporary folder, in one
# of the two ways the README gives, and plays its bundle: only the
# consumer's bundle may appear, it must sound and say it was not built from
# a git checkout.
#   run.sh subdirectory            add_subdirectory of this checkout
#   run.sh package BUILD_DIR       find_package against BUILD_DIR installed
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
mode="${1:?usage: run.sh subdirectory|package BUILD_DIR}"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cp -r "$ROOT/tests/consumer/project" "$work/src"   # outside any git checkout
args=(-G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTEST_VST3_BUNDLE="$ROOT/build/vst3/MrvTestSynth.vst3")
case "$mode" in
  subdirectory)
    args+=(-DAAXW_ROOT="$ROOT")
    # Only the bundles: aaxhost is the same program the main build made, and
    # building it a second time cost CI minutes.
    targets=(--target consumer_amsynth_aax consumer_renamed_aax)
    aaxhost="$ROOT/build/tools/aaxhost/aaxhost" ;;
  package)
    cmake --install "${2:?build folder to install}" --prefix "$work/prefix" > "$work/install.log"
    args+=(-DCMAKE_PREFIX_PATH="$work/prefix")
    targets=()
    aaxhost="$work/prefix/bin/aaxhost" ;;
  *) echo "consumer: unknown mode $mode"; exit 2 ;;
esac
cmake -S "$work/src" -B "$work/build" "${args[@]}" > "$work/configure.log" || { cat "$work/configure.log"; exit 1; }
cmake --build "$work/build" -j "${JOBS:-2}" "${targets[@]}" > "$work/build.log" || { tail -n 30 "$work/build.log"; exit 1; }
bundles=$(cd "$work/build" && find . -name '*.aaxplugin' -type d | sort)
expected="$(printf './bundles/Renamed Synth.aaxplugin\n./bundles/amsynth.aaxplugin')"
if [ "$bundles" != "$expected" ]; then
  echo "consumer ($mode): expected only the two bundles of the project, found: $bundles"; exit 1
fi
bundle="$work/build/bundles/amsynth.aaxplugin"
printf 'fakehost notice\nOutputFile %s\n' "$work/wrapper.log" > "$bundle/Contents/Resources/log.conf"
"$aaxhost" render "$bundle" --midi "$ROOT/examples/demo/demo.mid" --seconds 3 --out "$work/out.wav" \
  --json --no-progress > "$work/render.json"
grep -qF "## Git Revision        : unknown" "$work"/wrapper.log* ||
  { echo "consumer ($mode): the log does not give the revision as unknown"; exit 1; }
"$aaxhost" render "$work/build/bundles/Renamed Synth.aaxplugin" --midi "$ROOT/examples/demo/demo.mid" --seconds 3 \
  --out "$work/renamed.wav" --json --no-progress > "$work/renamed.json"
python3 - "$mode" "$work/render.json" "$work/renamed.json" <<'PY'
import json, sys
for path in sys.argv[2:]:
    text = open(path).read()
    report = json.loads(text[text.index('{\n'):])
    peak = max(c["peak"] for c in report["instances"][0]["channels"][:2])
    if peak < 0.01:
        sys.exit("consumer (%s): %s: the bundle rendered silence (peak %g)" % (sys.argv[1], path, peak))
    print("consumer (%s): %s renders, peak %.3f" % (sys.argv[1], path.rsplit("/", 1)[-1], peak))
PY

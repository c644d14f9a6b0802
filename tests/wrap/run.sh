#!/usr/bin/env bash
# scripts/wrap as a plug-in maker runs it: Debian's amsynth (VST 2) and our
# VST 3 test synth each become a bundle in one command, named after the
# file, carrying the vendor and version the plug-in reports, and playing.
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
BUILD="${1:-$ROOT/build}"
out="$(mktemp -d)"
trap 'rm -rf "$out"' EXIT
# The package this build installs, so that no second build of the wrapper is
# made (a plug-in maker's first run builds one in build-wrap/).
cmake --install "$BUILD" --prefix "$out/prefix" > "$out/install.log"
aaxhost="$out/prefix/bin/aaxhost"

wrap() {  # wrap PLUGIN EXPECTED-BUNDLE MANUFACTURER VERSION
  local log="$out/wrap.log"
  "$ROOT/scripts/wrap" "$1" --package "$out/prefix" --out "$out" > "$log" 2>&1 || { cat "$log"; echo "wrap: $1 failed"; exit 1; }
  local bundle; bundle="$(tail -n 1 "$log")"
  [ "$bundle" = "$out/$2" ] || { cat "$log"; echo "wrap: last line is '$bundle', not $out/$2"; exit 1; }
  [ -f "$bundle/Contents/x86_64-linux/${2%.aaxplugin}.so" ] || { echo "wrap: no library in $bundle"; exit 1; }
  printf 'fakehost notice\nOutputFile %s\n' "$out/wrapper.log" > "$bundle/Contents/Resources/log.conf"
  rm -f "$out"/wrapper.log*
  "$aaxhost" describe "$bundle" > "$out/describe.txt" 2>&1
  rm "$bundle/Contents/Resources/log.conf"
  grep -qF "Manufacturer:    $3" "$out/describe.txt" || { cat "$out/describe.txt"; echo "wrap: manufacturer is not $3"; exit 1; }
  grep -qF "## AAX Wrapper Version : $4" "$out"/wrapper.log* ||
    { cat "$out"/wrapper.log*; echo "wrap: version is not $4"; exit 1; }
  grep -q "main output peak" "$log" || { cat "$log"; echo "wrap: no check ran"; exit 1; }
  grep -q "^wrap: validate: PASS description" "$log" || { cat "$log"; echo "wrap: aaxhost validate did not run"; exit 1; }
  echo "wrap: $2 built, identity from the plug-in, plays"
}
wrap /usr/lib/vst/amsynth_vst.so amsynth_vst.aaxplugin "Nick Dowell" 1.0.0   # it reports no version
wrap "$BUILD/vst3/MrvTestSynth.vst3" MrvTestSynth.aaxplugin "Morvane Test" 1.2.3

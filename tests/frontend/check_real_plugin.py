#!/usr/bin/env python3
"""A bundle around a real VST 2 instrument found by the wrapper's own search
of the system's plug-in folder: it must load, publish the plug-in's
parameters and render with MIDI into all 34 outputs, and its log must say
that the plug-in is not the bundle's own."""
import glob
import json
import os
import subprocess
import sys

host, bundle, midi, out_wav = sys.argv[1:5]
log_base = out_wav + ".log"
for old in glob.glob(log_base + "*"):
    os.remove(old)
resources = os.path.join(bundle, "Contents", "Resources")
os.makedirs(resources, exist_ok=True)
conf = os.path.join(resources, "log.conf")
with open(conf, "w") as f:
    f.write("fakehost notice\nOutputFile %s\n" % log_base)
# --set fails unless the plug-in's parameter 0 was published.
try:
    run = subprocess.run([host, "render", bundle, "--out", out_wav, "--midi", midi, "--seconds", "2", "--json",
                          "--no-progress", "--set", "0=0.5"], capture_output=True, text=True)
finally:
    os.remove(conf)
if run.returncode != 0:
    sys.exit("render failed:\n%s%s" % (run.stdout[-2000:], run.stderr[-2000:]))
channels = json.loads(run.stdout[run.stdout.index('{\n'):])["instances"][0]["channels"]
if len(channels) != 34:
    sys.exit("expected 34 output channels, got %d" % len(channels))
log = "".join(open(p, errors="replace").read() for p in glob.glob(log_base + "*"))
expected = "VST file found on /usr/lib/vst/Kars-vst.so, outside the bundle's resource folders"
if expected not in log:
    sys.exit("the log does not say \"%s\":\n%s" % (expected, log[-2000:]))
print("real plug-in OK, main output peak %.3f" % max(c["peak"] for c in channels[:2]))

#!/usr/bin/env python3
"""A bundle around a real VST 2 instrument found by the wrapper's own search
of the system's plug-in folder: it must load, publish the plug-in's
parameters and render with MIDI into all 34 outputs."""
import json
import subprocess
import sys

host, bundle, midi, out_wav = sys.argv[1:5]
# --set fails unless the plug-in's parameter 0 was published.
run = subprocess.run([host, "render", bundle, "--out", out_wav, "--midi", midi, "--seconds", "2", "--json",
                      "--no-progress", "--set", "0=0.5"], capture_output=True, text=True)
if run.returncode != 0:
    sys.exit("render failed:\n%s%s" % (run.stdout[-2000:], run.stderr[-2000:]))
channels = json.loads(run.stdout[run.stdout.index('{\n'):])["instances"][0]["channels"]
if len(channels) != 34:
    sys.exit("expected 34 output channels, got %d" % len(channels))
print("real plug-in OK, main output peak %.3f" % max(c["peak"] for c in channels[:2]))

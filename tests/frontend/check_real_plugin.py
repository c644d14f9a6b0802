#!/usr/bin/env python3
"""A bundle around a real VST 2 instrument found in the system's plug-in
folder: it must load, publish the plug-in's parameters, and render with MIDI
and under bypass without failing. Whether the notes sound is the VST 2 back
end's matter and is reported, not asserted, here."""
import json
import subprocess
import sys

host, bundle, midi, out_wav = sys.argv[1:5]

def render(*extra):
    run = subprocess.run([host, "render", bundle, "--out", out_wav, "--midi", midi, "--seconds", "2",
                          "--json", "--no-progress", *extra], capture_output=True, text=True)
    if run.returncode != 0:
        sys.exit("render %s failed:\n%s%s" % (" ".join(extra), run.stdout[-2000:], run.stderr[-2000:]))
    text = run.stdout
    return json.loads(text[text.index('{\n'):])

report = render()
peaks = [c["peak"] for c in report["instances"][0]["channels"]]
if len(peaks) != 34:
    sys.exit("expected 34 output channels, got %d" % len(peaks))
render("--set", "0=0.5")  # fails unless the plug-in's parameter 0 was published
bypassed = render("--bypass")
if max(c["peak"] for c in bypassed["instances"][0]["channels"][:2]) != 0.0:
    sys.exit("bypass without test input should pass the silent input through")
print("real plug-in OK, main output peak %.3f" % max(peaks[:2]))

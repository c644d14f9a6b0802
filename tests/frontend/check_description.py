#!/usr/bin/env python3
"""The default bundle's effect as a real host sees it (aaxhost describe)."""
import json
import subprocess
import sys

host, bundle = sys.argv[1], sys.argv[2]
run = subprocess.run([host, "describe", bundle, "--json"], capture_output=True, text=True, check=True)
out = run.stdout
# Registration prints its own lines before the JSON document.
desc = json.loads(out[out.index('{\n'):] if '{\n' in out else out[out.index('{'):])

def fourcc(text):
    return int.from_bytes(text.encode(), "big")

effect, = desc["effects"]
component, = effect["components"]
name = "Tavrion V2"
expected_calls = (["AddAudioIn", "AddAudioOut", "AddAudioBufferLength"] + ["AddMIDINode"] * 3 +
                  ["AddSampleRate", "AddDataInPort", "AddPrivateData"] + ["AddAuxOutputStem"] * 16 +
                  ["NewPropertyMap", "AddProcessProc_Native"])
checks = {
    "package naming": (desc["manufacturer"], desc["package_names"], desc["package_version"]) == ("Morvane", [name], 1),
    "effect id is the bundle id": effect["effect_id"] == "com.morvane.aax.tavrionv2",
    "name and instrument category": (effect["names"], effect["categories"]) == ([name], [0x800]),
    "factories": [p["id"] for p in effect["procedures"]] == [0, 1],
    "call order": component["calls"] == expected_calls,
    "fields": [(f["call"], f["index"]) for f in component["fields"]] == [
        ("AddAudioIn", 5), ("AddAudioOut", 6), ("AddAudioBufferLength", 7), ("AddMIDINode", 2),
        ("AddMIDINode", 3), ("AddMIDINode", 4), ("AddSampleRate", 1), ("AddDataInPort", 0), ("AddPrivateData", 8)],
    "bypass port": [(f["packet_size"], f["port_type"]) for f in component["fields"] if f["index"] == 0] == [(4, 1)],
    "private data": [(f["data_size"], f["options"]) for f in component["fields"] if f["index"] == 8] == [(8, 0)],
    "MIDI nodes": [(m["index"], m["type"], m["name"], m["channel_mask"]) for m in component["midi_nodes"]] == [
        (2, 0, name, 0xFFFF), (3, 1, name, 0xFFFF), (4, 3, name, 0xFFFF)],
    "stems": [(s["index"], s["format"], s["name"]) for s in component["stems"]] == [
        (0, 0x10002, "OutputStem_%d" % i) for i in range(16)],
    "process procedure": [(p["kind"], p["instance_init"], p["background"]) for p in component["process_procs"]] == [
        ("native", False, False)],
    "properties in order": [(p["id"], p["value"]) for p in component["process_procs"][0]["properties"]] == [
        (11, fourcc("Mrvn")), (12, fourcc("TvV2")), (60, 1), (151, 0), (51, 0x10002), (52, 0x10002),
        (13, fourcc("TvV2")), (58, 0x7FFFFFFF)],
}
for line in ("Entry point on our plugin", "AAXWrapper_GetPlugInDescription", "AAXWrapper_DescribeAlgorithmComponent"):
    # The host may route the plug-in's standard output to its own stderr.
    checks["registration line " + line] = (" %s %s \n" % (line, name)) in out + run.stderr

failed = [what for what, ok in checks.items() if not ok]
for what in failed:
    print("FAIL:", what)
if failed:
    print(json.dumps(desc, indent=1)[:4000])
    sys.exit(1)
print("description OK")

#!/usr/bin/env python3
"""Checks one wrapped zoo plug-in as a plug-in maker would before shipping.

    zoo/check.py AAXHOST BUNDLE KIND RESULT.json [--level N] [--seed N]
                 [--midi FILE.mid] [--work DIR]

Runs, with DISPLAY set (run it under tests/aaxhost/with_xvfb.sh):
  1. `aaxhost validate --json`: a failing check passes here only when
     aaxhost found the same failure with the plug-in hosted directly (the
     plug-in's fault); the wrapper's failures fail the zoo;
  2. `aaxhost render --json`: MIDI for an instrument, the test signal for
     everything else; some channel must sound and none may hold NaN or
     infinity;
  3. `aaxhost gui --screenshot`: where the plug-in has an editor, its window
     must show more than one colour.
Writes RESULT.json for scripts/zoo's table and exits 1 when the wrapper is at
fault anywhere. ZOO_LEVEL in the environment overrides --level.
"""
import argparse
import json
import os
import struct
import subprocess
import sys
import zlib

SOUND_FLOOR = 1e-4  # -80 dBFS: well above dither, far below any real output


def run(command, timeout):
    try:
        p = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=timeout)
        return p.returncode, p.stdout.decode(errors="replace"), p.stderr.decode(errors="replace")
    except subprocess.TimeoutExpired:
        return -1, "", "timed out after %d s" % timeout


def last_line(text):
    lines = [line for line in text.strip().splitlines() if line.strip()]
    return lines[-1] if lines else ""


def validate(aaxhost, bundle, level, seed):
    code, out, err = run([aaxhost, "validate", bundle, "--level", str(level), "--seed", str(seed), "--json",
                          "--no-progress"], 1800)
    try:
        report = json.loads(out)
    except ValueError:
        return {"ran": False, "reason": last_line(err) or "validate printed no report (exit %d)" % code}, False
    checks = {}
    wrapper_fault = False
    for c in report.get("checks", []):
        if c.get("passed"):
            checks[c["name"]] = {"result": "pass"}
            continue
        fault = c.get("fault", "wrapper")
        wrapper_fault = wrapper_fault or fault != "plug-in"
        checks[c["name"]] = {"result": "fail", "fault": fault, "reason": c.get("reason", "")}
    return {"ran": True, "level": level, "seed": seed, "checks": checks}, wrapper_fault


def render(aaxhost, bundle, kind, midi, work):
    out = os.path.join(work, "render.wav")
    inputs = ["--midi", midi, "--seconds", "4"] if kind == "instrument" else ["--test-input", "--seconds", "2"]
    code, text, err = run([aaxhost, "render", bundle, "--out", out, "--json", "--no-progress"] + inputs, 600)
    try:
        report = json.loads(text)
    except ValueError:
        return {"ok": False, "reason": last_line(err) or "render printed no report (exit %d)" % code}
    channels = report["instances"][0]["channels"] if report.get("instances") else []
    peak = max([c.get("peak", 0.0) for c in channels] or [0.0])
    bad = sum(c.get("nan", 0) + c.get("inf", 0) for c in channels)
    result = {"ok": code == 0 and bad == 0 and peak > SOUND_FLOOR, "peak": peak, "nan_or_inf": bad}
    if code != 0:
        result["reason"] = last_line(err) or "exit %d" % code
    elif bad:
        result["reason"] = "%d NaN or infinite samples" % bad
    elif peak <= SOUND_FLOOR:
        result["reason"] = "silent (peak %.2g)" % peak
    if code == 0 and not result["ok"]:
        # Silent or not finite: is it the same with the plug-in hosted directly?
        direct = render_direct(aaxhost, bundle, inputs)
        result["direct"] = direct
        silent_too = peak > SOUND_FLOOR or (direct and direct["peak"] <= SOUND_FLOOR)
        bad_too = bad == 0 or (direct and direct["bad"] > 0)
        if direct and silent_too and bad_too:
            result["fault"] = "plug-in"
            result["reason"] += "; hosted directly it does the same (peak %.2g)" % direct["peak"]
    return result


def render_direct(aaxhost, bundle, inputs):
    code, text, _ = run([aaxhost, "render-direct", bundle, "--json"] + inputs, 600)
    try:
        channels = json.loads(text)["channels"]
    except (ValueError, KeyError):
        return None
    return {"peak": max([c["peak"] for c in channels] or [0.0]), "bad": sum(c["nan"] + c["inf"] for c in channels)}


def png_colours(path):
    """(pixels, pixels unlike the most common colour) of an 8-bit RGB/RGBA PNG."""
    with open(path, "rb") as f:
        data = f.read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise ValueError("not a PNG file")
    pos, idat, header = 8, b"", None
    while pos + 8 <= len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + length]
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            idat += body
        pos += 12 + length
    width, height, depth, colour = header[0], header[1], header[2], header[3]
    if depth != 8 or colour not in (2, 6):
        raise ValueError("unexpected PNG format")
    bpp = 3 if colour == 2 else 4
    raw, stride = zlib.decompress(idat), width * bpp
    previous, counts = bytearray(stride), {}
    for y in range(height):
        start = y * (stride + 1)
        kind, line = raw[start], bytearray(raw[start + 1:start + 1 + stride])
        for i in range(stride):
            left = line[i - bpp] if i >= bpp else 0
            up, corner = previous[i], previous[i - bpp] if i >= bpp else 0
            if kind == 1:
                line[i] = (line[i] + left) & 255
            elif kind == 2:
                line[i] = (line[i] + up) & 255
            elif kind == 3:
                line[i] = (line[i] + (left + up) // 2) & 255
            elif kind == 4:
                p = left + up - corner
                pa, pb, pc = abs(p - left), abs(p - up), abs(p - corner)
                line[i] = (line[i] + (left if pa <= pb and pa <= pc else up if pb <= pc else corner)) & 255
        for x in range(0, stride, bpp):
            pixel = bytes(line[x:x + 3])
            counts[pixel] = counts.get(pixel, 0) + 1
        previous = line
    total = width * height
    return total, total - max(counts.values())


def editor(aaxhost, bundle, work):
    shot = os.path.join(work, "editor.png")
    code, text, err = run([aaxhost, "gui", bundle, "--seconds", "1.5", "--screenshot", shot, "--json"], 300)
    try:
        report = json.loads(text)
    except ValueError:
        return {"ok": False, "reason": last_line(err) or "gui printed no report (exit %d)" % code}
    size = report.get("initial_size") or {}
    if not size.get("width") or not size.get("height"):
        return {"ok": True, "has_editor": False}
    if code != 0 or not os.path.exists(shot):
        return {"ok": False, "has_editor": True, "reason": last_line(err) or "no screenshot (exit %d)" % code}
    total, drawn = png_colours(shot)
    # X errors are recorded, not judged: the IEM (JUCE) editors raise some
    # here, and an editor has no direct twin to tell whose they are.
    result = {"ok": drawn * 1000 >= total, "has_editor": True, "drawn_fraction": drawn / total,
              "size": [size["width"], size["height"]], "x_errors": report.get("x_errors", 0)}
    if not result["ok"]:
        result["reason"] = "the editor's window is blank"
    return result


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("aaxhost")
    parser.add_argument("bundle")
    parser.add_argument("kind", choices=["instrument", "effect", "generator", "analyzer"])
    parser.add_argument("result")
    parser.add_argument("--level", type=int, default=5)
    parser.add_argument("--seed", type=int, default=7)
    parser.add_argument("--midi", default=os.path.join(os.path.dirname(__file__), "..", "examples", "demo",
                                                      "demo.mid"))
    parser.add_argument("--work")
    args = parser.parse_args()
    level = int(os.environ.get("ZOO_LEVEL", args.level))
    work = args.work or os.path.splitext(args.result)[0]
    os.makedirs(work, exist_ok=True)

    checks, wrapper_fault = validate(args.aaxhost, args.bundle, level, args.seed)
    sound = render(args.aaxhost, args.bundle, args.kind, args.midi, work)
    view = editor(args.aaxhost, args.bundle, work)
    result = {"bundle": args.bundle, "kind": args.kind, "validate": checks, "render": sound, "editor": view}
    with open(args.result, "w") as f:
        json.dump(result, f, indent=1)

    failures = []
    if not checks.get("ran"):
        failures.append("validate: " + checks["reason"])
    for name, c in checks.get("checks", {}).items():
        if c["result"] == "fail":
            owner = "plug-in" if c["fault"] == "plug-in" else "wrapper"
            print("validate %s: FAIL (%s) %s" % (name, owner, c["reason"]))
            if owner == "wrapper":
                failures.append("validate %s" % name)
    print("render: %s" % ("peak %.3f" % sound["peak"] if sound["ok"] else sound["reason"]))
    if not sound["ok"] and sound.get("fault") != "plug-in":
        failures.append("render: " + sound["reason"])
    print("editor: %s" % ("none" if not view.get("has_editor") else "%.1f %% drawn" % (100 * view["drawn_fraction"])
                           if view["ok"] else view["reason"]))
    if not view["ok"]:
        failures.append("editor: " + view["reason"])
    if failures:
        print("zoo: the wrapper fails %s: %s" % (os.path.basename(args.bundle), "; ".join(failures)))
        return 1
    print("zoo: %s passes" % os.path.basename(args.bundle))
    return 0


if __name__ == "__main__":
    sys.exit(main())

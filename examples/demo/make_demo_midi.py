#!/usr/bin/env python3
"""Writes demo.mid: a short type-0 Standard MIDI File (120 bpm, 4/4) used by
the README's demo render. Kept as a script so the bytes can be regenerated."""
import struct
import sys

PPQ = 480


def vlq(n):
    out = [n & 0x7F]
    n >>= 7
    while n:
        out.append((n & 0x7F) | 0x80)
        n >>= 7
    return bytes(reversed(out))


def main(path):
    events = []  # (tick, order, bytes)
    events.append((0, 0, b"\xff\x51\x03" + (500000).to_bytes(3, "big")))  # 120 bpm
    events.append((0, 0, b"\xff\x58\x04\x04\x02\x18\x08"))                 # 4/4
    chords = [(57, 60, 64), (53, 57, 60), (48, 52, 55), (55, 59, 62)]
    melody = [69, 72, 76, 74, 72, 69, 67, 64, 65, 69, 72, 71, 67, 71, 74, 72]
    for bar, chord in enumerate(chords):
        start = bar * 4 * PPQ
        for note in chord:
            events.append((start, 2, bytes([0x90, note, 80])))
            events.append((start + 4 * PPQ - 20, 1, bytes([0x80, note, 0])))
    # The melody plays on MIDI channel 2, so it also lands on its own stem.
    for i, note in enumerate(melody):
        start = i * PPQ
        events.append((start, 2, bytes([0x91, note, 100 + (i % 3) * 10])))
        events.append((start + PPQ // 2, 1, bytes([0x81, note, 0])))
    events.sort(key=lambda e: (e[0], e[1]))
    track = bytearray()
    last = 0
    for tick, _, data in events:
        track += vlq(tick - last) + data
        last = tick
    track += vlq(2 * PPQ) + b"\xff\x2f\x00"
    with open(path, "wb") as f:
        f.write(b"MThd" + struct.pack(">IHHH", 6, 0, 1, PPQ))
        f.write(b"MTrk" + struct.pack(">I", len(track)) + track)


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else "demo.mid")

#!/usr/bin/env python3
"""Writes the seed corpus: chunk data areas, valid and broken."""
import os
import struct

HERE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "corpus")
HEADER = b"\x01\x01\x01\x01"


def align(b):
    return b + b"\0" * (-len(b) % 4)


def entry(tag, name, value):
    return align(tag + name + b"\0") + value


def text(s):
    return align(s + b"\0")


ALL = HEADER + b"".join([
    entry(b"f_", b"Gain", struct.pack(">f", 1.0)),
    entry(b"l_", b"ab", struct.pack(">i", -2)),
    entry(b"d_", b"abc", struct.pack(">d", 1.5)),
    entry(b"s_", b"x", struct.pack(">h", 0x1234) + b"\0\0"),
    entry(b"r_", b"s", text(b"abc")),
    entry(b"r_", b"t", text(b"ab")),
])

SEEDS = {
    "valid_empty": HEADER,
    "valid_all_types": ALL,
    "valid_float_gain": HEADER + entry(b"f_", b"Gain", struct.pack(">f", 1.0)),
    "valid_string_padding": HEADER + entry(b"r_", b"t", text(b"ab")) + entry(b"l_", b"n", struct.pack(">i", 42)),
    "valid_wrapper_params": HEADER + entry(b"d_", b"0", struct.pack(">d", 0.5)) + entry(b"l_", b"2", struct.pack(">i", 1)),
    "invalid_short": b"\x01\x01\x01",
    "invalid_header": b"\x01\x01\x01\x02" + ALL[4:],
    "invalid_truncated_double": ALL[:40],
    "invalid_unterminated_name": HEADER + b"f_" + b"a" * 40,
    "invalid_overlong_name": HEADER + entry(b"f_", b"n" * 300, struct.pack(">f", 1.0)),
    "invalid_unknown_tag": HEADER + entry(b"x_", b"odd", b"") + entry(b"l_", b"n", struct.pack(">i", 7)),
    "invalid_open_string": HEADER + align(b"r_a\0") + b"xyzw",
}

os.makedirs(HERE, exist_ok=True)
for name, data in SEEDS.items():
    with open(os.path.join(HERE, name), "wb") as f:
        f.write(data)

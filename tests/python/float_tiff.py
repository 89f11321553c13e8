# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Uncompressed TIFF files of 32-bit float, red, green, blue and straight alpha: the smallest form that keeps every bit."""

import struct

import numpy

WIDTH, HEIGHT, BITS, COMPRESSION, PHOTOMETRIC, STRIPS, SAMPLES, ROWS, COUNTS, PLANAR, EXTRA, FORMAT = (
    256, 257, 258, 259, 262, 273, 277, 278, 279, 284, 338, 339)  # fmt: skip
SHORT, LONG = 3, 4
SIZES = {SHORT: "H", LONG: "I"}


def write(file, array):
    height, width, channels = array.shape
    pixels = array.astype("<f4").tobytes()
    fields = [(WIDTH, LONG, [width]), (HEIGHT, LONG, [height]), (BITS, SHORT, [32] * channels), (COMPRESSION, SHORT, [1]),
              (PHOTOMETRIC, SHORT, [2]), (STRIPS, LONG, [8]), (SAMPLES, SHORT, [channels]), (ROWS, LONG, [height]),
              (COUNTS, LONG, [len(pixels)]), (PLANAR, SHORT, [1]), (EXTRA, SHORT, [2]),
              (FORMAT, SHORT, [3] * channels)]  # fmt: skip
    directory = 8 + len(pixels)
    beyond = directory + 2 + 12 * len(fields) + 4
    entries, tail = b"", b""
    for tag, kind, values in fields:
        data = struct.pack("<" + SIZES[kind] * len(values), *values)
        if len(data) > 4:
            data, tail = struct.pack("<I", beyond + len(tail)), tail + data
        entries += struct.pack("<HHI", tag, kind, len(values)) + data.ljust(4, b"\0")
    file.write_bytes(struct.pack("<2sHI", b"II", 42, directory) + pixels + struct.pack("<H", len(fields)) + entries +
                     struct.pack("<I", 0) + tail)  # fmt: skip


def read(file):
    data = file.read_bytes()
    order = {b"II": "<", b"MM": ">"}[data[:2]]
    (directory,) = struct.unpack_from(order + "I", data, 4)
    (count,) = struct.unpack_from(order + "H", data, directory)
    fields = {}
    for at in range(directory + 2, directory + 2 + 12 * count, 12):
        tag, kind, length = struct.unpack_from(order + "HHI", data, at)
        if kind not in SIZES:
            continue
        size = struct.calcsize(SIZES[kind]) * length
        start = at + 8 if size <= 4 else struct.unpack_from(order + "I", data, at + 8)[0]
        fields[tag] = struct.unpack_from(order + SIZES[kind] * length, data, start)
    assert fields[COMPRESSION] == (1,) and fields[FORMAT][0] == 3 and fields[SAMPLES] == (4,) and fields[PLANAR] == (1,)
    pixels = b"".join(data[start : start + size] for start, size in zip(fields[STRIPS], fields[COUNTS]))
    return numpy.frombuffer(pixels, order + "f4").reshape(fields[HEIGHT][0], fields[WIDTH][0], 4).astype(numpy.float32)

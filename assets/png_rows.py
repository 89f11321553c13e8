# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""PNG files of 8 bits as rows of bytes, with nothing but Python, for the scripts that draw the documents' pictures."""

import struct
import zlib


def paeth(a, b, c):
    p = a + b - c
    pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
    return a if pa <= pb and pa <= pc else b if pb <= pc else c


def read_png(path):
    """Width, height and rows of 8-bit red, green, blue and straight alpha, as the program writes them."""
    data = path.read_bytes()
    at, packed = 8, b""
    while at < len(data):
        length, kind = struct.unpack_from(">I4s", data, at)
        content = data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            width, height, depth, colour = struct.unpack_from(">IIBB", content)
            if (depth, colour) not in ((8, 6), (8, 2)):
                raise ValueError(f"{path}: not 8-bit colour")
        if kind == b"IDAT":
            packed += content
        at += 12 + length
    step = 4 if colour == 6 else 3
    raw = zlib.decompress(packed)
    rows, above = [], bytearray(width * step)
    for y in range(height):
        start = y * (width * step + 1)
        kind, row = raw[start], bytearray(raw[start + 1:start + 1 + width * step])
        for i, value in enumerate(row):
            left = row[i - step] if i >= step else 0
            corner = above[i - step] if i >= step else 0
            guess = (0, left, above[i], (left + above[i]) // 2, paeth(left, above[i], corner))[kind]
            row[i] = (value + guess) & 255
        rows.append(row)
        above = row
    return width, height, step, rows


def on_ground(row, step, ground):
    """A row of opaque red, green and blue."""
    if step == 3:
        return row
    laid = bytearray()
    for x in range(0, len(row), 4):
        alpha = row[x + 3]
        laid += bytes((row[x + c] * alpha + ground[c] * (255 - alpha) + 127) // 255 for c in range(3))
    return laid


def filtered(row, above):
    """The row after the filter that gives the smallest numbers."""
    choices = []
    for kind in range(5):
        line = bytearray([kind])
        for i, value in enumerate(row):
            left = row[i - 3] if i >= 3 else 0
            corner = above[i - 3] if i >= 3 else 0
            guess = (0, left, above[i], (left + above[i]) // 2, paeth(left, above[i], corner))[kind]
            line.append((value - guess) & 255)
        choices.append(line)
    return min(choices, key=lambda line: sum(min(value, 256 - value) for value in line[1:]))


def write_png(path, width, rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    above, packed = bytes(width * 3), bytearray()
    for row in rows:
        packed += filtered(row, above)
        above = row
    header = struct.pack(">IIBBBBB", width, len(rows), 8, 2, 0, 0, 0)
    path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(bytes(packed), 9))
                     + chunk(b"IEND", b""))

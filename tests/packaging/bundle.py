# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Where the built bundle lies, and the parts of its executable as read by our own few lines."""

import os
import pathlib
import struct
import subprocess
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
CROSS = pathlib.Path(os.environ.get("MACOS_CROSS", ROOT / "build" / "macos-cross"))
BUNDLE = CROSS / "Umbrant 2.plugin"
EXECUTABLE = BUNDLE / "Contents" / "MacOS" / "Umbrant 2"
TOOLS = CROSS / "compiler"
ARCHITECTURES = {"x86_64": 0x01000007, "arm64": 0x0100000C}


def require():
    """Skips the whole file where the bundle has not been built."""
    if not (CROSS / "tests" / "ready").exists():
        reason = "the macOS bundle has not been built; packaging/macos/build builds it or says what is missing"
        print(f"skipped: {reason}")
        raise unittest.SkipTest(reason)


def run(*command):
    return subprocess.run(list(map(str, command)), check=True, capture_output=True, text=True).stdout


def slices():
    """Architecture to bytes."""
    data = EXECUTABLE.read_bytes()
    magic, count = struct.unpack_from(">2I", data, 0)
    assert magic == 0xCAFEBABE, hex(magic)
    found = {}
    for index in range(count):
        cpu, _, offset, size, _ = struct.unpack_from(">5I", data, 8 + 20 * index)
        found[next(name for name, number in ARCHITECTURES.items() if number == cpu)] = data[offset : offset + size]
    return found


def commands(data):
    """The load commands of one slice as (number, bytes)."""
    count = struct.unpack_from("<I", data, 16)[0]
    at = 32
    for _ in range(count):
        number, size = struct.unpack_from("<2I", data, at)
        yield number, data[at : at + size]
        at += size


def segments(data):
    """Segment name to (file offset, file size) of one slice."""
    found = {}
    for number, command in commands(data):
        if number == 0x19:
            name = command[8:24].rstrip(b"\0").decode()
            found[name] = struct.unpack_from("<2Q", command, 40)
    return found


def sections(data):
    """(segment, section) to the section's (address, size, file offset, flags) of one slice."""
    found = {}
    for number, command in commands(data):
        if number != 0x19:
            continue
        for index in range(struct.unpack_from("<I", command, 64)[0]):
            at = 72 + 80 * index
            name, segment = (command[at + 16 * i : at + 16 * (i + 1)].rstrip(b"\0").decode() for i in range(2))
            address, size, offset = struct.unpack_from("<2QI", command, at + 32)
            found[segment, name] = (address, size, offset, struct.unpack_from("<I", command, at + 64)[0])
    return found

# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Reads a resource file and the property list in it, from the format's description and not from the writer's code."""

import struct


class Resource:
    def __init__(self, kind, number, name, attributes, data):
        self.kind, self.number, self.name, self.attributes, self.data = kind, number, name, attributes, data


def read_resources(file):
    """Every resource of a file, in the order of its map."""
    data_offset, map_offset, data_length, map_length = struct.unpack_from(">4I", file, 0)
    if data_offset + data_length > len(file) or map_offset + map_length != len(file):
        raise ValueError("the header does not fit the file")
    if map_offset != data_offset + data_length:
        raise ValueError("there is a gap between data and map")
    if any(file[16:data_offset]):
        raise ValueError("the reserved bytes are not zero")
    resource_map = file[map_offset:]
    if resource_map[:16] != file[:16]:
        raise ValueError("the map does not repeat the header")
    if any(resource_map[16:24]):
        raise ValueError("what the system fills in is not zero")
    types_at, names_at = struct.unpack_from(">2H", resource_map, 24)
    found = []
    (type_count,) = struct.unpack_from(">h", resource_map, types_at)
    for index in range(type_count + 1):
        kind, count, references_at = struct.unpack_from(">4shH", resource_map, types_at + 2 + 8 * index)
        for reference in range(count + 1):
            at = types_at + references_at + 12 * reference
            number, name_at, packed = struct.unpack_from(">hHI", resource_map, at)
            start = data_offset + (packed & 0xFFFFFF)
            (length,) = struct.unpack_from(">I", file, start)
            if start + 4 + length > data_offset + data_length:
                raise ValueError("a resource is longer than the data")
            name = None
            if name_at != 0xFFFF:
                name = pascal_string(resource_map[names_at + name_at :])
            found.append(Resource(kind, number, name, packed >> 24, file[start + 4 : start + 4 + length]))
    return found


def pascal_string(data):
    if len(data) < 1 + data[0]:
        raise ValueError("a text is cut off")
    return data[1 : 1 + data[0]].decode("ascii")


def read_properties(data):
    """The properties of a list as (vendor, key, id, data), in order."""
    version, count = struct.unpack_from(">2I", data, 0)
    if version != 0:
        raise ValueError(f"the list's version is {version}, not 0")
    at, found = 8, []
    for _ in range(count):
        vendor, key, number, length = struct.unpack_from(">4s4s2I", data, at)
        at += 16
        body, padding = data[at : at + length], data[at + length : at + (length + 3) // 4 * 4]
        if len(body) != length or any(padding):
            raise ValueError(f"the property {key} is cut off or badly padded")
        found.append((vendor, key, number, body))
        at += length + len(padding)
    if at != len(data):
        raise ValueError("there are bytes after the last property")
    return found

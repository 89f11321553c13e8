#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The bundle's files that are no object code: the property resource, Info.plist and PkgInfo."""

import hashlib
import json
import os
import pathlib
import plistlib
import re
import struct
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import property_reader

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
WRITER = os.environ["WRITE_BUNDLE_FILES"]
IDENTIFIER = "com.example.umbrant2"

# SHA-256 of the property list and of the whole file.
SUMS = {
    "x86_64": (
        "9d6edcc4036c6d0774cffc1f0822ae19bf9f63ced7dc214e2329f6bac279c2e3",
        "35145e01e69e3fca4553a2572adf0203d9bb7e306ffe0d9a04fdeadbb0491d7d",
    ),
    "universal": (
        "4be72905311817e7d2c491b3aa97f76b38efc73cd01dc51d73e60828fe8d21b2",
        "844e541a3054a4c4dcc7379f35778ac078e5a38d53151f38fd755f01bdcc991e",
    ),
}
HEADERS = {
    "x86_64": "00000100 00000214 00000114 00000032",
    "universal": "00000100 00000230 00000130 00000032",
}
SIZES = {"x86_64": (272, 582), "universal": (300, 610)}


def write(writer=WRITER, *options, identifier=IDENTIFIER):
    folder = tempfile.TemporaryDirectory()
    bundle = pathlib.Path(folder.name) / "Some.plugin"
    subprocess.run([writer, bundle, identifier, *options], check=True)
    return folder, bundle / "Contents"


def options_of(form):
    return ["--x86_64"] if form == "x86_64" else []


def properties_of(file):
    (resource,) = property_reader.read_resources(file)
    return {key.decode(): body for _, key, _, body in property_reader.read_properties(resource.data)}


class PropertyResource(unittest.TestCase):
    def resource(self, form):
        folder, contents = write(WRITER, *options_of(form))
        with folder:
            return (contents / "Resources" / "Umbrant 2.rsrc").read_bytes()

    def test_vectors_to_the_byte(self):
        for form in SUMS:
            with self.subTest(form):
                file = self.resource(form)
                properties = file[260:-50]
                self.assertEqual((len(properties), len(file)), SIZES[form])
                self.assertEqual(hashlib.sha256(properties).hexdigest(), SUMS[form][0])
                self.assertEqual(hashlib.sha256(file).hexdigest(), SUMS[form][1])
                self.assertEqual(file[:16], bytes.fromhex(HEADERS[form]))

    def test_single_form_byte_for_byte(self):
        expected = bytes.fromhex((HERE / "vectors" / "x86_64_properties.hex").read_text())
        self.assertEqual(self.resource("x86_64")[260:-50], expected)

    def test_map_of_the_single_form(self):
        expected = "00000100000002140000011400000032 00000000 0000 0000 001c 0032 0000 5069504c 0000 000a 3e80 ffff 00 000000 00000000"
        self.assertEqual(self.resource("x86_64")[-50:], bytes.fromhex(expected))

    def test_reader_reads_it_back(self):
        for form in SUMS:
            with self.subTest(form):
                (resource,) = property_reader.read_resources(self.resource(form))
                self.assertEqual((resource.kind, resource.number), (b"PiPL", 16000))
                self.assertEqual((resource.name, resource.attributes), (None, 0))
                properties = property_reader.read_properties(resource.data)
                keys = "kind name catg mi64 ma64 ePVR eSVR eVER eINF eGLO eGL2 eMNA aeFL".split()
                if form == "x86_64":
                    keys.remove("ma64")
                self.assertEqual([key.decode() for _, key, _, _ in properties], keys)
                self.assertEqual({vendor for vendor, _, _, _ in properties}, {b"8BIM"})
                self.assertEqual({number for _, _, number, _ in properties}, {0})

    def test_values(self):
        values = properties_of(self.resource("universal"))
        self.assertEqual(values["kind"], b"eFKT")
        for key, text in [
            ("name", "Umbrant 2"),
            ("catg", "Halvane"),
            ("mi64", "EffectMain"),
            ("ma64", "EffectMain"),
            ("eMNA", "KAUM2"),
        ]:
            self.assertEqual(property_reader.pascal_string(values[key]), text)
        self.assertEqual(struct.unpack(">2H", values["ePVR"]), (2, 0))
        self.assertEqual(struct.unpack(">2H", values["eSVR"]), (13, 28))
        self.assertEqual(struct.unpack(">H", values["eINF"]), (0,))
        for key, number in [("eVER", 0x99801), ("eGLO", 0x04008000), ("eGL2", 0x08201409), ("aeFL", 8)]:
            self.assertEqual(struct.unpack(">I", values[key]), (number,), key)

    def test_reader_refuses_what_is_broken(self):
        file = self.resource("universal")
        for name, place in [("header", 3), ("reserved", 100), ("map's copy", -48), ("system's field", -30)]:
            broken = bytearray(file)
            broken[place] ^= 1
            with self.subTest(name), self.assertRaises(ValueError):
                property_reader.read_resources(bytes(broken))
        (resource,) = property_reader.read_resources(file)
        for name, data in [("version", b"\1" + resource.data[1:]), ("tail", resource.data + b"\0" * 4)]:
            with self.subTest(name), self.assertRaises(ValueError):
                property_reader.read_properties(data)


class Texts(unittest.TestCase):
    def test_info_plist(self):
        folder, contents = write()
        with folder:
            parsed = plistlib.loads((contents / "Info.plist").read_bytes(), fmt=plistlib.FMT_XML)
        self.assertEqual(
            parsed,
            {
                "CFBundleDevelopmentRegion": "en",
                "CFBundleExecutable": "Umbrant 2",
                "CFBundleIdentifier": IDENTIFIER,
                "CFBundleInfoDictionaryVersion": "6.0",
                "CFBundleName": "Umbrant 2",
                "CFBundlePackageType": "eFKT",
                "CFBundleShortVersionString": "1.3.3",
                "CFBundleSignature": "FXTC",
                "CFBundleVersion": "1.3.3",
                "LSRequiresCarbon": True,
            },
        )

    def test_pkg_info(self):
        folder, contents = write()
        with folder:
            self.assertEqual((contents / "PkgInfo").read_bytes(), b"eFKTFXTC")

    def test_names_fit_together(self):
        folder, contents = write()
        with folder:
            executable = plistlib.loads((contents / "Info.plist").read_bytes())["CFBundleExecutable"]
            self.assertTrue((contents / "Resources" / f"{executable}.rsrc").is_file())

    def test_bad_usage_is_one_sentence(self):
        with tempfile.TemporaryDirectory() as folder:
            for identifier in ["", "com.example/umbrant", "<b>", "ünbrant"]:
                ran = subprocess.run([WRITER, folder, identifier], capture_output=True, text=True)
                self.assertEqual(ran.returncode, 2)
                self.assertEqual(
                    ran.stderr, f"The identifier '{identifier}' may hold only letters, digits, '.' and '-'.\n"
                )
        ran = subprocess.run([WRITER, "/proc/none", IDENTIFIER], capture_output=True, text=True)
        self.assertEqual(ran.returncode, 3)
        self.assertEqual(ran.stderr, "The file '/proc/none/Contents/Info.plist' cannot be written.\n")
        self.assertEqual(subprocess.run([WRITER], capture_output=True).returncode, 2)


class OneSource(unittest.TestCase):
    """Names, versions and flag words stand in entry/version.h alone: another value there is another value here."""

    def changed_writer(self, folder):
        root = pathlib.Path(folder)
        (root / "entry").mkdir()
        for name in ["hostapi", "packaging"]:
            (root / name).symlink_to(ROOT / name)
        text = (ROOT / "entry" / "version.h").read_text()
        for old, new in [
            ('"Umbrant 2"', '"Changed"'),
            ('"KAUM2"', '"OTHER"'),
            ('"Halvane"', '"Elsewhere"'),
            ('"EffectMain"', '"Entry"'),
            ("kVersionBugFix = 3", "kVersionBugFix = 4"),
            ("kRegisteredApiMinor = 28", "kRegisteredApiMinor = 27"),
            ("kRegisteredReservedInfo = 8", "kRegisteredReservedInfo = 9"),
            ("PF_OutFlag_CUSTOM_UI |", ""),
            ("PF_OutFlag2_FLOAT_COLOR_AWARE |", ""),
        ]:
            self.assertIn(old, text)
            text = text.replace(old, new)
        text = re.sub(r"^static_assert.*\n", "", text, flags=re.MULTILINE)
        (root / "entry" / "version.h").write_text(text)
        sources = [root / "packaging" / f"{name}.cpp" for name in
                   ["write_bundle_files", "bundle_texts", "property_list", "resource_file"]]
        subprocess.run(["c++", "-std=c++20", f"-I{root}", *sources, "-o", root / "writer"], check=True)
        return root / "writer"

    def test_changed_constants_are_written(self):
        with tempfile.TemporaryDirectory() as folder:
            written, contents = write(self.changed_writer(folder))
            with written:
                values = properties_of((contents / "Resources" / "Changed.rsrc").read_bytes())
                plist = plistlib.loads((contents / "Info.plist").read_bytes())
        texts = {key: property_reader.pascal_string(values[key]) for key in ["name", "catg", "eMNA", "mi64", "ma64"]}
        self.assertEqual(
            texts, {"name": "Changed", "catg": "Elsewhere", "eMNA": "OTHER", "mi64": "Entry", "ma64": "Entry"}
        )
        self.assertEqual(struct.unpack(">I", values["eVER"]), (0x9A001,))
        self.assertEqual(struct.unpack(">2H", values["eSVR"]), (13, 27))
        self.assertEqual(struct.unpack(">I", values["aeFL"]), (9,))
        self.assertEqual(struct.unpack(">I", values["eGLO"]), (0x04000000,))
        self.assertEqual(struct.unpack(">I", values["eGL2"]), (0x08200409,))
        self.assertEqual((plist["CFBundleName"], plist["CFBundleVersion"]), ("Changed", "1.3.4"))

    @unittest.skipUnless("UMBRANT" in os.environ, "the host program is not part of this build")
    def test_resource_says_what_the_module_says(self):
        ran = subprocess.run([os.environ["UMBRANT"], "info", "--json"], check=True, capture_output=True, text=True)
        said = json.loads(ran.stdout)
        folder, contents = write()
        with folder:
            values = properties_of((contents / "Resources" / "Umbrant 2.rsrc").read_bytes())
        self.assertEqual(values["kind"].decode(), said["kind"])
        for key, field in [("name", "name"), ("catg", "category"), ("eMNA", "matchName"), ("ma64", "entryPoint")]:
            self.assertEqual(property_reader.pascal_string(values[key]), said[field])
        for key, field in [("eGLO", "outFlags"), ("eGL2", "outFlags2")]:
            self.assertEqual(struct.unpack(">I", values[key])[0], int(said[field], 16))
        self.assertEqual("%d.%d" % struct.unpack(">2H", values["eSVR"]), said["apiVersion"])


if __name__ == "__main__":
    unittest.main()

# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""A host is built with the installed headers of the interface, and loads the module."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

BUILD = pathlib.Path(os.environ["BUILD_FOLDER"])
HOST = """
#include <dlfcn.h>
#include <cstdio>
#include "hostapi/hostapi.h"
A_Err Registered(PF_PluginDataPtr, const A_u_char* name, const A_u_char*, const A_u_char*, const A_u_char* entry, A_long,
                 A_long, A_long, A_long) {
    std::printf("%s %s\\n", reinterpret_cast<const char*>(name), reinterpret_cast<const char*>(entry));
    return 0;
}
int main(int, char** arguments) {
    using Register = PF_Err (*)(PF_PluginDataPtr, PF_PluginDataCB, SPBasicSuite*, const char*, const char*);
    void* module = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
    return reinterpret_cast<Register>(dlsym(module, "PluginDataEntryFunction"))(nullptr, Registered, nullptr, "host", "1.0");
}
"""


def run(*command, **environment):
    return subprocess.run([str(part) for part in command], text=True, stdout=subprocess.PIPE, check=True,
                          env={**os.environ, **environment}).stdout  # fmt: skip


class Headers(unittest.TestCase):
    @unittest.skipUnless(shutil.which("pkg-config"), "there is no pkg-config here")
    def test_a_host(self):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            run(os.environ["CMAKE"], "--install", BUILD, "--component", "effect", "--prefix", folder / "prefix")
            (folder / "host.cpp").write_text(HOST, encoding="utf-8")
            flags = run("pkg-config", "--cflags", "umbrant_effect", PKG_CONFIG_PATH=str(folder / "prefix/share/pkgconfig"))
            run("c++", "-std=c++20", *flags.split(), folder / "host.cpp", "-o", folder / "host")
            self.assertEqual(run(folder / "host", BUILD / "umbrant2.so"), "Umbrant 2 EffectMain\n")


if __name__ == "__main__":
    unittest.main()

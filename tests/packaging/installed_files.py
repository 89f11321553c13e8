# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The files that `cmake --install` writes, by their path below the prefix."""

import os
import pathlib
import re

SOURCE = pathlib.Path(os.environ["SOURCE_FOLDER"])
LIBDIR = os.environ["LIBDIR"]
ZSH = "vendor-completions" if pathlib.Path("/etc/debian_version").exists() else "site-functions"

PLUGIN = re.search(r'kPluginIdentifier\[\] = "(.*)"', (SOURCE / "openfx/describe.h").read_text(encoding="utf-8"))[1]

EXPECTED = {
    "bin/umbrant",
    f"{LIBDIR}/umbrant/umbrant2.so",
    f"{LIBDIR}/umbrant/umbrant_color.so",
    f"{LIBDIR}/umbrant/umbrant_drawing.so",
    f"{LIBDIR}/umbrant/umbrant_http.so",
    f"{LIBDIR}/umbrant/umbrant_images.so",
    f"{LIBDIR}/umbrant/umbrant_shim.so",
    f"{LIBDIR}/umbrant/umbrant2.waivers.json",
    *(f"share/man/man1/{page.name}" for page in (SOURCE / "docs/man").glob("*.1")),
    *(f"share/umbrant/presets/{preset.name}" for preset in (SOURCE / "assets/presets").glob("*.json")),
    "share/bash-completion/completions/umbrant",
    f"share/zsh/{ZSH}/_umbrant",
    "share/fish/vendor_completions.d/umbrant.fish",
    "share/doc/umbrant/copyright",
    "share/doc/umbrant/changelog",
    "share/doc/umbrant/changelog.Debian",
    *(f"OFX/Plugins/Umbrant.ofx.bundle/Contents/{name}" for name in (
        "Info.plist", f"Resources/{PLUGIN}.png", "Linux-x86-64/Umbrant.ofx", "Linux-x86-64/umbrant2.so")),
    "share/doc/umbrant-openfx/copyright",
    "share/lintian/overrides/umbrant-openfx",
    "share/doc/umbrant-openfx/changelog.Debian",
    f"{LIBDIR}/libumbrant_host.a",
    *(f"include/umbrant/{name}.h" for name in ("effect", "error", "export", "image", "parameter", "values")),
    *(f"{LIBDIR}/cmake/umbrant_host/{name}" for name in (
        "umbrant_host-config.cmake", "umbrant_host-config-version.cmake", "umbrant_host-targets.cmake")),
    f"{LIBDIR}/pkgconfig/umbrant_host.pc",
    "share/doc/libumbrant-host-dev/copyright",
    "share/doc/libumbrant-host-dev/changelog.Debian",
    "share/doc/libumbrant-host-dev/examples/render_from_memory/CMakeLists.txt",
    "share/doc/libumbrant-host-dev/examples/render_from_memory/render_from_memory.cpp",
}  # fmt: skip

# The interface's headers.
EXPECTED |= {f"include/umbrant-effect/{path.relative_to(SOURCE)}" for path in (SOURCE / "hostapi").rglob("*.h")}
EXPECTED |= {"share/pkgconfig/umbrant_effect.pc", "share/doc/umbrant-effect-dev/copyright",
             "share/doc/umbrant-effect-dev/changelog.Debian"}

# The documents, in the folders of the source.
DOCUMENTS = ["docs", "assets/layers", "assets/presets", "examples", "bench/results"]
EXPECTED |= {f"share/doc/umbrant-doc/{path.relative_to(SOURCE)}" for folder in DOCUMENTS for path in (SOURCE / folder).rglob("*")
             if path.is_file() and not {"man", "__pycache__"} & set(path.relative_to(SOURCE).parts)}
EXPECTED |= {f"share/doc/umbrant-doc/{name}" for name in ("README.md", "copyright", "changelog.Debian")}

# The Python package, where it is built.
PYTHON = os.environ.get("PYTHON_PROGRAM")
PYTHON_PACKAGE = f"{os.environ.get('PYTHON_DESTINATION')}/umbrant"
if PYTHON:
    EXPECTED |= {f"{PYTHON_PACKAGE}/{path.name}" for path in (SOURCE / "python/umbrant").iterdir() if path.suffix != ".pyc"}
    EXPECTED -= {f"{PYTHON_PACKAGE}/__pycache__"}
    EXPECTED |= {f"{PYTHON_PACKAGE}/umbrant2.so", "share/doc/python3-umbrant/copyright",
                 "share/doc/python3-umbrant/changelog.Debian",
                 *(f"share/doc/python3-umbrant/examples/{path.name}" for path in (SOURCE / "examples/python").glob("*.py"))}

# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The preview's page as checkers see it: TypeScript's for its JSDoc types, and axe-core for accessibility."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).parent
sys.path.insert(0, str(HERE))
import browser  # noqa: E402

LAYERS = pathlib.Path(os.environ["LAYERS"])
CHECKERS = pathlib.Path(os.environ["CHECKERS"])


class Checked(unittest.TestCase):
    def setUp(self):
        if not (CHECKERS / "fetched-lock.json").exists():
            self.skipTest(f"the checkers are not here; `tests/host/preview/checkers/fetch {CHECKERS}` fetches them")
        if not shutil.which("node"):
            self.skipTest("there is no node here")


class Types(Checked):
    def test_every_script_of_the_page(self):
        compiler = CHECKERS / "node_modules/typescript/bin/tsc"
        found = subprocess.run(["node", compiler, "--project", HERE / "checkers/tsconfig.json"], text=True,
                               stdout=subprocess.PIPE, stderr=subprocess.STDOUT)  # fmt: skip
        self.assertEqual((found.returncode, found.stdout), (0, ""))


class Accessibility(Checked):
    def setUp(self):
        super().setUp()
        if reason := browser.missing():
            self.skipTest(reason)
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.axe = (CHECKERS / "node_modules/axe-core/axe.min.js").read_text(encoding="utf-8")
        self.page = browser.Browser(holder.name, "--renderer", "cpu")
        self.addCleanup(self.page.close)

    def check(self, what):
        self.page.run(self.axe)
        found = self.page.driver.execute_async_script("""
            const done = arguments[0];
            axe.run(document, { resultTypes: ["violations"] }).then(({ violations }) => done(
                violations.map(({ id, nodes }) => `${id}: ${nodes.map((node) => node.html).join(" ")}`)));""")
        self.assertEqual(found, [], what)

    def test_every_state_of_the_page(self):
        page = self.page
        for theme in ("light", "dark"):
            page.theme(theme)
            page.run("sessionStorage.clear(); location.reload()")
            page.wait("return document.readyState === 'complete' && document.querySelectorAll('#rows .row').length > 0")
            self.check(f"{theme}: without an image")
            page.find("[data-example='card.png']").click()
            page.settle()
            for twirl in page.driver.find_elements("css selector", ".twirl[aria-expanded=false]"):
                page.run("arguments[0].click()", twirl)
            self.check(f"{theme}: every group open")
            page.find("#split").click()
            field = page.find('.row[data-key="style/softness"] input[type=text]')
            field.clear()
            field.send_keys("soft\n")
            page.wait("return !document.getElementById('message').hidden")
            self.check(f"{theme}: with a message, and compared")
            page.find("#help").click()
            self.check(f"{theme}: the keys")


if __name__ == "__main__":
    unittest.main()

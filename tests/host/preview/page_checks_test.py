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

PAGE = HERE.parent.parent.parent / "host/preview/page"
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


class Parts(unittest.TestCase):
    def test_what_needs_no_browser(self):
        if not shutil.which("node"):
            self.skipTest("there is no node here")
        with tempfile.TemporaryDirectory() as holder:
            root = pathlib.Path(holder)
            # Node takes a script for a module only where a package says so.
            (root / "package.json").write_text('{"type": "module"}')
            shutil.copytree(PAGE, root / "host/preview/page")
            shutil.copytree(HERE / "page", root / "tests/host/preview/page")
            tests = sorted((root / "tests/host/preview/page").iterdir())
            self.assertTrue(tests)
            ran = subprocess.run(["node", "--test", *tests], text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.assertEqual(ran.returncode, 0, ran.stdout)


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
            page.run("document.getElementById('keys').close()")
            self.check_time(page, theme)

    def check_time(self, page, theme):
        page.find("#timeline-shown").click()
        page.find('.row[data-key="style/angle"] .key-here').click()
        page.find("#curves-shown").click()
        page.wait("return document.querySelectorAll('#curve svg').length === 1")
        page.settle()
        self.check(f"{theme}: the timeline with a key and its curve")
        for button, dialog in (("#render", "#render-dialog"), ("#contact-sheet", "#sheet-dialog")):
            page.find(button).click()
            page.wait("return document.querySelector(arguments[0]).open", dialog)
            self.check(f"{theme}: {dialog}")
            page.run("document.querySelector(arguments[0]).close()", dialog)
        page.find("#curves-shown").click()


if __name__ == "__main__":
    unittest.main()

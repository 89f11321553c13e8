# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Runs a file of unittest cases and leaves a JUnit report, as the GoogleTest programs do.

Usage: run_unittest.py FILE REPORT

The case that runs is named in REPORT.running until the file is done. Exits with 1 when a case failed and with 77, which
CTest shows as skipped, when none could run.
"""

import pathlib
import sys
import time
import unittest
import xml.etree.ElementTree as ElementTree

EXIT_SKIPPED = 77


class Report(unittest.TextTestResult):
    """Notes each case with its outcome, reason and time."""

    def __init__(self, *arguments, **named):
        super().__init__(*arguments, **named)
        self.outcomes = {}
        self.running = None

    def startTest(self, test):
        super().startTest(test)
        self.started = time.monotonic()
        self.outcomes[test.id()] = ["passed", "", 0.0]
        self.running.write_text(test.id() + "\n")

    def stopTest(self, test):
        super().stopTest(test)
        self.outcomes[test.id()][2] = time.monotonic() - self.started

    def note(self, test, outcome, reason):
        # Also called for a whole class or file, which has an id but was never started.
        self.outcomes.setdefault(test.id(), [outcome, "", 0.0])[:2] = [outcome, str(reason)]

    def addFailure(self, test, err):
        super().addFailure(test, err)
        self.note(test, "failure", err[1])

    def addError(self, test, err):
        super().addError(test, err)
        self.note(test, "failure", err[1])

    def addSkip(self, test, reason):
        super().addSkip(test, reason)
        self.note(test, "skipped", reason)

    def addSubTest(self, test, subtest, err):
        super().addSubTest(test, subtest, err)
        if err is not None:
            self.note(test, "failure", f"{subtest}: {err[1]}")


def write(report, outcomes):
    suites = ElementTree.Element("testsuites")
    suite = ElementTree.SubElement(suites, "testsuite", name=report.stem)
    for name, (outcome, reason, seconds) in outcomes.items():
        classname, _, case = name.rpartition(".")
        entry = ElementTree.SubElement(suite, "testcase", name=case, classname=classname or "file", time=f"{seconds:.3f}")
        if outcome != "passed":
            ElementTree.SubElement(entry, outcome, message=reason)
    ElementTree.ElementTree(suites).write(report, encoding="unicode", xml_declaration=True)


def main():
    file, report = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    report.parent.mkdir(parents=True, exist_ok=True)
    running = report.with_name(report.name + ".running")
    running.write_text("(before the first case)\n")

    sys.path.insert(0, str(file.parent))
    module = __import__(file.stem)
    suite = unittest.defaultTestLoader.loadTestsFromModule(module)

    def make(*arguments, **named):
        result = Report(*arguments, **named)
        result.running = running
        return result

    result = unittest.TextTestRunner(verbosity=2, resultclass=make).run(suite)
    write(report, result.outcomes)
    running.unlink()
    if not result.outcomes:
        print(f"{file.name} has no case.", file=sys.stderr)
        return 1
    if not result.wasSuccessful():
        return 1
    return 0 if any(outcome == "passed" for outcome, *_ in result.outcomes.values()) else EXIT_SKIPPED


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""Types at the prompt of `bradep sql -i`, on a terminal of its own.

usage: prompt_test.py BRADEP SARIF_LOG
"""
import os
import pathlib
import pty
import re
import select
import subprocess
import sys
import tempfile
import time
import unittest

PATIENCE = 60  # seconds


class Typist:
    """A process on a terminal, and all that it has printed."""

    def __init__(self, command, home):
        self.printed = ""
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.environ.update(TERM="xterm", HOME=home, LC_ALL="C.UTF-8", COLUMNS="200")
            os.execv(command[0], command)

    def read(self):
        """Adds what is printed within a tenth of a second. Returns whether there may be more."""
        ready, _, _ = select.select([self.terminal], [], [], 0.1)
        if not ready:
            return True
        try:
            text = os.read(self.terminal, 1 << 16).decode(errors="replace")
        except OSError:  # the process has closed the terminal
            return False
        self.printed += re.sub(r"\x1b\[[0-9;?]*[A-Za-z]", "", text)
        return text != ""

    def wait_for(self, text):
        """Waits until the text is printed, and forgets all up to it."""
        end = time.monotonic() + PATIENCE
        while text not in self.printed:
            if not self.read() or time.monotonic() > end:
                raise AssertionError(f"no {text!r} in {self.printed!r}")
        self.printed = self.printed.split(text, 1)[1]

    def wait_until_busy(self):
        """Waits until the process has used half a second of a processor from now on."""
        ticks = os.sysconf("SC_CLK_TCK") // 2
        end = time.monotonic() + PATIENCE
        most = self.ticks() + ticks
        while self.ticks() < most:
            self.read()
            if time.monotonic() > end:
                raise AssertionError(f"it is not busy: {self.printed!r}")

    def ticks(self):
        return int(pathlib.Path(f"/proc/{self.process}/stat").read_text().split()[13])

    def type(self, text):
        os.write(self.terminal, text.encode())

    def exit_code(self):
        end = time.monotonic() + PATIENCE
        while self.read():
            if time.monotonic() > end:
                raise AssertionError(f"it does not end: {self.printed!r}")
        return os.waitstatus_to_exitcode(os.waitpid(self.process, 0)[1])


class Prompt(unittest.TestCase):
    bradep = log = ""

    def setUp(self):
        self.directory = tempfile.TemporaryDirectory()
        self.addCleanup(self.directory.cleanup)
        self.home = pathlib.Path(self.directory.name)
        file = self.home / "set"
        subprocess.run([self.bradep, "import", self.log, "-o", file], check=True)
        self.typist = Typist([self.bradep, "sql", "-i", str(file)], str(self.home))
        self.typist.wait_for("bradep> ")

    def end(self):
        self.typist.type(".quit\r")
        self.assertEqual(self.typist.exit_code(), 0)

    def test_completes_names(self):
        self.typist.type("SELECT 40 + 2 AS answer FROM info_def\t")
        self.typist.wait_for("initions")
        self.typist.type("UNION SELECT 42;\r")
        self.typist.wait_for("answer")
        self.typist.wait_for("42")
        self.end()

    def test_ends_a_statement_on_ctrl_c_and_goes_on(self):
        self.typist.type("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n)"
                         " SELECT count(*) FROM n;\r")
        self.typist.wait_until_busy()
        self.typist.type("\x03")
        self.typist.wait_for("interrupted")
        self.typist.type("SELECT 6 * 7 AS answer;\r")
        self.typist.wait_for("\n    42")
        self.end()

    def test_drops_what_was_typed_on_ctrl_c(self):
        self.typist.type("SELECT wrong\r")
        self.typist.wait_for("...> ")
        self.typist.type("as it is\x03")
        self.typist.wait_for("bradep> ")
        self.typist.type("SELECT 6 * 7 AS answer;\r")
        self.typist.wait_for("\n    42")
        self.assertNotIn("bradep: ", self.typist.printed)
        self.end()

    def test_keeps_a_history(self):
        self.typist.type("SELECT 6 * 7 AS answer;\r")
        self.typist.wait_for("\n    42")
        self.end()
        self.assertIn("answer", (self.home / ".bradep_history").read_text())


if __name__ == "__main__":
    Prompt.bradep, Prompt.log = sys.argv[1:]
    unittest.main(argv=sys.argv[:1])

"""Copies of the sources, which mutants change and which are built."""

import contextlib
import hashlib
import json
import subprocess
from collections.abc import Iterator
from pathlib import Path

from mutation.mutant_list import read
from source_copy import ROOT, SourceCopy

WORK = ROOT / "build/mutants"


class MutantCopy(SourceCopy):
    def __init__(self, folder: Path, flags: str | None = None) -> None:
        """Built with the preset dev, or with other flags for the compiler."""
        super().__init__(folder)
        self._flags = flags

    def key(self) -> str:
        """Of all that a test program can depend on."""
        digest = hashlib.sha256()
        for path in sorted(self.folder.rglob("*")):
            name = path.relative_to(self.folder).as_posix()
            if path.is_file() and not name.startswith(("build/", "docs/", "scripts/")) \
                    and not name.endswith(".md"):
                digest.update(name.encode() + b"\0" + path.read_bytes() + b"\0")
        return digest.hexdigest()

    def configure(self) -> None:
        # The list of a program's tests is not asked for while it is built.
        options = ["-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST"]
        if self._flags is not None:
            options.append(f"-DCMAKE_CXX_FLAGS={self._flags}")
        super().configure(*options)

    def build(self, targets: tuple[str, ...], jobs: int | None, *options: str) -> str | None:
        """What failed, None where nothing did."""
        command = ["ninja", "-C", str(self.build_folder), *options,
                   *([] if jobs is None else ["-j", str(jobs)]), *targets]
        done = subprocess.run(command, capture_output=True, text=True, errors="replace")
        return None if done.returncode == 0 else done.stdout + done.stderr

    @contextlib.contextmanager
    def restored(self, file: str) -> Iterator[str]:
        """The text of a file, which it has again in the end."""
        path = self.folder / file
        source = read(path)
        try:
            yield source
        finally:
            path.write_text(source, encoding="utf-8")

    def ninja_targets(self) -> dict[str, str]:
        command = ["ninja", "-C", str(self.build_folder), "-t", "targets", "all"]
        lines = subprocess.run(command, check=True, capture_output=True, text=True).stdout
        return dict(line.split(": ", 1) for line in lines.splitlines() if ": " in line)

    def ctest_entries(self) -> list[dict]:
        command = ["ctest", "--test-dir", str(self.build_folder), "--show-only=json-v1"]
        output = subprocess.run(command, check=True, capture_output=True, text=True).stdout
        return json.loads(output)["tests"]

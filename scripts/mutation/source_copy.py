"""Copies of the sources, which mutants change and which are built."""

import contextlib
import fcntl
import hashlib
import json
import os
import shutil
import subprocess
import sys
from collections.abc import Iterator, Mapping
from pathlib import Path

from mutation.mutant_list import ROOT, read

WORK = ROOT / "build/mutants"


def source_files() -> list[str]:
    command = ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"]
    listed = subprocess.run(command, cwd=ROOT, check=True, capture_output=True, text=True).stdout
    return sorted({name for name in listed.split("\0") if name and (ROOT / name).is_file()})


@contextlib.contextmanager
def alone() -> Iterator[None]:
    """Two runs would change one another's copies."""
    WORK.mkdir(parents=True, exist_ok=True)
    with open(WORK / "lock", "w", encoding="utf-8") as lock:
        try:
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            sys.exit(f"another run is using {WORK}")
        yield


class SourceCopy:
    def __init__(self, folder: Path, flags: str | None = None) -> None:
        """Built with the preset dev, or with other flags for the compiler."""
        self.folder = folder
        # Where the preset has it: the compiler cache knows what another build of the sources made.
        self.build_folder = folder / "build/dev"
        self._flags = flags

    def update(self, changed: Mapping[str, str] = {}) -> None:
        """Makes it what the sources are, with other texts for some files. What is so already keeps
        its time."""
        wanted = {name: (ROOT / name).read_bytes() for name in source_files()}
        wanted |= {name: text.encode() for name, text in changed.items()}
        for name, content in wanted.items():
            target = self.folder / name
            if target.is_file() and target.read_bytes() == content:
                continue
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(content)
            if (ROOT / name).is_file():
                shutil.copymode(ROOT / name, target)
        for path in self.folder.rglob("*"):
            name = path.relative_to(self.folder).as_posix()
            if path.is_file() and name not in wanted and not name.startswith("build/"):
                path.unlink()

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
        if (self.build_folder / "build.ninja").is_file():
            return
        settings = dict(os.environ)
        if shutil.which("ccache"):
            settings.setdefault("CMAKE_CXX_COMPILER_LAUNCHER", "ccache")
            settings.setdefault("CMAKE_C_COMPILER_LAUNCHER", "ccache")
        # The list of a program's tests is not asked for while it is built.
        command = ["cmake", "--preset", "dev",
                   "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST"]
        if self._flags is not None:
            command.append(f"-DCMAKE_CXX_FLAGS={self._flags}")
        subprocess.run(command, cwd=self.folder, env=settings, check=True,
                       stdout=subprocess.DEVNULL)

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

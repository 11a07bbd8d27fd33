"""Copies of the sources below build/ that a script changes, builds and keeps for the next time."""

import contextlib
import fcntl
import os
import shutil
import subprocess
import sys
from collections.abc import Iterator, Mapping
from pathlib import Path
from types import MappingProxyType

ROOT = Path(__file__).resolve().parent.parent

# What .gitignore names, and the repository, which need not be there.
NO_SOURCES = {ROOT / ".git", ROOT / "build", ROOT / "results"}


def source_files() -> list[str]:
    found: list[Path] = []
    for folder, folders, files in os.walk(ROOT):
        here = Path(folder)
        folders[:] = [name for name in folders
                      if here / name not in NO_SOURCES and name != "__pycache__"]
        found += [here / name for name in files if here / name not in NO_SOURCES]
    return sorted(path.relative_to(ROOT).as_posix() for path in found)


@contextlib.contextmanager
def locked(folder: Path) -> Iterator[None]:
    """Holds a lock of the folder, since two runs would change one another's copies in it. Ends the
    program if another run holds it."""
    folder.mkdir(parents=True, exist_ok=True)
    with open(folder / "lock", "w", encoding="utf-8") as lock:
        try:
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            sys.exit(f"another run is using {folder}")
        yield


class SourceCopy:
    """`folder` is the copy, `build_folder` the build of its preset dev."""

    def __init__(self, folder: Path) -> None:
        self.folder = folder
        # Where the preset has it: the compiler cache knows what another build of the sources has
        # made.
        self.build_folder = folder / "build/dev"

    def update(self, changed: Mapping[str, str] = MappingProxyType({})) -> None:
        """Makes the copy what the sources are, with other texts for some files, which may be new.
        What is so already keeps its time."""
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

    def configure(self, *options: str) -> None:
        if (self.build_folder / "build.ninja").is_file():
            return
        settings = dict(os.environ)
        if shutil.which("ccache"):
            settings.setdefault("CMAKE_CXX_COMPILER_LAUNCHER", "ccache")
            settings.setdefault("CMAKE_C_COMPILER_LAUNCHER", "ccache")
        subprocess.run(["cmake", "--preset", "dev", *options], cwd=self.folder, env=settings,
                       check=True, stdout=subprocess.DEVNULL)

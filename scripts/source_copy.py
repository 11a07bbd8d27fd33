"""A copy of the sources below build/ that a script changes, builds and keeps for the next time."""

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


class SourceCopy:
    """`sources` is the copy, `build` the build of its preset dev, `folder` has room for more."""

    def __init__(self, name: str) -> None:
        self.folder = ROOT / "build" / name
        self.sources = self.folder / "src"
        # Where the preset has it: the compiler cache knows what another build of the sources has
        # made.
        self.build = self.sources / "build/dev"

    @contextlib.contextmanager
    def alone(self) -> Iterator[None]:
        """Two runs would change one another's copy. Ends the program where there is another."""
        self.folder.mkdir(parents=True, exist_ok=True)
        with open(self.folder / "lock", "w", encoding="utf-8") as lock:
            try:
                fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
            except BlockingIOError:
                sys.exit(f"another run is using {self.sources}")
            yield

    def update(self, changed: Mapping[str, str] = MappingProxyType({})) -> None:
        """Makes the copy what the sources are, but for the texts of the files that are changed;
        what is so already keeps its time."""
        wanted = set(source_files())
        for name in wanted:
            source, target = ROOT / name, self.sources / name
            content = changed[name].encode() if name in changed else source.read_bytes()
            if target.is_file() and target.read_bytes() == content:
                continue
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(content)
            shutil.copymode(source, target)
        for path in self.sources.rglob("*"):
            name = path.relative_to(self.sources).as_posix()
            if path.is_file() and name not in wanted and not name.startswith("build/"):
                path.unlink()

    def configure(self, *options: str) -> None:
        if (self.build / "build.ninja").is_file():
            return
        settings = dict(os.environ)
        if shutil.which("ccache"):
            settings.setdefault("CMAKE_CXX_COMPILER_LAUNCHER", "ccache")
            settings.setdefault("CMAKE_C_COMPILER_LAUNCHER", "ccache")
        subprocess.run(["cmake", "--preset", "dev", *options], cwd=self.sources, env=settings,
                       check=True, stdout=subprocess.DEVNULL)

"""Builds the wheel and the source archive of the Python module, with nothing but CMake.

What must be there is told in docs/python.md. Setting ``build-dir`` names the folder of the build,
which is kept; ``cmake-args`` are further arguments of CMake.
"""

from __future__ import annotations

import base64
import hashlib
import re
import shlex
import subprocess
import sys
import sysconfig
import tarfile
import tempfile
import zipfile
from pathlib import Path
from typing import Dict, Iterator, Optional

ROOT = Path(__file__).resolve().parent.parent
NAME = "qdclgl"
# What the module is made from; the recording server is that of the library's own tests.
SOURCES = (
    "CMakeLists.txt CMakePresets.json README.md CHANGELOG.md pyproject.toml cmake python qdclgl"
    " tests/support"
).split()

Settings = Optional[Dict[str, str]]


def version() -> str:
    text = (ROOT / "qdclgl/version.h").read_text()
    return ".".join(re.findall(r"^#define QD_VERSION_(?:MAJOR|MINOR|PATCH) (\d+)$", text, re.M))


def metadata() -> str:
    head = (
        "Metadata-Version: 2.1",
        f"Name: {NAME}",
        f"Version: {version()}",
        "Summary: Business objects of a general ledger",
        "Requires-Python: >=3.11",
        "Provides-Extra: pandas",
        "Requires-Dist: pandas; extra == 'pandas'",
        "Provides-Extra: polars",
        "Requires-Dist: polars; extra == 'polars'",
        "Description-Content-Type: text/markdown",
    )
    return "\n".join(head) + "\n\n" + (ROOT / "README.md").read_text()


def tag() -> str:
    platform = re.sub(r"[-.]", "_", sysconfig.get_platform())
    return f"cp311-abi3-{platform}"


# ---- What a front end calls ----


def get_requires_for_build_wheel(settings: Settings = None) -> list[str]:
    return []


def get_requires_for_build_sdist(settings: Settings = None) -> list[str]:
    return []


def build_sdist(folder: str, settings: Settings = None) -> str:
    stem = f"{NAME}-{version()}"
    with tarfile.open(Path(folder) / f"{stem}.tar.gz", "w:gz") as archive:
        for path in _sources():
            archive.add(path, f"{stem}/{path.relative_to(ROOT)}", recursive=False)
        _add_text(archive, f"{stem}/PKG-INFO", metadata())
    return f"{stem}.tar.gz"


def build_wheel(
    folder: str, settings: Settings = None, metadata_directory: Optional[str] = None
) -> str:
    settings = settings or {}
    with tempfile.TemporaryDirectory() as scratch:
        stage = Path(scratch) / "stage"
        build = Path(settings.get("build-dir", Path(scratch) / "build"))
        _compile(build, stage, shlex.split(settings.get("cmake-args", "")))
        return _pack(stage, Path(folder))


# ---- How it is done ----


def _sources() -> Iterator[Path]:
    for name in SOURCES:
        path = ROOT / name
        for file in [path] if path.is_file() else sorted(path.rglob("*")):
            if file.is_file() and "__pycache__" not in file.parts:
                yield file


def _add_text(archive: tarfile.TarFile, name: str, text: str) -> None:
    with tempfile.NamedTemporaryFile("w") as file:
        file.write(text)
        file.flush()
        archive.add(file.name, name)


def _compile(build: Path, stage: Path, more: list[str]) -> None:
    configure = [
        f"-S{ROOT}",
        f"-B{build}",
        "-GNinja",
        "-DCMAKE_BUILD_TYPE=Release",
        f"-DPython3_EXECUTABLE={sys.executable}",
        "-DQDCLGL_PYTHON=ON",
        "-DQDCLGL_TESTS=OFF",
        "-DQDCLGL_PROGRAMS=OFF",
        "-DQDCLGL_WARNINGS_AS_ERRORS=OFF",
        *more,
    ]
    target = ["--target", "qdclgl-python"]
    install = ["--component", "python", "--strip", "--prefix", str(stage)]
    for step in (configure, ["--build", str(build), *target], ["--install", str(build), *install]):
        subprocess.run(["cmake", *step], check=True, stdout=sys.stderr)


def _pack(stage: Path, folder: Path) -> str:
    info = f"{NAME}-{version()}.dist-info"
    wheel = f"Wheel-Version: 1.0\nGenerator: qdclgl\nRoot-Is-Purelib: false\nTag: {tag()}\n"
    contents = {
        str(path.relative_to(stage)): path.read_bytes()
        for path in sorted(stage.rglob("*"))
        if path.is_file()
    }
    contents[f"{info}/METADATA"] = metadata().encode()
    contents[f"{info}/WHEEL"] = wheel.encode()
    record = "".join(f"{name},{_digest(data)},{len(data)}\n" for name, data in contents.items())
    contents[f"{info}/RECORD"] = f"{record}{info}/RECORD,,\n".encode()

    name = f"{NAME}-{version()}-{tag()}.whl"
    with zipfile.ZipFile(folder / name, "w", zipfile.ZIP_DEFLATED) as archive:
        for path, data in contents.items():
            archive.writestr(path, data)
    return name


def _digest(data: bytes) -> str:
    digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=")
    return f"sha256={digest.decode()}"

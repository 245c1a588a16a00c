"""Type checkers agree: with the stubs, the package, the examples and these tests."""

from __future__ import annotations

import re
import subprocess
from pathlib import Path

import pytest
from conftest import ROOT


@pytest.mark.parametrize(
    "words",
    [["-p", "qdclgl"], ["python/tests", "python/build_backend.py"]]
    + [[str(path.relative_to(ROOT))] for path in sorted((ROOT / "python/examples").glob("*.py"))],
    ids=lambda words: str(words[-1]),
)
def test_mypy_finds_nothing(words: list[str], tmp_path: Path) -> None:
    result = subprocess.run(
        ["/usr/bin/mypy", "--cache-dir", str(tmp_path), "--config-file", "pyproject.toml", *words],
        cwd=ROOT,
        capture_output=True,
        text=True,
    )
    assert result.stdout.startswith("Success: no issues found in "), result.stdout + result.stderr


def test_mypy_finds_what_is_wrong(tmp_path: Path) -> None:
    wrong = tmp_path / "wrong.py"
    wrong.write_text(
        "import qdclgl\n"
        "voucher = qdclgl.VoucherSet()[1]\n"
        "voucher.Number = 'one'\n"
        "voucher.Explanatoin\n"
        "qdclgl.VoucherGroupSet().Remove()\n"
        "for group in qdclgl.VoucherGroupSet():\n"
        "    reveal_type(group.Name)\n"
    )
    result = subprocess.run(
        ["/usr/bin/mypy", "--cache-dir", str(tmp_path), "--config-file", "pyproject.toml", wrong],
        cwd=ROOT,
        capture_output=True,
        text=True,
    )
    assert re.findall(r"wrong\.py:(\d): error", result.stdout) == ["3", "4", "5"], result.stdout
    assert 'Revealed type is "builtins.str"' in result.stdout

"""The tutorial and the examples, as they stand."""

from __future__ import annotations

import csv
import os
import re
import subprocess
import sys
from pathlib import Path
from typing import Any

import pytest
from conftest import ROOT

import qdclgl

EXAMPLES = ROOT / "python/examples"


def run(*words: str) -> tuple[int, list[str]]:
    """What a program prints; what it reports as an error is the test's."""
    result = subprocess.run(
        [sys.executable, *words], capture_output=True, text=True, env=os.environ
    )
    assert result.stderr == ""
    return result.returncode, result.stdout.splitlines()


def test_the_tutorial_runs_in_an_empty_folder(
    tmp_path: Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    monkeypatch.chdir(tmp_path)
    blocks = re.findall(r"```python\n(.*?)```", (ROOT / "docs/python.md").read_text(), re.S)
    assert len(blocks) == 7
    names: dict[str, Any] = {}
    for block in blocks:
        exec(compile(block, "docs/python.md", "exec"), names)
    with qdclgl.open("books.db") as books:
        assert books.list("vouchers").column("FNumber") == [1]


def write(path: Path, *rows: tuple[str, ...]) -> str:
    with path.open("w", newline="") as file:
        csv.writer(file).writerows(rows)
    return str(path)


def test_a_statement_is_booked_once_by_its_rules(ledger: Any, tmp_path: Path) -> None:
    rules = write(
        tmp_path / "rules.csv", ("contains", "account", "group"), ("shop", "3000", "Receipts")
    )
    statement = write(
        tmp_path / "statement.csv",
        ("date", "text", "amount"),
        ("2024-01-16", "Shop takings", "100.10"),
        ("2024-01-16", "Shop takings", "100.10"),
        ("2024-01-17", "Refund, SHOP", "-5.05"),
        ("2024-01-18", "Nobody knows", "1.00"),
    )
    program = (str(EXAMPLES / "import_statement.py"), ledger.source, statement, rules)
    no_rule = "no rule for 2024-01-18 Nobody knows 1.00"
    assert run(*program) == (
        1,
        [
            "2024-01-16     100.10 3000 as 2",
            "2024-01-16     100.10 3000 as 3",
            "2024-01-17      -5.05 3000 as 4",
            no_rule,
        ],
    )
    assert run(*program) == (1, [no_rule])
    vouchers = [qdclgl.VoucherSet()[number] for number in (2, 4)]
    assert [
        [(line.AccountNumber, str(line.Debit), str(line.Credit)) for line in voucher.Entries]
        for voucher in vouchers
    ] == [
        [("1000", "100.1", "0"), ("3000", "0", "100.1")],
        [("1000", "0", "5.05"), ("3000", "5.05", "0")],
    ]


def test_the_month_s_end_is_told(ledger: Any) -> None:
    program = (str(EXAMPLES / "month_end.py"), ledger.source)
    assert run(*program) == (1, ["voucher 1 of 2024-01-15 is not posted"])
    ledger.books.component("QDSVGLVoucher.VoucherUpdate").Post(ledger.books.props, 1)
    assert run(*program) == (0, ["Nothing stands against closing the month."])


def test_the_notebook_plots_cash_by_week(ledger: Any) -> None:
    ledger.sale("12.50")
    assert run(str(EXAMPLES / "cash_by_week.py"), ledger.source) == (
        0,
        ["2024-01-15         25.00  " + "#" * 40],
    )


def test_the_component_serves_the_library() -> None:
    assert run(str(EXAMPLES / "component.py")) == (
        0,
        ["1 Receipts", "2 Payments by bank", "error 1001 (GroupStore): A group needs a name."],
    )


def test_receivables_are_kept_by_customer_and_contract(source: str) -> None:
    program = (str(EXAMPLES / "receivables.py"), source)
    assert run(*program) == (
        0,
        [
            "Managers: Carla",
            "By CUSTOMER:",
            "  Anna  620",
            "  Bert  300",
            "By CUSTOMER,CONTRACT:",
            "  Anna  Roof  500",
            "  Anna  Wall  120",
            "  Bert  Wall  300",
        ],
    )

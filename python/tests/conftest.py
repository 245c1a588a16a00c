"""Books for tests: empty ones, and a small ledger, on every database that is at hand."""

from __future__ import annotations

import itertools
import os
from collections.abc import Iterator
from dataclasses import dataclass
from datetime import datetime
from decimal import Decimal
from pathlib import Path

import pytest

import qdclgl

ROOT = Path(__file__).resolve().parents[2]
_POSTGRESQL = os.environ.get("QDCLGL_TEST_POSTGRESQL", "")
_count = itertools.count(1)


@pytest.fixture(params=["sqlite", "postgresql"] if _POSTGRESQL else ["sqlite"])
def source(request: pytest.FixtureRequest, tmp_path: Path) -> str:
    """A connection text for books that are not there yet."""
    if request.param == "sqlite":
        return str(tmp_path / "books.db")
    return f"{_POSTGRESQL};Schema=python_{os.getpid()}_{next(_count)};"


@pytest.fixture
def books(source: str) -> Iterator[qdclgl.Books]:
    """Empty books that begin in 2024, base currency EUR."""
    with qdclgl.open(source, create="EUR", year=2024) as opened:
        yield opened


@dataclass
class Ledger:
    """Books with group Receipts (1), the accounts 1000 Cash and 3000 Sales, and one voucher."""

    books: qdclgl.Books
    source: str

    @staticmethod
    def sale(amount: str) -> qdclgl.Voucher:
        voucher = qdclgl.VoucherSet().CreateNew()
        voucher.VoucherDate = datetime(2024, 1, 15)
        voucher.GroupID = 1
        for number, side in (("1000", "Debit"), ("3000", "Credit")):
            voucher.Entries.Add()
            line = voucher.Entries[voucher.Entries.Count]
            line.AccountNumber = number
            setattr(line, side, Decimal(amount))
        voucher.SaveChanges()
        return voucher


@pytest.fixture
def ledger(books: qdclgl.Books, source: str) -> Ledger:
    qdclgl.VoucherGroupSet().CreateNew("Receipts").SaveChanges()
    for number, name in (("1000", "Cash"), ("3000", "Sales")):
        account = qdclgl.AccountSet().CreateNew(number)
        account.Name = name
        account.SaveChanges()
    made = Ledger(books, source)
    made.sale("12.50")
    return made

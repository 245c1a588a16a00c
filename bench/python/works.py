"""The Python module beside the same classes bound by hand with pybind11, in one run.

    works.py PACKAGE_FOLDER PEER_FOLDER [--rounds=N] [--only=text]

One round runs each work of both sides in turn; a ratio is the median of the rounds' ratios of
processor time, ours divided by theirs, with the lowest and the highest beside it. A missed goal is
told and is no failure: time is not a test.
"""

from __future__ import annotations

import statistics
import sys
import tempfile
import time
from collections.abc import Callable
from dataclasses import dataclass
from datetime import datetime
from decimal import Decimal
from pathlib import Path
from typing import Any

LINES = 1000
AMOUNT = Decimal("12.50")
Body = Callable[[Any, int], None]


@dataclass
class Work:
    name: str
    goal: float
    count: int  # how often a body does the work
    body: Body


@dataclass
class Side:
    """What the works of one side go by."""

    voucher: Any  # of LINES lines
    line: Any
    edit: Callable[[int], None]  # opens a small voucher, edits and saves it, so often


def read_whole(side: Side, count: int) -> None:
    line = side.line
    for _ in range(count):
        line.AccountID


def read_text(side: Side, count: int) -> None:
    line = side.line
    for _ in range(count):
        line.Explanation


def read_amount(side: Side, count: int) -> None:
    line = side.line
    for _ in range(count):
        line.Debit


def write_whole(side: Side, count: int) -> None:
    line = side.line
    for i in range(count):
        line.AccountID = i


def write_text(side: Side, count: int) -> None:
    line = side.line
    for _ in range(count):
        line.Explanation = "Goods received"


def write_amount(side: Side, count: int) -> None:
    line = side.line
    for _ in range(count):
        line.Debit = AMOUNT


def call(side: Side, count: int) -> None:
    line = side.line
    for _ in range(count):
        line.IsEmpty()


def call_with_argument(side: Side, count: int) -> None:
    lines = side.voucher.Entries
    for _ in range(count):
        lines.Item(500)


def walk(side: Side, count: int) -> None:
    for _ in range(count // LINES):
        total = 0
        for line in side.voucher.Entries:
            total += line.AccountID
            line.Explanation


def edit(side: Side, count: int) -> None:
    side.edit(count)


# Reading and writing differ by the value's type, and so does what they cost.
WORKS = [
    Work("read a whole number", 0.40, 200_000, read_whole),
    Work("read a text", 0.40, 200_000, read_text),
    Work("read an amount", 0.40, 100_000, read_amount),
    Work("write a whole number", 0.40, 200_000, write_whole),
    Work("write a text", 0.40, 200_000, write_text),
    Work("write an amount", 0.40, 50_000, write_amount),
    Work("call a method", 0.60, 200_000, call),
    Work("call a method with an argument, get an object", 0.60, 100_000, call_with_argument),
    Work("walk 1,000 lines with two reads each, a line", 0.40, 50 * LINES, walk),
    Work("open, edit, save on SQLite, against C++", 1.15, 300, edit),
]


def make_books(qdclgl: Any, file: Path) -> None:
    with qdclgl.open(str(file), create="EUR", year=2024):
        qdclgl.VoucherGroupSet().CreateNew("General").SaveChanges()
        for number in ("1000", "3000"):
            account = qdclgl.AccountSet().CreateNew(number)
            account.Name = number
            account.SaveChanges()
        for lines in (LINES, 4):
            voucher = qdclgl.VoucherSet().CreateNew()
            voucher.VoucherDate = datetime(2024, 1, 15)
            voucher.GroupID = 1
            voucher.Entries.Count = lines
            for place, line in enumerate(voucher.Entries):
                line.AccountNumber = ("1000", "3000")[place % 2]
                line.Explanation = "Goods received"
                if place % 2 == 0:
                    line.Debit = AMOUNT
                else:
                    line.Credit = AMOUNT
            voucher.SaveChanges()


def edit_ours(qdclgl: Any) -> Callable[[int], None]:
    def edit(count: int) -> None:
        vouchers = qdclgl.VoucherSet()
        for i in range(count):
            voucher = vouchers[2]
            voucher.Entries[1].Explanation = f"Goods {i}"
            voucher.SaveChanges()

    return edit


def side_of(module: Any, edit: Callable[[int], None]) -> Side:
    voucher = module.VoucherSet()[1]
    return Side(voucher, voucher.Entries.Item(7), edit)


def measured(body: Body, side: Side, count: int) -> float:
    start = time.process_time()
    body(side, count)
    return (time.process_time() - start) / count


def main(arguments: list[str]) -> None:
    package, peer_folder, *options = arguments
    rounds = 9
    only = ""
    for option in options:
        name, _, value = option.partition("=")
        if name == "--rounds":
            rounds = int(value)
        elif name == "--only":
            only = value
        else:
            sys.exit(__doc__)
    sys.path[:0] = [package, peer_folder]
    import peer  # type: ignore[import-not-found]
    import qdclgl

    with tempfile.TemporaryDirectory() as folder:
        ours_file, theirs_file = Path(folder, "ours.db"), Path(folder, "theirs.db")
        make_books(qdclgl, ours_file)
        make_books(qdclgl, theirs_file)
        # Without the disk's share, which is the same on both sides and hides the rest.
        text = "Provider=SQLite;Data Source={};Synchronous=Normal;".format
        peer.open(text(theirs_file))
        with qdclgl.open(text(ours_file)):
            ours = side_of(qdclgl, edit_ours(qdclgl))
            theirs = side_of(peer, lambda count: peer.edit_vouchers(2, count, "Goods "))
            print(f"Python {sys.version.split()[0]}; median of {rounds} rounds\n")
            print(f"| {'Work':50} | {'ours ns':>10} | {'theirs ns':>10} | {'ratio':>5} |"
                  f" {'spread':9} | {'goal':>4} | |")
            print("|---|---:|---:|---:|---|---:|---|")
            for work in WORKS:
                if only in work.name:
                    compare(work, ours, theirs, rounds)


def compare(work: Work, ours: Side, theirs: Side, rounds: int) -> None:
    work.body(ours, work.count)
    work.body(theirs, work.count)
    our_times, their_times = [], []
    for _ in range(rounds):
        our_times.append(measured(work.body, ours, work.count))
        their_times.append(measured(work.body, theirs, work.count))
    ratios = [mine / other for mine, other in zip(our_times, their_times)]
    ratio = statistics.median(ratios)
    print(f"| {work.name:50} | {statistics.median(our_times) * 1e9:10.1f} |"
          f" {statistics.median(their_times) * 1e9:10.1f} | {ratio:5.2f} |"
          f" {min(ratios):.2f}-{max(ratios):.2f} | {work.goal:4.2f} |"
          f" {'ok' if ratio <= work.goal else 'missed'} |", flush=True)


if __name__ == "__main__":
    main(sys.argv[1:])

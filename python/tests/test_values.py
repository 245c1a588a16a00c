"""Values on their way into the library and back."""

from __future__ import annotations

from datetime import date, datetime, timedelta, timezone
from decimal import Decimal
from enum import IntEnum
from typing import Any

import pytest

import qdclgl


def through(value: Any) -> Any:
    row = qdclgl.Dictionary()
    row["x"] = value
    return row["x"]


class Side(IntEnum):
    DEBIT = 1


SAME: list[Any] = [
    True, False, 0, -1, 2**31 - 1, -(2**31), 0.1, -2.5e-7, float("inf"), "", "text", "Ä€𝄞", "half \ud800 of one",
    "NUL \0 inside", b"", b"\0\xff", None, qdclgl.Null,
    Decimal("12.3456"), Decimal("-0.0000000000000000000000000001"),
    Decimal("79228162514264337593543950335"),
    datetime(2024, 2, 29, 23, 59, 59), datetime(100, 1, 1), datetime(9999, 12, 31, 23, 59, 59),
    datetime(1899, 12, 29, 6), datetime(1899, 12, 30, 13, 5), qdclgl.ErrorCode(-2147352572),
]  # fmt: skip


@pytest.mark.parametrize("value", SAME, ids=repr)
def test_a_value_comes_back_as_it_went_in(value: Any) -> None:
    back = through(value)
    assert (type(back), back) == (type(value), value)


@pytest.mark.parametrize(
    ("value", "back"),
    [
        (2**31, Decimal(2**31)),
        (-(2**95), Decimal(-(2**95))),
        (date(2024, 1, 31), datetime(2024, 1, 31)),
        (datetime(2024, 1, 31, 12, 0, 0, 499_999), datetime(2024, 1, 31, 12)),
        (datetime(1850, 1, 31, 12, 0, 0, 600_000), datetime(1850, 1, 31, 12, 0, 1)),
        (bytearray(b"ab"), b"ab"),
        (memoryview(b"ab"), b"ab"),
        (Side.DEBIT, 1),
        (Decimal("1E+3"), Decimal(1000)),
    ],
    ids=repr,
)
def test_a_value_of_another_class_comes_back_as_the_nearest(value: Any, back: Any) -> None:
    got = through(value)
    assert (type(got), got) == (type(back), back)


@pytest.mark.parametrize(
    ("value", "error", "words"),
    [
        ({}, TypeError, "make a qdclgl.Dictionary of it"),
        ([], TypeError, "make a qdclgl.Vector of it"),
        ((1,), TypeError, "make a qdclgl.Vector of it"),
        ({1}, TypeError, "make a qdclgl.Vector of it"),
        (1j, TypeError, "a complex number"),
        (qdclgl.Ref(1), TypeError, "for an argument only"),
        (2**96, OverflowError, "error 6"),
        (Decimal("NaN"), ValueError, "no finite number"),
        (Decimal("-sNaN12"), ValueError, "no finite number"),
        (Decimal("-Infinity"), ValueError, "no finite number"),
        (Decimal("1E+29"), OverflowError, "error 6"),
        (datetime(99, 12, 31), ValueError, "error 5"),
        (datetime(2024, 1, 1, tzinfo=timezone.utc), ValueError, "time zone"),
    ],
    ids=lambda value: repr(value)[:40],
)
def test_what_is_no_value_is_refused_in_words_and_nothing_is_stored(
    value: Any, error: type[Exception], words: str
) -> None:
    row = qdclgl.Dictionary(x="before")
    with pytest.raises(error, match=words):
        row["x"] = value
    assert row["x"] == "before"


def test_null_is_one_value_and_false() -> None:
    assert not qdclgl.Null
    assert repr(qdclgl.Null) == "qdclgl.Null"
    assert through(qdclgl.Null) is qdclgl.Null


def test_amounts_are_exact(ledger: Any) -> None:
    voucher = ledger.sale("92233720368547.5807")
    read = qdclgl.VoucherSet()[voucher.VoucherID]
    assert read.DebitTotal == Decimal("92233720368547.5807")
    assert type(read.DebitTotal) is Decimal
    assert read.VoucherDate == datetime(2024, 1, 15)


def test_a_member_converts_as_every_caller_s_value(books: qdclgl.Books) -> None:
    voucher: Any = qdclgl.VoucherSet().CreateNew()
    setattr(voucher, "Attachments", "3")
    assert voucher.Attachments == 3
    with pytest.raises(qdclgl.TypeMismatch):
        voucher.Attachments = "three"
    with pytest.raises(qdclgl.Overflow):
        voucher.Attachments = 2**40
    assert voucher.Attachments == 3


def test_what_a_member_writes_by_reference_comes_back_in_the_ref(books: qdclgl.Books) -> None:
    year = qdclgl.Ref(0)
    period = qdclgl.SystemProfile().GLGetPeriodByDate(date(2024, 3, 15), year)
    assert (period, year.value) == (3, 2024)
    assert repr(year) == "qdclgl.Ref(2024)"
    assert qdclgl.SystemProfile().GLGetPeriodByDate(date(2024, 3, 15), 0) == 3
    named = qdclgl.Ref(0)
    qdclgl.SystemProfile().GLGetPeriodByDate(nYear=named, d=date(2024, 3, 15))
    assert named.value == 2024


def test_an_object_of_python_s_own_comes_back_as_itself() -> None:
    class Own:
        pass

    own = Own()
    assert through(own) is own


def test_microseconds_round_as_dates_read() -> None:
    moment = datetime(2024, 1, 31, 23, 59, 59, 700_000)
    assert through(moment) == datetime(2024, 1, 31, 23, 59, 59) + timedelta(seconds=1)

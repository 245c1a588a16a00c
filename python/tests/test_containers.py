"""The containers as mappings, sequences and rows; sets and lines."""

from __future__ import annotations

from collections.abc import MutableMapping, MutableSequence
from typing import Any

import pytest

import qdclgl


def test_a_dictionary_is_a_mapping() -> None:
    row = qdclgl.Dictionary({"FName": "Cash"}, FLevel=1)
    assert isinstance(row, MutableMapping)
    assert dict(row) == {"FName": "Cash", "FLevel": 1}
    assert (len(row), list(row), "FName" in row, "fname" in row) == (
        2, ["FName", "FLevel"], True, False,
    )  # fmt: skip
    row["FName"] = "Bank"
    row.update(FNumber="1000")
    del row["FLevel"]
    assert list(row.items()) == [("FName", "Bank"), ("FNumber", "1000")]
    assert (row.get("FLevel"), row.pop("FNumber"), row.setdefault("x", 3)) == (None, "1000", 3)
    assert repr(row) == "qdclgl.Dictionary({'FName': 'Bank', 'x': 3})"
    with pytest.raises(KeyError, match="FLevel"):
        row["FLevel"]
    with pytest.raises(KeyError, match="FLevel"):
        del row["FLevel"]
    row.clear()
    assert row.Count == 0


def test_a_vector_is_a_sequence_that_counts_from_0() -> None:
    lines = qdclgl.Vector([1, 2, 3])
    assert isinstance(lines, MutableSequence)
    assert (lines[0], lines[-1], lines[1:], lines.Item(1), 2 in lines, 9 in lines) == (
        1, 3, [2, 3], 1, True, False,
    )  # fmt: skip
    lines.append(4)
    lines.insert(0, 0)
    lines.insert(-1, 3.5)
    lines[1] = "one"
    del lines[-1]
    assert list(lines) == [0, "one", 2, 3, 3.5]
    assert (list(reversed(lines)), lines.index(2), lines.pop()) == ([3.5, 3, 2, "one", 0], 2, 3.5)
    assert repr(lines) == "qdclgl.Vector([0, 'one', 2, 3])"
    for outside in (4, -5):
        with pytest.raises(IndexError):
            lines[outside]
    lines.LowerBound = 10
    assert (lines[0], lines.Item(10)) == (0, 0)


def test_a_recordset_gives_its_rows_one_at_a_time_and_keeps_its_cursor() -> None:
    rows = qdclgl.Recordset(["FID", "FName"], [(1, "one"), (2, "two")])
    rows.MoveNext()
    assert [dict(row) for row in rows] == [
        {"FID": 1, "FName": "one"},
        {"FID": 2, "FName": "two"},
    ]
    assert (len(rows), rows.Fields["FName"].Value) == (2, "two")
    assert [field.Name for field in rows.Fields] == ["FID", "FName"]
    walk = iter(rows)
    assert dict(next(walk))["FID"] == 1
    rows.Close()
    assert repr(rows) == "<qdclgl.Recordset, closed>"
    with pytest.raises(ValueError, match="a row of 1 values for 2 columns"):
        qdclgl.Recordset(["a", "b"], [(1,)])


def test_a_collection_is_reached_by_position_and_key() -> None:
    collection = qdclgl.Collection()
    collection.Add("one", "first")
    assert (collection[1], collection["FIRST"], len(collection)) == ("one", "one", 1)
    assert ("first" in collection, "second" in collection, 2 in collection) == (True, False, False)
    with pytest.raises(KeyError):
        collection.Add("two", "first")
    with pytest.raises(IndexError):
        collection[2]


def test_properties_are_a_mapping(ledger: Any) -> None:
    account = qdclgl.AccountSet()["1000"]
    bag = account.Properties
    assert isinstance(bag, MutableMapping)
    assert (bag["FNumber"], bag.get("FNothing"), "FNumber" in bag) == ("1000", None, True)
    assert dict(bag)["FName"] == "Cash"
    assert len(bag) == len(list(bag)) > 5
    bag["FName"] = "Till"
    account.SaveChanges()
    assert qdclgl.AccountSet()["1000"].Name == "Till"
    bag["FOwn"] = "one's own"
    assert bag["FOwn"] == "one's own"
    del bag["FOwn"]
    assert "FOwn" not in bag
    with pytest.raises(KeyError):
        bag["FOwn"]


def test_a_set_is_indexed_by_id_and_number_and_walked(ledger: Any) -> None:
    accounts = qdclgl.AccountSet()
    assert [(account.Number, account.Name) for account in accounts] == [
        ("1000", "Cash"),
        ("3000", "Sales"),
    ]
    assert (len(accounts), accounts[1].Number, accounts["3000"].AccountID) == (2, "1000", 2)
    assert (1 in accounts, "3000" in accounts, 9 in accounts, "9" in accounts) == (
        True, True, False, False,
    )  # fmt: skip
    for absent in (9, "9"):
        with pytest.raises(KeyError):
            accounts[absent]
    with pytest.raises(qdclgl.ObjectNotSet):
        accounts.Item(9)
    assert "Nobody" not in qdclgl.VoucherGroupSet()
    assert qdclgl.VoucherGroupSet().Item("Nobody").Properties.Count == 0
    walk = iter(accounts)
    next(walk)
    assert next(walk).Number == "3000" and next(walk, None) is None


def test_lines_are_indexed_from_1_and_walked(ledger: Any) -> None:
    voucher = qdclgl.VoucherSet()[1]
    lines = voucher.Entries
    assert [line.AccountNumber for line in lines] == ["1000", "3000"]
    assert (len(lines), lines[2].AccountNumber, 2 in lines, 3 in lines) == (2, "3000", True, False)
    for outside in (0, 3):
        with pytest.raises(IndexError):
            lines[outside]
    assert lines.Item(3) is None
    lines.Remove(1)
    assert [line.AccountNumber for line in lines] == ["3000"]
    lines.Add()
    assert lines[2].AccountNumber == ""

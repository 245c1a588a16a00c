"""Every class and member of docs/api.tsv is there, and nothing else."""

from __future__ import annotations

import csv
import inspect
import keyword
import pydoc
from collections import defaultdict
from typing import Any

import pytest
from conftest import ROOT

import qdclgl

Rows = dict[str, dict[str, dict[str, dict[str, str]]]]


def _rows() -> Rows:
    """Class to member to kind of use to row."""
    rows: Rows = defaultdict(lambda: defaultdict(dict))
    with (ROOT / "docs/api.tsv").open() as file:
        for row in csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE):
            member = row["member"].removeprefix("ISetXactContext.")
            rows[row["class"]][member][row["kind"]] = row
    return rows


ROWS = _rows()
MEMBERS = [(owner, member) for owner, members in ROWS.items() for member in members]
FROM_PYTHON = {  # what mappings and sequences have besides
    "clear", "get", "items", "keys", "pop", "popitem", "setdefault", "update", "values",
}  # fmt: skip


def _spelled(name: str) -> str:
    return name + "_" if keyword.iskeyword(name) else name


def _arguments(text: str) -> list[tuple[str, bool]]:
    """Names of parameters, and whether each may be left out."""
    arguments = []
    for part in filter(None, text.split(",")):
        name = part.removeprefix("ref ").partition(":")[0]
        arguments.append((_spelled(name.rstrip("?")), name.endswith("?")))
    return arguments


def test_the_table_is_of_some_size() -> None:
    assert len(ROWS) > 40 and len(MEMBERS) > 600


@pytest.mark.parametrize(("owner", "member"), MEMBERS)
def test_a_member_is_there_as_its_row_says(owner: str, member: str) -> None:
    uses = ROWS[owner][member]
    attribute = inspect.getattr_static(getattr(qdclgl, owner), _spelled(member))
    row = next(iter(uses.values()))
    reads = {"method", "get", "interface"} & uses.keys()
    puts = {"let", "set"} & uses.keys()
    if "method" in uses or "interface" in uses or row["args"]:
        parameters = list(inspect.signature(attribute).parameters.values())[1:]
        expected = _arguments(row["args"])
        if puts:
            expected.append(("value", bool(reads)))
        got = [(p.name, p.default is not inspect.Parameter.empty) for p in parameters]
        assert got == expected
        types, _, help_text = str(attribute.__doc__).partition("\n\n")
        assert types.startswith("(") and help_text
    else:
        assert inspect.isdatadescriptor(attribute)
        kind, _, help_text = str(attribute.__doc__).partition(": ")
        assert ("write only" in kind, "read only" in kind) == (not reads, not puts)
        assert help_text


@pytest.mark.parametrize("owner", ROWS)
def test_a_class_has_no_member_beside_its_rows(owner: str) -> None:
    names = {name for name in vars(getattr(qdclgl, owner)) if not name.startswith("_")}
    assert names - FROM_PYTHON == {_spelled(member) for member in ROWS[owner]}


@pytest.mark.parametrize("owner", ROWS)
def test_help_tells_of_every_member(owner: str) -> None:
    text = pydoc.plain(pydoc.render_doc(getattr(qdclgl, owner)))
    assert all(_spelled(member) in text for member in ROWS[owner])


def test_defaults_are_those_of_the_rows() -> None:
    assert str(inspect.signature(qdclgl.VoucherGroupSet.Remove)) == "(self, /, Key, lngDelSign=0)"


@pytest.mark.parametrize("owner", ROWS)
def test_every_class_is_made_or_refused_and_read_without_harm(
    owner: str, books: qdclgl.Books
) -> None:
    try:
        made: Any = getattr(qdclgl, owner)()
    except TypeError as refusal:
        assert "cannot create" in str(refusal)
        return
    assert repr(made) == f"<qdclgl.{owner}>"
    for member, uses in ROWS[owner].items():
        if "get" not in uses or uses["get"]["args"]:
            continue
        try:
            getattr(made, _spelled(member))
        except qdclgl.Error as error:
            assert error.number  # as an object without a row refuses


def test_a_class_can_not_be_derived_from() -> None:
    with pytest.raises(TypeError):
        type("Own", (qdclgl.Voucher,), {})


def test_constructors_take_no_arguments() -> None:
    with pytest.raises(TypeError, match=r"VoucherSet\(\) takes no arguments"):
        qdclgl.VoucherSet(1)  # type: ignore[call-arg]


def test_a_member_is_called_with_arguments_by_name_in_any_order(books: qdclgl.Books) -> None:
    groups = qdclgl.VoucherGroupSet()
    groups.CreateNew(Name="Receipts").SaveChanges()
    assert groups.ExistenceCheck(Name="Receipts") == 1
    assert groups.ExistenceCheck(..., "Receipts") == 1
    groups.Remove(lngDelSign=0, Key=1)
    groups.Refresh()
    assert groups.Count == 0


def test_a_value_with_arguments_is_put_by_one_argument_more_or_by_brackets(
    books: qdclgl.Books,
) -> None:
    profile = qdclgl.SystemProfile()
    profile.Item("GL", "NoNegativeAmounts", "1")
    assert profile.Item("GL", "NoNegativeAmounts") == "1"
    profile["GL", "NoNegativeAmounts"] = "0"
    assert profile["GL", "NoNegativeAmounts"] == "0"
    profile.Item("GL", "NoNegativeAmounts", value="1")
    assert profile["GL", "NoNegativeAmounts"] == "1"


def test_an_object_has_one_wrapper() -> None:
    row = qdclgl.Dictionary()
    row["below"] = below = qdclgl.Dictionary()
    assert row["below"] is below

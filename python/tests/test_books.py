"""Opening books, and what is asked of them as a whole."""

from __future__ import annotations

import builtins
import sys
import types
from collections.abc import Callable
from decimal import Decimal
from pathlib import Path
from typing import Any

import pytest

import qdclgl


def test_books_are_made_opened_and_closed(source: str) -> None:
    with qdclgl.open(source, user="ann", password="open sesame", create="EUR", year=2024) as books:
        assert (books.source, books.user, books.closed) == (source, "ann", False)
        assert repr(books) == "<qdclgl.Books for ann>"
        assert [currency.Number for currency in qdclgl.CurrencySet()] == ["EUR"]
    assert books.closed
    assert repr(books) == "<qdclgl.Books for ann, closed>"
    with qdclgl.open(source, user="ann", password="open sesame"):
        assert qdclgl.CurrencySet().Count == 1


def test_books_that_can_not_be_opened_are_one_clear_error(tmp_path: Path) -> None:
    missing = tmp_path / "missing.db"
    with pytest.raises(qdclgl.NoBooks, match=f"There is no file {missing}"):
        qdclgl.open(str(missing))
    assert not missing.exists()
    other = tmp_path / "other.txt"
    other.write_text("no books" * 1000)
    with pytest.raises(qdclgl.NoBooks, match="other.txt holds no books"):
        qdclgl.open(str(other))
    with pytest.raises(qdclgl.BadConnectionText, match="Nope"):
        qdclgl.open("Provider=Nope;")


@pytest.mark.parametrize(("user", "password"), [("ann", "wrong"), ("ann", ""), ("bob", "right")])
def test_a_wrong_user_or_password_is_one_clear_error(
    source: str, user: str, password: str
) -> None:
    qdclgl.open(source, user="ann", password="right", create="EUR").close()
    with pytest.raises(qdclgl.LoginRefused, match="The user or the password is wrong") as caught:
        qdclgl.open(source, user=user, password=password)
    assert "wrong" not in str(caught.value.args).replace("is wrong", "")


def test_books_that_are_there_are_not_made_again(source: str) -> None:
    qdclgl.open(source, create="EUR").close()
    with pytest.raises(qdclgl.BooksExist):
        qdclgl.open(source, create="EUR")


def test_closed_books_refuse_everything_clearly(source: str) -> None:
    books = qdclgl.open(source, create="EUR")
    groups = qdclgl.VoucherGroupSet()
    books.close()
    books.close()
    uses: list[Callable[[], object]] = [
        books.balance,
        lambda: books.list("accounts"),
        lambda: books.component("QDSVGLBooks.BooksInfo"),
        lambda: books.props,
    ]
    for use in uses:
        with pytest.raises(qdclgl.NotLoggedIn, match="These books are closed"):
            use()
    with pytest.raises(qdclgl.NotLoggedIn, match="log in first"):
        groups.Refresh()


def test_an_error_within_the_block_closes_the_books_and_comes_through(source: str) -> None:
    with pytest.raises(ZeroDivisionError):
        with qdclgl.open(source, create="EUR") as books:
            1 / 0
    assert books.closed


def test_books_within_books_come_first_until_they_are_closed(
    ledger: Any, tmp_path: Path
) -> None:
    with qdclgl.open(str(tmp_path / "other.db"), create="USD"):
        assert qdclgl.AccountSet().Count == 0
    assert qdclgl.AccountSet().Count == 2


def test_lists_are_tables(ledger: Any) -> None:
    books = ledger.books
    assert {"accounts", "vouchers", "audit"} <= set(books.lists)
    accounts = books.list("accounts", filter="FNumber LIKE '1%'", sort="FNumber DESC")
    assert (len(accounts), accounts.column("FName")) == (1, ["Cash"])
    assert [row["FNumber"] for row in books.list("accounts", sort="FNumber DESC")] == [
        "3000",
        "1000",
    ]
    assert repr(accounts).startswith("<qdclgl.Table of 1 rows: FAccountID, FNumber")
    with pytest.raises(KeyError, match="no list 'acounts'; there are accounts, audit"):
        books.list("acounts")
    with pytest.raises(KeyError):
        accounts.column("FNothing")
    with pytest.raises(qdclgl.BadFilter):
        books.list("accounts", filter="FNumber LIKE")


def test_balances_are_a_table(ledger: Any) -> None:
    assert len(ledger.books.balance()) == 0
    ledger.books.component("QDSVGLVoucher.VoucherUpdate").Post(ledger.books.props, 1)
    table = ledger.books.balance(2024, first=1, last=1, filter="FCurrencyID = 0")
    assert [(row["FAccountNumber"], row["FEndBalance"]) for row in table] == [
        ("1000", Decimal("12.5")),
        ("3000", Decimal("-12.5")),
    ]
    with pytest.raises(qdclgl.BadValue):
        ledger.books.balance(2024, first=13)


def test_a_component_is_called_by_name(ledger: Any) -> None:
    info = ledger.books.component("QDSVGLBooks.BooksInfo")
    assert len(info.Check(ledger.books.props)) == 0
    with pytest.raises(qdclgl.CannotCreateObject):
        ledger.books.component("QDSVGLNothing.Nothing")


def test_a_table_is_html_for_notebooks(ledger: Any) -> None:
    account = qdclgl.AccountSet()["1000"]
    account.Name = "Cash <till> & more"
    account.SaveChanges()
    html = ledger.books.list("accounts")._repr_html_()
    assert "<th>FNumber</th>" in html
    assert "<td>Cash &lt;till&gt; &amp; more</td>" in html
    assert "rows more" not in html


class Frame:
    """What stands for a library of tables that need not be installed."""

    def __init__(self, data: Any, **options: Any) -> None:
        self.data, self.options = data, options

    @classmethod
    def from_records(cls, data: Any, **options: Any) -> Frame:
        return cls(data, **options)


def test_a_table_becomes_a_data_frame(ledger: Any, monkeypatch: pytest.MonkeyPatch) -> None:
    table = ledger.books.list("groups")
    for name in ("pandas", "polars"):
        module = types.ModuleType(name)
        setattr(module, "DataFrame", Frame)
        monkeypatch.setitem(sys.modules, name, module)
    pandas: Any = table.to_pandas()
    assert (len(pandas.data), pandas.options["columns"]) == (1, list(table.columns))
    polars: Any = table.to_polars()
    assert polars.data["FName"] == ["Receipts"]


def test_the_module_needs_no_data_frames(ledger: Any, monkeypatch: pytest.MonkeyPatch) -> None:
    real = builtins.__import__

    def without(name: str, *arguments: Any) -> Any:
        if name in ("pandas", "polars"):
            raise ImportError(f"No module named {name!r}")
        return real(name, *arguments)

    monkeypatch.setattr(builtins, "__import__", without)
    table = ledger.books.list("groups")
    for convert in (table.to_pandas, table.to_polars):
        with pytest.raises(ImportError, match="pandas|polars"):
            convert()


def test_null_is_none_in_tables() -> None:
    rows = qdclgl.Recordset(["a"], [(qdclgl.Null,), (None,), (1,)])
    assert qdclgl.Table(rows).rows() == [{"a": None}, {"a": None}, {"a": 1}]
